#include "zqticker/foundation_additions/string_additions.h"

#include "zqticker/platform/text/Scanner.h"

namespace zq {

using platform::Scanner;

std::optional<QString> characterAtScanLocation(const Scanner& scanner) {
  if (scanner.isAtEnd())
    return std::nullopt;
  return QString(scanner.string()[scanner.scanLocation()]);
}

bool scanCharacterIntoString(Scanner& scanner, QString* string) {
  const qsizetype location = scanner.scanLocation();
  if (!advance(scanner))
    return false;
  if (string)
    *string = scanner.string()[location];
  return true;
}

bool advance(Scanner& scanner) {
  if (scanner.isAtEnd())
    return false;
  scanner.setScanLocation(scanner.scanLocation() + 1);
  return true;
}

} // namespace zq
