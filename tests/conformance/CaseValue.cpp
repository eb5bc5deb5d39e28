#include "tests/conformance/CaseValue.h"

#include "zqticker/platform/text/DecimalNumber.h"

#include <QtCore/QStringDecoder>
#include <QtCore/QStringEncoder>

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

using namespace Qt::StringLiterals;

namespace zq::conformance {

namespace {
constexpr int DeepestLevel = 100;
constexpr int SignificantDigits = 17;

class Reader {
 public:
  explicit Reader(QByteArrayView json) : at_(json.begin()), end_(json.end()) {}

  CaseValue whole() {
    CaseValue value = next(0);
    skipSpace();
    if (at_ != end_)
      fail("text behind the value");
    return value;
  }

 private:
  [[noreturn]] static void fail(const char* reason) {
    throw CaseError(std::string("malformed JSON: ") + reason);
  }

  void skipSpace() {
    while (at_ != end_ && (*at_ == ' ' || *at_ == '\t' || *at_ == '\r' || *at_ == '\n'))
      ++at_;
  }

  bool take(char c) {
    skipSpace();
    if (at_ == end_ || *at_ != c)
      return false;
    ++at_;
    return true;
  }

  bool takeWord(QByteArrayView word) {
    if (!QByteArrayView(at_, end_).startsWith(word))
      return false;
    at_ += word.size();
    return true;
  }

  CaseValue next(int level) {
    if (level > DeepestLevel)
      fail("too deep");
    if (take('{'))
      return map(level);
    if (take('['))
      return list(level);
    if (take('"'))
      return string();
    if (takeWord("null"))
      return {};
    if (takeWord("true"))
      return true;
    if (takeWord("false"))
      return false;
    return number();
  }

  CaseValue list(int level) {
    CaseValue::List values;
    if (take(']'))
      return values;
    do
      values.push_back(next(level + 1));
    while (take(','));
    if (!take(']'))
      fail("a list without an end");
    return values;
  }

  CaseValue map(int level) {
    CaseValue::Map members;
    if (take('}'))
      return members;
    do {
      if (!take('"'))
        fail("a member without a name");
      QString name = string();
      if (!take(':'))
        fail("a member without a value");
      members.emplace_back(std::move(name), next(level + 1));
    } while (take(','));
    if (!take('}'))
      fail("an object without an end");
    return members;
  }

  QString string() {
    QString text;
    while (true) {
      const char* start = at_;
      while (at_ != end_ && *at_ != '"' && *at_ != '\\')
        ++at_;
      text += QString::fromUtf8(start, at_ - start);
      if (at_ == end_)
        fail("a string without an end");
      if (*at_++ == '"')
        return text;
      text += escaped();
    }
  }

  QChar escaped() {
    if (at_ == end_)
      fail("a string without an end");
    const char c = *at_++;
    const QByteArrayView letters = "\"\\/bfnrt";
    const QStringView meanings = u"\"\\/\b\f\n\r\t";
    if (const qsizetype index = letters.indexOf(c); index >= 0)
      return meanings[index];
    if (c != 'u' || end_ - at_ < 4)
      fail("an unknown escape");
    unsigned short unit = 0;
    const auto result = std::from_chars(at_, at_ + 4, unit, 16);
    if (result.ec != std::errc() || result.ptr != at_ + 4)
      fail("an unknown escape");
    at_ += 4;
    return QChar(unit);
  }

  CaseValue number() {
    skipSpace();
    const char* start = at_;
    bool isWhole = true;
    for (; at_ != end_; ++at_) {
      if (*at_ == '.' || *at_ == 'e' || *at_ == 'E')
        isWhole = false;
      else if (*at_ != '-' && *at_ != '+' && (*at_ < '0' || *at_ > '9'))
        break;
    }
    if (at_ == start)
      fail("a value is missing");
    if (!isWhole) {
      double value = 0;
      const auto result = std::from_chars(start, at_, value);
      if (result.ptr != at_ || result.ec != std::errc())
        fail("a number that is none, or out of range");
      return value;
    }
    qint64 value = 0;
    const auto result = std::from_chars(start, at_, value);
    if (result.ptr != at_ || result.ec == std::errc::invalid_argument)
      fail("a number that is none");
    if (result.ec == std::errc::result_out_of_range)
      return CaseValue(CaseValue::LongInteger{QByteArray(start, at_ - start)});
    return value;
  }

  const char* at_;
  const char* end_;
};

void writeString(QByteArray& json, const QString& text) {
  json += '"';
  for (const QChar unit : text) {
    const char16_t code = unit.unicode();
    if (code == u'"' || code == u'\\') {
      json += '\\';
      json += char(code);
    } else if (code >= 0x20 && code < 0x7F) {
      json += char(code);
    } else {
      json += "\\u" + QByteArray::number(code, 16).rightJustified(4, '0');
    }
  }
  json += '"';
}

void writeDouble(QByteArray& json, double value) {
  if (!std::isfinite(value)) {
    json += std::isnan(value) ? "{\"float\": \"nan\"}"
            : value < 0       ? "{\"float\": \"-inf\"}"
                              : "{\"float\": \"inf\"}";
    return;
  }
  std::array<char, 64> buffer;
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                 std::chars_format::general, SignificantDigits)
                       .ptr;
  const QByteArray digits(buffer.data(), end - buffer.data());
  json += digits;
  if (!digits.contains('.') && !digits.contains('e'))
    json += ".0";
}

// A whole number and a floating-point one are the same only where no rounding makes them so.
bool isSameNumber(qint64 whole, double number) {
  return number >= -0x1p63 && number < 0x1p63 && std::trunc(number) == number &&
         qint64(number) == whole;
}

std::optional<platform::DecimalNumber> decimalIn(const CaseValue& value) {
  const CaseValue* text = value.find(u"decimal");
  if (!text || !text->is<QString>())
    return std::nullopt;
  const QString& digits = text->as<QString>();
  if (digits == "NaN"_L1)
    return platform::DecimalNumber::notANumber();
  platform::DecimalNumber number;
  return platform::DecimalNumber::readPrefix(digits, number) == digits.size()
             ? std::optional(number)
             : std::nullopt;
}
} // namespace

CaseValue::CaseValue(quint64 value) {
  if (value <= quint64(std::numeric_limits<qint64>::max()))
    value_ = qint64(value);
  else
    value_ = LongInteger{QByteArray::number(value)};
}

CaseValue CaseValue::read(QByteArrayView json) {
  return Reader(json).whole();
}

QByteArray CaseValue::json() const {
  QByteArray json;
  write(json);
  return json;
}

void CaseValue::write(QByteArray& json) const {
  if (isNull()) {
    json += "null";
  } else if (is<bool>()) {
    json += as<bool>() ? "true" : "false";
  } else if (is<qint64>()) {
    json += QByteArray::number(as<qint64>());
  } else if (is<LongInteger>()) {
    json += as<LongInteger>().digits;
  } else if (is<double>()) {
    writeDouble(json, as<double>());
  } else if (is<QString>()) {
    writeString(json, as<QString>());
  } else if (is<List>()) {
    json += '[';
    for (const CaseValue& each : as<List>()) {
      if (!json.endsWith('['))
        json += ", ";
      each.write(json);
    }
    json += ']';
  } else {
    json += '{';
    const char* separator = "";
    for (const auto& [name, value] : as<Map>()) {
      json += separator;
      separator = ", ";
      writeString(json, name);
      json += ": ";
      value.write(json);
    }
    json += '}';
  }
}

const CaseValue* CaseValue::find(QStringView name) const {
  const Map* members = std::get_if<Map>(&value_);
  if (members)
    for (auto member = members->rbegin(); member != members->rend(); ++member)
      if (member->first == name)
        return &member->second;
  return nullptr;
}

bool CaseValue::isEqual(const CaseValue& other) const {
  if (is<qint64>() && other.is<double>())
    return isSameNumber(as<qint64>(), other.as<double>());
  if (is<double>() && other.is<qint64>())
    return isSameNumber(other.as<qint64>(), as<double>());
  if (value_.index() != other.value_.index())
    return false;
  if (is<List>()) {
    const List& a = as<List>();
    const List& b = other.as<List>();
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const CaseValue& x, const CaseValue& y) { return x.isEqual(y); });
  }
  if (!is<Map>())
    return is<bool>()          ? as<bool>() == other.as<bool>()
           : is<qint64>()      ? as<qint64>() == other.as<qint64>()
           : is<LongInteger>() ? as<LongInteger>() == other.as<LongInteger>()
           : is<double>()      ? as<double>() == other.as<double>()
           : is<QString>()     ? as<QString>() == other.as<QString>()
                               : true;
  const auto decimal = decimalIn(*this);
  if (decimal)
    return decimal == decimalIn(other);
  const auto isIn = [](const CaseValue& map) {
    return [&map](const auto& member) {
      const CaseValue* found = map.find(member.first);
      return found && member.second.isEqual(*found);
    };
  };
  const Map& a = as<Map>();
  const Map& b = other.as<Map>();
  return std::all_of(a.begin(), a.end(), isIn(other)) &&
         std::all_of(b.begin(), b.end(), isIn(*this));
}

} // namespace zq::conformance
