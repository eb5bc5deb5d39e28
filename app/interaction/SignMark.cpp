#include "app/interaction/SignMark.h"

#include "app/commands/color_contrast.h"

#include <QtGui/QPainter>

#include <algorithm>

namespace zq::app {

namespace {
// Points.
constexpr int GroundBreadth = 1;
constexpr int LineBreadth = SignMark::Breadth - GroundBreadth;
// Of a line that is to be seen.
constexpr double LeastContrast = 3;

QColor opaque(QColor color) {
  color.setAlpha(255);
  return color;
}
} // namespace

SignMark::SignMark(Kind kind, QWidget* strip) : QWidget(strip), kind_(kind) {
  hide();
  setAttribute(Qt::WA_TransparentForMouseEvents);
  setAttribute(Qt::WA_NoSystemBackground);
  setAttribute(Qt::WA_OpaquePaintEvent, kind == Kind::Underline);
  setFocusPolicy(Qt::NoFocus);
}

SignMark::~SignMark() = default;

void SignMark::showAt(const QRectF& area) {
  QRect place = area.toAlignedRect() & parentWidget()->rect();
  if (kind_ == Kind::Underline)
    place.setTop(std::max(place.bottom() + 1 - Breadth, place.top()));
  setGeometry(place);
  setVisible(!place.isEmpty());
}

void SignMark::setColors(const QColor& text, const QColor& background) {
  const QColor ground = opaque(background);
  const QColor line = contrastRatio(opaque(text), ground) >= LeastContrast
                          ? opaque(text)
                          : QColor(isDark(ground) ? Qt::white : Qt::black);
  if (line == line_ && ground == ground_)
    return;
  line_ = line;
  ground_ = ground;
  update();
}

void SignMark::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  if (kind_ == Kind::Underline) {
    painter.fillRect(rect(), ground_);
    painter.fillRect(rect().adjusted(0, GroundBreadth, 0, 0), line_);
    return;
  }
  const QRect inner = rect().adjusted(LineBreadth, LineBreadth, -LineBreadth, -LineBreadth);
  const QRect within = rect().adjusted(Breadth, Breadth, -Breadth, -Breadth);
  for (const QRect& piece : QRegion(rect()) - QRegion(inner))
    painter.fillRect(piece, line_);
  for (const QRect& piece : QRegion(inner) - QRegion(within))
    painter.fillRect(piece, ground_);
}

} // namespace zq::app
