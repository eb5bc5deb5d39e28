#include "app/access/StripVoice.h"

#include "app/access/AccessibleStrip.h"
#include "app/display/SignItem.h"
#include "app/display/StripWidget.h"
#include "app/display/TickerDisplay.h"

#include <algorithm>
#include <utility>

namespace zq::app {

namespace {
const Strip::Run* runOf(const TickerDisplay& display, std::uint64_t number) {
  const auto& runs = display.strip().runs();
  const auto found = std::find_if(runs.begin(), runs.end(),
                                  [=](const Strip::Run& run) { return run.number == number; });
  return found == runs.end() ? nullptr : &*found;
}
} // namespace

StripVoice::StripVoice(StripWidget& strip, const TickerDisplay& display, const SignOpener& opener,
                       Tell tell)
    : QObject(&strip), strip_(strip), display_(display), opener_(opener), tell_(std::move(tell)) {
  installAccessibleStrips();
  // One that was asked for before knows nothing of this.
  if (QAccessibleInterface* former = QAccessible::queryAccessibleInterface(&strip))
    QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(former));
  rest_.setSingleShot(true);
  rest_.setInterval(RestMilliseconds);
  connect(&rest_, &QTimer::timeout, this, &StripVoice::tell);
  QAccessible::installActivationObserver(this);
  listen(QAccessible::isActive());
}

StripVoice::~StripVoice() {
  QAccessible::removeActivationObserver(this);
  forgetAll();
}

void StripVoice::accessibilityActiveChanged(bool active) {
  listen(active);
}

void StripVoice::listen(bool listens) {
  disconnect(frames_);
  rest_.stop();
  next_ = 0;
  if (!listens) {
    forgetAll();
    return;
  }
  // What is on the strip already is no news.
  lastRun_ = display_.strip().lastRun();
  frames_ = connect(&strip_.player(), &StripPlayer::frameDue, this, &StripVoice::look);
}

void StripVoice::look() {
  signs_.removeIf([this](const auto& sign) {
    if (runOf(display_, sign.key()))
      return false;
    QAccessible::deleteAccessibleInterface(sign.value());
    return true;
  });
  const auto& runs = display_.strip().runs();
  for (auto run = runs.rbegin(); run != runs.rend() && run->number > lastRun_; ++run)
    if (run->entry->showings == 1 && !textOf(run->number).isEmpty()) {
      next_ = run->number;
      break;
    }
  lastRun_ = display_.strip().lastRun();
  if (!rest_.isActive())
    tell();
}

void StripVoice::tell() {
  const std::uint64_t run = std::exchange(next_, 0);
  // It may have been erased meanwhile.
  QAccessibleInterface* sign = textOf(run).isEmpty() ? nullptr : signOf(run);
  if (!sign)
    return;
  QAccessibleEvent shown(sign, QAccessible::ObjectShow);
  tell_(&shown);
  rest_.start();
}

QAccessibleInterface* StripVoice::signOf(std::uint64_t run) {
  if (!runOf(display_, run))
    return nullptr;
  const auto known = signs_.constFind(run);
  if (known != signs_.constEnd())
    return QAccessible::accessibleInterface(*known);
  auto* sign = new AccessibleSign(*this, run);
  signs_.insert(run, QAccessible::registerAccessibleInterface(sign));
  return sign;
}

QString StripVoice::textOf(std::uint64_t run) const {
  const Strip::Run* shown = runOf(display_, run);
  if (!shown)
    return QString();
  QString text = static_cast<const SignItem&>(shown->item()).text();
  if (text.size() > LongestText)
    text = text.left(LongestText - 1) + QChar(u'\u2026');
  return text;
}

void StripVoice::forgetAll() {
  for (const QAccessible::Id id : std::as_const(signs_))
    QAccessible::deleteAccessibleInterface(id);
  signs_.clear();
}

} // namespace zq::app
