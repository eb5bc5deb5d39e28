#include "app/services/TailReader.h"

#include <algorithm>
#include <utility>

namespace zq::app {

namespace {
constexpr qint64 BytesPerRead = 1 << 16;
// UTF-8 takes three bytes for a UTF-16 unit, four for two of them.
constexpr qint64 BytesPerUnit = 3;
// Files that wait for their turn: a log is not rotated that often before a line is written to it.
constexpr std::size_t MostFiles = 16;
constexpr char Ellipsis[] = "\u2026";

bool isBlank(char c) {
  return c == '\0' || c == ' ' || (c >= '\t' && c <= '\r');
}

QByteArray withoutZeros(QByteArray bytes) {
  return bytes.removeIf([](char c) { return c == '\0'; });
}

// The bytes without blank ones at the end.
QByteArrayView withoutEnd(QByteArrayView bytes) {
  while (!bytes.isEmpty() && isBlank(bytes.back()))
    bytes.chop(1);
  return bytes;
}

// Where the last line that is not blank begins; -1 where its start is not among the bytes.
qsizetype startOfLastLine(QByteArrayView bytes) {
  const qsizetype lineEnd = withoutEnd(bytes).lastIndexOf('\n');
  return lineEnd < 0 ? -1 : lineEnd + 1;
}

// The bytes from the first whole character on.
QByteArrayView fromCharacter(QByteArrayView bytes) {
  while (!bytes.isEmpty() && (static_cast<unsigned char>(bytes.front()) & 0xC0) == 0x80)
    bytes = bytes.sliced(1);
  return bytes;
}
} // namespace

TailReader::TailReader(QByteArray path, LineSplitter::Receiver receiver, TailLimits limits)
    : path_(std::move(path)), receiver_(std::move(receiver)), limits_(limits),
      splitter_(makeSplitter()) {}

TailReader::~TailReader() = default;

LineSplitter TailReader::makeSplitter() {
  return LineSplitter([this](const QString& line) { give(line); }, limits_.longestLine);
}

void TailReader::start() {
  look();
  if (!files_.empty())
    giveLastLine(*files_.front());
}

bool TailReader::readSome() {
  look();
  if (files_.empty())
    return false;
  TailFile& file = *files_.front();
  // Asked before the file is read: whoever writes to the next one has done with this one.
  const bool isOver = isFollowedByData() || (files_.size() == 1 && file.isDeleted());
  if (file.isAnotherText()) {
    splitter_.finish();
    passesLine_ = false;
    file.moveTo(0);
  }
  if (file.size() - file.place() > limits_.mostBehind)
    passOver(file);
  const QByteArray bytes = file.read(BytesPerRead);
  if (!bytes.isEmpty()) {
    take(bytes);
    return true;
  }
  if (!isOver)
    return false;
  splitter_.finish();
  passesLine_ = false;
  files_.pop_front();
  return !files_.empty();
}

// Opens what is at the path, unless it is open already.
void TailReader::look() {
  if (const auto found = TailFile::identityAt(path_)) {
    const auto isFound = [&](const auto& file) { return file->identity() == *found; };
    if (std::any_of(files_.begin(), files_.end(), isFound)) {
      problem_ = {};
      return;
    }
  }
  if (auto file = TailFile::open(path_, problem_))
    files_.push_back(std::move(file));
}

bool TailReader::isFollowedByData() const {
  return files_.size() > MostFiles || std::any_of(files_.begin() + 1, files_.end(),
                                                  [](const auto& file) { return file->hasMore(); });
}

void TailReader::giveLastLine(TailFile& file) {
  const qint64 size = file.size();
  const qint64 most = std::min(size, (limits_.longestLine + 1) * BytesPerUnit);
  qint64 count = std::min(most, BytesPerRead);
  QByteArray bytes = file.bytesAt(size - count, count).value_or(QByteArray());
  while (count < most && startOfLastLine(bytes) < 0) {
    count = std::min(most, count * 4);
    bytes = file.bytesAt(size - count, count).value_or(QByteArray());
  }
  file.moveTo(size - count + bytes.size());
  const qsizetype start = startOfLastLine(bytes);
  QByteArray line;
  if (start >= 0)
    line = bytes.sliced(start);
  else if (count == size)
    line = bytes;
  else if (!withoutEnd(bytes).isEmpty())
    line = Ellipsis + fromCharacter(bytes).toByteArray();
  if (!line.contains('\n'))
    giveUnended(line);
  take(line);
}

void TailReader::giveUnended(QByteArray bytes) {
  QString text;
  LineSplitter splitter([&](const QString& line) { text = line; }, limits_.longestLine);
  splitter.append(withoutZeros(std::move(bytes)));
  splitter.finish();
  if (text.isEmpty())
    return;
  receiver_(text);
  unended_ = text;
}

void TailReader::passOver(TailFile& file) {
  splitter_ = makeSplitter();
  file.moveTo(file.size() - limits_.mostBehind);
  passesLine_ = true;
}

void TailReader::take(QByteArray bytes) {
  bytes = withoutZeros(std::move(bytes));
  if (passesLine_) {
    const qsizetype lineEnd = bytes.indexOf('\n');
    if (lineEnd < 0)
      return;
    bytes.remove(0, lineEnd + 1);
    passesLine_ = false;
  }
  splitter_.append(bytes);
}

void TailReader::give(const QString& line) {
  if (std::exchange(unended_, {}) != line)
    receiver_(line);
}

} // namespace zq::app
