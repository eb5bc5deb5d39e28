#include "zqticker/foundation_additions/string_additions.h"

#include "zqticker/foundation_additions/random_string_p.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/text/CharacterSet.h"

#include <QtCore/QUuid>

#include <algorithm>
#include <ctime>
#include <limits>

using namespace Qt::StringLiterals;

namespace zq {

using platform::CharacterSet;
using platform::InvalidArgumentException;
using platform::RangeException;

QString randomStringOfLength(std::size_t length, const QString& withCharacters) {
  constexpr auto LongestString = std::size_t(std::numeric_limits<qsizetype>::max()) / 4;
  if (length == 0)
    return QString();
  if (withCharacters.isEmpty())
    throw InvalidArgumentException(u"A random string needs characters to draw from"_s);
  if (length > LongestString)
    throw RangeException(u"No string has %1 characters"_s.arg(length));
  // Deliberately seeded at every call: callers rely on the same string within a second.
  return randomString(qsizetype(length), withCharacters, std::uint32_t(std::time(nullptr)));
}

QString uniqueString() {
  return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
}

QString validStringFromString(const std::optional<QString>& string) {
  return string.value_or(QString());
}

bool isEmptyString(const QString& string) {
  return string.isEmpty();
}

bool isValidString(const QString& string) {
  return !isEmptyString(string);
}

std::optional<QString> lastCharacter(const QString& string) {
  if (string.isEmpty())
    return std::nullopt;
  return string.last(1);
}

QString stringByTrimmingWhitespace(const QString& string) {
  // White space holds no pairs of surrogates, so that code units will do.
  const CharacterSet& whitespace = CharacterSet::whitespaceCharacterSet();
  const auto isWhitespace = [&](QChar c) { return whitespace.characterIsMember(c.unicode()); };
  qsizetype start = 0;
  qsizetype end = string.size();
  while (start < end && isWhitespace(string[start]))
    ++start;
  while (end > start && isWhitespace(string[end - 1]))
    --end;
  return string.mid(start, end - start);
}

QString stringByReplacingCharactersInSet(const QString& string, const CharacterSet& set,
                                         const QString& withString) {
  const CharacterSet& skipped = CharacterSet::whitespaceAndNewlineCharacterSet();
  const char16_t* const text = QStringView(string).utf16();
  const qsizetype length = string.size();
  // At least as long as what is written and what is left to be read, so that single characters can
  // be written without asking.
  QString result(length, Qt::Uninitialized);
  QChar* end = result.data();
  // What lies before the next character: of what is skipped (or nothing at all), of a run, of text.
  enum { Skipped, Run, Text } before = Skipped;
  for (qsizetype at = 0; at < length; ++at) {
    const char16_t c = text[at];
    const bool isPair =
        QChar::isHighSurrogate(c) && at + 1 < length && QChar::isLowSurrogate(text[at + 1]);
    if (isPair ? set.longCharacterIsMember(QChar::surrogateToUcs4(c, text[at + 1]))
               : set.characterIsMember(c)) {
      if (before != Run) {
        const qsizetype size = end - result.constData();
        const qsizetype room = size + withString.size() + length - at - 1;
        if (room > result.size())
          result.resize(std::max(room, 2 * result.size()));
        end = std::copy(withString.begin(), withString.end(), result.data() + size);
      }
      before = Run;
    } else if (before != Text && skipped.characterIsMember(c)) {
      before = Skipped;
    } else {
      *end++ = c;
      if (isPair)
        *end++ = text[at + 1];
      before = Text;
    }
    at += isPair;
  }
  result.truncate(end - result.constData());
  // Room that was not needed is given back where it is more than the result itself.
  if (result.size() < result.capacity() / 2)
    result.squeeze();
  return result;
}

QString stringByAppendingEllipsis(const QString& string) {
  return string + u'\u2026';
}

} // namespace zq
