#include "zqticker/foundation_additions/string_additions.h"

#include "zqticker/platform/text/Scanner.h"

namespace zq {

using platform::CharacterSet;
using platform::Scanner;

void appendNilString(QString& string, const std::optional<QString>& other) {
  if (other)
    string.append(*other);
}

void removeCharactersNotInSet(QString& string, const CharacterSet& set) {
  Scanner scanner(string);
  QString kept;
  while (!scanner.isAtEnd()) {
    QStringView chunk;
    scanner.scanCharactersFromSet(set, &chunk);
    scanner.scanUpToCharactersFromSet(set);
    kept.append(chunk);
  }
  string = kept;
}

void deleteCharactersFromIndex(QString& string, std::size_t index) {
  if (index < std::size_t(string.size()))
    string.truncate(qsizetype(index));
}

void deleteAllCharacters(QString& string) {
  string.clear();
}

} // namespace zq
