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
#include <cmath>

using namespace zq::platform;

namespace zq {

// One draw asks for six at most: those of text, arrow, the arrow once more, frame and both of a
// gradient. Enough for several classes.
static constexpr std::size_t maximumColors = 48;
// The three looks with both titles.
static constexpr std::size_t maximumTitles = 6;

// Points.
static constexpr double LineWidth = 1;

// Device pixels of the line; a half is a whole one.
static double pixelsOfLine(double scale) {
  return std::floor(LineWidth * scale + 0.5);
}

// One axis of the fit: from user space to device pixels by `scale` and `shift`, for an outline from
// `low` to `high` there. Sets what outline coordinates are multiplied by and moved by afterwards.
static void fit(double scale, double shift, double low, double high, double& factor,
                double& offset) {
  const double pixels = pixelsOfLine(scale);
  // Halves go outwards on both sides, so that the outline stays in the middle.
  const double outerLow = std::ceil(scale * (low - LineWidth / 2) + shift - 0.5);
  const double outerHigh = std::floor(scale * (high + LineWidth / 2) + shift + 0.5);
  const double fittedLow = (outerLow + pixels / 2 - shift) / scale;
  const double fittedHigh = (outerHigh - pixels / 2 - shift) / scale;
  factor = (fittedHigh - fittedLow) / (high - low);
  offset = fittedLow - factor * low;
}

// Whether points are pixels by a number that is not whole, the same on both axes.
static bool hasFractionalScale(const QTransform& toDevice) {
  const double scale = toDevice.m11();
  return toDevice.type() <= QTransform::TxScale && scale == std::abs(toDevice.m22()) &&
         scale >= 1 && scale != std::floor(scale);
}

Ref<BezierPath> PlacedOutline::at(QPointF offset, const Ref<BezierPath>& outline,
                                  const QTransform& toDevice) {
  if (!outline)
    return nullptr;
  QTransform toPlace = QTransform::fromTranslate(offset.x(), offset.y());
  double lineWidth = LineWidth;
  const QRectF bounds = outline->bounds().translated(offset);
  if (hasFractionalScale(toDevice) && bounds.width() > LineWidth && bounds.height() > LineWidth) {
    const double scale = toDevice.m11();
    double factorX = 1;
    double factorY = 1;
    double moveX = 0;
    double moveY = 0;
    fit(scale, toDevice.dx(), bounds.left(), bounds.right(), factorX, moveX);
    // Where y goes upwards, the device's rows count from the other end.
    const double sign = toDevice.m22() > 0 ? 1 : -1;
    fit(scale, sign * toDevice.dy(), bounds.top(), bounds.bottom(), factorY, moveY);
    toPlace *= QTransform(factorX, 0, 0, factorY, moveX, moveY);
    lineWidth = pixelsOfLine(scale) / scale;
  }
  if (!placed_ || toPlace_ != toPlace || source_ != outline->painterPath()) {
    source_ = outline->painterPath();
    toPlace_ = toPlace;
    placed_ = copyOf(outline);
    placed_->transformUsingAffineTransform(toPlace);
  }
  placed_->setLineWidth(lineWidth);
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
