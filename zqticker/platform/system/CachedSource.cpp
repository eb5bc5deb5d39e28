#include "zqticker/platform/system/CachedSource_p.h"

#include "zqticker/platform/system/url_errors.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {

// Failures in which the server was not reached or did not answer to the end. One that was reached
// and not trusted, or that made no sense, is not covered up.
bool isUnreachable(const Error& error) {
  switch (error.code()) {
  case TimedOut:
  case CannotFindHost:
  case CannotConnectToHost:
  case NetworkConnectionLost:
    return true;
  default:
    return false;
  }
}

void failNotInCache(URLSourceClient& client, const QUrl& url) {
  failSource(client, CannotLoadFromNetwork, u"not in the cache"_s, url);
}

} // namespace

std::unique_ptr<URLSource> startCachedSource(const SourceRequest& request,
                                             const CachedSource::Network& network,
                                             URLSourceClient& client) {
  const URLRequest& asked = *request.request;
  if (auto load = HTTPCacheLoad::begin(asked.URL(), asked.cachePolicy()))
    return std::make_unique<CachedSource>(std::move(load), request, network, client);
  if (asked.cachePolicy() != URLRequestCachePolicy::ReturnCacheDataDontLoad)
    return network(request, client);
  failNotInCache(client, asked.URL());
  return nullptr;
}

CachedSource::CachedSource(std::unique_ptr<HTTPCacheLoad> load, const SourceRequest& request,
                           Network network, URLSourceClient& client)
    : load_(std::move(load)), request_(request), network_(std::move(network)), client_(client) {
  step();
}

// In the next round of the event loop, so that a large body holds nothing else up.
void CachedSource::continueLater(State state) {
  state_ = state;
  nextStep_.start(0, this);
}

void CachedSource::timerEvent(QTimerEvent*) {
  nextStep_.stop();
  step();
}

void CachedSource::step() {
  // Not earlier: the source may have been in the middle of a call to this object.
  source_.reset();
  if (state_ == State::Preparing)
    prepare();
  else if (state_ == State::Serving)
    serve();
}

void CachedSource::prepare() {
  switch (load_ ? load_->prepare() : HTTPCacheLoad::Plan::Load) {
  case HTTPCacheLoad::Plan::Checking:
    return continueLater(State::Preparing);
  case HTTPCacheLoad::Plan::UseStored:
    state_ = State::Serving;
    return serve();
  case HTTPCacheLoad::Plan::Load:
    return startLoading();
  case HTTPCacheLoad::Plan::Missing:
    return failMissing();
  }
}

void CachedSource::startLoading() {
  state_ = State::Loading;
  SourceRequest request = request_;
  if (load_)
    request.additionalHeaderFields += load_->requestFields();
  source_ = network_(request, *this);
}

void CachedSource::serve() {
  if (!hasResponse_) {
    hasResponse_ = true;
    const HTTPStoredResponse& stored = load_->stored();
    client_.sourceReceivedResponse(URLResponse::make(request_.request->URL(), stored.statusCode,
                                                     stored.headerFields, load_->storedLength()));
  }
  const auto part = load_->readNextPart();
  if (!part)
    return reload();
  if (!part->isEmpty() && !client_.sourceReceivedData(*part))
    return;
  if (!load_->isStoredAtEnd())
    return continueLater(State::Serving);
  state_ = State::Ended;
  client_.sourceFinished();
}

void CachedSource::failMissing() {
  state_ = State::Ended;
  failNotInCache(client_, request_.request->URL());
}

void CachedSource::reload() {
  if (request_.request->cachePolicy() == URLRequestCachePolicy::ReturnCacheDataDontLoad)
    return failMissing();
  hasResponse_ = false;
  load_ =
      HTTPCacheLoad::begin(request_.request->URL(), URLRequestCachePolicy::ReloadIgnoringCacheData);
  continueLater(State::Preparing);
}

void CachedSource::sourceReceivedResponse(const Ref<URLResponse>& response) {
  if (state_ != State::Loading)
    return;
  switch (load_ ? load_->receivedResponse(response->statusCode(), response->allHeaderFields(),
                                          response->expectedContentLength())
                : HTTPCacheLoad::Answer::Deliver) {
  case HTTPCacheLoad::Answer::Deliver:
    hasResponse_ = true;
    return client_.sourceReceivedResponse(response);
  case HTTPCacheLoad::Answer::UseStored:
    return continueLater(State::Serving);
  case HTTPCacheLoad::Answer::LoadAgain:
    return continueLater(State::Preparing);
  }
}

bool CachedSource::sourceReceivedData(QByteArrayView data) {
  if (state_ != State::Loading || !client_.sourceReceivedData(data))
    return false;
  if (load_)
    load_->received(data);
  return true;
}

void CachedSource::sourceFinished() {
  if (state_ != State::Loading)
    return;
  state_ = State::Ended;
  if (load_)
    load_->finished();
  client_.sourceFinished();
}

void CachedSource::sourceFailed(const Ref<Error>& error) {
  if (state_ != State::Loading)
    return;
  if (!hasResponse_ && isUnreachable(*error) && load_ && load_->standsInOnError())
    return continueLater(State::Serving);
  state_ = State::Ended;
  client_.sourceFailed(error);
}

} // namespace zq::platform
