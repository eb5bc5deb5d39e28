#include "app/commands/JsonValue.h"

#include "app/commands/failures.h"
#include "zqticker/platform/archiving/number_text.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {

// A value as messages name it.
QString nameOf(const QJsonValue& value) {
  switch (value.type()) {
  case QJsonValue::Bool:
    return value.toBool() ? u"true"_s : u"false"_s;
  case QJsonValue::Double:
    return platform::textOfNumber(value.toDouble());
  case QJsonValue::String:
    return u'"' + quotedForMessage(value.toString()) + u'"';
  case QJsonValue::Array:
    return u"a list of %1"_s.arg(value.toArray().size());
  case QJsonValue::Object:
    return u"an object"_s;
  default:
    return u"null"_s;
  }
}

} // namespace

JsonValue JsonValue::parse(const QByteArray& text) {
  QJsonParseError error{};
  const QJsonDocument document = QJsonDocument::fromJson(text, &error);
  if (error.error != QJsonParseError::NoError) {
    const qsizetype line = text.first(qMin(qsizetype(error.offset), text.size())).count('\n') + 1;
    throw JsonError(u"line %1: not JSON: %2"_s.arg(line).arg(error.errorString()));
  }
  return {document.isObject() ? QJsonValue(document.object()) : QJsonValue(document.array()), {}};
}

QString JsonValue::prefix() const {
  return path_.isEmpty() ? QString() : QString(path_ + u": ");
}

std::optional<JsonValue> JsonValue::find(const QString& key) const {
  const QJsonObject object = value_.toObject();
  const auto found = object.constFind(key);
  if (found == object.constEnd())
    return std::nullopt;
  return JsonValue(*found, path_.isEmpty() ? key : QString(path_ + u'.' + key));
}

JsonValue JsonValue::member(const QString& key) const {
  std::optional<JsonValue> found = find(key);
  if (!found)
    throw JsonError(prefix() + u"the key \"%1\" is missing"_s.arg(key));
  return *std::move(found);
}

void JsonValue::requireKeysAmong(const QStringList& keys) const {
  const QStringList present = value_.toObject().keys();
  for (const QString& key : present)
    if (!keys.contains(key))
      throw JsonError(prefix() + u"unknown key \"%1\", expected %2"_s.arg(quotedForMessage(key),
                                                                          keys.join(u", ")));
}

std::vector<JsonValue> JsonValue::elements() const {
  std::vector<JsonValue> elements;
  const QJsonArray list = value_.toArray();
  for (qsizetype i = 0; i < list.size(); ++i)
    elements.emplace_back(list[i], path_ + u'[' + QString::number(i) + u']');
  return elements;
}

double JsonValue::number(const QString& expected) const {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  const double number = value_.toDouble();
  if (value_.isDouble() && std::isfinite(number))
    return number;
  const QString text = value_.toString();
  if (text == "nan"_L1)
    return std::numeric_limits<double>::quiet_NaN();
  if (text == "inf"_L1 || text == "-inf"_L1)
    return text == "inf"_L1 ? infinity : -infinity;
  fail(expected);
}

QString JsonValue::text(const QString& expected) const {
  if (!value_.isString())
    fail(expected);
  return value_.toString();
}

void JsonValue::fail(const QString& expected) const {
  throw JsonError(prefix() + u"expected "_s + expected + u", found "_s + nameOf(value_));
}

} // namespace zq::app
