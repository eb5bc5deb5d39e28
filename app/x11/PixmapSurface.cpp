#include "app/x11/PixmapSurface.h"

#include "app/x11/XConnection.h"
#include "app/x11/x_replies.h"

#include <QtCore/QSysInfo>
#include <QtGui/QPainter>

#include <algorithm>
#include <cmath>

namespace zq::app {

namespace {
constexpr std::size_t MostSpares = 8;
// Bytes of a request for pixels; every server takes so many.
constexpr int MostBytes = 1 << 17;
constexpr int BitsPerPixel = 32;
constexpr std::uint8_t LayeredDepth = 32;
constexpr std::uint32_t ByteMask = 0xff;
constexpr int RedShift = 16;
constexpr int GreenShift = 8;
constexpr int AlphaShift = 24;

bool hasMachineOrder(const xcb_setup_t& setup) {
  const bool isLittle = setup.image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST;
  return isLittle == (QSysInfo::ByteOrder == QSysInfo::LittleEndian);
}

// Whether pictures of this depth have the pixels of a QImage of 32 bits.
bool hasWholePixels(const xcb_setup_t& setup, std::uint8_t depth) {
  for (xcb_format_iterator_t i = xcb_setup_pixmap_formats_iterator(&setup); i.rem;
       xcb_format_next(&i))
    if (i.data->depth == depth)
      return i.data->bits_per_pixel == BitsPerPixel && i.data->scanline_pad == BitsPerPixel;
  return false;
}

bool isTrueColor(const xcb_screen_t& screen, std::uint8_t depth, xcb_visualid_t visual) {
  for (xcb_depth_iterator_t depths = xcb_screen_allowed_depths_iterator(&screen); depths.rem;
       xcb_depth_next(&depths))
    for (xcb_visualtype_iterator_t i = xcb_depth_visuals_iterator(depths.data); i.rem;
         xcb_visualtype_next(&i))
      if (depths.data->depth == depth && i.data->visual_id == visual)
        return i.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR &&
               i.data->red_mask == ByteMask << RedShift &&
               i.data->green_mask == ByteMask << GreenShift && i.data->blue_mask == ByteMask;
  return false;
}

xcb_render_pictformat_t formatOf(const xcb_render_query_pict_formats_reply_t* formats,
                                 std::uint8_t depth, bool hasAlpha) {
  if (!formats)
    return XCB_NONE;
  for (xcb_render_pictforminfo_iterator_t i =
           xcb_render_query_pict_formats_formats_iterator(formats);
       i.rem; xcb_render_pictforminfo_next(&i)) {
    const xcb_render_directformat_t& direct = i.data->direct;
    if (i.data->type == XCB_RENDER_PICT_TYPE_DIRECT && i.data->depth == depth &&
        direct.red_shift == RedShift && direct.green_shift == GreenShift &&
        direct.blue_shift == 0 && direct.red_mask == ByteMask && direct.green_mask == ByteMask &&
        direct.blue_mask == ByteMask && direct.alpha_mask == (hasAlpha ? ByteMask : 0) &&
        (!hasAlpha || direct.alpha_shift == AlphaShift))
      return i.data->id;
  }
  return XCB_NONE;
}

// As QPainter rounds the opacity of a picture.
int alphaOf(double opacity) {
  return (static_cast<int>(std::lround(opacity * 256)) * 255) >> 8;
}

std::int16_t coordinate(int pixels) {
  return static_cast<std::int16_t>(std::clamp(pixels, -0x8000, 0x7fff));
}

std::uint16_t side(int pixels) {
  return static_cast<std::uint16_t>(std::clamp(pixels, 0, 0x7fff));
}
} // namespace

std::unique_ptr<PixmapSurface> PixmapSurface::make(std::shared_ptr<XConnection> connection,
                                                   xcb_window_t window) {
  xcb_connection_t* const xcb = connection->get();
  const auto attributesAsked = xcb_get_window_attributes(xcb, window);
  const auto geometryAsked = xcb_get_geometry(xcb, window);
  const xcb_query_extension_reply_t* render = xcb_get_extension_data(xcb, &xcb_render_id);
  OwnedReply<xcb_render_query_pict_formats_reply_t> formats;
  if (render && render->present) {
    const OwnedReply<xcb_render_query_version_reply_t> version(xcb_render_query_version_reply(
        xcb, xcb_render_query_version(xcb, XCB_RENDER_MAJOR_VERSION, XCB_RENDER_MINOR_VERSION),
        nullptr));
    // Pictures of one colour came with it.
    constexpr std::uint32_t LeastMinor = 10;
    if (version && (version->major_version > 0 || version->minor_version >= LeastMinor))
      formats.reset(
          xcb_render_query_pict_formats_reply(xcb, xcb_render_query_pict_formats(xcb), nullptr));
  }
  const OwnedReply<xcb_get_window_attributes_reply_t> attributes(
      xcb_get_window_attributes_reply(xcb, attributesAsked, nullptr));
  const OwnedReply<xcb_get_geometry_reply_t> geometry(
      xcb_get_geometry_reply(xcb, geometryAsked, nullptr));
  connection->flush();
  const xcb_setup_t* setup = xcb_get_setup(xcb);
  if (!attributes || !geometry || !hasMachineOrder(*setup) ||
      !hasWholePixels(*setup, geometry->depth) ||
      !isTrueColor(*connection->screen(), geometry->depth, attributes->visual))
    return nullptr;
  Target target;
  target.depth = geometry->depth;
  target.format = formatOf(formats.get(), target.depth, target.depth == LayeredDepth);
  if (target.format != XCB_NONE && hasWholePixels(*setup, LayeredDepth))
    target.layeredFormat = formatOf(formats.get(), LayeredDepth, true);
  return std::unique_ptr<PixmapSurface>(new PixmapSurface(std::move(connection), window, target));
}

PixmapSurface::PixmapSurface(std::shared_ptr<XConnection> connection, xcb_window_t window,
                             const Target& target)
    : connection_(std::move(connection)), window_(window), target_(target),
      context_(xcb_generate_id(xcb())) {
  // Nobody waits to hear that all of a picture was there to be copied.
  const std::uint32_t exposures = 0;
  xcb_create_gc(xcb(), context_, window_, XCB_GC_GRAPHICS_EXPOSURES, &exposures);
}

PixmapSurface::~PixmapSurface() {
  dropAll();
  dropEnds();
  dropStrip();
  if (mask_ != XCB_NONE)
    xcb_render_free_picture(xcb(), mask_);
  if (layeredContext_ != XCB_NONE)
    xcb_free_gc(xcb(), layeredContext_);
  xcb_free_gc(xcb(), context_);
  connection_->flush();
}

xcb_connection_t* PixmapSurface::xcb() const {
  return connection_->get();
}

std::size_t PixmapSurface::pixmapCount() const {
  return pictures_.size() + spares_.size() + ends_.size() + (strip_ != XCB_NONE ? 1 : 0);
}

void PixmapSurface::await() {
  awaitServer(xcb());
  connection_->flush();
}

bool PixmapSurface::show(const StripFrame& frame, const QColor& background) {
  const bool isLayered = arrange(frame) || frame.fade > 0;
  if (isLayered && !canLayer())
    return false;
  adopt(frame, background);
  ++frame_;
  if (isLayered && strip_ == XCB_NONE) {
    strip_ = makePixmap(target_.depth, size_);
    stripPicture_ = xcb_generate_id(xcb());
    xcb_render_create_picture(xcb(), stripPicture_, strip_, target_.format, 0, nullptr);
  }
  const xcb_drawable_t drawable = isLayered ? strip_ : window_;
  for (const Span& span : spans_) {
    if (span.form != Form::Solid)
      continue;
    const Picture& picture = pictureOf(span);
    xcb_copy_area(xcb(), picture.pixmap, drawable, context_, 0, 0,
                  coordinate(span.piece->target.x()), coordinate(span.piece->target.y()),
                  side(span.piece->source.width()), side(span.piece->source.height()));
  }
  fillGaps(frame, drawable);
  if (isLayered) {
    for (const Span& span : spans_)
      if (span.form == Form::Layered)
        layOver(span);
    layEnds();
    xcb_copy_area(xcb(), strip_, window_, context_, 0, 0, 0, 0, side(size_.width()),
                  side(size_.height()));
  }
  dropUnused();
  connection_->flush();
  return true;
}

// What was made for another background or size is of no use.
void PixmapSurface::adopt(const StripFrame& frame, const QColor& background) {
  if (background != background_) {
    dropAll();
    background_ = background;
    const std::uint32_t pixel = background.rgb();
    xcb_change_gc(xcb(), context_, XCB_GC_FOREGROUND, &pixel);
  }
  if (frame.size != size_) {
    dropAll();
    dropStrip();
    size_ = frame.size;
  }
  if (edges_.fit(frame, background))
    dropEnds();
}

// Decides how each piece is shown. Whether any is laid over others.
bool PixmapSurface::arrange(const StripFrame& frame) {
  spans_.clear();
  order_.clear();
  bool isLayered = false;
  const bool horizontal = frame.isHorizontal;
  for (const StripFrame::Piece& piece : frame.pieces) {
    const int start = horizontal ? piece.target.x() : piece.target.y();
    const int length = horizontal ? piece.source.width() : piece.source.height();
    const bool isWhole = horizontal
                             ? piece.target.y() == 0 && piece.source.height() == frame.size.height()
                             : piece.target.x() == 0 && piece.source.width() == frame.size.width();
    const bool isSolid = isWhole && alphaOf(piece.opacity) == 255;
    isLayered = isLayered || !isSolid;
    order_.push_back(spans_.size());
    spans_.push_back({start, start + length, &piece, isSolid ? Form::Solid : Form::Layered});
  }
  std::sort(order_.begin(), order_.end(), [this](std::size_t a, std::size_t b) {
    return std::pair(spans_[a].start, a) < std::pair(spans_[b].start, b);
  });
  // The one that reaches furthest so far.
  Span* before = nullptr;
  for (const std::size_t i : order_) {
    Span& span = spans_[i];
    if (before && span.start < before->end) {
      span.form = before->form = Form::Layered;
      isLayered = true;
    }
    if (!before || span.end > before->end)
      before = &span;
  }
  return isLayered;
}

// Fills all but the solid pieces.
void PixmapSurface::fillGaps(const StripFrame& frame, xcb_drawable_t drawable) {
  const bool horizontal = frame.isHorizontal;
  const int extent = horizontal ? frame.size.width() : frame.size.height();
  gaps_.clear();
  int filled = 0;
  const auto fillTo = [&](int end) {
    const int length = std::min(end, extent) - filled;
    if (length <= 0)
      return;
    if (horizontal)
      gaps_.push_back({coordinate(filled), 0, side(length), side(frame.size.height())});
    else
      gaps_.push_back({0, coordinate(filled), side(frame.size.width()), side(length)});
  };
  for (const std::size_t i : order_) {
    const Span& span = spans_[i];
    if (span.form != Form::Solid)
      continue;
    fillTo(span.start);
    filled = std::max(filled, span.end);
  }
  fillTo(extent);
  if (!gaps_.empty())
    xcb_poly_fill_rectangle(xcb(), drawable, context_, static_cast<std::uint32_t>(gaps_.size()),
                            gaps_.data());
}

void PixmapSurface::layOver(const Span& span) {
  const StripFrame::Piece& piece = *span.piece;
  const int alpha = alphaOf(piece.opacity);
  if (alpha == 0)
    return;
  const Picture& picture = pictureOf(span);
  setMask(piece.opacity);
  xcb_render_composite(xcb(), XCB_RENDER_PICT_OP_OVER, picture.picture,
                       alpha == 255 ? xcb_render_picture_t(XCB_NONE) : mask_, stripPicture_, 0, 0,
                       0, 0, coordinate(piece.target.x()), coordinate(piece.target.y()),
                       side(piece.source.width()), side(piece.source.height()));
}

void PixmapSurface::layEnds() {
  for (std::size_t end = 0; end < EdgeFade::Ends; ++end) {
    const QRect place = edges_.place(end);
    if (place.isEmpty())
      continue;
    if (ends_.size() <= end) {
      ends_.push_back(makePicture(Form::Layered, place.size()));
      send(ends_.back(), edges_.cover(end), QRect(QPoint(0, 0), place.size()));
    }
    xcb_render_composite(xcb(), XCB_RENDER_PICT_OP_OVER, ends_[end].picture, XCB_NONE,
                         stripPicture_, 0, 0, 0, 0, coordinate(place.x()), coordinate(place.y()),
                         side(place.width()), side(place.height()));
  }
}

void PixmapSurface::setMask(double opacity) {
  const int alpha = alphaOf(opacity);
  if (alpha == maskAlpha_ || alpha == 255)
    return;
  if (mask_ != XCB_NONE)
    xcb_render_free_picture(xcb(), mask_);
  mask_ = xcb_generate_id(xcb());
  maskAlpha_ = alpha;
  constexpr int ShortPerByte = 0x101;
  xcb_render_create_solid_fill(xcb(), mask_,
                               {0, 0, 0, static_cast<std::uint16_t>(alpha * ShortPerByte)});
}

const PixmapSurface::Picture& PixmapSurface::pictureOf(const Span& span) {
  const StripFrame::Piece& piece = *span.piece;
  const auto found = std::find_if(pictures_.begin(), pictures_.end(), [&](const Picture& picture) {
    return picture.serial == piece.serial && picture.form == span.form;
  });
  if (found != pictures_.end()) {
    found->lastFrame = frame_;
    return *found;
  }
  // A picture may show other parts of itself later.
  const QSize size = piece.picture.size();
  const auto spare = std::find_if(spares_.begin(), spares_.end(), [&](const Picture& picture) {
    return picture.form == span.form && picture.size == size;
  });
  Picture picture;
  if (spare != spares_.end()) {
    picture = *spare;
    spares_.erase(spare);
  } else {
    picture = makePicture(span.form, size);
  }
  picture.serial = piece.serial;
  picture.lastFrame = frame_;
  send(picture, piece.picture, piece.source);
  pictures_.push_back(picture);
  return pictures_.back();
}

PixmapSurface::Picture PixmapSurface::makePicture(Form form, const QSize& size) {
  Picture picture;
  picture.form = form;
  picture.size = size;
  const bool isLayered = form == Form::Layered;
  picture.pixmap = makePixmap(isLayered ? LayeredDepth : target_.depth, size);
  if (!isLayered)
    return picture;
  picture.picture = xcb_generate_id(xcb());
  xcb_render_create_picture(xcb(), picture.picture, picture.pixmap, target_.layeredFormat, 0,
                            nullptr);
  if (layeredContext_ == XCB_NONE) {
    layeredContext_ = xcb_generate_id(xcb());
    xcb_create_gc(xcb(), layeredContext_, picture.pixmap, 0, nullptr);
  }
  return picture;
}

xcb_pixmap_t PixmapSurface::makePixmap(std::uint8_t depth, const QSize& size) {
  const xcb_pixmap_t pixmap = xcb_generate_id(xcb());
  xcb_create_pixmap(xcb(), depth, pixmap, window_, side(size.width()), side(size.height()));
  return pixmap;
}

// Puts the part `source` of `pixels` into the upper left of the picture in the server.
void PixmapSurface::send(const Picture& picture, const QImage& pixels, const QRect& source) {
  ++sent_;
  const bool isLayered = picture.form == Form::Layered;
  if (blended_.size() != pixels.size())
    blended_ = QImage(pixels.size(), QImage::Format_ARGB32_Premultiplied);
  {
    QPainter painter(&blended_);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(blended_.rect(), isLayered ? QColor(Qt::transparent) : background_);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.drawImage(QPoint(0, 0), pixels, source);
  }
  const auto bytesPerLine = static_cast<int>(blended_.bytesPerLine());
  const int lines = std::max(MostBytes / bytesPerLine, 1);
  for (int y = 0; y < source.height(); y += lines) {
    const int count = std::min(lines, source.height() - y);
    xcb_put_image(xcb(), XCB_IMAGE_FORMAT_Z_PIXMAP, picture.pixmap,
                  isLayered ? layeredContext_ : context_, side(blended_.width()), side(count), 0,
                  coordinate(y), 0, isLayered ? LayeredDepth : target_.depth,
                  static_cast<std::uint32_t>(count * bytesPerLine), blended_.constScanLine(y));
  }
}

// What this frame has not shown has left the strip.
void PixmapSurface::dropUnused() {
  std::erase_if(pictures_, [this](const Picture& picture) {
    if (picture.lastFrame == frame_)
      return false;
    if (spares_.size() < MostSpares)
      spares_.push_back(picture);
    else
      drop(picture);
    return true;
  });
}

void PixmapSurface::drop(const Picture& picture) {
  if (picture.picture != XCB_NONE)
    xcb_render_free_picture(xcb(), picture.picture);
  xcb_free_pixmap(xcb(), picture.pixmap);
}

void PixmapSurface::dropAll() {
  for (const std::vector<Picture>* pictures : {&pictures_, &spares_})
    for (const Picture& picture : *pictures)
      drop(picture);
  pictures_.clear();
  spares_.clear();
}

void PixmapSurface::dropEnds() {
  for (const Picture& picture : ends_)
    drop(picture);
  ends_.clear();
}

void PixmapSurface::dropStrip() {
  if (strip_ == XCB_NONE)
    return;
  xcb_render_free_picture(xcb(), stripPicture_);
  xcb_free_pixmap(xcb(), strip_);
  strip_ = XCB_NONE;
}

} // namespace zq::app
