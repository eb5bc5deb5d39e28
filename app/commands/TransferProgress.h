// How far a transfer is, on a terminal.
#pragma once

#include <QtCore/QElapsedTimer>
#include <QtCore/QString>

namespace zq::app {

// "45 % [##########            ] 4.5 MB of 10.0 MB, 1.2 MB/s"; without the total where it is
// unknown
// (-1). Sizes as by sizeText.
QString progressText(qint64 received, qint64 total, double seconds);

// Shows that text on standard error, on one line that it rewrites at most ten times a second and
// leaves empty at the end. Shows nothing where standard error is no terminal, or `isWanted` is
// false.
class TransferProgress {
 public:
  explicit TransferProgress(bool isWanted);
  ~TransferProgress();
  TransferProgress(const TransferProgress&) = delete;

  void show(qint64 received, qint64 total);

 private:
  bool isShown_;
  bool hasWritten_ = false;
  qint64 lastShown_ = 0; // milliseconds since the start
  QElapsedTimer clock_;
};

} // namespace zq::app
