#include "tests/conformance/Runner.h"

#include "tests/conformance/Operations.h"
#include "zqticker/platform/calendar/Locale.h"
#include "zqticker/platform/calendar/TimeZone.h"
#include "zqticker/platform/objects/Exception.h"

#include <new>

using namespace Qt::StringLiterals;

namespace zq::conformance {

using namespace platform;

namespace {
// The time zone and the locale that a case asks for, until its end.
class Surroundings {
 public:
  explicit Surroundings(const CaseValue& environment) {
    if (const CaseValue* zone = environment.find(u"timeZone"))
      TimeZone::setDefaultTimeZone(timeZoneOf(*zone));
    if (const CaseValue* locale = environment.find(u"locale"))
      Locale::setCurrentLocale(Locale(stringOf(*locale)));
  }
  ~Surroundings() {
    TimeZone::setDefaultTimeZone(std::nullopt);
    Locale::setCurrentLocale(std::nullopt);
  }
  Surroundings(const Surroundings&) = delete;
  Surroundings& operator=(const Surroundings&) = delete;
};

Outcome outcomeOf(const Case& each) {
  const auto operation = allOperations().find(each.operation);
  if (operation == allOperations().end())
    throw CaseError("unknown operation");
  try {
    const Surroundings surroundings(each.environment);
    return (*operation)(each);
  } catch (const RangeException&) {
    return {.raises = u"RangeException"_s};
  } catch (const InternalInconsistencyException&) {
    return {.raises = u"InternalInconsistencyException"_s};
  } catch (const InvalidArgumentException&) {
    return {.raises = u"InvalidArgumentException"_s};
  } catch (const Exception& exception) {
    throw CaseError(std::string("unexpected exception: ") + exception.what());
  } catch (const std::bad_alloc&) {
    throw CaseError("out of memory");
  }
}
} // namespace

CaseValue resultOfLine(QByteArrayView line) {
  CaseValue::Map result;
  try {
    const Case each = Case::of(CaseValue::read(line));
    result.emplace_back(u"id"_s, each.id);
    const Outcome outcome = outcomeOf(each);
    const auto add = [&result](const QString& name, const std::optional<CaseValue>& value) {
      if (value)
        result.emplace_back(name, *value);
    };
    add(u"value"_s, outcome.value);
    add(u"out"_s, outcome.out);
    add(u"locationAfter"_s, outcome.locationAfter);
    add(u"receiverAfter"_s, outcome.receiverAfter);
    if (outcome.raises)
      result.emplace_back(u"raises"_s, *outcome.raises);
  } catch (const CaseError& error) {
    result.emplace_back(u"error"_s, QString::fromUtf8(error.what()));
  }
  return result;
}

QByteArray failureOfLine(QByteArrayView line) {
  const CaseValue result = resultOfLine(line);
  const CaseValue* problem = result.find(u"error");
  const QByteArray message = problem ? stringOf(*problem).toUtf8() : QByteArray();
  if (problem && message != "unknown operation")
    return message;
  const CaseValue expected = CaseValue::read(line);
  const CaseValue* id = expected.find(u"id");
  const QByteArray name = id ? id->json() : QByteArray("a case without an id");
  if (problem)
    return name + ": " + message;
  for (const QString& field :
       {u"raises"_s, u"value"_s, u"out"_s, u"locationAfter"_s, u"receiverAfter"_s}) {
    const CaseValue* wanted = expected.find(field);
    const CaseValue* found = result.find(field);
    // An exception that is not expected has no other field either.
    const bool isSurprise = field == "raises"_L1 && !wanted && found;
    if ((wanted && (!found || !wanted->isEqual(*found))) || isSurprise)
      return name + ": " + field.toLatin1() + ": expected " +
             (wanted ? wanted->json() : QByteArray("none")) + ", found " +
             (found ? found->json() : QByteArray("none"));
  }
  return {};
}

} // namespace zq::conformance
