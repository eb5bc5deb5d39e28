#include "app/services/FeedLoad.h"

#include "app/services/FeedParser.h"
#include "zqticker/platform/system/URLResponse.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zq::app {

using namespace platform;

namespace {
// A millisecond or two of parsing.
constexpr qsizetype BytesPerSlice = 64 << 10;
constexpr int GoneStatus = 410;

QString contentTypeOf(const URLResponse& response) {
  return response.valueForHTTPHeaderField(u"Content-Type").value_or(response.MIMEType());
}
} // namespace

FeedLoad::FeedLoad(const QUrl& url, QObject* parent)
    : QObject(parent), load_(url, FeedLimits().bytes) {
  load_.setBeginsInAnyCase(true);
  connect(&load_, &BoundedLoad::responded, this, &FeedLoad::beginDocument);
  connect(&load_, &BoundedLoad::grown, this, [this] {
    if (parser_ && !slice_.isActive())
      slice_.start();
  });
  connect(&load_, &BoundedLoad::ended, this, &FeedLoad::loadEnded);
  slice_.setInterval(0);
  connect(&slice_, &QTimer::timeout, this, &FeedLoad::parseSlice);
}

FeedLoad::~FeedLoad() = default;

// When to ask is the schedule's business. A cache that guesses how long an answer is fresh, where
// its server does not say, would hide news for up to a day.
void FeedLoad::start() {
  load_.start(URLRequestCachePolicy::ReloadRevalidatingCacheData);
}

void FeedLoad::beginDocument() {
  parser_.reset();
  parsed_ = 0;
  const Ref<URLResponse> response = load_.response();
  if (response && !load_.isRefused())
    parser_ = std::make_unique<FeedParser>(response->URL(), contentTypeOf(*response));
}

void FeedLoad::parseSlice() {
  const QByteArrayView rest = QByteArrayView(load_.data()).sliced(parsed_);
  const QByteArrayView slice = rest.first(std::min(rest.size(), BytesPerSlice));
  parsed_ += slice.size();
  if (!parser_->addData(slice))
    return answer(parser_->errorText());
  if (parsed_ < load_.data().size())
    return;
  slice_.stop();
  if (!isLoaded_)
    return;
  if (parser_->isComplete())
    answer(QString());
  else if (!loadError_.isEmpty())
    answer(loadError_);
  else
    answer(parser_->finish() ? QString() : parser_->errorText());
}

// A document that was read as far as it is wanted is one, whatever becomes of the rest of it. It is
// loaded to its end all the same: what is broken off is not kept in the cache.
void FeedLoad::loadEnded(const QString& errorText) {
  const bool isReadable = errorText.isEmpty() || load_.isTooLarge();
  if (!parser_)
    return answer(errorText.isEmpty() ? u"no answer"_s : errorText);
  if (!isReadable)
    return answer(parser_->isComplete() ? QString() : errorText);
  isLoaded_ = true;
  loadError_ = errorText;
  slice_.start();
}

void FeedLoad::answer(const QString& errorText) {
  slice_.stop();
  FeedAnswer result;
  if (errorText.isEmpty())
    result.feed = parser_->feed();
  result.errorText = errorText;
  if (const Ref<URLResponse> response = load_.response()) {
    result.isGone = response->statusCode() == GoneStatus;
    result.hints =
        responseHints([&](QStringView name) { return response->valueForHTTPHeaderField(name); },
                      QDateTime::currentDateTimeUtc());
  }
  load_.stop();
  Q_EMIT ended(result);
}

} // namespace zq::app
