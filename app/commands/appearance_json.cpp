#include "app/commands/appearance_json.h"

#include "app/commands/JsonValue.h"
#include "app/commands/color_json.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Shadow.h"
#include "zqticker/rollover/ZQRollOverButtonAppearance.h"

#include <limits>

using namespace Qt::StringLiterals;

namespace zq::app {

using namespace platform;

namespace {

constexpr ZQIntegerAttribute LargestInteger = std::numeric_limits<qint64>::max();

OutputValue jsonOf(const ZQColorAttribute& color) {
  return jsonOfColor(color);
}
OutputValue jsonOf(const ZQShadowAttribute& shadow) {
  return jsonOfShadow(shadow);
}
OutputValue jsonOf(ZQIntegerAttribute number) {
  return number <= LargestInteger ? OutputValue::unsignedInteger(number)
                                  : OutputValue::string(QString::number(number));
}
OutputValue jsonOf(ZQFlagAttribute flag) {
  return OutputValue::boolean(flag);
}
OutputValue jsonOf(ZQSecondsAttribute seconds) {
  return OutputValue::real(seconds);
}

ZQIntegerAttribute integerOf(const JsonValue& json) {
  if (json.value().isString()) {
    bool isNumber = false;
    const ZQIntegerAttribute number = json.value().toString().toULongLong(&isNumber);
    if (isNumber)
      return number;
  }
  const qint64 number = json.value().toInteger(-1);
  if (number < 0)
    json.fail(u"a whole number of 0 or more"_s);
  return static_cast<ZQIntegerAttribute>(number);
}

template <class Attribute>
Attribute attributeOf(const JsonValue& json) {
  if constexpr (std::is_same_v<Attribute, ZQColorAttribute>)
    return colorOfJson(json);
  else if constexpr (std::is_same_v<Attribute, ZQShadowAttribute>)
    return shadowOfJson(json);
  else if constexpr (std::is_same_v<Attribute, ZQIntegerAttribute>)
    return integerOf(json);
  else if constexpr (std::is_same_v<Attribute, ZQSecondsAttribute>)
    return json.number(u"a number of seconds"_s);
  else if (json.value().isBool())
    return json.value().toBool();
  else
    json.fail(u"true or false"_s);
}

} // namespace

OutputValue jsonOfAppearance(const ZQRollOverButtonAppearance& appearance) {
  OutputValue json = OutputValue::map();
#define ZQ_INSERT(Type, property, getter, setter)                                                  \
  json.insert(QStringLiteral(#property), jsonOf(appearance.getter()));
  ZQ_APPEARANCE_ATTRIBUTES(ZQ_INSERT)
#undef ZQ_INSERT
  return json;
}

Ref<ZQRollOverButtonAppearance> appearanceOfJson(const QByteArray& text) {
  const JsonValue json = JsonValue::parse(text);
  if (!json.value().isObject())
    json.fail(u"an object with a key for each attribute"_s);
  const auto appearance = std::make_shared<ZQRollOverButtonAppearance>();
  QStringList keys;
#define ZQ_READ(Type, property, getter, setter)                                                    \
  keys.append(QStringLiteral(#property));                                                          \
  if (const auto value = json.find(keys.last()))                                                   \
    appearance->setter(attributeOf<Type>(*value));
  ZQ_APPEARANCE_ATTRIBUTES(ZQ_READ)
#undef ZQ_READ
  json.requireKeysAmong(keys);
  return appearance;
}

} // namespace zq::app
