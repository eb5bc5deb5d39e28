// Lines from a file descriptor, as they arrive.
#pragma once

#include "app/intake/LineSplitter.h"

#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <memory>

class QSocketNotifier;

namespace zq::app {

// Reads a descriptor (a pipe, a terminal, a socket or a plain file) from the event loop, never
// waiting for it, and gives out its lines. The descriptor's flags are left alone, since a terminal
// shares them with other programs; it is not closed.
//
// Thread: the one that made it.
class LineReader : public QObject {
  Q_OBJECT

 public:
  LineReader(int descriptor, LineSplitter::Receiver receiver, QObject* parent = nullptr);
  ~LineReader() override;

  bool hasEnded() const { return ended_; }
  // Whether to leave a moment between two reads, for a writer that is faster than its lines can be
  // shown: it is slowed down instead of keeping this program busy.
  void setUnhurried(bool unhurried) { unhurried_ = unhurried; }

  // Bytes came; the lines that they complete have been given out.
  Q_SIGNAL void received();
  Q_SIGNAL void ended();

 private:
  void read();
  void end();

  int descriptor_;
  LineSplitter splitter_;
  std::unique_ptr<QSocketNotifier> notifier_;
  QTimer pause_;
  bool unhurried_ = false;
  bool ended_ = false;
};

// Reads lines of `descriptor` until it ends, `enough` answers true, or nothing has come for
// `patienceSeconds` (negative: waits without end). For programs without an event loop.
void readLines(int descriptor, const LineSplitter::Receiver& receiver,
               const std::function<bool()>& enough, double patienceSeconds);

} // namespace zq::app
