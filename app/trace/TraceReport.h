// What a trace says of a motion.
#pragma once

#include "app/trace/TraceRow.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>

namespace zq::app {

// Measures the frames of a trace, taken one by one in constant memory.
//
// The ideal line: from where a stretch of even motion begins, the strip moves on by speed times
// scale in each second of the frames' own times. A frame may be half a pixel from it, as whole
// pixels are.
//
// Steps are judged by the pace of the blanks around them: where the line moves by 1.5 pixels from
// blank to blank, steps of 1 and of 2 pixels are right, one of 3 is doubled, one of 0 is missing.
// Only frames on time are judged so, those that follow the frame before by one blank. One that
// comes after blanks without a frame is late: its step is larger as its time is, and it must be
// near the line all the same.
//
// What follows a rest, a change or lost time begins a new stretch; frames that glide, and those
// that a hand moves, are held against their own ideal offset alone. A frame that is drawn once more
// ends no stretch: it must be where the one before was.
class TraceReport {
 public:
  // What is wrong with a row behind the ones before it, in a few words; empty where nothing is:
  // times and blanks must grow. `line` is that of the file.
  QString add(const TraceRow& row, std::size_t line);
  // After the last row.
  void finish();

  // One line a figure.
  QStringList lines() const;
  // The first frame that is wrong, "line 12: …"; empty for none.
  const QString& fault() const { return fault_; }

  std::size_t frames() const { return frames_; }
  double positionError() const { return positionError_; }
  std::size_t doubledSteps() const { return doubled_; }
  std::size_t missingSteps() const { return missing_; }
  std::size_t lateFrames() const { return late_; }
  std::uint64_t emptyBlanks() const { return emptyBlanks_; }

 private:
  struct Frame {
    TraceRow row;
    std::size_t line = 0;
  };

  void judgeStretch();
  void judge(std::size_t index);
  void judgePosition(const TraceRow& row, double ideal, std::size_t line);
  void count(const TraceRow& before, const TraceRow& row);
  void note(std::size_t line, const QString& fault);

  std::deque<Frame> stretch_; // the frames around the one that is judged next
  std::size_t judged_ = 0;    // of these
  TraceRow origin_;           // the first frame of the stretch
  TraceRow last_;
  std::size_t frames_ = 0;
  double firstTime_ = 0;
  std::size_t stretches_ = 0;
  double positionError_ = 0;
  std::size_t worstLine_ = 0;
  std::size_t doubled_ = 0;
  std::size_t missing_ = 0;
  std::size_t timed_ = 0; // frames that follow another one in motion
  std::size_t late_ = 0;
  std::uint64_t emptyBlanks_ = 0;
  std::uint64_t blanks_ = 0;
  double blankSeconds_ = 0; // in which these were
  std::size_t drawnLate_ = 0;
  std::size_t losses_ = 0;
  double longestGap_ = 0;
  double unevenness_ = 0; // seconds
  std::map<std::int64_t, std::size_t> steps_;
  std::size_t otherSteps_ = 0; // of sizes too many to list
  std::size_t faultLine_ = 0;
  QString fault_;
};

} // namespace zq::app
