// The file size formatter and the value transformers.
#include "tests/conformance/Operations.h"

#include "zqticker/foundation_additions/ZQFileSizeFormatter.h"
#include "zqticker/foundation_additions/value_transformers.h"
#include "zqticker/platform/text/DecimalNumber.h"

using namespace Qt::StringLiterals;

namespace zq::conformance {

using platform::Any;
using platform::DecimalNumber;

namespace {
template <class Function>
Operation onFormatter(Function function) {
  return [function](const Case& each) {
    const CaseValue& description = memberOf(each.receiver, u"ZQFileSizeFormatter");
    ZQFileSizeFormatter formatter;
    if (const CaseValue* format = description.find(u"formatString"))
      formatter.setFormatString(optionalStringOf(*format));
    return function(formatter, each);
  };
}

Outcome reading(const ZQFileSizeFormatter& formatter, const Case& each) {
  Any object;
  const bool isRead =
      formatter.getObjectValue(&object, optionalStringOf(each.argument(0)), nullptr);
  Outcome outcome{.value = isRead, .out = CaseValue()};
  if (object.isValid())
    outcome.out = tagged(u"decimal"_s, object.value<DecimalNumber>().description());
  return outcome;
}

template <class Transformer>
Transformer withBoundary(const CaseValue& description) {
  Transformer transformer;
  if (const CaseValue* boundary = description.find(u"boundary"))
    transformer.setBoundary(static_cast<float>(numberOf(*boundary)));
  return transformer;
}

Outcome transforming(const Case& each) {
  const Any value = anyOf(each.argument(0));
  Any result;
  if (const CaseValue* greater = each.receiver.find(u"ZQIsGreaterOrEqualValueTransformer"))
    result = withBoundary<ZQIsGreaterOrEqualValueTransformer>(*greater).transformedValue(value);
  else if (const CaseValue* less = each.receiver.find(u"ZQIsLessThanValueTransformer"))
    result = withBoundary<ZQIsLessThanValueTransformer>(*less).transformedValue(value);
  else if (each.receiver.find(u"ZQIsNotZero"))
    result = ZQIsNotZero().transformedValue(value);
  else
    throw CaseError("unknown transformer " + each.receiver.json().toStdString());
  return {.value = result.toBool()};
}

Outcome boundary(const Case& each) {
  if (const CaseValue* greater = each.receiver.find(u"ZQIsGreaterOrEqualValueTransformer"))
    return {.value = double(withBoundary<ZQIsGreaterOrEqualValueTransformer>(*greater).boundary())};
  return {.value = double(withBoundary<ZQIsLessThanValueTransformer>(
                              memberOf(each.receiver, u"ZQIsLessThanValueTransformer"))
                              .boundary())};
}

template <class Result>
Operation ofClass(Result (*greater)(), Result (*less)(), Result (*notZero)()) {
  return [=](const Case& each) -> Outcome {
    if (each.className == "ZQIsGreaterOrEqualValueTransformer"_L1)
      return {.value = greater()};
    if (each.className == "ZQIsLessThanValueTransformer"_L1)
      return {.value = less()};
    if (each.className == "ZQIsNotZero"_L1)
      return {.value = notZero()};
    throw CaseError("unknown class " + each.className.toStdString());
  };
}
} // namespace

void addFileSizeOperations(Operations& operations) {
  operations[u"formatString"_s] =
      onFormatter([](const ZQFileSizeFormatter& formatter, const Case&) {
        return Outcome{.value = resultOf(formatter.formatString())};
      });
  operations[u"stringForObjectValue:"_s] =
      onFormatter([](const ZQFileSizeFormatter& formatter, const Case& each) {
        return Outcome{.value = resultOf(formatter.stringForObjectValue(anyOf(each.argument(0))))};
      });
  operations[u"getObjectValue:forString:"_s] = onFormatter(reading);
  operations[u"getObjectValue:forString:errorDescription:"_s] = onFormatter(reading);
}

void addTransformerOperations(Operations& operations) {
  operations[u"transformedValueClass"_s] = ofClass(
      ZQIsGreaterOrEqualValueTransformer::transformedValueClass,
      ZQIsLessThanValueTransformer::transformedValueClass, ZQIsNotZero::transformedValueClass);
  operations[u"allowsReverseTransformation"_s] =
      ofClass(ZQIsGreaterOrEqualValueTransformer::allowsReverseTransformation,
              ZQIsLessThanValueTransformer::allowsReverseTransformation,
              ZQIsNotZero::allowsReverseTransformation);
  operations[u"transformedValue:"_s] = transforming;
  operations[u"boundary"_s] = boundary;
}

} // namespace zq::conformance
