#include "app/trace/StripTrace.h"

#include "app/commands/failures.h"
#include "app/commands/output_files.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
constexpr std::size_t BlockSize = 64 << 10;
}

StripTrace::StripTrace(const QString& option, const QString& path)
    : name_(option + u' ' + quotedForMessage(path)), file_(outputFileAt(path)), block_(BlockSize) {
  filled_ = static_cast<std::size_t>(
      std::copy(TraceHeader.begin(), TraceHeader.end(), block_.begin()) - block_.begin());
  block_[filled_++] = '\n';
  // What can be known at the start is told at the start.
  if (!file_->open(QIODevice::WriteOnly | QIODevice::Unbuffered) || !write())
    throw RunTimeError(name_ + u": cannot write: "_s + file_->errorString());
}

StripTrace::~StripTrace() {
  if (player_)
    player_->setObserver(nullptr);
}

void StripTrace::follow(StripPlayer& player, const TickerDisplay& display) {
  player_ = &player;
  display_ = &display;
  player.setObserver(this);
}

TraceKind StripTrace::kindOf(const PlayedFrame& frame) const {
  if (frame.lostTime)
    return TraceKind::Lost;
  if (frame.isFirst)
    return TraceKind::Begin;
  const Strip& strip = display_->strip();
  if (strip.motion() != motion_ || display_->scale() != scale_)
    return TraceKind::Change;
  if (!frame.isTick)
    return frame.time == time_ && !strip.isGliding() ? TraceKind::Redraw : TraceKind::Change;
  return strip.isGliding() ? TraceKind::Glide : TraceKind::Run;
}

// What frameTravel rounds: against the travel whole pixels count from the other end.
double StripTrace::idealTravel() const {
  const Strip& strip = display_->strip();
  const double travel = strip.travel() * display_->scale();
  if (!isReversed(display_->direction()))
    return travel;
  const double extent = strip.extent() * display_->scale();
  return static_cast<double>(StripTiles::wholePixel(extent)) - (extent - travel);
}

void StripTrace::framePlayed(const PlayedFrame& frame) {
  if (hasFailed_)
    return;
  const Strip& strip = display_->strip();
  const TraceRow row{frame.time,    frame.drawn,       frame.blank,   display_->frameTravel(),
                     idealTravel(), display_->scale(), strip.speed(), kindOf(frame)};
  motion_ = strip.motion();
  scale_ = display_->scale();
  time_ = frame.time;
  filled_ = static_cast<std::size_t>(writeTraceRow(row, block_.data() + filled_) - block_.data());
  if (filled_ + LongestTraceLine > BlockSize && !write())
    fail();
}

bool StripTrace::write() {
  const auto size = static_cast<qint64>(filled_);
  filled_ = 0;
  return file_->write(block_.data(), size) == size;
}

void StripTrace::fail() {
  printError(name_ + u": cannot write: "_s + file_->errorString());
  hasFailed_ = true;
  file_.reset();
}

bool StripTrace::finish() {
  if (!hasFailed_ && (!write() || !finishOutputFile(*file_)))
    fail();
  return !hasFailed_;
}

} // namespace zq::app
