#include "app/display/SignItem.h"

#include "app/display/TickerDisplay.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/signs/ZQComboTickerSign.h"
#include "zqticker/signs/ZQTextTickerSign.h"

#include <QtCore/QLoggingCategory>

#include <algorithm>
#include <exception>
#include <utility>

namespace zq::app {

using namespace platform;

namespace {
Q_LOGGING_CATEGORY(signLog, "zqticker.display")

const SignOrigin NoOrigin;

// Characters that are laid out within a small part of a frame.
constexpr qsizetype LongestUnprepared = 2048;

bool isEmpty(const SignOrigin& origin) {
  return origin.senderIdentifier.isEmpty() && origin.senderName.isEmpty() && origin.priority == 0 &&
         !origin.fades && !origin.actionData.isValid();
}
} // namespace

SignItem::SignItem(TickerDisplay& display, Ref<ZQTickerSign> sign, SignOrigin origin)
    : display_(display), sign_(std::move(sign)),
      origin_(isEmpty(origin) ? nullptr : std::make_unique<const SignOrigin>(std::move(origin))),
      knownStyles_(display.styleChanges().count()) {}

SignItem::SignItem(TickerDisplay& display, QString line, LoopRule rule,
                   std::shared_ptr<const LineSource> source)
    : display_(display), line_(std::move(line)), lineRule_(rule), lineSource_(std::move(source)),
      isLine_(true), knownStyles_(display.styleChanges().count()) {}

SignItem::~SignItem() = default;

LoopRule SignItem::loopRule() const {
  if (isLine_)
    return lineRule_;
  // A count that means nothing is shown once.
  const std::int64_t count = sign_->loopCount();
  const bool isEndless = count == ZQEndlessLoopCount;
  return {isEndless ? count : std::max<std::int64_t>(count, 1), sign_->loopDelay(),
          sign_->continuousScrolling()};
}

bool SignItem::isReady() {
  return !display_.holdsUnprepared() || isPrepared();
}

bool SignItem::isPrepared() {
  followStyle();
  if (!isPrepared_)
    isPrepared_ = text().size() <= LongestUnprepared;
  return *isPrepared_;
}

bool SignItem::prepareUntil(const QDeadlineTimer& deadline) {
  if (isPrepared())
    return true;
  try {
    if (!sign_)
      makeSign();
    isPrepared_ = sign_->measureUntil(deadline);
  } catch (const std::exception&) {
    // It says so when it enters.
    isPrepared_ = true;
  }
  return *isPrepared_;
}

double SignItem::enter() {
  // Called while the clock ticks: what a sign raises ends here, and the sign is left out.
  try {
    if (!sign_)
      makeSign();
    followStyle();
    return place();
  } catch (const std::exception& exception) {
    qCWarning(signLog, "a sign cannot be shown: %s", exception.what());
    placement_ = {};
    return 0;
  }
}

double SignItem::gap(double length) const {
  return std::max(length - placement_.length, 0.0);
}

// Of a line, in what is the default now.
void SignItem::makeSign() {
  sign_ = display_.makeTextSign(line_, lineSource_.get());
  knownStyles_ = display_.styleChanges().count();
}

double SignItem::place() {
  if (isBlank_)
    return 0;
  placement_ = placeSign(*sign_, display_.shape());
  return placement_.lengthWithGap();
}

void SignItem::blank() {
  isBlank_ = true;
  placement_ = {};
}

bool SignItem::changeText(const QString& text) {
  const auto textSign = std::dynamic_pointer_cast<ZQTextTickerSign>(sign_);
  if (!textSign || isLine_ || isBlank_)
    return false;
  textSign->setText(display_.styledText(text));
  knownStyles_ = display_.styleChanges().count();
  place();
  return true;
}

void SignItem::followStyle() {
  const StyleChanges& changes = display_.styleChanges();
  const std::uint64_t known = std::exchange(knownStyles_, changes.count());
  if (known == knownStyles_)
    return;
  isPrepared_.reset();
  if (auto* textSign = dynamic_cast<ZQTextTickerSign*>(sign_.get())) {
    if (const auto text = changes.applied(textSign->text(), known))
      textSign->setText(text);
  } else if (auto* combo = dynamic_cast<ZQComboTickerSign*>(sign_.get())) {
    if (const auto text = changes.applied(objectOf<AttributedString>(combo->text()), known))
      combo->setText(any(text));
  }
}

void SignItem::leave() {
  isPrepared_.reset();
  if (isLine_)
    sign_.reset();
  else if (auto* text = dynamic_cast<ZQTextTickerSign*>(sign_.get()))
    text->releaseBuffer();
}

void SignItem::setQueued(bool isQueued) {
  if (!isLine_)
    display_.countSign(origin().senderIdentifier, isQueued);
}

const SignOrigin& SignItem::origin() const {
  if (lineSource_)
    return lineSource_->origin;
  return origin_ ? *origin_ : NoOrigin;
}

QString SignItem::text() const {
  if (isBlank_)
    return QString();
  if (isLine_)
    return line_;
  if (const auto* combo = dynamic_cast<const ZQComboTickerSign*>(sign_.get())) {
    const auto attributed = objectOf<AttributedString>(combo->text());
    return attributed ? attributed->string() : combo->text().toString();
  }
  if (const auto* text = dynamic_cast<const ZQTextTickerSign*>(sign_.get()))
    return text->text() ? text->text()->string() : QString();
  if (const auto* picture = dynamic_cast<const ZQImageTickerSign*>(sign_.get()))
    return picture->textRepresentation().value_or(QString());
  return QString();
}

} // namespace zq::app
