#include "app/trace/TraceReader.h"

#include "app/commands/failures.h"

#include <array>
#include <string>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
constexpr qint64 BlockSize = 256 << 10;

// Hands out lines without their ends.
class Lines {
 public:
  explicit Lines(QIODevice& device) : device_(device) { block_.resize(BlockSize); }

  // False at the end, at an error, and where a line is too long or not ended.
  bool take(std::string_view& line) {
    for (;;) {
      const std::size_t end = block_.find('\n', begin_);
      if (end < size_) {
        line = std::string_view(block_).substr(begin_, end - begin_);
        begin_ = end + 1;
        return true;
      }
      if (size_ - begin_ > LongestTraceLine || !fill())
        return false;
    }
  }

  // What stands there and is no line.
  std::size_t rest() const { return size_ - begin_; }
  bool hasFailed() const { return hasFailed_; }

 private:
  bool fill() {
    block_.erase(0, begin_);
    size_ -= begin_;
    begin_ = 0;
    block_.resize(size_ + BlockSize);
    const qint64 got = device_.read(block_.data() + size_, BlockSize);
    hasFailed_ = got < 0;
    size_ += got > 0 ? static_cast<std::size_t>(got) : 0;
    block_.resize(size_);
    return got > 0;
  }

  QIODevice& device_;
  std::string block_;
  std::size_t begin_ = 0;
  std::size_t size_ = 0;
  bool hasFailed_ = false;
};
} // namespace

void readTrace(QIODevice& device, const QString& name, TraceReport& report) {
  Lines lines(device);
  std::string_view line;
  const auto fail = [&](const QString& what) { throw RunTimeError(name + u": "_s + what); };
  const auto requireReading = [&] {
    if (lines.hasFailed())
      fail(u"cannot read: "_s + device.errorString());
  };
  const bool hasHeader = lines.take(line) && line == TraceHeader;
  requireReading();
  if (!hasHeader)
    fail(u"not a trace: its first line is not "_s +
         QString::fromLatin1(TraceHeader.data(), qsizetype(TraceHeader.size())));
  std::size_t number = 1;
  TraceRow row;
  while (lines.take(line)) {
    ++number;
    QString wrong = readTraceRow(line, row);
    if (wrong.isEmpty())
      wrong = report.add(row, number);
    if (!wrong.isEmpty())
      fail(u"line %1: "_s.arg(number) + wrong);
  }
  requireReading();
  if (lines.rest() > 0)
    fail(u"line %1: "_s.arg(number + 1) +
         (lines.rest() > LongestTraceLine ? u"too long"_s : u"cut off"_s));
  if (report.frames() == 0)
    fail(u"there is no frame in it"_s);
  report.finish();
}

} // namespace zq::app
