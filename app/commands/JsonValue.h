// JSON that people write: values that know where they stand, for messages.
#pragma once

#include "zqticker/platform/objects/Exception.h"

#include <QtCore/QByteArray>
#include <QtCore/QJsonValue>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>
#include <vector>

namespace zq::app {

// What is wrong with a JSON text: "controlShadow.offset[1]: expected a number, found null".
class JsonError : public platform::Exception {
 public:
  using Exception::Exception;
};

// A value and the way to it from the top of its text.
class JsonValue {
 public:
  // The object or list that is `text`. JsonError naming the line where it is none.
  static JsonValue parse(const QByteArray& text);

  JsonValue(QJsonValue value, QString path) : value_(std::move(value)), path_(std::move(path)) {}

  const QJsonValue& value() const { return value_; }

  // The member `key` of an object; nothing where it is missing, JsonError where it is needed.
  std::optional<JsonValue> find(const QString& key) const;
  JsonValue member(const QString& key) const;
  // JsonError where an object has any key beside these.
  void requireKeysAmong(const QStringList& keys) const;
  // The elements of a list.
  std::vector<JsonValue> elements() const;

  // A finite number, or what is none as the text "nan", "inf" or "-inf".
  double number(const QString& expected = QStringLiteral("a number")) const;
  QString text(const QString& expected = QStringLiteral("a text")) const;

  // Raises the JsonError that the value is not what was expected.
  [[noreturn]] void fail(const QString& expected) const;

 private:
  QString prefix() const;

  QJsonValue value_;
  QString path_;
};

} // namespace zq::app
