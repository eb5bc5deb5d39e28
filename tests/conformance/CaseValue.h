// The JSON of conformance cases.
//
// An own reader, since a string is any sequence of UTF-16 code units here, lone surrogates
// included, integers are told from floating-point numbers, and these keep all their digits.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <stdexcept>
#include <utility>
#include <variant>
#include <vector>

namespace zq::conformance {

// What is no case, or not one of its operation.
class CaseError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class CaseValue {
 public:
  using List = std::vector<CaseValue>;
  // In the order of the text; of equal names the last counts.
  using Map = std::vector<std::pair<QString, CaseValue>>;
  // A whole number beyond 64 bits, as it is written.
  struct LongInteger {
    QByteArray digits;
    bool operator==(const LongInteger&) const = default;
  };

  // null
  CaseValue() = default;
  CaseValue(bool value) : value_(value) {}
  CaseValue(int value) : value_(qint64(value)) {}
  CaseValue(qint64 value) : value_(value) {}
  CaseValue(quint64 value);
  CaseValue(double value) : value_(value) {}
  CaseValue(const QString& value) : value_(value) {}
  CaseValue(const char*) = delete;
  CaseValue(List value) : value_(std::move(value)) {}
  CaseValue(Map value) : value_(std::move(value)) {}
  explicit CaseValue(LongInteger value) : value_(std::move(value)) {}

  // Reads one value. Raises CaseError where `json` is not one, or goes deeper than 100 levels.
  static CaseValue read(QByteArrayView json);
  // ASCII on one line. Floating-point numbers have 17 significant digits and a point or an
  // exponent; those that are no numbers are {"float": "nan"} and the like.
  QByteArray json() const;

  bool isNull() const { return is<std::monostate>(); }
  template <class T>
  bool is() const {
    return std::holds_alternative<T>(value_);
  }
  // Raises CaseError where it is something else.
  template <class T>
  const T& as() const {
    if (const T* value = std::get_if<T>(&value_))
      return *value;
    throw CaseError("unexpected " + json().left(100).toStdString());
  }

  // The member of that name, or null (the pointer) where this is no map or has none.
  const CaseValue* find(QStringView name) const;

  // Equal as results: members in any order, integers and floating-point numbers by value, zeros
  // whatever their sign, {"decimal": …} by value.
  bool isEqual(const CaseValue& other) const;

 private:
  void write(QByteArray& json) const;

  std::variant<std::monostate, bool, qint64, LongInteger, double, QString, List, Map> value_;
};

} // namespace zq::conformance
