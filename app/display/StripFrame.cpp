#include "app/display/StripFrame.h"

#include "app/display/EdgeFade.h"

#include <QtGui/QPainter>

namespace zq::app {

void paintFrame(QPainter& painter, const StripFrame& frame, const QColor& background) {
  painter.setCompositionMode(QPainter::CompositionMode_Source);
  painter.fillRect(QRect(QPoint(0, 0), frame.size), background);
  painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
  for (const StripFrame::Piece& piece : frame.pieces) {
    if (piece.opacity != painter.opacity())
      painter.setOpacity(piece.opacity);
    painter.drawImage(piece.target, piece.picture, piece.source);
  }
  painter.setOpacity(1);
  if (frame.fade <= 0)
    return;
  // The same from frame to frame.
  static EdgeFade edges;
  edges.fit(frame, background);
  edges.paint(painter, frame);
}

} // namespace zq::app
