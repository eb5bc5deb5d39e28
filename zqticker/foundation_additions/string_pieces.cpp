// Strings taken apart.
#include "zqticker/foundation_additions/string_additions.h"

#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/text/Scanner.h"
#include "zqticker/platform/text/line_ranges.h"
#include "zqticker/platform/text/string_search.h"

using namespace Qt::StringLiterals;

namespace zq {

using platform::CharacterSet;
using platform::indexOfString;
using platform::LineRange;
using platform::lineRangeAt;
using platform::RangeException;
using platform::Scanner;

QString initialCharacters(const QString& string) {
  const CharacterSet& letters = CharacterSet::letterCharacterSet();
  Scanner scanner(string);
  QString initials;
  // Deliberately kept from word to word: behind the last one it is appended once more.
  QStringView word;
  while (!scanner.isAtEnd()) {
    scanner.scanUpToCharactersFromSet(letters);
    scanner.scanCharactersFromSet(letters, &word);
    if (word.isEmpty())
      throw RangeException(u"There is no letter to take an initial from"_s);
    initials.append(word.front());
  }
  return initials;
}

QStringList componentsSeparatedByLineDelimiter(const QString& string) {
  QStringList lines;
  qsizetype position = 0;
  // Asked after the first line, so that empty text has one and a last terminator adds none.
  do {
    const LineRange line = lineRangeAt(string, position);
    // Deliberately with its terminator where the contents end at 0: an empty first line has always
    // been told from none by it.
    const qsizetype end = line.contentsEnd == 0 ? line.end : line.contentsEnd;
    lines.append(string.mid(line.start, end - line.start));
    position = line.end;
  } while (position < string.size());
  return lines;
}

QString lastKeyComponent(const QString& string) {
  return string.mid(string.lastIndexOf(u'.') + 1);
}

QString stringWithFirst(const QString& string, std::size_t count,
                        const QString& componentsSeparatedByString, const QString& ellipsisString) {
  const QString& separator = componentsSeparatedByString;
  qsizetype end = 0;
  qsizetype next = 0;
  for (std::size_t i = 0; i < count; ++i) {
    end = indexOfString(string, separator, next);
    if (end < 0)
      return string;
    next = end + separator.size();
  }
  return QStringView(string).first(end) + ellipsisString;
}

QString stringWithFirst(const QString& string, std::size_t count,
                        const QString& componentsSeparatedByString) {
  return stringWithFirst(string, count, componentsSeparatedByString, QString());
}

QString stringByRemovingHTMLUsingDelimiter(const QString& string,
                                           const std::optional<QString>& delimiter) {
  Scanner scanner(string);
  QString result;
  QStringView text;
  // Deliberately ends at a tag without text before it: a scan of nothing is a failed one.
  while (scanner.scanUpToString(u"<", &text)) {
    if (scanner.scanUpToString(u">"))
      scanner.scanString(u">");
    if (!result.isEmpty() && delimiter)
      result.append(*delimiter);
    result.append(text);
  }
  return result;
}

QString stringWithFirstURLComponent(const QString& string) {
  Scanner scanner(string);
  QStringView scheme;
  QStringView host;
  if (scanner.scanUpToString(u"://", &scheme)) {
    scanner.scanString(u"://");
    scanner.scanUpToString(u"/", &host);
  }
  return scheme + QStringView(u"://") + host;
}

} // namespace zq
