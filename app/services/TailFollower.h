// One text file of the file service.
#pragma once

#include "app/services/TailReader.h"

#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <functional>

namespace zq::app {

// Reads a file from the event loop, in slices, whenever it is looked at. What keeps it from being
// read is told in a log line (category zqticker.files), once for each reason.
//
// Thread: main.
class TailFollower : public QObject {
  Q_OBJECT

 public:
  // `isFull` says whether to leave a moment between two slices, since lines are dropped anyway;
  // null for never.
  TailFollower(const QString& path, const LineSplitter::Receiver& receiver,
               std::function<bool()> isFull);
  ~TailFollower() override;

  const QString& path() const { return path_; }

  // Gives out the last line.
  void start();
  // Why nothing can be read now.
  const TailProblem& problem() const { return reader_.problem(); }
  // Tells it, where it has not been told.
  void tellProblem();

  // Reads what has been appended, unless it is about to do so. Tells a problem, but not that the
  // file is missing.
  void look();

  // Lines were given out by `look`.
  Q_SIGNAL void received();

 private:
  void readSlice();

  QString path_;
  TailReader reader_;
  std::function<bool()> isFull_;
  QTimer slice_;
  TailProblem toldProblem_;
  bool hasGiven_ = false; // in this look
};

} // namespace zq::app
