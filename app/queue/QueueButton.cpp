#include "app/queue/QueueButton.h"

#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/system/Bundle.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/rollover/ZQRollOverButtonAppearance.h"
#include "zqticker/rollover/ZQRollOverButtonCell.h"
#include "zqticker/rollover/color_utils.h"

#include <QtCore/QFile>
#include <QtGui/QKeyEvent>
#include <QtGui/QPainterPath>
#include <QtWidgets/QApplication>

#include <cmath>

using namespace Qt::StringLiterals;

namespace zq::app {

using namespace platform;

namespace {
// Points: the frame of the button that has the focus.
constexpr double FocusWidth = 2;
constexpr double FocusRadius = 5;
constexpr std::uint64_t RoundedBezel = 6;

bool isDark(const QPalette& palette) {
  return palette.color(QPalette::Window).lightness() <
         palette.color(QPalette::WindowText).lightness();
}

QUrl ownLook() {
  return Bundle::mainBundle().URLForResource(u"QueueButton"_s, u"button"_s);
}

QUrl shippedLook() {
  return Bundle::mainBundle().URLForResource(
      isDark(QApplication::palette()) ? u"dark"_s : u"light"_s, u"button"_s);
}

// Null where there is none, or none that can be read.
Ref<ZQRollOverButtonAppearance> lookAt(const QUrl& url) {
  QFile file(url.toLocalFile());
  if (url.isEmpty() || !file.open(QIODevice::ReadOnly))
    return nullptr;
  try {
    return ZQRollOverButtonAppearance::appearanceWithDataRepresentation(file.readAll());
  } catch (const Exception&) {
    return nullptr;
  }
}

Ref<ZQRollOverButtonAppearance> lookOfPalette(const QPalette& palette) {
  const auto look = std::make_shared<ZQRollOverButtonAppearance>();
  const auto color = [&](QPalette::ColorRole role) {
    return Color::fromQColor(palette.color(role));
  };
  look->setControlColor(color(QPalette::Button));
  look->setFrameColor(color(QPalette::ButtonText));
  look->setTextColor(color(QPalette::ButtonText));
  look->setArrowColor(color(QPalette::ButtonText));
  look->setMouseoverControlColor(color(QPalette::Highlight));
  look->setMouseoverFrameColor(color(QPalette::ButtonText));
  look->setMouseoverTextColor(color(QPalette::HighlightedText));
  look->setMouseoverArrowColor(color(QPalette::HighlightedText));
  look->setHighlightedControlColor(color(QPalette::ButtonText));
  look->setHighlightedFrameColor(color(QPalette::ButtonText));
  look->setHighlightedTextColor(color(QPalette::Button));
  look->setHighlightedArrowColor(color(QPalette::Button));
  look->setBezelStyle(RoundedBezel);
  look->setBordered(true);
  return look;
}

Ref<Color> titleColor(const ZQRollOverButtonCell& cell) {
  if (cell.isHighlighted())
    return cell.highlightedTextColor();
  if (cell.mouseOver())
    return cell.mouseoverTextColor();
  return cell.isEnabled() ? cell.textColor() : disabledColor(cell.textColor());
}
} // namespace

QueueButton::QueueButton(const QString& title, QWidget* parent)
    : RollOverButtonClass(this), ZQRollOverButton(QRectF(), title, parent) {
  setFocusPolicy(Qt::TabFocus);
}
QueueButton::~QueueButton() = default;

// Set by followPalette; a file that is broken is no reason to be without a window.
QUrl QueueButton::appearanceDataURL(const QString&) {
  return QUrl();
}

void QueueButton::followPalette() {
  Ref<ZQRollOverButtonAppearance> look = lookAt(ownLook());
  if (!look)
    look = lookAt(shippedLook());
  if (!look)
    look = lookOfPalette(QApplication::palette());
  setAppearance<QueueButton>(look);
}

void QueueButton::setMnemonic(QChar letter) {
  mnemonic_ = letter;
  setNeedsDisplay();
}

// The title stands in the middle of its room, its upper edges together.
void QueueButton::underlineMnemonic(GraphicsContext& context) const {
  const auto own = std::dynamic_pointer_cast<ZQRollOverButtonCell>(cell());
  const QString name = title();
  const qsizetype place = mnemonic_.isNull() ? -1 : name.indexOf(mnemonic_, 0, Qt::CaseInsensitive);
  if (!own || place < 0 || !own->font())
    return;
  const Attributes style{{FontAttributeName, any(own->font())}};
  const auto widthOf = [&](qsizetype characters) {
    return AttributedString::make(name.left(characters), style)->size().width();
  };
  const QRectF room = own->textRect();
  const double start = widthOf(place);
  const double end = widthOf(place + 1);
  QPainterPath line;
  line.addRect(QRectF(room.x() + (room.width() - widthOf(name.size())) / 2 + start,
                      std::round(room.y() + own->font()->ascender()) + 1, end - start, 1));
  const SavedGraphicsState saved(&context);
  context.setFillColor(titleColor(*own));
  context.fillPath(line);
}

void QueueButton::drawRect(const QRectF& dirtyRect) {
  ZQRollOverButton::drawRect(dirtyRect);
  if (GraphicsContext* context = GraphicsContext::currentContext())
    underlineMnemonic(*context);
  GraphicsContext* context = GraphicsContext::currentContext();
  if (!hasFocus() || !context)
    return;
  const double inset = FocusWidth / 2;
  QPainterPath frame;
  frame.addRoundedRect(bounds().adjusted(inset, inset, -inset, -inset), FocusRadius, FocusRadius);
  const SavedGraphicsState saved(context);
  context->setStrokeColor(Color::fromQColor(palette().color(QPalette::Highlight)));
  context->strokePath(frame, FocusWidth);
}

void QueueButton::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
  case Qt::Key_Space:
  case Qt::Key_Select:
  case Qt::Key_Return:
  case Qt::Key_Enter:
    if (!event->isAutoRepeat())
      click();
    return;
  default:
    ZQRollOverButton::keyPressEvent(event);
  }
}

void QueueButton::focusInEvent(QFocusEvent* event) {
  ZQRollOverButton::focusInEvent(event);
  setNeedsDisplay();
}

void QueueButton::focusOutEvent(QFocusEvent* event) {
  ZQRollOverButton::focusOutEvent(event);
  setNeedsDisplay();
}

} // namespace zq::app
