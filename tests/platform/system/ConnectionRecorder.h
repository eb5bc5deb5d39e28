// A delegate that writes down what its connection says.
#pragma once

#include "tests/support/waiting.h"
#include "zqticker/platform/system/URLConnection.h"

#include <QtCore/QByteArray>

#include <functional>
#include <vector>

namespace zq::testing {

struct ConnectionRecorder : platform::URLConnectionDelegate {
  void connectionDidReceiveResponse(platform::URLConnection&,
                                    const platform::Ref<platform::URLResponse>& response) override {
    responses.push_back(response);
    pieces.clear();
    if (onResponse)
      onResponse();
  }
  platform::Ref<platform::URLRequest>
  connectionWillSendRequest(platform::URLConnection&,
                            const platform::Ref<platform::URLRequest>& request,
                            const platform::Ref<platform::URLResponse>& redirect) override {
    proposals.push_back(request);
    redirects.push_back(redirect);
    return onRedirect ? onRedirect(request) : request;
  }
  void connectionDidReceiveData(platform::URLConnection&, QByteArrayView data) override {
    pieces.push_back(data.toByteArray());
    if (onData)
      onData();
  }
  void connectionDidFailWithError(platform::URLConnection&,
                                  const platform::Ref<platform::Error>& failure) override {
    error = failure;
    ++ends;
    if (onEnd)
      onEnd();
  }
  void connectionDidFinishLoading(platform::URLConnection&) override {
    isFinished = true;
    ++ends;
    if (onEnd)
      onEnd();
  }

  // Starts to load `url`.
  platform::Ref<platform::URLConnection> start(const QUrl& url) {
    return platform::URLConnection::connectionWithRequest(
        platform::URLRequest::requestWithURL(url),
        platform::Weak<platform::URLConnectionDelegate>(this));
  }
  // Starts to load `url`, and waits for the end; whether it came.
  bool load(const QUrl& url) {
    start(url);
    return waitFor([this] { return ends > 0; });
  }

  QByteArray body() const {
    QByteArray all;
    for (const QByteArray& piece : pieces)
      all += piece;
    return all;
  }
  int errorCode() const { return error ? error->code() : 0; }
  QString errorText() const { return error ? error->localizedDescription() : QString(); }

  std::vector<platform::Ref<platform::URLResponse>> responses;
  std::vector<platform::Ref<platform::URLRequest>> proposals;
  std::vector<platform::Ref<platform::URLResponse>> redirects;
  std::vector<QByteArray> pieces;
  platform::Ref<platform::Error> error;
  bool isFinished = false;
  int ends = 0;
  std::function<void()> onResponse;
  std::function<platform::Ref<platform::URLRequest>(const platform::Ref<platform::URLRequest>&)>
      onRedirect;
  std::function<void()> onData;
  std::function<void()> onEnd;
};

} // namespace zq::testing
