#include "app/trace/TraceRow.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
constexpr std::array<std::string_view, 6> KindNames{"begin",  "run",    "glide",
                                                    "change", "redraw", "lost"};
constexpr int TimeDigits = 9;
constexpr int PixelDigits = 6;
// Larger ones have no digits behind the point that mean anything, and would not fit.
constexpr double LargestFixed = 1e15;

char* writeFixed(char* to, double value, int digits) {
  char* const end = to + 40;
  return std::abs(value) < LargestFixed
             ? std::to_chars(to, end, value, std::chars_format::fixed, digits).ptr
             : std::to_chars(to, end, value).ptr;
}

template <class Number>
char* writeNumber(char* to, Number value) {
  return std::to_chars(to, to + 40, value).ptr;
}

// So that the step between two of them is a number too.
constexpr std::int64_t LargestOffset = std::int64_t(1) << 60;

// Takes the next field off the line.
std::string_view takeField(std::string_view& line) {
  const std::size_t comma = line.find(',');
  const std::string_view field = line.substr(0, comma);
  line.remove_prefix(comma == std::string_view::npos ? line.size() : comma + 1);
  return field;
}

template <class Number>
bool readNumber(std::string_view field, Number& value) {
  const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), value);
  return error == std::errc() && end == field.data() + field.size();
}

bool readFinite(std::string_view field, double& value) {
  return readNumber(field, value) && std::isfinite(value);
}
} // namespace

char* writeTraceRow(const TraceRow& row, char* to) {
  to = writeFixed(to, row.time, TimeDigits);
  *to++ = ',';
  to = writeFixed(to, row.drawn, TimeDigits);
  *to++ = ',';
  to = writeNumber(to, row.blank);
  *to++ = ',';
  to = writeNumber(to, row.offset);
  *to++ = ',';
  to = writeFixed(to, row.ideal, PixelDigits);
  *to++ = ',';
  to = writeNumber(to, row.scale);
  *to++ = ',';
  to = writeNumber(to, row.speed);
  *to++ = ',';
  const std::string_view kind = KindNames[static_cast<std::size_t>(row.kind)];
  to = std::copy(kind.begin(), kind.end(), to);
  *to++ = '\n';
  return to;
}

QString readTraceRow(std::string_view line, TraceRow& row) {
  if (std::count(line.begin(), line.end(), ',') !=
      std::count(TraceHeader.begin(), TraceHeader.end(), ','))
    return u"not eight fields"_s;
  if (!readFinite(takeField(line), row.time))
    return u"the time is no number"_s;
  if (!readFinite(takeField(line), row.drawn))
    return u"the time of drawing is no number"_s;
  if (!readNumber(takeField(line), row.blank))
    return u"the blank is no number"_s;
  if (!readNumber(takeField(line), row.offset))
    return u"the offset is no whole number"_s;
  if (row.offset > LargestOffset || row.offset < -LargestOffset)
    return u"the offset is too large"_s;
  if (!readFinite(takeField(line), row.ideal))
    return u"the ideal offset is no number"_s;
  if (!readFinite(takeField(line), row.scale) || row.scale <= 0)
    return u"the scale is no number above 0"_s;
  if (!readFinite(takeField(line), row.speed))
    return u"the speed is no number"_s;
  const auto kind = std::find(KindNames.begin(), KindNames.end(), line);
  if (kind == KindNames.end())
    return u"an unknown kind of frame"_s;
  row.kind = static_cast<TraceKind>(kind - KindNames.begin());
  return {};
}

} // namespace zq::app
