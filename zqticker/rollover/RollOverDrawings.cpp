#include "zqticker/rollover/RollOverDrawings_p.h"

#include "zqticker/platform/graphics/BezierPath.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/rollover/color_utils.h"
#include "zqticker/rollover/title_drawing_p.h"

#include <QtCore/QHash>
#include <QtGui/QTransform>

#include <algorithm>

using namespace zq::platform;

namespace zq {

// One draw asks for six at most: those of text, arrow, the arrow once more, frame and both of a
// gradient. Enough for several classes.
static constexpr std::size_t maximumColors = 48;
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
  // Of all cells, oldest first, so that cells of one look have the same.
  static auto& colors = *new std::deque<DisabledColor>;
  const auto found =
      std::find_if(colors.begin(), colors.end(),
                   [&](const DisabledColor& candidate) { return candidate.color == color; });
  if (found != colors.end())
    return found->disabled;
  if (colors.size() == maximumColors)
    colors.pop_front();
  colors.push_back({color, disabledColor(color)});
  return colors.back().disabled;
}

// The titles of all cells that show at present, so that cells of one look share the layout.
struct SharedTitle {
  QString text;
  QString fontName;
  double fontSize = 0;
  // Lives as long as the title.
  const Color* color = nullptr;
  TextAlignment alignment = TextAlignment::Natural;
  double width = 0;

  friend bool operator==(const SharedTitle&, const SharedTitle&) = default;
  friend std::size_t qHash(const SharedTitle& title, std::size_t seed = 0) {
    return qHashMulti(seed, title.text, title.fontName, title.fontSize, title.color,
                      int(title.alignment), title.width);
  }
};
using SharedTitles = QHash<SharedTitle, std::weak_ptr<AttributedString>>;

static Ref<AttributedString> madeTitle(const TitleLook& look) {
  Attributes attributes;
  if (look.font)
    attributes.insert(FontAttributeName, any(look.font));
  if (look.color)
    attributes.insert(ForegroundColorAttributeName, any(look.color));
  ParagraphSettings settings;
  settings.alignment = look.alignment;
  settings.lineBreakMode = TruncatingTailLineBreakMode;
  attributes.insert(ParagraphStyleAttributeName, any(std::make_shared<ParagraphStyle>(settings)));
  return truncatedAtTail(look.text, attributes, look.width);
}

static Ref<AttributedString> sharedTitle(const TitleLook& look) {
  // Never freed: cells may be drawn until the end of the process.
  static auto& titles = *new SharedTitles;
  static qsizetype sizeToSweepAt = 64;
  const SharedTitle key{look.text,
                        look.font ? look.font->fontName() : QString(),
                        look.font ? look.font->pointSize() : -1,
                        look.color.get(),
                        look.alignment,
                        look.width};
  if (const Ref<AttributedString> found = titles.value(key).lock())
    return found;
  if (titles.size() >= sizeToSweepAt) {
    titles.removeIf([](const auto& each) { return each.value().expired(); });
    sizeToSweepAt = std::max<qsizetype>(64, 2 * titles.size());
  }
  const Ref<AttributedString> title = madeTitle(look);
  titles.insert(key, title);
  return title;
}

Ref<AttributedString> RollOverDrawings::title(const TitleLook& look) {
  const auto found = std::find_if(titles_.begin(), titles_.end(),
                                  [&](const Title& candidate) { return candidate.look == look; });
  if (found != titles_.end())
    return found->shown;
  if (titles_.size() == maximumTitles)
    titles_.pop_front();
  titles_.push_back({look, sharedTitle(look)});
  return titles_.back().shown;
}

} // namespace zq
