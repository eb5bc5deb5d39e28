// The attributes of a rollover button's look: the one list from which their storage, copying,
// archive, forwarding and properties are made.
#pragma once

#include <QtCore/QLatin1String>

#include <cstdint>
#include <memory>

namespace zq::platform {
class Color;
class Shadow;
} // namespace zq::platform

// What attributes consist of. Object attributes may be null; the other kinds start as 0.
using ZQColorAttribute = std::shared_ptr<zq::platform::Color>;
using ZQShadowAttribute = std::shared_ptr<zq::platform::Shadow>;
using ZQIntegerAttribute = std::uint64_t; // an enumeration, values without a name included
using ZQFlagAttribute = bool;
using ZQSecondsAttribute = double;

// Calls `X(Type, property, getter, setter)` for each attribute, in the order of declaration, with
// objects before plain values:
//
// - the colours of bezel, frame, title, menu arrow, and of the gradient in the bezel (null: none),
//   each in the normal, the mouse-over and the highlighted state;
// - the shadows of bezel and title. The bezel has none of its own in the mouse-over state;
// - bezelStyle, a number of the platform's bezel styles, of which 6, the shadowless square, has the
//   outline of a rounded rectangle and all others that of a plate; shadingMode, a ZQShadingMode;
//   bordered, whether bezel and frame are drawn; popUpMenuDelay, the seconds for which the mouse is
//   held down before the menu pops up; alwaysShowMenuIndicator, whether the arrow is drawn also
//   when the mouse is elsewhere.
#define ZQ_APPEARANCE_ATTRIBUTES(X)                                                                \
  ZQ_APPEARANCE_OBJECTS(X)                                                                         \
  ZQ_APPEARANCE_VALUES(X)

// The twenty of them that are objects.
// clang-format off
#define ZQ_APPEARANCE_OBJECTS(X)                                                                   \
  X(ZQColorAttribute, controlColor, controlColor, setControlColor)                                 \
  X(ZQColorAttribute, frameColor, frameColor, setFrameColor)                                       \
  X(ZQColorAttribute, textColor, textColor, setTextColor)                                          \
  X(ZQColorAttribute, arrowColor, arrowColor, setArrowColor)                                       \
  X(ZQColorAttribute, shadingColor, shadingColor, setShadingColor)                                 \
  X(ZQColorAttribute, mouseoverControlColor, mouseoverControlColor, setMouseoverControlColor)      \
  X(ZQColorAttribute, mouseoverFrameColor, mouseoverFrameColor, setMouseoverFrameColor)            \
  X(ZQColorAttribute, mouseoverTextColor, mouseoverTextColor, setMouseoverTextColor)               \
  X(ZQColorAttribute, mouseoverArrowColor, mouseoverArrowColor, setMouseoverArrowColor)            \
  X(ZQColorAttribute, mouseoverShadingColor, mouseoverShadingColor, setMouseoverShadingColor)      \
  X(ZQColorAttribute, highlightedControlColor, highlightedControlColor, setHighlightedControlColor) \
  X(ZQColorAttribute, highlightedFrameColor, highlightedFrameColor, setHighlightedFrameColor)      \
  X(ZQColorAttribute, highlightedTextColor, highlightedTextColor, setHighlightedTextColor)         \
  X(ZQColorAttribute, highlightedArrowColor, highlightedArrowColor, setHighlightedArrowColor)      \
  X(ZQColorAttribute, highlightedShadingColor, highlightedShadingColor, setHighlightedShadingColor) \
  X(ZQShadowAttribute, controlShadow, controlShadow, setControlShadow)                             \
  X(ZQShadowAttribute, textShadow, textShadow, setTextShadow)                                      \
  X(ZQShadowAttribute, mouseoverTextShadow, mouseoverTextShadow, setMouseoverTextShadow)           \
  X(ZQShadowAttribute, highlightedTextShadow, highlightedTextShadow, setHighlightedTextShadow)     \
  X(ZQShadowAttribute, highlightedControlShadow, highlightedControlShadow, setHighlightedControlShadow)

// The five that are not.
#define ZQ_APPEARANCE_VALUES(X)                                                                    \
  X(ZQIntegerAttribute, bezelStyle, bezelStyle, setBezelStyle)                                     \
  X(ZQIntegerAttribute, shadingMode, shadingMode, setShadingMode)                                  \
  X(ZQFlagAttribute, bordered, isBordered, setBordered)                                            \
  X(ZQSecondsAttribute, popUpMenuDelay, popUpMenuDelay, setPopUpMenuDelay)                         \
  X(ZQFlagAttribute, alwaysShowMenuIndicator, alwaysShowMenuIndicator, setAlwaysShowMenuIndicator)
// clang-format on

namespace zq {

// The keys of the attributes in archives, by their properties' names: "zq_controlColor" and so on.
namespace appearance_keys {
#define ZQ_DECLARE_KEY(Type, property, getter, setter)                                             \
  inline constexpr QLatin1StringView property{"zq_" #property};
ZQ_APPEARANCE_ATTRIBUTES(ZQ_DECLARE_KEY)
#undef ZQ_DECLARE_KEY
} // namespace appearance_keys

} // namespace zq
