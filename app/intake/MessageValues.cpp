#include "app/intake/MessageValues.h"

#include "app/intake/DisplayMessage.h"

#include <QtCore/QLocale>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
// What an element takes beside its contents.
constexpr qsizetype BytesPerElement = 32;
// The bus itself allows 64 levels.
constexpr int MostLevels = 64;

std::optional<qint64> integerOf(const QVariant& value) {
  switch (value.typeId()) {
  case QMetaType::SChar:
  case QMetaType::UChar:
  case QMetaType::Char:
  case QMetaType::Short:
  case QMetaType::UShort:
  case QMetaType::Int:
  case QMetaType::UInt:
  case QMetaType::Long:
  case QMetaType::LongLong:
    return value.toLongLong();
  case QMetaType::ULong:
  case QMetaType::ULongLong: {
    // Beyond the range it is as good as the last number in it: no key takes either.
    const qulonglong number = value.toULongLong();
    constexpr auto Most = std::numeric_limits<qint64>::max();
    return number > qulonglong(Most) ? Most : qint64(number);
  }
  default:
    return std::nullopt;
  }
}

std::optional<double> realOf(const QVariant& value) {
  if (value.typeId() == QMetaType::Double || value.typeId() == QMetaType::Float)
    return value.toDouble();
  return std::nullopt;
}

QString textOf(qint64 number) {
  return QString::number(number);
}

void count(const QVariant& value, qsizetype most, int level, qsizetype& bytes) {
  bytes += BytesPerElement;
  if (level > MostLevels)
    bytes = most + 1;
  if (bytes > most)
    return;
  switch (value.typeId()) {
  case QMetaType::QString:
    bytes += value.toString().size() * qsizetype(sizeof(QChar));
    return;
  case QMetaType::QByteArray:
    bytes += value.toByteArray().size();
    return;
  case QMetaType::QStringList:
  case QMetaType::QVariantList: {
    const QVariantList list = value.toList();
    for (const QVariant& element : list) {
      if (bytes > most)
        return;
      count(element, most, level + 1, bytes);
    }
    return;
  }
  case QMetaType::QVariantMap: {
    const QVariantMap map = value.toMap();
    for (auto pair = map.begin(); pair != map.end() && bytes <= most; ++pair) {
      bytes += pair.key().size() * qsizetype(sizeof(QChar));
      count(pair.value(), most, level + 1, bytes);
    }
    return;
  }
  default:
    return;
  }
}
} // namespace

std::optional<QString> MessageValues::string(const QString& key, qsizetype longest) const {
  const QVariant found = value(key);
  if (!found.isValid())
    return std::nullopt;
  if (found.typeId() != QMetaType::QString)
    throw MessageError(key, u"must be a string"_s);
  const QString text = found.toString();
  if (text.size() > longest)
    throw MessageError(key, u"longer than %1 characters"_s.arg(
                                QLocale(QLocale::English).toString(qint64(longest))));
  return text;
}

std::optional<double> MessageValues::number(const QString& key) const {
  const QVariant found = value(key);
  if (!found.isValid())
    return std::nullopt;
  if (const std::optional<qint64> integer = integerOf(found))
    return double(*integer);
  const std::optional<double> real = realOf(found);
  if (!real || std::isnan(*real))
    throw MessageError(key, u"must be a number"_s);
  return real;
}

std::optional<double> MessageValues::number(const QString& key, double least, double most) const {
  const std::optional<double> found = number(key);
  if (found && !(*found >= least && *found <= most))
    throw MessageError(key, u"must be from %1 to %2"_s.arg(QString::number(least, 'f', 0),
                                                           QString::number(most, 'f', 0)));
  return found;
}

std::optional<qint64> MessageValues::wholeNumber(const QString& key, qint64 least,
                                                 qint64 most) const {
  const QVariant found = value(key);
  if (!found.isValid())
    return std::nullopt;
  std::optional<qint64> number = integerOf(found);
  if (const std::optional<double> real = realOf(found)) {
    if (!(std::trunc(*real) == *real) || std::isinf(*real))
      throw MessageError(key, u"must be a whole number"_s);
    // Every key's limits lie far inside of what a double counts exactly.
    constexpr double Widest = 1LL << 53;
    number = qint64(std::min(std::max(*real, -Widest), Widest));
  }
  if (!number)
    throw MessageError(key, u"must be a whole number"_s);
  if (*number < least || *number > most)
    throw MessageError(key, u"must be from %1 to %2"_s.arg(textOf(least), textOf(most)));
  return number;
}

std::optional<bool> MessageValues::boolean(const QString& key) const {
  const QVariant found = value(key);
  if (!found.isValid())
    return std::nullopt;
  if (found.typeId() == QMetaType::Bool)
    return found.toBool();
  if (const std::optional<qint64> integer = integerOf(found))
    return *integer != 0;
  const std::optional<double> real = realOf(found);
  if (!real || std::isnan(*real))
    throw MessageError(key, u"must be true, false or a number"_s);
  return *real != 0;
}

qsizetype byteCountOf(const QVariant& value, qsizetype most) {
  qsizetype bytes = 0;
  count(value, most, 0, bytes);
  return bytes;
}

} // namespace zq::app
