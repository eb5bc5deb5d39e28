#include "app/intake/LineReader.h"

#include <QtCore/QSocketNotifier>

#include <array>
#include <cerrno>
#include <cmath>
#include <optional>

#include <poll.h>
#include <unistd.h>

namespace zq::app {

namespace {
constexpr std::size_t BytesPerRead = 1 << 16;
constexpr int PauseMilliseconds = 100;

// Reads once. Empty at the end of the stream and at an error; nothing when there is nothing yet.
std::optional<QByteArray> readOnce(int descriptor) {
  QByteArray bytes(BytesPerRead, Qt::Uninitialized);
  const ssize_t count = ::read(descriptor, bytes.data(), BytesPerRead);
  if (count < 0 && (errno == EAGAIN || errno == EINTR))
    return std::nullopt;
  bytes.truncate(std::max<ssize_t>(count, 0));
  return bytes;
}

// Whether a read would not wait; an interrupted look counts as no.
bool isReadable(int descriptor, int timeoutMilliseconds) {
  pollfd look{descriptor, POLLIN, 0};
  return ::poll(&look, 1, timeoutMilliseconds) > 0;
}
} // namespace

LineReader::LineReader(int descriptor, LineSplitter::Receiver receiver, QObject* parent)
    : QObject(parent), descriptor_(descriptor), splitter_(std::move(receiver)) {
  notifier_ = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
  connect(notifier_.get(), &QSocketNotifier::activated, this, &LineReader::read);
  pause_.setSingleShot(true);
  pause_.setInterval(PauseMilliseconds);
  connect(&pause_, &QTimer::timeout, this, [this] { notifier_->setEnabled(true); });
}

LineReader::~LineReader() = default;

void LineReader::read() {
  // Another program may have taken what was announced.
  if (ended_ || !isReadable(descriptor_, 0))
    return;
  const std::optional<QByteArray> bytes = readOnce(descriptor_);
  if (!bytes)
    return;
  if (bytes->isEmpty())
    return end();
  splitter_.append(*bytes);
  Q_EMIT received();
  if (unhurried_) {
    notifier_->setEnabled(false);
    pause_.start();
  }
}

void LineReader::end() {
  notifier_->setEnabled(false);
  splitter_.finish();
  ended_ = true;
  Q_EMIT ended();
}

void readLines(int descriptor, const LineSplitter::Receiver& receiver,
               const std::function<bool()>& enough, double patienceSeconds) {
  LineSplitter splitter(receiver);
  const int patience =
      patienceSeconds < 0 ? -1 : static_cast<int>(std::lround(patienceSeconds * 1000));
  while (!enough()) {
    if (!isReadable(descriptor, patience))
      break;
    const std::optional<QByteArray> bytes = readOnce(descriptor);
    if (bytes && bytes->isEmpty())
      break;
    if (bytes)
      splitter.append(*bytes);
  }
  splitter.finish();
}

} // namespace zq::app
