#include "zqticker/platform/text/DecimalNumber.h"

#include "zqticker/platform/text/number_parsing.h"

#include <QtCore/QByteArray>

#include <boost/multiprecision/cpp_int.hpp>

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {
// Holds the product of two mantissas.
using Whole = boost::multiprecision::uint256_t;

// Beyond every exponent that counts, with room for sums.
constexpr qint64 ExponentLimit = qint64(1) << 40;

bool isDigit(QStringView text, qsizetype index) {
  return index < text.size() && text[index] >= u'0' && text[index] <= u'9';
}

Whole powerOfTen(qint64 exponent) {
  Whole power = 1;
  for (qint64 i = 0; i < exponent; ++i)
    power *= 10;
  return power;
}

int digitCount(const Whole& whole) {
  return whole == 0 ? 0 : int(whole.str().size());
}

// The digits of a number as they come: as many as count and one more to round by.
class Digits {
 public:
  void add(QChar digit, bool isDecimal) {
    exponent_ -= isDecimal ? 1 : 0;
    if (count_ == 0 && digit == u'0')
      return;
    if (count_ <= DecimalNumber::MaximumDigits) {
      whole_ = whole_ * 10 + (digit.unicode() - u'0');
      ++count_;
    } else {
      ++exponent_;
    }
  }
  const Whole& whole() const { return whole_; }
  qint64 exponent() const { return exponent_; }

 private:
  Whole whole_ = 0;
  int count_ = 0;
  qint64 exponent_ = 0;
};

// The exponent that the digits from `index` on state, limited.
qint64 readExponent(QStringView text, qsizetype& index) {
  qint64 exponent = 0;
  for (; isDigit(text, index); ++index)
    exponent = std::min(exponent * 10 + (text[index].unicode() - u'0'), ExponentLimit);
  return exponent;
}
} // namespace

struct DecimalNumber::Arithmetic {
  static Whole mantissa(const DecimalNumber& number) {
    return Whole(number.high_) << 64 | Whole(number.low_);
  }

  static DecimalNumber rounded(Whole whole, qint64 exponent, bool isNegative) {
    const qint64 count = digitCount(whole);
    const qint64 drop = std::max({qint64(0), count - MaximumDigits, MinimumExponent - exponent});
    if (drop > count) {
      whole = 0;
    } else if (drop > 0) {
      const Whole unit = powerOfTen(drop);
      const Whole rest = whole % unit;
      whole = whole / unit + (rest * 2 >= unit ? 1 : 0);
      exponent += drop;
    }
    DecimalNumber number;
    if (whole == 0)
      return number;
    for (; whole % 10 == 0; ++exponent)
      whole /= 10;
    for (int digits = digitCount(whole); exponent > MaximumExponent; --exponent) {
      if (++digits > MaximumDigits)
        return notANumber();
      whole *= 10;
    }
    number.high_ = static_cast<quint64>(whole >> 64);
    number.low_ = static_cast<quint64>(whole & std::numeric_limits<quint64>::max());
    number.exponent_ = int(exponent);
    number.isNegative_ = isNegative;
    return number;
  }
};

DecimalNumber::DecimalNumber(quint64 mantissa, int exponent, bool isNegative)
    : DecimalNumber(Arithmetic::rounded(mantissa, exponent, isNegative)) {}

DecimalNumber DecimalNumber::notANumber() {
  DecimalNumber number;
  number.isNaN_ = true;
  return number;
}

qsizetype DecimalNumber::readPrefix(QStringView text, DecimalNumber& number) {
  qsizetype index = 0;
  const bool isNegative = text.startsWith(u'-');
  if (isNegative || text.startsWith(u'+'))
    ++index;
  Digits digits;
  const qsizetype start = index;
  for (; isDigit(text, index); ++index)
    digits.add(text[index], false);
  bool hasDigits = index > start;
  if (index < text.size() && text[index] == u'.' && (hasDigits || isDigit(text, index + 1))) {
    hasDigits = true;
    for (++index; isDigit(text, index); ++index)
      digits.add(text[index], true);
  }
  if (!hasDigits)
    return 0;
  qint64 exponent = 0;
  if (index < text.size() && text[index].toLower() == u'e') {
    const QStringView after = text.mid(index + 1);
    const bool hasSign = after.startsWith(u'-') || after.startsWith(u'+');
    qsizetype end = hasSign ? 1 : 0;
    if (isDigit(after, end)) {
      exponent = readExponent(after, end);
      if (after.startsWith(u'-'))
        exponent = -exponent;
      index += 1 + end;
    }
  }
  number = Arithmetic::rounded(digits.whole(), digits.exponent() + exponent, isNegative);
  return index;
}

DecimalNumber DecimalNumber::multipliedBy(const DecimalNumber& other) const {
  if (isNaN_ || other.isNaN_)
    return notANumber();
  return Arithmetic::rounded(Arithmetic::mantissa(*this) * Arithmetic::mantissa(other),
                             qint64(exponent_) + other.exponent_, isNegative_ != other.isNegative_);
}

double DecimalNumber::doubleValue() const {
  return isNaN_ ? std::numeric_limits<double>::quiet_NaN() : platform::doubleValue(description());
}

float DecimalNumber::floatValue() const {
  return isNaN_ ? std::numeric_limits<float>::quiet_NaN() : platform::floatValue(description());
}

qlonglong DecimalNumber::longLongValue() const {
  return isNaN_ ? 0 : platform::longLongValue(description());
}

QString DecimalNumber::description() const {
  if (isNaN_)
    return u"NaN"_s;
  QByteArray digits = QByteArray::fromStdString(Arithmetic::mantissa(*this).str());
  if (exponent_ > 0)
    digits.append(exponent_, '0');
  if (exponent_ < 0) {
    if (digits.size() <= -exponent_)
      digits.prepend(QByteArray(-exponent_ - digits.size() + 1, '0'));
    digits.insert(digits.size() + exponent_, '.');
  }
  if (isNegative_)
    digits.prepend('-');
  return QString::fromLatin1(digits);
}

} // namespace zq::platform
