// The values of a message's dictionary, checked.
#pragma once

#include <QtCore/QString>
#include <QtCore/QVariant>

#include <optional>

namespace zq::app {

// Reads the values of one dictionary. Nothing for a key that is missing; MessageError with the key
// for a value that is not as asked for.
class MessageValues {
 public:
  // `dictionary` must outlive the reader.
  explicit MessageValues(const QVariantMap& dictionary) : dictionary_(dictionary) {}

  QVariant value(const QString& key) const { return dictionary_.value(key); }

  // A string of at most `longest` UTF-16 code units.
  std::optional<QString> string(const QString& key, qsizetype longest) const;
  // A number of any type but a boolean, and no NaN.
  std::optional<double> number(const QString& key) const;
  // The same between `least` and `most`.
  std::optional<double> number(const QString& key, double least, double most) const;
  // An integer of any width, or a real number without a fraction: many languages know no other.
  std::optional<qint64> wholeNumber(const QString& key, qint64 least, qint64 most) const;
  // A boolean, or a number: 0 is false, every other one true.
  std::optional<bool> boolean(const QString& key) const;

 private:
  const QVariantMap& dictionary_;
};

// The bytes that `value` takes: strings as UTF-16, lists and maps with all that is in them, and a
// few for each element. Counting ends where `most` is exceeded or the nesting has no sensible
// depth; the result is then above `most`.
qsizetype byteCountOf(const QVariant& value, qsizetype most);

} // namespace zq::app
