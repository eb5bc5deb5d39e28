#include "app/services/FeedSubscription.h"

#include "app/services/FeedLoad.h"
#include "app/services/feed_items.h"

#include <QtCore/QLoggingCategory>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
Q_LOGGING_CATEGORY(feedLog, "zqticker.feeds")

constexpr qsizetype LongestName = 200;
} // namespace

QString feedName(const QUrl& url) {
  const QString name = url.toDisplayString(QUrl::RemoveUserInfo);
  return name.size() > LongestName ? QString(name.left(LongestName) + u'…') : name;
}

FeedSubscription::FeedSubscription(const QUrl& url, std::size_t mostItems, FeedSchedule schedule,
                                   QObject* parent)
    : QObject(parent), url_(url), mostItems_(mostItems), schedule_(std::move(schedule)) {
  timer_.setSingleShot(true);
  connect(&timer_, &QTimer::timeout, this, &FeedSubscription::poll);
}

FeedSubscription::~FeedSubscription() = default;

QString FeedSubscription::name() const {
  return title_.isEmpty() ? feedName(url_) : title_;
}

std::optional<FeedSchedule::Duration> FeedSubscription::wait() const {
  return timer_.isActive() ? std::optional(timer_.intervalAsDuration()) : std::nullopt;
}

void FeedSubscription::poll() {
  if (load_)
    return;
  timer_.stop();
  load_ = std::make_unique<FeedLoad>(url_);
  connect(load_.get(), &FeedLoad::ended, this, &FeedSubscription::take);
  load_->start();
}

void FeedSubscription::take(const FeedAnswer& answer) {
  // It is still in the middle of its signal.
  finished_ = std::move(load_);
  QTimer::singleShot(0, this, [this] { finished_.reset(); });
  PollOutcome outcome{PollOutcome::Kind::Failed, std::nullopt, answer.hints.freshFor,
                      answer.hints.retryAfter};
  if (answer.feed) {
    outcome.kind = PollOutcome::Kind::Succeeded;
    outcome.timeToLive = answer.feed->timeToLive;
    items_ = itemsToShow(*answer.feed, mostItems_);
    title_ = answer.feed->title;
  } else if (answer.isGone) {
    outcome.kind = PollOutcome::Kind::Gone;
  }
  report(answer);
  errorText_ = answer.errorText;
  hasPolled_ = true;
  if (const std::optional<FeedSchedule::Duration> next = schedule_.waitAfter(outcome))
    timer_.start(*next);
  Q_EMIT polled();
}

void FeedSubscription::report(const FeedAnswer& answer) const {
  const auto log = [this](const QString& text) {
    qCWarning(feedLog).noquote() << QString(u"feed "_s + feedName(url_) + u": "_s + text);
  };
  if (answer.isGone)
    log(u"gone for good, not asked any more"_s);
  else if (!answer.errorText.isEmpty() && errorText_.isEmpty())
    log(answer.errorText);
  else if (answer.errorText.isEmpty() && !errorText_.isEmpty())
    log(u"is back"_s);
}

} // namespace zq::app
