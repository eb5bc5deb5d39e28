// Scanners.
#include "tests/conformance/Operations.h"

#include "zqticker/foundation_additions/string_additions.h"
#include "zqticker/platform/text/Scanner.h"

using namespace Qt::StringLiterals;

namespace zq::conformance {

using platform::Scanner;

namespace {
template <class Function>
Operation onScanner(Function function) {
  return [function](const Case& each) {
    const CaseValue& description = memberOf(each.receiver, u"scanner");
    Scanner scanner(stringOf(memberOf(description, u"string")));
    const CaseValue* skipped = description.find(u"skip");
    if (skipped && skipped->isNull())
      scanner.setCharactersToBeSkipped(std::nullopt);
    else if (skipped)
      scanner.setCharactersToBeSkipped(characterSetOf(*skipped));
    if (const CaseValue* location = description.find(u"location"))
      scanner.setScanLocation(integerOf(*location));
    Outcome outcome = function(scanner);
    outcome.locationAfter = qint64(scanner.scanLocation());
    return outcome;
  };
}

Outcome scanCharacter(Scanner& scanner) {
  // What is untouched has a length that no character has.
  QString character = u"untouched"_s;
  const bool isScanned = scanCharacterIntoString(scanner, &character);
  return {.value = isScanned,
          .out = character == "untouched"_L1 ? CaseValue() : CaseValue(character)};
}
} // namespace

void addScannerOperations(Operations& operations) {
  operations[u"characterAtScanLocation"_s] = onScanner([](Scanner& scanner) {
    return Outcome{.value = resultOf(characterAtScanLocation(scanner))};
  });
  operations[u"scanCharacterIntoString:"_s] = onScanner(scanCharacter);
  operations[u"advance"_s] =
      onScanner([](Scanner& scanner) { return Outcome{.value = advance(scanner)}; });
}

} // namespace zq::conformance
