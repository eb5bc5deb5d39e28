#include "app/display/TickerDisplay.h"

#include "app/display/SignItem.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/signs/ZQTextTickerSign.h"

#include <QtCore/QLoggingCategory>
#include <QtGui/QPainter>

#include <algorithm>
#include <cmath>
#include <exception>

namespace zq::app {

using namespace platform;

namespace {
Q_LOGGING_CATEGORY(displayLog, "zqticker.display")

constexpr int HorizontalScrolling = 1;
constexpr int VerticalScrolling = 0;

// Signs that are prepared before their turn comes, of each kind of wait.
constexpr std::size_t LookAhead = 4;

const SignItem& itemOf(const Strip::Run& run) {
  return static_cast<const SignItem&>(run.item());
}

// Empty for none.
QString identifierOf(const Strip::Entry& entry) {
  const Ref<ZQTickerSign>& sign = static_cast<const SignItem&>(*entry->item).sign();
  return sign ? sign->identifier().value_or(QString()) : QString();
}

const SignOrigin& originOf(const Strip::Entry& entry) {
  return static_cast<const SignItem&>(*entry->item).origin();
}

std::int64_t loopsLeft(const StripQueue::Entry& entry) {
  if (!entry.isWaiting())
    return 0;
  const std::int64_t count = entry.item->loopRule().count;
  return count < 0 ? -1
                   : std::max<std::int64_t>(std::max<std::int64_t>(count, 1) - entry.showings, 0);
}
} // namespace

// What text signs see of the display: all of it, but a text offset of 0. Their buffer is exactly
// as high as their line, so raising the text in it would cut it; the whole sign is raised instead.
class TickerDisplay::TextSignDisplay : public ZQTickerDisplayProtocol {
 public:
  explicit TextSignDisplay(const TickerDisplay& display) : display_(display) {}

  QSizeF size() const override { return display_.size(); }
  int scrollDirection() const override { return display_.scrollDirection(); }
  qreal textOffset() const override { return 0; }
  Ref<Font> defaultFont() const override { return display_.defaultFont(); }
  Ref<Color> defaultTextColor() const override { return display_.defaultTextColor(); }
  bool shouldAutoscale() const override { return display_.shouldAutoscale(); }

 private:
  const TickerDisplay& display_;
};

TickerDisplay::TickerDisplay(double startTime)
    : textSignDisplay_(std::make_unique<TextSignDisplay>(*this)), strip_(0, 0, startTime),
      tiles_([this](const StripTiles::Request& request, QImage& picture) {
        drawTile(request, picture);
      }) {
  strip_.queue().setLimits(MostLines, MostLineCharacters);
}

TickerDisplay::~TickerDisplay() = default;

int TickerDisplay::scrollDirection() const {
  return isHorizontal() ? HorizontalScrolling : VerticalScrolling;
}

qreal TickerDisplay::textOffset() const {
  return isHorizontal() && font_ ? (size_.height() - font_->lineHeight()) / 2 : 0;
}

StripShape TickerDisplay::shape() const {
  return {size_, isHorizontal(), shouldAutoscale(), font_ ? font_->pointSize() : 0};
}

void TickerDisplay::setShape(ScrollDirection direction, QSizeF size, double time) {
  const bool isAnother = app::isHorizontal(direction) != isHorizontal();
  if (direction != direction_ && !isAnother) {
    strip_.reverse(time);
    direction_ = direction;
    frameIsStale_ = true;
  }
  if (size == size_ && !isAnother)
    return;
  direction_ = direction;
  size_ = size;
  const bool keepsEntering = isReversed(direction) && !isAnother;
  strip_.setExtent(extent(), time, keepsEntering ? Strip::Edge::Entering : Strip::Edge::Leaving);
  if (!isAnother) {
    markForLayout();
    return;
  }
  strip_.forEachItem([this](StripItem& item) {
    if (const Ref<ZQTickerSign>& sign = static_cast<SignItem&>(item).sign())
      sign->setScrollDirection(scrollDirection());
  });
  markForLayout(0);
}

double TickerDisplay::extent() const {
  const double points = isHorizontal() ? size_.width() : size_.height();
  return std::isfinite(points) ? std::max(points, 0.0) : 0.0;
}

double TickerDisplay::fadeLength() const {
  return std::min(extent() * FadeShare, LongestFade);
}

void TickerDisplay::setSpeed(double pointsPerSecond, double time) {
  if (pausedSpeed_)
    pausedSpeed_ = pointsPerSecond;
  else
    strip_.setSpeed(pointsPerSecond, time);
}

void TickerDisplay::setPaged(bool paged, double time) {
  if (paged == isPaged())
    return;
  strip_.setPaged(paged, time);
  fitEdgeFade();
  frameIsStale_ = true;
}

void TickerDisplay::setPaused(bool paused, double time) {
  if (paused == isPaused())
    return;
  const double speed = pausedSpeed_.value_or(strip_.speed());
  if (paused) {
    strip_.setSpeed(0, time);
    // What only runs out has no place to come to.
    if (strip_.isGliding() && !strip_.motion().isGlidingToGoalAt(strip_.time()))
      strip_.moveBy(0, time);
  } else {
    strip_.easeToSpeed(speed, time);
  }
  pausedSpeed_ = paused ? std::optional(speed) : std::nullopt;
}

void TickerDisplay::setDefaultFont(Ref<Font> font) {
  if (font == font_)
    return;
  restyle(FontAttributeName, font_, font);
  font_ = std::move(font);
  markForLayout();
}

void TickerDisplay::setDefaultTextColor(Ref<Color> color) {
  if (color == color_)
    return;
  restyle(ForegroundColorAttributeName, color_, color);
  color_ = std::move(color);
  markForLayout();
}

// Texts that were given a default of this display follow it: when they enter, at the latest.
void TickerDisplay::restyle(const QString& attribute, const Ref<Object>& before,
                            const Ref<Object>& after) {
  styleChanges_.add(attribute, before, after);
  if (!styleChanges_.isFull())
    return;
  strip_.forEachItem([](StripItem& item) { static_cast<SignItem&>(item).followStyle(); });
  styleChanges_.forget();
}

void TickerDisplay::setShouldAutoscale(bool autoscale) {
  autoscale_ = autoscale;
  markForLayout();
}

void TickerDisplay::setScale(double scale) {
  if (scale == scale_)
    return;
  scale_ = scale;
  markForLayout();
}

void TickerDisplay::markForLayout(double place) {
  strip_.forEachItem([](StripItem& item) {
    if (const Ref<ZQTickerSign>& sign = static_cast<SignItem&>(item).sign())
      sign->setNeedsLayout(true);
  });
  strip_.remeasure(
      place, [](const Strip::Run& run) { return static_cast<SignItem&>(run.item()).enter(); });
  tiles_.clear();
  frame_.pieces.clear();
  const auto pixels = [this](double points) {
    // False for what is no number, too.
    return points > 0 ? static_cast<int>(std::clamp(std::round(points * scale_), 1.0,
                                                    static_cast<double>(MostPixels)))
                      : 1;
  };
  frame_.size = QSize(pixels(size_.width()), pixels(size_.height()));
  frame_.isHorizontal = isHorizontal();
  fitEdgeFade();
  frameIsStale_ = true;
}

void TickerDisplay::setEdgeFade(double points) {
  edgeFade_ = points > 0 && std::isfinite(points) ? points : 0;
  fitEdgeFade();
}

void TickerDisplay::fitEdgeFade() {
  const int extent = isHorizontal() ? frame_.size.width() : frame_.size.height();
  const double points = isPaged() ? 0 : edgeFade_;
  const double pixels = std::min(std::ceil(points * scale_), std::floor(extent / 2.0));
  if (static_cast<int>(pixels) == frame_.fade)
    return;
  frame_.fade = static_cast<int>(pixels);
  frameIsStale_ = true;
}

void TickerDisplay::prepare(ZQTickerSign& sign) {
  sign.setScrollDirection(scrollDirection());
  sign.setNeedsLayout(true);
  auto* textSign = dynamic_cast<ZQTextTickerSign*>(&sign);
  if (!textSign) {
    sign.setDisplay(this);
    return;
  }
  sign.setDisplay(textSignDisplay_.get());
  textSign->updateBuffer();
}

// Lets happen what is due before signs are added or changed. Several changes at one time count as
// one: nothing enters between them.
void TickerDisplay::catchUp(double time) {
  if (time > strip_.time())
    strip_.advanceTo(time);
}

TickerDisplay::Entry TickerDisplay::addSign(Ref<ZQTickerSign> sign, double time,
                                            SignOrigin origin) {
  catchUp(time);
  prepare(*sign);
  const double priority = origin.priority;
  const Entry entry =
      strip_.queue().append(std::make_shared<SignItem>(*this, sign, std::move(origin)), priority);
  remember(*sign, entry);
  return entry;
}

TickerDisplay::Entry TickerDisplay::addArrangedSign(Ref<ZQTickerSign> sign, double time,
                                                    SignOrigin origin) {
  catchUp(time);
  prepare(*sign);
  const double priority = origin.priority;
  const Entry entry = strip_.queue().appendArranged(
      std::make_shared<SignItem>(*this, sign, std::move(origin)), priority);
  remember(*sign, entry);
  return entry;
}

void TickerDisplay::arrangeSigns(const QStringList& identifiers, double time) {
  catchUp(time);
  std::vector<Entry> order;
  for (const QString& identifier : identifiers)
    if (const Entry entry = waitingEntry(identifier))
      order.push_back(entry);
  strip_.queue().arrange(order);
}

TickerDisplay::Entry TickerDisplay::replaceSign(Ref<ZQTickerSign> sign, double time,
                                                std::optional<SignOrigin> origin) {
  catchUp(time);
  const Entry entry = waitingEntry(sign->identifier().value_or(QString()));
  if (!entry)
    return nullptr;
  return replaceWaiting(entry, std::move(sign), origin ? *std::move(origin) : originOf(entry));
}

TickerDisplay::Entry TickerDisplay::replaceEntry(const Entry& entry, Ref<ZQTickerSign> sign,
                                                 double time) {
  catchUp(time);
  return replaceWaiting(entry, std::move(sign), originOf(entry));
}

TickerDisplay::Entry TickerDisplay::replaceWaiting(const Entry& entry, Ref<ZQTickerSign> sign,
                                                   SignOrigin origin) {
  if (!entry->isWaiting())
    return nullptr;
  prepare(*sign);
  forget(entry);
  const Entry successor =
      strip_.queue().replace(entry, std::make_shared<SignItem>(*this, sign, std::move(origin)));
  remember(*sign, successor);
  return successor;
}

bool TickerDisplay::removeSign(const QString& identifier, double time) {
  catchUp(time);
  const Entry entry = waitingEntry(identifier);
  return entry && removeEntry(entry, time);
}

bool TickerDisplay::removeEntry(const Entry& entry, double time) {
  catchUp(time);
  if (!entry->isWaiting())
    return false;
  forget(entry);
  strip_.withdraw(entry);
  return true;
}

bool TickerDisplay::eraseEntry(const Entry& entry, double time) {
  catchUp(time);
  if (!entry->isWaiting() && entry->onStrip == 0)
    return false;
  const QString identifier = identifierOf(entry);
  std::vector<Entry> erased{entry};
  if (!identifier.isEmpty()) {
    // What has replaced it, and what it has replaced.
    if (const Entry waiting = waitingEntry(identifier))
      erased.push_back(waiting);
    for (const Strip::Run& run : strip_.runs())
      if (identifierOf(run.entry) == identifier)
        erased.push_back(run.entry);
  }
  for (const Entry& each : erased)
    erase(each);
  ++textRevision_;
  frameIsStale_ = true;
  return true;
}

void TickerDisplay::erase(const Entry& entry) {
  forget(entry);
  strip_.withdraw(entry);
  static_cast<SignItem&>(*entry->item).blank();
  for (const Strip::Run& run : strip_.runs())
    if (run.entry == entry)
      tiles_.forget(run.number);
}

bool TickerDisplay::moveEntry(const Entry& entry, const Entry& before, double time) {
  catchUp(time);
  return strip_.queue().move(entry, before);
}

std::vector<QueuedSign> TickerDisplay::queuedSigns(double time) {
  catchUp(time);
  std::vector<QueuedSign> signs;
  signs.reserve(strip_.runs().size() + strip_.queue().size());
  const auto add = [&](const Entry& entry) {
    auto& item = static_cast<SignItem&>(*entry->item);
    if (item.isBlank())
      return;
    item.followStyle();
    signs.push_back({entry, item.sign(), item.text(), item.origin(), loopsLeft(*entry),
                     entry->onStrip > 0, entry->isWaiting()});
  };
  strip_.forEachInOrder(
      [&](const Strip::Run& run) {
        const auto isSame = [&](const QueuedSign& sign) { return sign.entry == run.entry; };
        if (run.entry->onStrip == 1 || std::none_of(signs.begin(), signs.end(), isSame))
          add(run.entry);
      },
      [&](const Entry& entry) {
        if (entry->onStrip == 0)
          add(entry);
      });
  return signs;
}

void TickerDisplay::countSign(const QString& sender, bool isQueued) {
  isQueued ? senders_.add(sender) : senders_.remove(sender);
}

bool TickerDisplay::changeText(const QString& identifier, const QString& text, double time) {
  catchUp(time);
  const Entry entry = named_.value(identifier).lock();
  if (!entry || !(entry->isWaiting() || entry->onStrip > 0) ||
      !static_cast<SignItem&>(*entry->item).changeText(text))
    return false;
  for (const Strip::Run& run : strip_.runs())
    if (run.entry == entry) {
      tiles_.forget(run.number);
      frameIsStale_ = true;
    }
  // Where signs move to the right or down, the end that stays is the one that enters last.
  if (!isReversed(direction_))
    strip_.updateShown(entry);
  ++textRevision_;
  return true;
}

bool TickerDisplay::hasWaitingSign(const QString& identifier, double time) {
  catchUp(time);
  return waitingEntry(identifier) != nullptr;
}

TickerDisplay::Entry TickerDisplay::waitingEntry(const QString& identifier) const {
  const Entry entry = named_.value(identifier).lock();
  return entry && entry->isWaiting() ? entry : nullptr;
}

void TickerDisplay::remember(const ZQTickerSign& sign, const Entry& entry) {
  if (!sign.identifier())
    return;
  if (named_.size() >= mostNamed_) {
    named_.removeIf([](const auto& named) { return named.value().expired(); });
    mostNamed_ = std::max(mostNamed_, 2 * named_.size());
  }
  named_.insert(*sign.identifier(), entry);
}

void TickerDisplay::forget(const Entry& entry) {
  const Ref<ZQTickerSign>& sign = static_cast<const SignItem&>(*entry->item).sign();
  if (!sign || !sign->identifier())
    return;
  const auto named = named_.find(*sign->identifier());
  if (named != named_.end() && named->lock() == entry)
    named_.erase(named);
}

void TickerDisplay::addLine(const QString& line, double time, const LoopRule& rule,
                            std::shared_ptr<const LineSource> source) {
  catchUp(time);
  strip_.queue().appendDroppable(std::make_shared<SignItem>(*this, line, rule, std::move(source)),
                                 static_cast<std::size_t>(line.size()));
}

const Attributes& TickerDisplay::attributesFor(const LineSource* source) const {
  const Ref<Font>& font = source && source->font ? source->font : font_;
  const Ref<Color>& color = source && source->color ? source->color : color_;
  if (font != attributesFont_ || color != attributesColor_) {
    attributesFont_ = font;
    attributesColor_ = color;
    attributes_.clear();
    if (font)
      attributes_.insert(FontAttributeName, any(font));
    if (color)
      attributes_.insert(ForegroundColorAttributeName, any(color));
  }
  return attributes_;
}

Ref<AttributedString> TickerDisplay::styledText(const QString& text,
                                                const LineSource* source) const {
  return AttributedString::make(text, attributesFor(source));
}

Ref<ZQTickerSign> TickerDisplay::makeTextSign(const QString& text, const LineSource* source) {
  const Ref<ZQTextTickerSign> sign = ZQTextTickerSign::make(styledText(text, source));
  sign->setScrollDirection(scrollDirection());
  sign->setDisplay(textSignDisplay_.get());
  return sign;
}

bool TickerDisplay::isPrepared() {
  bool prepared = true;
  strip_.queue().forEachNext(LookAhead, [&](const StripQueue::Entry& entry) {
    prepared &= static_cast<SignItem&>(*entry.item).isPrepared();
  });
  return prepared;
}

bool TickerDisplay::prepareUntil(const QDeadlineTimer& deadline) {
  bool prepared = true;
  strip_.queue().forEachNext(LookAhead, [&](const StripQueue::Entry& entry) {
    // One after the other: what comes first is needed first.
    prepared = prepared && static_cast<SignItem&>(*entry.item).prepareUntil(deadline);
  });
  return prepared;
}

double TickerDisplay::placeOf(const Strip::Run& run) const {
  const double travel = strip_.travel();
  return isReversed(direction_) ? travel - run.shownEnd() : strip_.extent() - (travel - run.start);
}

double TickerDisplay::shownLengthOf(const Strip::Run& run) const {
  // The gap lies behind the sign: at its left, where it moves to the right.
  const double room = isReversed(direction_) ? run.shown : run.length;
  return std::min(itemOf(run).placement().length, room);
}

bool TickerDisplay::advanceTo(double time) {
  strip_.advanceTo(time);
  const double travel = strip_.travel();
  const double forwards = isReversed(direction_) ? extent() - travel : travel;
  const qint64 offset = StripTiles::wholePixel(forwards * scale_);
  // On a page what comes is seen without any motion.
  if (isPaged() && frameRun_ != strip_.lastRun())
    frameIsStale_ = true;
  frameRun_ = strip_.lastRun();
  if (!frameIsStale_ &&
      (offset == frameOffset_ || (strip_.runs().empty() && frame_.pieces.empty())))
    return false;
  frameOffset_ = offset;
  frameIsStale_ = false;
  tiles_.fill(frame_, strip_.runs(), {direction_, offset, scale_, isPaged() ? 0 : fadeLength()},
              [this](const Strip::Run& run) {
                return StripTiles::Look{shownLengthOf(run), itemOf(run).origin().fades};
              });
  return true;
}

qint64 TickerDisplay::frameTravel() const {
  return isReversed(direction_) ? StripTiles::wholePixel(extent() * scale_) - frameOffset_
                                : frameOffset_;
}

void TickerDisplay::drawTile(const StripTiles::Request& request, QImage& picture) const {
  const SignItem& item = itemOf(*request.run);
  const SignPlacement& placement = item.placement();
  // In points from the tile's lower left.
  const QSizeF area = QSizeF(picture.size()) / scale_;
  const double across = std::round(placement.across * scale_) / scale_;
  const double drawnLength = std::ceil(placement.length * scale_) / scale_;
  const double first = static_cast<double>(request.first) / scale_;
  const QPointF corner = isHorizontal() ? QPointF(-first, across)
                                        : QPointF(across, area.height() + first - drawnLength);
  QPainter painter(&picture);
  painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform |
                         QPainter::TextAntialiasing);
  painter.scale(scale_, scale_);
  GraphicsContext context(&painter, area);
  context.concat(QTransform::fromScale(placement.fit, placement.fit));
  try {
    item.sign()->drawAtPoint(corner / placement.fit);
  } catch (const std::exception& exception) {
    // What cannot be drawn stays empty; the strip goes on.
    qCWarning(displayLog, "a sign cannot be drawn: %s", exception.what());
  }
}

} // namespace zq::app
