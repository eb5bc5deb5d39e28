// Mutable strings.
#include "tests/conformance/Operations.h"

#include "zqticker/foundation_additions/string_additions.h"
#include "zqticker/platform/text/CharacterSet.h"

using namespace Qt::StringLiterals;

namespace zq::conformance {

namespace {
// Operations that change the receiver and return nothing.
template <class Function>
Operation changing(Function function) {
  return [function](const Case& each) {
    QString string = stringOf(each.receiver);
    function(string, each);
    return Outcome{.receiverAfter = string};
  };
}
} // namespace

void addMutableStringOperations(Operations& operations) {
  operations[u"appendNilString:"_s] = changing([](QString& string, const Case& each) {
    appendNilString(string, optionalStringOf(each.argument(0)));
  });
  operations[u"removeCharactersNotInSet:"_s] = changing([](QString& string, const Case& each) {
    removeCharactersNotInSet(string, characterSetOf(each.argument(0)));
  });
  operations[u"deleteCharactersFromIndex:"_s] = changing([](QString& string, const Case& each) {
    deleteCharactersFromIndex(string, std::size_t(integerOf(each.argument(0))));
  });
  operations[u"deleteAllCharacters"_s] =
      changing([](QString& string, const Case&) { deleteAllCharacters(string); });
}

} // namespace zq::conformance
