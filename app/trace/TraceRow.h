// One frame of a strip as a line of a trace.
#pragma once

#include <QtCore/QString>

#include <cstdint>
#include <string>
#include <string_view>

namespace zq::app {

// What stands between a frame and the one before.
enum class TraceKind {
  Begin,  // rest: nothing moved, or nobody saw it
  Run,    // motion at the strip's speed
  Glide,  // motion on the way to another place, as of a step to the next sign
  Change, // speed, direction, scale or place was changed, as also by a hand
  Redraw, // the frame before once more, as something else is shown in its place
  Lost,   // time in which the program was kept from running, and which is left out
};

struct TraceRow {
  double time = 0;  // seconds on the monotonic clock: when the frame is expected on the screen
  double drawn = 0; // the same clock: when it had been drawn
  std::uint64_t blank = 0; // the number of the vertical blank at that time
  // Device pixels by which the strip has moved, as shown; in every direction they grow forward.
  std::int64_t offset = 0;
  double ideal = 0; // the same, unrounded
  double scale = 1; // device pixels per point
  double speed = 0; // points per second
  TraceKind kind = TraceKind::Run;
};

// The first line of a trace, without its line end.
inline constexpr std::string_view TraceHeader = "time,drawn,blank,offset,ideal,scale,speed,kind";
// No line is longer.
inline constexpr std::size_t LongestTraceLine = 300;

// Writes a row with its line end to `to`, which has room for LongestTraceLine bytes; the end of
// what was written. Times to the nanosecond, offsets to the millionth of a pixel.
char* writeTraceRow(const TraceRow& row, char* to);

// Reads a line without its end. What is wrong with it, in a few words; empty where nothing is.
// Numbers must be finite, the scale above 0, and offsets within 2^60 pixels.
QString readTraceRow(std::string_view line, TraceRow& row);

} // namespace zq::app
