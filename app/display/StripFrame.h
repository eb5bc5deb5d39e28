// One frame of a strip as finished pictures.
#pragma once

#include <QtCore/QPoint>
#include <QtCore/QRect>
#include <QtCore/QSize>
#include <QtGui/QColor>
#include <QtGui/QImage>

#include <cstdint>
#include <vector>

class QPainter;

namespace zq::app {

// What a frame consists of, in device pixels from the upper left of the strip. Whoever shows it
// copies pictures and decides nothing.
struct StripFrame {
  struct Piece {
    std::uint64_t serial = 0; // the same for the same pixels, never used for others
    QImage picture;
    QRect source;
    QPoint target;
    double opacity = 1; // 0 to 1
  };

  QSize size;
  bool isHorizontal = true; // the way along which the pieces follow each other
  int fade = 0;             // pixels over which both ends fade towards the background
  std::vector<Piece> pieces;
};

// Paints `frame` over `background` through a painter whose units are device pixels.
//
// Thread: main.
void paintFrame(QPainter& painter, const StripFrame& frame, const QColor& background);

} // namespace zq::app
