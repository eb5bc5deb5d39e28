// Rectangles as text.
#include "tests/conformance/Operations.h"

#include "zqticker/signs/rectangle_text.h"

using namespace Qt::StringLiterals;

namespace zq::conformance {

namespace {
QRectF rectOf(const CaseValue& value) {
  const CaseValue::List& sides = memberOf(value, u"rect").as<CaseValue::List>();
  if (sides.size() != 4)
    throw CaseError("a rectangle of other than four numbers");
  return QRectF(numberOf(sides[0]), numberOf(sides[1]), numberOf(sides[2]), numberOf(sides[3]));
}

CaseValue resultOf(const QRectF& rect) {
  return tagged(u"rect"_s, CaseValue::List{rect.x(), rect.y(), rect.width(), rect.height()});
}
} // namespace

void addRectangleOperations(Operations& operations) {
  operations[u"ZQStringFromRect"_s] = [](const Case& each) {
    return Outcome{.value = ZQStringFromRect(rectOf(each.argument(0)))};
  };
  operations[u"ZQRectFromString"_s] = [](const Case& each) {
    return Outcome{.value = resultOf(ZQRectFromString(optionalStringOf(each.argument(0))))};
  };
}

} // namespace zq::conformance
