// Writes keyed archives.
#pragma once

#include "zqticker/platform/archiving/Coder.h"

#include <memory>

namespace zq::platform {

class KeyedArchiverState;
class PlaceholderObject;

// A coder that writes objects and values into one binary keyed archive. Values encoded from
// outside lie at the top level; encodeWithCoder of the objects fills their own records.
//
// What encodeObject takes, and as what it is archived:
//   invalid QVariant   nothing             QString            NSString
//   nullptr            NSNull              QByteArray         NSData
//   bool, int, double… NSNumber            QDateTime          NSDate
//   QUrl               NSURL               QUuid              NSUUID
//   QVariantList       NSArray             QStringList        NSArray
//   QVariantMap        NSDictionary        Ref<Object>        a record of its class
//   QPointF, QSizeF, QRectF, Range, QMarginsF                 NSValue
//   IndexSet           NSIndexSet          QLocale            NSLocale
// Anything else, an invalid date, or nothing inside a list raises InvalidArgumentException.
//
// A reference object has one place in the archive however often it is encoded; equal strings and
// numbers may share one. Objects that are encoded deeper in one another than MaximumDepth, and
// archives of more than KeyedArchive::MaximumObjectCount objects, raise ArchiveException. After
// any exception the archive is unusable.
//
// Thread: an archiver belongs to one thread.
class ZQTICKER_EXPORT KeyedArchiver : public Coder {
 public:
  // How deep objects and containers may be encoded inside one another.
  static constexpr int MaximumDepth = 512;

  // An archive of the one object `root` under the key "root".
  static QByteArray archivedDataWithRootObject(const Any& root);
  template <class T>
  static QByteArray archivedDataWithRootObject(const Ref<T>& root) {
    return archivedDataWithRootObject(any(root));
  }

  KeyedArchiver();
  ~KeyedArchiver() override;

  // Ends the archive and returns it; the same at every further call. Encoding afterwards raises
  // InvalidArgumentException.
  QByteArray finishEncoding();

  bool allowsKeyedCoding() const override;

  void encodeInt(std::int32_t value, QAnyStringView forKey) override;
  void encodeInt64(std::int64_t value, QAnyStringView forKey) override;
  void encodeBool(bool value, QAnyStringView forKey) override;
  void encodeFloat(float value, QAnyStringView forKey) override;
  void encodeDouble(double value, QAnyStringView forKey) override;
  void encodeBytes(const QByteArray& bytes, QAnyStringView forKey) override;
  void encodePoint(QPointF point, QAnyStringView forKey) override;
  void encodeSize(QSizeF size, QAnyStringView forKey) override;
  void encodeRect(const QRectF& rect, QAnyStringView forKey) override;
  using Coder::encodeObject;
  void encodeObject(const Any& object, QAnyStringView forKey) override;
  void encodeConditionalObject(const Ref<Object>& object, QAnyStringView forKey) override;

  QString keyPath(QAnyStringView key) const override;

 protected:
  void raiseUnsupported(QAnyStringView key, Operation operation) const override;

 private:
  friend class PlaceholderObject;
  void encodeFieldsOf(const PlaceholderObject& placeholder);

  std::unique_ptr<KeyedArchiverState> state_;
};

} // namespace zq::platform
