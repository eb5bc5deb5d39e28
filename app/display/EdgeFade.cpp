#include "app/display/EdgeFade.h"

#include <QtGui/QPainter>

#include <cmath>

namespace zq::app {

namespace {
// How much of a sign is seen, from 0 at the end to 1; it neither starts nor stops suddenly.
double seenAt(int pixel, int fade) {
  const double part = (pixel + 0.5) / fade;
  return part * part * (3 - 2 * part);
}

void drawPieces(QPainter& painter, const StripFrame& frame) {
  for (const StripFrame::Piece& piece : frame.pieces) {
    if (piece.opacity != painter.opacity())
      painter.setOpacity(piece.opacity);
    painter.drawImage(piece.target, piece.picture, piece.source);
  }
}
} // namespace

bool EdgeFade::fit(const StripFrame& frame, const QColor& background) {
  if (frame.size == size_ && frame.fade == fade_ && frame.isHorizontal == isHorizontal_ &&
      background == background_)
    return false;
  size_ = frame.size;
  fade_ = frame.fade;
  isHorizontal_ = frame.isHorizontal;
  background_ = background;
  places_ = {};
  pictures_ = {};
  if (fade_ <= 0)
    return true;
  const QSize size = isHorizontal_ ? QSize(fade_, size_.height()) : QSize(size_.width(), fade_);
  places_[0] = QRect(QPoint(0, 0), size);
  places_[1] = QRect(QPoint(size_.width() - size.width(), size_.height() - size.height()), size);
  const bool isOpaque = background.alpha() == 255;
  for (std::size_t end = 0; end < Ends; ++end) {
    QImage& picture = pictures_[end];
    picture = QImage(size, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < size.height(); ++y) {
      auto* line = reinterpret_cast<QRgb*>(picture.scanLine(y));
      for (int x = 0; x < size.width(); ++x) {
        const int along = isHorizontal_ ? x : y;
        const double seen = seenAt(end == 0 ? along : fade_ - 1 - along, fade_);
        const double opacity = isOpaque ? 1 - seen : seen;
        line[x] = qPremultiply(qRgba(background.red(), background.green(), background.blue(),
                                     static_cast<int>(std::lround(opacity * 255))));
      }
    }
  }
  return true;
}

void EdgeFade::paint(QPainter& painter, const StripFrame& frame) {
  if (fade_ <= 0)
    return;
  for (std::size_t end = 0; end < Ends; ++end) {
    const QRect& place = places_[end];
    if (background_.alpha() < 255) {
      if (drawn_.size() != place.size())
        drawn_ = QImage(place.size(), QImage::Format_ARGB32_Premultiplied);
      drawn_.fill(Qt::transparent);
      QPainter pieces(&drawn_);
      pieces.translate(-place.topLeft());
      drawPieces(pieces, frame);
      pieces.setOpacity(1);
      pieces.setCompositionMode(QPainter::CompositionMode_DestinationIn);
      pieces.drawImage(place.topLeft(), pictures_[end]);
      pieces.end();
      painter.setCompositionMode(QPainter::CompositionMode_Source);
      painter.fillRect(place, background_);
      painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    }
    painter.drawImage(place.topLeft(), background_.alpha() < 255 ? drawn_ : pictures_[end]);
  }
}

} // namespace zq::app
