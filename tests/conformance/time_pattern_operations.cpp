// The time format pattern converter.
#include "tests/conformance/Operations.h"

#include "zqticker/foundation_additions/ZQTimeFormatPatternConverter.h"

using namespace Qt::StringLiterals;

namespace zq::conformance {

namespace {
template <class Function>
Operation onConverter(Function function) {
  return [function](const Case& each) {
    const CaseValue& description = memberOf(each.receiver, u"ZQTimeFormatPatternConverter");
    const auto converter = ZQTimeFormatPatternConverter::make();
    if (const CaseValue* format = description.find(u"localDateFormat"))
      converter->setLocalDateFormat(optionalStringOf(*format));
    if (const CaseValue* format = description.find(u"localTimeFormat"))
      converter->setLocalTimeFormat(optionalStringOf(*format));
    return Outcome{.value = function(*converter, each)};
  };
}

CaseValue mapping(const ZQTimeFormatPatternConverter& converter, const Case&) {
  const auto patterns = converter.timeFormatPatternsMapping();
  if (!patterns)
    return {};
  CaseValue::Map entries;
  for (auto entry = patterns->begin(); entry != patterns->end(); ++entry)
    entries.emplace_back(entry.key(), entry.value());
  return tagged(u"dictionary"_s, std::move(entries));
}
} // namespace

void addTimePatternOperations(Operations& operations) {
  using Converter = ZQTimeFormatPatternConverter;
  operations[u"timeFormatPatternsMapping"_s] = onConverter(mapping);
  operations[u"localDateFormat"_s] = onConverter([](const Converter& converter, const Case&) {
    return resultOf(converter.localDateFormat());
  });
  operations[u"localTimeFormat"_s] = onConverter([](const Converter& converter, const Case&) {
    return resultOf(converter.localTimeFormat());
  });
  operations[u"stringByReplacingOldTimeFormatPatternsInString:"_s] =
      onConverter([](const Converter& converter, const Case& each) -> CaseValue {
        return converter.stringByReplacingOldTimeFormatPatternsInString(stringOf(each.argument(0)));
      });
}

} // namespace zq::conformance
