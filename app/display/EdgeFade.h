// How the ends of a strip fade.
#pragma once

#include "app/display/StripFrame.h"

#include <QtCore/QRect>
#include <QtGui/QColor>
#include <QtGui/QImage>

#include <array>

class QPainter;

namespace zq::app {

// What makes the ends of a frame fade towards its background, the more the nearer the end. Above an
// opaque background that is the background itself, laid over the ends with an opacity that grows.
// Above another one the pieces are drawn once more with an opacity that falls.
//
// Nothing is made anew while frames have the same size and fade, over the same background.
//
// Thread: any, one at a time.
class EdgeFade {
 public:
  static constexpr std::size_t Ends = 2; // the left or upper one, and the other

  // Gets ready for `frame`. Whether anything is another one than before.
  bool fit(const StripFrame& frame, const QColor& background);

  // Where the ends are in the frame; empty where nothing fades.
  QRect place(std::size_t end) const { return places_[end]; }
  // What is laid over an end; the background is opaque.
  const QImage& cover(std::size_t end) const { return pictures_[end]; }

  // Lets the ends of the frame that `painter` has painted fade.
  void paint(QPainter& painter, const StripFrame& frame);

 private:
  QSize size_;
  int fade_ = 0;
  bool isHorizontal_ = true;
  QColor background_;
  std::array<QRect, Ends> places_;
  std::array<QImage, Ends> pictures_; // covers, or the opacity of the pieces
  QImage drawn_;                      // the pieces at one end
};

} // namespace zq::app
