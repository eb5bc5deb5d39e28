// Strings.
#include "tests/conformance/Operations.h"

#include "zqticker/foundation_additions/string_additions.h"
#include "zqticker/platform/text/CharacterSet.h"

using namespace Qt::StringLiterals;

namespace zq::conformance {

namespace {
// Operations on the receiver alone.
template <class Function>
Operation onString(Function function) {
  return
      [function](const Case& each) { return Outcome{.value = function(stringOf(each.receiver))}; };
}

Entities entitiesOf(const CaseValue& value) {
  Entities entities;
  if (value.isNull())
    return entities;
  for (const auto& [name, expansion] : memberOf(value, u"dictionary").as<CaseValue::Map>())
    entities.insert(name, stringOf(expansion));
  return entities;
}

CaseValue listOf(const QStringList& strings) {
  return CaseValue::List(strings.begin(), strings.end());
}

Outcome random(const Case& each) {
  return {.value = randomStringOfLength(std::size_t(integerOf(each.argument(0))),
                                        stringOf(each.argument(1)))};
}

Outcome firstComponents(const Case& each) {
  return {.value =
              stringWithFirst(stringOf(each.receiver), std::size_t(integerOf(each.argument(0))),
                              stringOf(each.argument(1)))};
}

Outcome firstComponentsWithEllipsis(const Case& each) {
  return {.value =
              stringWithFirst(stringOf(each.receiver), std::size_t(integerOf(each.argument(0))),
                              stringOf(each.argument(1)), stringOf(each.argument(2)))};
}

Outcome removingHtml(const Case& each) {
  return {.value = stringByRemovingHTMLUsingDelimiter(stringOf(each.receiver),
                                                      optionalStringOf(each.argument(0)))};
}

Outcome escaping(const Case& each) {
  return {.value = stringByEscapingEntities(stringOf(each.receiver), entitiesOf(each.argument(0)))};
}

Outcome unescaping(const Case& each) {
  return {.value =
              stringByUnescapingEntities(stringOf(each.receiver), entitiesOf(each.argument(0)))};
}

Outcome replacing(const Case& each) {
  return {.value = stringByReplacingCharactersInSet(stringOf(each.receiver),
                                                    characterSetOf(each.argument(0)),
                                                    stringOf(each.argument(1)))};
}

Outcome comparing(const Case& each) {
  const auto order = numericCompare(stringOf(each.receiver), stringOf(each.argument(0)));
  return {.value = order < 0 ? -1 : order > 0 ? 1 : 0};
}

CaseValue hex(const QString& string) {
  const auto bytes = hexValue(string);
  return bytes ? tagged(u"hex"_s, QString::fromLatin1(bytes->toHex())) : CaseValue();
}
} // namespace

void addStringOperations(Operations& operations) {
  operations[u"randomStringOfLength:withCharacters:"_s] = random;
  operations[u"uniqueString"_s] = [](const Case&) { return Outcome{.value = uniqueString()}; };
  operations[u"validStringFromString:"_s] = [](const Case& each) {
    return Outcome{.value = validStringFromString(optionalStringOf(each.argument(0)))};
  };
  operations[u"isEmptyString"_s] = onString(isEmptyString);
  operations[u"isValidString"_s] = onString(isValidString);
  operations[u"unsignedLongValue"_s] =
      onString([](const QString& string) { return quint64(unsignedLongValue(string)); });
  operations[u"boolValue"_s] = onString(boolValue);
  operations[u"hexValue"_s] = onString(hex);
  operations[u"numericCompare:"_s] = comparing;
  operations[u"lastCharacter"_s] =
      onString([](const QString& string) { return resultOf(lastCharacter(string)); });
  operations[u"initialCharacters"_s] = onString(initialCharacters);
  operations[u"componentsSeparatedByLineDelimiter"_s] = onString(
      [](const QString& string) { return listOf(componentsSeparatedByLineDelimiter(string)); });
  operations[u"lastKeyComponent"_s] = onString(lastKeyComponent);
  operations[u"stringWithFirst:componentsSeparatedByString:"_s] = firstComponents;
  operations[u"stringWithFirst:componentsSeparatedByString:ellipsisString:"_s] =
      firstComponentsWithEllipsis;
  operations[u"stringByRemovingHTMLUsingDelimiter:"_s] = removingHtml;
  operations[u"stringWithFirstURLComponent"_s] = onString(stringWithFirstURLComponent);
  operations[u"stringByEscapingEntities"_s] =
      onString([](const QString& string) { return stringByEscapingEntities(string); });
  operations[u"stringByEscapingEntities:"_s] = escaping;
  operations[u"stringByUnescapingEntities"_s] =
      onString([](const QString& string) { return stringByUnescapingEntities(string); });
  operations[u"stringByUnescapingEntities:"_s] = unescaping;
  operations[u"stringByTrimmingWhitespace"_s] = onString(stringByTrimmingWhitespace);
  operations[u"stringByReplacingCharactersInSet:withString:"_s] = replacing;
  operations[u"stringByAppendingEllipsis"_s] = onString(stringByAppendingEllipsis);
}

} // namespace zq::conformance
