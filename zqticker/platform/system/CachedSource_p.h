// A source of http and https answers that asks the cache first, and feeds it.
#pragma once

#include "zqticker/platform/system/HTTPCacheLoad_p.h"
#include "zqticker/platform/system/URLSource_p.h"

#include <QtCore/QBasicTimer>
#include <QtCore/QObject>

#include <functional>

namespace zq::platform {

// Stands between a load and the network. A stored body is told a part at a time, in rounds of the
// thread's event loop; one that disappears meanwhile is followed by a new response from the
// network.
class CachedSource final : public QObject, public URLSource, private URLSourceClient {
 public:
  // Starts the source that goes to the network.
  using Network = std::function<std::unique_ptr<URLSource>(const SourceRequest&, URLSourceClient&)>;

  CachedSource(std::unique_ptr<HTTPCacheLoad> load, const SourceRequest& request, Network network,
               URLSourceClient& client);

 protected:
  void timerEvent(QTimerEvent* event) override;

 private:
  enum class State { Preparing, Loading, Serving, Ended };

  void step();
  void prepare();
  void startLoading();
  void serve();
  void reload();
  void failMissing();
  void continueLater(State state);

  void sourceReceivedResponse(const Ref<URLResponse>& response) override;
  bool sourceReceivedData(QByteArrayView data) override;
  void sourceFinished() override;
  void sourceFailed(const Ref<Error>& error) override;

  std::unique_ptr<HTTPCacheLoad> load_; // null when it has lost its part
  SourceRequest request_;
  Network network_;
  URLSourceClient& client_;
  std::unique_ptr<URLSource> source_; // while Loading
  QBasicTimer nextStep_;
  State state_ = State::Preparing;
  bool hasResponse_ = false; // the client has one
};

// Starts `network` for an http or https request, behind the cache where it has a part in the load.
// Null as startSource says.
std::unique_ptr<URLSource> startCachedSource(const SourceRequest& request,
                                             const CachedSource::Network& network,
                                             URLSourceClient& client);

} // namespace zq::platform
