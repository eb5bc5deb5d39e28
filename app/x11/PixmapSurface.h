// The strip's pictures in the X server.
#pragma once

#include "app/display/EdgeFade.h"
#include "app/display/StripFrame.h"

#include <QtGui/QColor>

#include <xcb/render.h>
#include <xcb/xcb.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace zq::app {

class XConnection;

// Shows frames in a window by copying within the X server: each finished picture goes there once
// and stays as long as frames have it. A frame is then a request a picture and one for what lies
// between them, every pixel written once. Pictures that are not wholly opaque in themselves, or lie
// above one another, are laid over each other by Render, in a picture of the whole strip that is
// copied when it is finished.
//
// The pixels are those of paintFrame, but that a sum of rounded products may differ by one in a
// channel where Render lays pictures over each other.
//
// Thread: main.
class PixmapSurface {
 public:
  // Null where the window is not one for this: its pixels must have 32 bits, of which 8 each are
  // red, green and blue, in the order of this machine. Waits for the server.
  static std::unique_ptr<PixmapSurface> make(std::shared_ptr<XConnection> connection,
                                             xcb_window_t window);
  ~PixmapSurface();
  PixmapSurface(const PixmapSurface&) = delete;
  PixmapSurface& operator=(const PixmapSurface&) = delete;

  xcb_window_t window() const { return window_; }

  // Shows `frame` over `background`, which must be opaque. False, and nothing is shown, where the
  // server lacks Render and the frame needs it.
  bool show(const StripFrame& frame, const QColor& background);

  // Waits until the server has shown what it was given.
  void await();

  // Pictures in the server, those included that wait to be used again.
  std::size_t pixmapCount() const;
  // Pictures that were sent so far.
  std::uint64_t sentCount() const { return sent_; }

 private:
  // How a picture is shown.
  enum class Form {
    Solid,   // over the background already: it is copied
    Layered, // as it is: Render lays it over what is below
  };
  struct Picture {
    std::uint64_t serial = 0;
    Form form = Form::Solid;
    QSize size;
    xcb_pixmap_t pixmap = XCB_NONE;
    xcb_render_picture_t picture = XCB_NONE; // of a layered one
    std::uint64_t lastFrame = 0;
  };
  // A piece's extent along the strip.
  struct Span {
    int start = 0;
    int end = 0;
    const StripFrame::Piece* piece = nullptr;
    Form form = Form::Solid;
  };
  // What of the server's the requests name.
  struct Target {
    std::uint8_t depth = 0;
    xcb_render_pictformat_t format = XCB_NONE;        // of the window
    xcb_render_pictformat_t layeredFormat = XCB_NONE; // with alpha; none without Render
  };

  PixmapSurface(std::shared_ptr<XConnection> connection, xcb_window_t window, const Target& target);

  xcb_connection_t* xcb() const;
  bool canLayer() const { return target_.layeredFormat != XCB_NONE; }
  void adopt(const StripFrame& frame, const QColor& background);
  bool arrange(const StripFrame& frame);
  void fillGaps(const StripFrame& frame, xcb_drawable_t drawable);
  void layOver(const Span& span);
  void setMask(double opacity);
  const Picture& pictureOf(const Span& span);
  Picture makePicture(Form form, const QSize& size);
  xcb_pixmap_t makePixmap(std::uint8_t depth, const QSize& size);
  void send(const Picture& picture, const QImage& pixels, const QRect& source);
  void layEnds();
  void dropEnds();
  void dropUnused();
  void drop(const Picture& picture);
  void dropAll();
  void dropStrip();

  std::shared_ptr<XConnection> connection_;
  xcb_window_t window_;
  Target target_;
  xcb_gcontext_t context_;                   // for drawables of the window's depth
  xcb_gcontext_t layeredContext_ = XCB_NONE; // for pictures with alpha, once there is one
  xcb_pixmap_t strip_ = XCB_NONE;            // the whole strip, once it is needed
  xcb_render_picture_t stripPicture_ = XCB_NONE;
  xcb_render_picture_t mask_ = XCB_NONE; // the opacity of what is laid over
  int maskAlpha_ = 255;
  QSize size_;
  QColor background_;
  std::vector<Picture> pictures_;
  std::vector<Picture> spares_;
  EdgeFade edges_;
  std::vector<Picture> ends_;      // what is laid over the ends, while they fade
  std::vector<Span> spans_;        // of the present frame, in the order of its pieces
  std::vector<std::size_t> order_; // of the spans along the strip
  std::vector<xcb_rectangle_t> gaps_;
  QImage blended_; // for a picture on its way
  std::uint64_t frame_ = 0;
  std::uint64_t sent_ = 0;
};

} // namespace zq::app
