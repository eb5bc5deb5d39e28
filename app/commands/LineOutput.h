// Lines on standard output, for as long as somebody reads them.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QObject>
#include <QtCore/QString>

#include <memory>

class QSocketNotifier;

namespace zq::app {

class Interrupts;

// Writes each line at once. A reader that goes away is no failure: it has what it wanted. While the
// object lives SIGPIPE is ignored; one object at a time.
//
// Thread: the one that made it.
class LineOutput : public QObject {
  Q_OBJECT

 public:
  explicit LineOutput(const Interrupts& interrupts);
  ~LineOutput() override;

  // Writes `line` and a line feed; waits while a pipe is full. False once the output has ended: the
  // reader has gone, writing failed, or an interrupt has come.
  bool write(const QByteArray& line);

  bool hasEnded() const { return hasEnded_; }
  // Why writing failed; empty where it did not.
  const QString& failure() const { return failure_; }

  // Once, also while nothing is written: the reader of a pipe is seen leaving.
  Q_SIGNAL void ended();

 private:
  void end(const QString& failure = {});
  void watchReader();
  bool waitForRoom();

  const Interrupts& interrupts_;
  std::unique_ptr<QSocketNotifier> reader_;
  bool hasEnded_ = false;
  QString failure_;
};

} // namespace zq::app
