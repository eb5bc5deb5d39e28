#include "zqticker/foundation_additions/string_additions.h"

#include "zqticker/foundation_additions/random_string_p.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/text/CharacterSet.h"

#include <QtCore/QUuid>

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
  QString result;
  qsizetype at = 0;
  while (true) {
    // What is skipped holds no pairs of surrogates either.
    while (at < string.size() && skipped.characterIsMember(string[at].unicode()) &&
           !set.characterIsMember(string[at].unicode()))
      ++at;
    if (at == string.size())
      return result;
    const qsizetype run = set.indexOfMember(string, at);
    result.append(QStringView(string).sliced(at, run - at));
    at = set.indexOfOther(string, run);
    if (at > run)
      result.append(withString);
  }
}

QString stringByAppendingEllipsis(const QString& string) {
  return string + u'\u2026';
}

} // namespace zq
