// One HTTP request and its answer.
#pragma once

#include "zqticker/platform/system/CurlDriver_p.h"
#include "zqticker/platform/system/URLSource_p.h"

#include <QtCore/QByteArray>

#include <array>

namespace zq::platform {

// Asks for one address of http or https; redirects are answers like others.
class CurlTransfer final : public URLSource {
 public:
  // The bytes of all header lines of an answer.
  static constexpr qsizetype MostHeaderBytes = qsizetype(256) << 10;

  CurlTransfer(CurlDriver& driver, const SourceRequest& request, URLSourceClient& client);
  ~CurlTransfer() override;

  // Sets what every transfer has in common.
  static void setCommonOptions(CURL* handle);

  CURL* handle() const { return handle_.curl; }

  // Counts the idleness anew.
  void noteProgress() { lastProgress_ = driver_.now(); }
  // When idleness becomes a failure; nothing where it never does.
  std::optional<CurlDriver::Clock::time_point> deadline() const;

  // Goes on after a pause: what arrived in this round was enough, and waits to be delivered.
  void resume();

  // The scheme, host and port that are asked, as in the address.
  const QByteArray& server() const { return server_; }

  // Tells the client; the transfer is not running.
  void failToStart(CURLMcode result);
  // Both end the transfer and tell the client.
  void finish(CURLcode result);
  void timeOut();

  // The place in the driver's list of running transfers; nothing while it is not running.
  std::optional<std::size_t> index;

 private:
  static std::size_t headerArrived(char* bytes, std::size_t, std::size_t count, void* self);
  static std::size_t bodyArrived(char* bytes, std::size_t, std::size_t count, void* self);
  static int isConnected(void* self, char*, char*, int, int);

  template <class T>
  void set(CURLoption option, T value) {
    curl_easy_setopt(handle_.curl, option, value);
  }
  void setOptions(const SourceRequest& request);
  void setCredentials(const QUrl& url);
  void setCertificateAuthorities();
  void setCertificateAuthorities(const char* file, const char* folder);
  bool takeHeaderLine(QByteArrayView line);
  void tellResponse();
  void pauseIfEnough();
  void fail(int code, const QString& text);
  void release();

  CurlDriver& driver_;
  URLSourceClient& client_;
  Ref<URLRequest> request_;
  QByteArray server_;
  CurlDriver::Handle handle_;
  CurlDriver::HandleState handleState_ = CurlDriver::HandleState::HasCommonOptionsOnly;
  curl_slist* addedFields_ = nullptr;
  CurlDriver::Clock::time_point lastProgress_;
  qsizetype headerBytes_ = 0;
  // Between a status line and the empty line that ends its header; what comes later are trailers.
  bool isInHeader_ = false;
  bool hasResponse_ = false;
  // The client knows of a failure; what curl says of it is of no interest.
  bool isFailed_ = false;
  // What arrived in this round, and whether the transfer waits for the next one.
  qsizetype heldBytes_ = 0;
  bool isPaused_ = false;
  bool isEncoded_ = false;
  int status_ = 0;
  HTTPHeaderFields fields_;
  std::array<char, CURL_ERROR_SIZE> errorText_{};
};

} // namespace zq::platform
