#include "zqticker/platform/text/Scanner.h"

#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/text/DecimalNumber.h"
#include "zqticker/platform/text/string_search.h"

#include <limits>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {

bool isDigitAt(const QString& text, qsizetype index) {
  return index < text.size() && text[index] >= u'0' && text[index] <= u'9';
}

// Passes a view of what was scanned on as a string.
bool store(bool isScanned, QStringView found, QString* text) {
  if (isScanned && text)
    *text = found.toString();
  return isScanned;
}

} // namespace

Scanner::Scanner(QString string)
    : string_(std::move(string)), skipped_(CharacterSet::whitespaceAndNewlineCharacterSet()) {}

void Scanner::setScanLocation(qsizetype location) {
  if (location < 0 || location > string_.size())
    throw RangeException(
        u"Scan location %1 is outside a string of %2 characters"_s.arg(location).arg(
            string_.size()));
  location_ = location;
}

void Scanner::setCharactersToBeSkipped(std::optional<CharacterSet> characters) {
  skipped_ = std::move(characters);
  skippedEnd_ = -1;
}

qsizetype Scanner::afterSkipped() const {
  if (!skipped_)
    return location_;
  qsizetype start = location_;
  // The second half of a pair is another character than the pair was.
  if (start > 0 && start < string_.size() && string_[start].isLowSurrogate() &&
      string_[start - 1].isHighSurrogate()) {
    if (!skipped_->characterIsMember(string_[start].unicode()))
      return start;
    ++start;
  }
  if (start < skippedStart_ || start > skippedEnd_) {
    skippedStart_ = start;
    skippedEnd_ = skipped_->indexOfOther(string_, start);
  }
  return skippedEnd_;
}

bool Scanner::take(qsizetype start, qsizetype end, QStringView* text) {
  if (end == start)
    return false;
  if (text)
    *text = QStringView(string_).sliced(start, end - start);
  location_ = end;
  return true;
}

bool Scanner::scanCharactersFromSet(const CharacterSet& set, QStringView* text) {
  const qsizetype start = afterSkipped();
  return take(start, set.indexOfOther(string_, start), text);
}

bool Scanner::scanCharactersFromSet(const CharacterSet& set, QString* text) {
  QStringView found;
  return store(scanCharactersFromSet(set, &found), found, text);
}

bool Scanner::scanUpToCharactersFromSet(const CharacterSet& set, QStringView* text) {
  const qsizetype start = afterSkipped();
  return take(start, set.indexOfMember(string_, start), text);
}

bool Scanner::scanUpToCharactersFromSet(const CharacterSet& set, QString* text) {
  QStringView found;
  return store(scanUpToCharactersFromSet(set, &found), found, text);
}

bool Scanner::scanString(QStringView string, QString* text) {
  const qsizetype start = afterSkipped();
  if (!QStringView(string_).sliced(start).startsWith(string))
    return false;
  QStringView found;
  return store(take(start, start + string.size(), &found), found, text);
}

bool Scanner::scanUpToString(QStringView string, QStringView* text) {
  const qsizetype start = afterSkipped();
  const qsizetype found = indexOfString(string_, string, start);
  return take(start, found < 0 ? string_.size() : found, text);
}

bool Scanner::scanUpToString(QStringView string, QString* text) {
  QStringView found;
  return store(scanUpToString(string, &found), found, text);
}

bool Scanner::scanLongLong(qint64* value, bool* isOutOfRange) {
  const qsizetype start = afterSkipped();
  qsizetype at = start;
  const bool isNegative = at < string_.size() && string_[at] == u'-';
  if (isNegative || (at < string_.size() && string_[at] == u'+'))
    ++at;
  if (!isDigitAt(string_, at))
    return false;
  // Counted downwards, since there is one more negative number than there are positive ones.
  qint64 negated = 0;
  bool isBeyond = false;
  for (; isDigitAt(string_, at); ++at) {
    const int digit = string_[at].unicode() - u'0';
    isBeyond = isBeyond || __builtin_mul_overflow(negated, qint64(10), &negated) ||
               __builtin_sub_overflow(negated, qint64(digit), &negated);
  }
  using Limits = std::numeric_limits<qint64>;
  isBeyond = isBeyond || (!isNegative && negated == Limits::min());
  if (value)
    *value =
        isBeyond ? (isNegative ? Limits::min() : Limits::max()) : (isNegative ? negated : -negated);
  if (isOutOfRange)
    *isOutOfRange = isBeyond;
  return take(start, at, nullptr);
}

bool Scanner::scanDecimal(DecimalNumber* value) {
  const qsizetype start = afterSkipped();
  DecimalNumber number;
  const qsizetype length = DecimalNumber::readPrefix(QStringView(string_).sliced(start), number);
  if (length > 0 && value)
    *value = number;
  return take(start, start + length, nullptr);
}

} // namespace zq::platform
