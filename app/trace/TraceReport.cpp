#include "app/trace/TraceReport.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
// Frames on either side by which a pace is measured.
constexpr std::size_t Reach = 32;
// Half a pixel, and what numbers are rounded to in a trace.
constexpr double MostPositionError = 0.5 + 1e-4;
// A pace that is so near to a whole number of pixels is one.
constexpr double PaceRounding = 1e-6;
constexpr std::size_t MostStepSizes = 40;

QString number(double value, int digits) {
  return QString::number(value, 'f', digits);
}

bool isOfRun(const TraceRow& row) {
  return row.kind == TraceKind::Run;
}

bool isRedraw(const TraceRow& row) {
  return row.kind == TraceKind::Redraw;
}
} // namespace

void TraceReport::note(std::size_t line, const QString& fault) {
  if (!fault_.isEmpty() && line >= faultLine_)
    return;
  faultLine_ = line;
  fault_ = u"line %1: "_s.arg(line) + fault;
}

QString TraceReport::add(const TraceRow& row, std::size_t line) {
  const bool isFirst = frames_ == 0;
  // A change is shown at once, also at the time of the frame that stands there.
  const bool isChange = row.kind == TraceKind::Change || isRedraw(row);
  if (!isFirst && (isChange ? row.time < last_.time : row.time <= last_.time))
    return u"the time runs backwards"_s;
  if (!isFirst && isOfRun(row) && row.blank <= last_.blank)
    return u"the blank is not behind the one before"_s;
  const bool goesOn = !isFirst && (isOfRun(row) || isRedraw(row)) &&
                      last_.kind != TraceKind::Glide && row.speed == last_.speed &&
                      row.scale == last_.scale;
  if (isFirst)
    firstTime_ = row.time;
  else
    count(last_, row);
  if (!goesOn) {
    judgeStretch();
    stretch_.clear();
    judged_ = 0;
    origin_ = row;
    ++stretches_;
  }
  stretch_.push_back({row, line});
  if (stretch_.size() - judged_ > Reach)
    judge(judged_++);
  if (judged_ > Reach) {
    stretch_.pop_front();
    --judged_;
  }
  ++frames_;
  last_ = row;
  return {};
}

void TraceReport::finish() {
  judgeStretch();
  stretch_.clear();
  judged_ = 0;
}

// What is told of times and steps between two frames, whatever moved.
void TraceReport::count(const TraceRow& before, const TraceRow& row) {
  if (row.drawn > row.time && row.kind != TraceKind::Change && !isRedraw(row))
    ++drawnLate_;
  if (row.kind == TraceKind::Lost)
    ++losses_;
  if (row.kind != TraceKind::Run && row.kind != TraceKind::Glide)
    return;
  longestGap_ = std::max(longestGap_, row.time - before.time);
  if (row.blank <= before.blank)
    return;
  const std::uint64_t blanks = row.blank - before.blank;
  ++timed_;
  blanks_ += blanks;
  blankSeconds_ += row.time - before.time;
  if (blanks > 1) {
    ++late_;
    emptyBlanks_ += blanks - 1;
  }
  if (row.kind != TraceKind::Run)
    return;
  const std::int64_t step = row.offset - before.offset;
  if (steps_.size() < MostStepSizes || steps_.contains(step))
    ++steps_[step];
  else
    ++otherSteps_;
}

void TraceReport::judgeStretch() {
  while (judged_ < stretch_.size())
    judge(judged_++);
}

void TraceReport::judgePosition(const TraceRow& row, double ideal, std::size_t line) {
  const double error = std::abs(static_cast<double>(row.offset) - ideal);
  if (error > positionError_) {
    positionError_ = error;
    worstLine_ = line;
  }
  if (error > MostPositionError)
    note(line, u"%1 pixels from the ideal line"_s.arg(number(error, 3)));
}

void TraceReport::judge(std::size_t index) {
  const auto& [row, line] = stretch_[index];
  judgePosition(row, row.ideal, line);
  if (isRedraw(row) && index > 0 && row.offset != stretch_[index - 1].row.offset)
    note(line, u"a frame that is drawn once more has moved"_s);
  if (!isOfRun(row))
    return;
  judgePosition(row, origin_.ideal + row.speed * row.scale * (row.time - origin_.time), line);
  if (index == 0)
    return;
  const TraceRow& before = stretch_[index - 1].row;
  const TraceRow& first = stretch_[index > Reach ? index - 1 - Reach : 0].row;
  const TraceRow& last = stretch_[std::min(index + Reach, stretch_.size() - 1)].row;
  const auto blanksAround = static_cast<double>(last.blank - first.blank);
  const double period = (last.time - first.time) / blanksAround;
  const std::uint64_t blanks = row.blank - before.blank;
  const double unevenness = std::abs(row.time - before.time - static_cast<double>(blanks) * period);
  unevenness_ = std::max(unevenness_, unevenness);
  if (unevenness > period / 2)
    note(line, u"%1 blanks within %2 s, where one takes %3 s"_s.arg(blanks).arg(
                   number(row.time - before.time, 6), number(period, 6)));
  if (blanks != 1)
    return;
  const double pace = (last.ideal - first.ideal) / blanksAround;
  const std::int64_t step = row.offset - before.offset;
  const bool isDoubled = static_cast<double>(step) > std::ceil(pace - PaceRounding);
  const bool isMissing = static_cast<double>(step) < std::floor(pace + PaceRounding);
  doubled_ += isDoubled ? 1 : 0;
  missing_ += isMissing ? 1 : 0;
  if (isDoubled || isMissing)
    note(line, u"a step of %1 pixels, where the line moves by %2"_s.arg(step).arg(number(pace, 6)));
}

QStringList TraceReport::lines() const {
  QStringList steps;
  for (const auto& [step, count] : steps_)
    steps.append(u"%1 px x %2"_s.arg(step).arg(count));
  if (otherSteps_ > 0)
    steps.append(u"others x %1"_s.arg(otherSteps_));
  const auto share = [this](std::size_t part, std::size_t all) {
    return all == 0
               ? u"-"_s
               : QString(
                     number(100.0 * static_cast<double>(all - part) / static_cast<double>(all), 3) +
                     u" %"_s);
  };
  return {
      u"frames: %1 in %2 s"_s.arg(frames_).arg(
          number(frames_ > 0 ? last_.time - firstTime_ : 0, 3)),
      u"stretches of even motion: %1"_s.arg(stretches_),
      u"blanks a second: %1"_s.arg(
          blankSeconds_ > 0 ? number(static_cast<double>(blanks_) / blankSeconds_, 4) : u"-"_s),
      u"worst position error: %1 px (line %2)"_s.arg(number(positionError_, 4)).arg(worstLine_),
      u"doubled steps: %1"_s.arg(doubled_),
      u"missing steps: %1"_s.arg(missing_),
      u"late frames: %1 (%2 blanks without a frame)"_s.arg(late_).arg(emptyBlanks_),
      u"frames on time: %1"_s.arg(share(late_, timed_)),
      u"drawn before their blank: %1"_s.arg(share(drawnLate_, frames_)),
      u"longest gap: %1 ms"_s.arg(number(longestGap_ * 1000, 1)),
      u"unevenness of frame times: at most %1 ms"_s.arg(number(unevenness_ * 1000, 3)),
      u"times left out: %1"_s.arg(losses_),
      u"steps: %1"_s.arg(steps.isEmpty() ? u"none"_s : steps.join(u", ")),
  };
}

} // namespace zq::app
