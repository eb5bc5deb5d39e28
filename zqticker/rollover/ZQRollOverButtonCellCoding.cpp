// Archives of rollover button cells.
#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/controls/Menu.h"
#include "zqticker/platform/graphics/BezierPath.h"
#include "zqticker/rollover/RollOverDrawings_p.h"
#include "zqticker/rollover/ZQRollOverButtonAppearance.h"
#include "zqticker/rollover/ZQRollOverButtonCell.h"
#include "zqticker/rollover/attribute_coding_p.h"

#include <QtCore/QLoggingCategory>

using namespace zq::platform;

ZQ_REGISTER_CLASS(ZQRollOverButtonCell);

// Calls `X(Type, property, getter, setter)` for what the cell archives of its appearance, in the
// archive's order. The bordered flag is not among it.
#define ZQ_CELL_ARCHIVE(X)                                                                         \
  X(ZQColorAttribute, controlColor, controlColor, setControlColor)                                 \
  X(ZQColorAttribute, frameColor, frameColor, setFrameColor)                                       \
  X(ZQColorAttribute, textColor, textColor, setTextColor)                                          \
  X(ZQColorAttribute, arrowColor, arrowColor, setArrowColor)                                       \
  X(ZQColorAttribute, mouseoverControlColor, mouseoverControlColor, setMouseoverControlColor)      \
  X(ZQColorAttribute, mouseoverFrameColor, mouseoverFrameColor, setMouseoverFrameColor)            \
  X(ZQColorAttribute, mouseoverTextColor, mouseoverTextColor, setMouseoverTextColor)               \
  X(ZQColorAttribute, mouseoverArrowColor, mouseoverArrowColor, setMouseoverArrowColor)            \
  X(ZQColorAttribute, highlightedControlColor, highlightedControlColor,                            \
    setHighlightedControlColor)                                                                    \
  X(ZQColorAttribute, highlightedFrameColor, highlightedFrameColor, setHighlightedFrameColor)      \
  X(ZQColorAttribute, highlightedTextColor, highlightedTextColor, setHighlightedTextColor)         \
  X(ZQColorAttribute, highlightedArrowColor, highlightedArrowColor, setHighlightedArrowColor)      \
  X(ZQShadowAttribute, controlShadow, controlShadow, setControlShadow)                             \
  X(ZQShadowAttribute, textShadow, textShadow, setTextShadow)                                      \
  X(ZQShadowAttribute, mouseoverTextShadow, mouseoverTextShadow, setMouseoverTextShadow)           \
  X(ZQShadowAttribute, highlightedTextShadow, highlightedTextShadow, setHighlightedTextShadow)     \
  X(ZQShadowAttribute, highlightedControlShadow, highlightedControlShadow,                         \
    setHighlightedControlShadow)                                                                   \
  X(ZQSecondsAttribute, popUpMenuDelay, popUpMenuDelay, setPopUpMenuDelay)                         \
  X(ZQColorAttribute, shadingColor, shadingColor, setShadingColor)                                 \
  X(ZQColorAttribute, mouseoverShadingColor, mouseoverShadingColor, setMouseoverShadingColor)      \
  X(ZQColorAttribute, highlightedShadingColor, highlightedShadingColor,                            \
    setHighlightedShadingColor)                                                                    \
  X(ZQIntegerAttribute, shadingMode, shadingMode, setShadingMode)                                  \
  X(ZQIntegerAttribute, bezelStyle, zqBezelStyle, setZqBezelStyle)                                 \
  X(ZQFlagAttribute, alwaysShowMenuIndicator, alwaysShowMenuIndicator, setAlwaysShowMenuIndicator)

static void logMissingKeys() {
  static const QLoggingCategory category("zqticker.rollover");
  qCWarning(category, "will only work with keyed coding");
}

void ZQRollOverButtonCell::encodeWithCoder(Coder& coder) {
  // The platform's cell has no form without keys either.
  if (!coder.allowsKeyedCoding())
    return logMissingKeys();
  ButtonCell::encodeWithCoder(coder);
  if (!appearance_)
    return;
#define ZQ_ENCODE(Type, property, getter, setter)                                                  \
  zq::encodeAttribute(coder, getter(), zq::appearance_keys::property);
  ZQ_CELL_ARCHIVE(ZQ_ENCODE)
#undef ZQ_ENCODE
}

Ref<Object> ZQRollOverButtonCell::initWithCoder(Coder& coder) {
  Ref<Object> decoded = shared_from_this();
  if (!coder.allowsKeyedCoding()) {
    logMissingKeys();
  } else {
    decoded = ButtonCell::initWithCoder(coder);
    if (coder.containsValueForKey(zq::appearance_keys::controlColor)) {
      appearance_ = std::make_shared<ZQRollOverButtonAppearance>();
#define ZQ_DECODE(Type, property, getter, setter)                                                  \
  setter(zq::decodedAttribute<Type>(coder, zq::appearance_keys::property));
      ZQ_CELL_ARCHIVE(ZQ_DECODE)
#undef ZQ_DECODE
    }
  }
  setAlignment(TextAlignment::Center);
  return decoded;
}
