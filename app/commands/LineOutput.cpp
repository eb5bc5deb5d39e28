#include "app/commands/LineOutput.h"

#include "app/commands/interrupts.h"

#include <QtCore/QSocketNotifier>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <iterator>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zq::app {

namespace {
// A pipe that this program cannot read itself: its notifier tells nothing but the reader's leaving.
bool isPipeForWriting(int descriptor) {
  struct stat found {};
  return ::fstat(descriptor, &found) == 0 && S_ISFIFO(found.st_mode) &&
         (::fcntl(descriptor, F_GETFL) & O_ACCMODE) == O_WRONLY;
}
} // namespace

LineOutput::LineOutput(const Interrupts& interrupts) : interrupts_(interrupts) {
  ::signal(SIGPIPE, SIG_IGN);
  if (isPipeForWriting(STDOUT_FILENO))
    watchReader();
}

LineOutput::~LineOutput() {
  ::signal(SIGPIPE, SIG_DFL);
}

void LineOutput::watchReader() {
  reader_ = std::make_unique<QSocketNotifier>(STDOUT_FILENO, QSocketNotifier::Read);
  connect(reader_.get(), &QSocketNotifier::activated, this, [this] {
    reader_->setEnabled(false);
    pollfd pipe{STDOUT_FILENO, 0, 0};
    if (::poll(&pipe, 1, 0) == 1)
      end();
  });
}

bool LineOutput::write(const QByteArray& line) {
  const QByteArray bytes = line + '\n';
  qsizetype written = 0;
  while (written < bytes.size() && waitForRoom()) {
    // As many as a pipe with room takes without waiting.
    const qsizetype size = std::min<qsizetype>(bytes.size() - written, PIPE_BUF);
    const ssize_t count =
        ::write(STDOUT_FILENO, bytes.constData() + written, static_cast<std::size_t>(size));
    if (count >= 0)
      written += count;
    else if (errno == EPIPE)
      end();
    else if (errno != EINTR && errno != EAGAIN)
      end(QString::fromLocal8Bit(std::strerror(errno)));
  }
  return !hasEnded_;
}

// A write that waits by itself would not notice a signal that came just before.
bool LineOutput::waitForRoom() {
  pollfd waiting[] = {{STDOUT_FILENO, POLLOUT, 0}, {interrupts_.descriptor(), POLLIN, 0}};
  while (!hasEnded_ && ::poll(waiting, std::size(waiting), -1) < 0 && errno == EINTR)
    continue;
  if (waiting[1].revents != 0)
    end();
  return !hasEnded_;
}

void LineOutput::end(const QString& failure) {
  if (hasEnded_)
    return;
  hasEnded_ = true;
  failure_ = failure;
  Q_EMIT ended();
}

} // namespace zq::app
