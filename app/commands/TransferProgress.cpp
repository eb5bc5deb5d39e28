#include "app/commands/TransferProgress.h"

#include "app/commands/size_text.h"

#include <algorithm>
#include <cstdio>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
constexpr qint64 MillisecondsBetween = 100;
constexpr qsizetype BarWidth = 30;
// Back to the start of the line, and clear it.
constexpr char ClearLine[] = "\r\033[K";

// The highest rate that a clock of milliseconds can tell of any number of bytes is beyond 64 bits.
QString rateText(double bytesPerSecond) {
  constexpr double Highest = 0x1p62;
  return sizeText(qint64(std::min(bytesPerSecond, Highest))) + u"/s"_s;
}
} // namespace

QString progressText(qint64 received, qint64 total, double seconds) {
  QString text;
  if (total > 0) {
    const double done = std::min(1.0, double(received) / double(total));
    const auto filled = qsizetype(done * double(BarWidth));
    text = u"%1 % ["_s.arg(int(done * 100), 3) + QString(filled, u'#') +
           QString(BarWidth - filled, u' ') + u"] "_s;
  }
  text += sizeText(received);
  if (total > 0)
    text += u" of "_s + sizeText(total);
  if (seconds > 0)
    text += u", "_s + rateText(double(received) / seconds);
  return text;
}

TransferProgress::TransferProgress(bool isWanted) : isShown_(isWanted && ::isatty(STDERR_FILENO)) {
  clock_.start();
}

TransferProgress::~TransferProgress() {
  if (hasWritten_)
    std::fputs(ClearLine, stderr);
}

void TransferProgress::show(qint64 received, qint64 total) {
  const qint64 now = clock_.elapsed();
  if (!isShown_ || now - lastShown_ < MillisecondsBetween)
    return;
  lastShown_ = now;
  hasWritten_ = true;
  std::fprintf(stderr, "%s%s", ClearLine,
               progressText(received, total, double(now) / 1000).toUtf8().constData());
}

} // namespace zq::app
