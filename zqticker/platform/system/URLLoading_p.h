// One load from its request to its end, over all redirects.
#pragma once

#include "zqticker/platform/system/LoadingThread_p.h"
#include "zqticker/platform/system/URLConnection.h"
#include "zqticker/platform/system/URLSource_p.h"

#include <QtCore/QPointer>
#include <QtCore/QSet>

#include <variant>
#include <vector>

namespace zq::platform {

// Takes notes of what its source says, and passes them to the delegate when LoadingThread asks.
class URLLoading final : public URLSourceClient, public std::enable_shared_from_this<URLLoading> {
 public:
  static constexpr int MostRedirects = 20;

  URLLoading(const Ref<URLConnection>& connection, Weak<URLConnectionDelegate> delegate);
  ~URLLoading();

  void start(const Ref<URLRequest>& request);
  // No further call to the delegate, which the source is told of by its end.
  void cancel();

  // Hands on one note. False when there is none, or none before the delegate has answered: then the
  // thread hears of this load again once there is.
  bool deliverNext();

  void sourceReceivedResponse(const Ref<URLResponse>& response) override;
  bool sourceReceivedData(QByteArrayView data) override;
  void sourceFinished() override;
  void sourceFailed(const Ref<Error>& error) override;

 private:
  // Null for a body that is complete.
  struct End {
    Ref<Error> error;
  };
  using Note = std::variant<Ref<URLResponse>, QByteArray, End>;

  void take(Note note);
  void deliverLater();
  void noteFailure(int code, const QString& text);
  void deliverNote(Ref<URLResponse>& response);
  void deliverNote(QByteArray& data);
  void deliverNote(End& end);
  // Follows `address` if the delegate wants to; whether `response` has been dealt with.
  bool follow(const QUrl& address, const Ref<URLResponse>& response);
  // Why a redirect to `url` is refused; nothing where it is not.
  std::optional<std::pair<int, QString>> refusalOf(const QUrl& url) const;
  void startSource(const Ref<URLRequest>& request);
  void end();
  // Calls the delegate; ends the load in silence when it has gone.
  template <class Call>
  void tell(const Call& call);

  // Held until the end: the connection owns this load.
  Ref<URLConnection> connection_;
  QPointer<LoadingThread> thread_;
  Weak<URLConnectionDelegate> delegate_;
  Ref<URLRequest> request_;
  std::unique_ptr<URLSource> source_;
  std::vector<Note> notes_;
  std::size_t nextNote_ = 0;
  QSet<QUrl> visited_;
  qint64 receivedLength_ = 0;
  int redirects_ = 0;
  bool isReady_ = false;
  bool isEndNoted_ = false;
  bool isAsking_ = false;
  bool isEnded_ = false;
};

} // namespace zq::platform
