// Reads keyed archives.
#pragma once

#include "zqticker/platform/archiving/Coder.h"
#include "zqticker/platform/archiving/KeyedArchive.h"

#include <QtCore/QHash>

#include <functional>
#include <memory>

namespace zq::platform {

class KeyedUnarchiverState;

// A coder that reads one keyed archive, binary or XML. Decoding from outside reads the top level;
// initWithCoder of the objects reads their own records.
//
// What decodeObjectForKey gives: QString for strings, QByteArray for data, bool, qlonglong,
// qulonglong (from 2^63 on), float or double for numbers, QDateTime in UTC for dates, QUrl, QUuid,
// nullptr for NSNull, QVariantList for arrays and sets, QVariantMap for dictionaries with string
// keys, QPointF, QSizeF, QRectF, Range or QMarginsF for NSValue, IndexSet, QLocale, and Ref<Object>
// for all classes of ClassRegistry. A counted set gives each element as often as it counts.
//
// An archive is untrusted: only registered classes are made, nothing is read beyond the file, and
// depth, objects and memory are bounded. Every failure is an ArchiveException with the key path;
// an object whose decoding has failed fails again at every further reference to it.
//
// Thread: an unarchiver belongs to one thread.
class ZQTICKER_EXPORT KeyedUnarchiver : public Coder {
 public:
  struct Options {
    // Objects of unknown classes become PlaceholderObjects instead of failing the decoding. So do,
    // outside of objects of registered classes, records of the value classes that a plain value
    // would not archive back unchanged: all but NSArray, NSDictionary with string keys, NSNull and
    // NSUUID.
    bool keepUnknownClasses = false;
    // Numbers convert between integer and real (by truncation) instead of failing.
    bool convertNumbers = false;
    // Archived class names and the names to read them as.
    QHash<QString, QString> classNames = {};
    // Asked last for the name to read an unknown class as; an empty answer means none.
    std::function<QString(const QString& name, const QStringList& classes)> substituteClassName =
        nullptr;
  };

  // How deep objects and containers may be decoded inside one another.
  static constexpr int MaximumDepth = 512;
  // Decoded values may take this many times the bytes of the file, beyond an allowance.
  static constexpr qint64 MaximumExpansionFactor = 32;
  static constexpr qint64 ExpansionAllowance = 1 << 20;
  // A list or map may have this many elements beyond the same multiple of the file's bytes,
  // counting those of the lists and maps inside as often as they occur.
  static constexpr qint64 ElementAllowance = 1 << 16;

  // The object under "root", or nothing where that key is missing.
  static Any unarchiveObjectWithData(const QByteArray& data);
  static Any unarchiveObjectWithData(const QByteArray& data, const Options& options);
  // The same for a root that must be of one class; ArchiveException where it is of another or
  // missing.
  template <class T>
  static Ref<T> unarchiveObjectOfClass(const QByteArray& data) {
    KeyedUnarchiver unarchiver(data);
    Ref<T> root = unarchiver.decodeObjectOfClass<T>("root");
    if (!root)
      unarchiver.raiseWrongClass("root", Any(), T::staticMetaObject);
    return root;
  }

  // Checks the outer structure; ArchiveException where `data` is no keyed archive.
  explicit KeyedUnarchiver(const QByteArray& data);
  KeyedUnarchiver(const QByteArray& data, const Options& options);
  ~KeyedUnarchiver() override;

  const KeyedArchive& archive() const;
  // The object at one index of the object table, for those who look at the archive itself.
  Any decodeObjectAt(std::uint32_t uid);

  bool allowsKeyedCoding() const override;

  bool containsValueForKey(QAnyStringView key) const override;
  std::int32_t decodeIntForKey(QAnyStringView key) override;
  std::int64_t decodeInt64ForKey(QAnyStringView key) override;
  bool decodeBoolForKey(QAnyStringView key) override;
  float decodeFloatForKey(QAnyStringView key) override;
  double decodeDoubleForKey(QAnyStringView key) override;
  QByteArray decodeBytesForKey(QAnyStringView key) override;
  QPointF decodePointForKey(QAnyStringView key) override;
  QSizeF decodeSizeForKey(QAnyStringView key) override;
  QRectF decodeRectForKey(QAnyStringView key) override;
  Any decodeObjectForKey(QAnyStringView key) override;

  QString keyPath(QAnyStringView key) const override;

 protected:
  void raiseUnsupported(QAnyStringView key, Operation operation) const override;

 private:
  std::unique_ptr<KeyedUnarchiverState> state_;
};

} // namespace zq::platform
