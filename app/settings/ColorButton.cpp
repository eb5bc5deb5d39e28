#include "app/settings/ColorButton.h"

#include <QtCore/QEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QColorDialog>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
constexpr QSize SwatchSize(28, 14);
constexpr int CheckSize = 7;

QString nameOf(const QColor& color) {
  return color.name(color.alpha() < 255 ? QColor::HexArgb : QColor::HexRgb);
}
} // namespace

ColorButton::ColorButton(const QString& purpose, QWidget* parent)
    : QPushButton(parent), purpose_(purpose) {
  setAutoDefault(false);
  setIconSize(SwatchSize);
  setColor(Qt::black);
  connect(this, &QPushButton::clicked, this, &ColorButton::openDialog);
}

ColorButton::~ColorButton() = default;

void ColorButton::setColor(const QColor& color) {
  if (color == color_)
    return;
  color_ = color;
  setText(nameOf(color));
  setAccessibleName(purpose_ + u": "_s + nameOf(color));
  drawSwatch();
}

// Over squares where the color is not opaque.
void ColorButton::drawSwatch() {
  QPixmap swatch(SwatchSize * devicePixelRatioF());
  swatch.setDevicePixelRatio(devicePixelRatioF());
  swatch.fill(Qt::white);
  QPainter painter(&swatch);
  const QRect area(QPoint(), SwatchSize);
  if (color_.alpha() < 255)
    for (int y = 0; y < area.height(); y += CheckSize)
      for (int x = (y / CheckSize) % 2 * CheckSize; x < area.width(); x += 2 * CheckSize)
        painter.fillRect(x, y, CheckSize, CheckSize, Qt::lightGray);
  painter.fillRect(area, color_);
  painter.setPen(palette().color(QPalette::ButtonText));
  painter.drawRect(area.adjusted(0, 0, -1, -1));
  painter.end();
  setIcon(swatch);
}

void ColorButton::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange)
    drawSwatch();
  QPushButton::changeEvent(event);
}

void ColorButton::openDialog() {
  auto* dialog = new QColorDialog(color_, this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setOption(QColorDialog::ShowAlphaChannel);
  dialog->setWindowTitle(purpose_);
  connect(dialog, &QColorDialog::colorSelected, this, [this](const QColor& color) {
    setColor(color);
    Q_EMIT chosen(color);
  });
  dialog->open();
}

} // namespace zq::app
