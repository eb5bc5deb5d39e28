#include "zqticker/rollover/RollOverDrawings_p.h"

#include "zqticker/platform/graphics/BezierPath.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/rollover/color_utils.h"
#include "zqticker/rollover/title_drawing_p.h"

#include <QtGui/QTransform>

#include <algorithm>

using namespace zq::platform;

namespace zq {

// One draw asks for six at most: those of text, arrow, the arrow once more, frame and both of a
// gradient.
static constexpr std::size_t maximumColors = 12;
// The three looks with both titles.
static constexpr std::size_t maximumTitles = 6;

Ref<BezierPath> PlacedOutline::at(QPointF offset, const Ref<BezierPath>& outline) {
  if (!outline)
    return nullptr;
  if (!placed_ || offset_ != offset || source_ != outline->painterPath()) {
    source_ = outline->painterPath();
    offset_ = offset;
    placed_ = copyOf(outline);
    placed_->transformUsingAffineTransform(QTransform::fromTranslate(offset.x(), offset.y()));
  }
  return placed_;
}

RollOverDrawings::RollOverDrawings() = default;
RollOverDrawings::~RollOverDrawings() = default;

Ref<Color> RollOverDrawings::disabled(const Ref<Color>& color) {
  if (!color)
    return nullptr;
  const auto found =
      std::find_if(disabledColors_.begin(), disabledColors_.end(),
                   [&](const DisabledColor& candidate) { return candidate.color == color; });
  if (found != disabledColors_.end())
    return found->disabled;
  if (disabledColors_.size() == maximumColors)
    disabledColors_.pop_front();
  disabledColors_.push_back({color, disabledColor(color)});
  return disabledColors_.back().disabled;
}

Ref<AttributedString> RollOverDrawings::title(const TitleLook& look) {
  const auto found = std::find_if(titles_.begin(), titles_.end(),
                                  [&](const Title& candidate) { return candidate.look == look; });
  if (found != titles_.end())
    return found->shown;
  if (titles_.size() == maximumTitles)
    titles_.pop_front();
  Attributes attributes;
  if (look.font)
    attributes.insert(FontAttributeName, any(look.font));
  if (look.color)
    attributes.insert(ForegroundColorAttributeName, any(look.color));
  ParagraphSettings settings;
  settings.alignment = look.alignment;
  settings.lineBreakMode = TruncatingTailLineBreakMode;
  attributes.insert(ParagraphStyleAttributeName, any(std::make_shared<ParagraphStyle>(settings)));
  titles_.push_back({look, truncatedAtTail(look.text, attributes, look.width)});
  return titles_.back().shown;
}

} // namespace zq
