#include "app/commands/interrupts.h"

#include <QtCore/QSocketNotifier>

#include <array>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace zq::app {

namespace {
constexpr std::array Caught{SIGINT, SIGTERM, SIGHUP};

volatile std::sig_atomic_t receivedSignal = 0;
volatile std::sig_atomic_t wakeDescriptor = -1;

void setHandler(int signal, void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  sigemptyset(&action.sa_mask);
  sigaction(signal, &action, nullptr);
}

void onSignal(int signal) {
  const int keptError = errno;
  receivedSignal = signal;
  if (wakeDescriptor >= 0) {
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = ::write(wakeDescriptor, &byte, 1);
  }
  for (const int caught : Caught)
    setHandler(caught, SIG_DFL);
  errno = keptError;
}
} // namespace

Interrupts::Interrupts(QObject* parent) : QObject(parent) {
  receivedSignal = 0;
  if (::pipe2(ends_, O_CLOEXEC | O_NONBLOCK) == 0) {
    notifier_ = new QSocketNotifier(ends_[0], QSocketNotifier::Read, this);
    connect(notifier_, &QSocketNotifier::activated, this, [this] {
      notifier_->setEnabled(false);
      Q_EMIT interrupted();
    });
    wakeDescriptor = ends_[1];
  }
  for (const int caught : Caught)
    setHandler(caught, onSignal);
}

Interrupts::~Interrupts() {
  for (const int caught : Caught)
    setHandler(caught, SIG_DFL);
  wakeDescriptor = -1;
  for (const int end : ends_)
    if (end >= 0)
      ::close(end);
}

int Interrupts::received() {
  return receivedSignal;
}

} // namespace zq::app
