// The lines of a text file, as they are appended.
#pragma once

#include "app/intake/LineSplitter.h"
#include "app/services/TailFile.h"

#include <deque>
#include <memory>

namespace zq::app {

struct TailLimits {
  qsizetype longestLine = LongestLine; // UTF-16 units; a longer one is cut there
  // Bytes. What lies further back is passed over: more than anything that shows lines keeps.
  qint64 mostBehind = qint64(64) << 20;
};

// Follows the file at a path and gives each line to a receiver, made showable as lines of standard
// input are, as soon as its line end is there. No line is lost and none comes twice when the file
// is rotated:
//
// - renamed or deleted, and another put in its place: the old one is read to its end, for as long
//   as there is nothing in the new one, which is then read from its start;
// - copied and emptied: it is read from its start again. Lines that were emptied away before they
//   could be read are lost.
//
// A text that breaks off counts as a line where the file ends for good. Zero bytes, such as those
// of a hole, are not there.
//
// Thread: any, one at a time.
class TailReader {
 public:
  // `path` in the file system's own bytes.
  TailReader(QByteArray path, LineSplitter::Receiver receiver, TailLimits limits = {});
  ~TailReader();

  // Opens the file and gives out its last line that has something to show, whatever its size is
  // reading a few megabytes at most; the following functions go on from there. A last line that is
  // not ended yet is given out too, and again once it is ended where it has become longer. A line
  // whose start is too far away begins with an ellipsis.
  //
  // Where there is no file, the one that comes is read from its start.
  void start();

  // Looks at the path, and reads on, some ten thousands of bytes. Whether there is more.
  bool readSome();

  // Why nothing at the path can be read now. What was there before is still read to its end.
  const TailProblem& problem() const { return problem_; }

 private:
  void look();
  void giveLastLine(TailFile& file);
  void giveUnended(QByteArray bytes);
  bool isFollowedByData() const;
  void passOver(TailFile& file);
  void take(QByteArray bytes);
  void give(const QString& line);
  LineSplitter makeSplitter();

  QByteArray path_;
  LineSplitter::Receiver receiver_;
  TailLimits limits_;
  LineSplitter splitter_;
  // The file that is read, and those that have stood at the path since.
  std::deque<std::unique_ptr<TailFile>> files_;
  TailProblem problem_;
  QString unended_;         // the last line at the start, until it is ended
  bool passesLine_ = false; // the rest of a line is not wanted
};

} // namespace zq::app
