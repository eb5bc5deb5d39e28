// The tables behind a KeyedArchiver.
#pragma once

#include "zqticker/platform/archiving/IndexSet.h"
#include "zqticker/platform/archiving/KeyedArchiver.h"
#include "zqticker/platform/archiving/PropertyListWriter_p.h"

#include <QtCore/QHash>
#include <QtCore/QStringList>

#include <QtCore/QDateTime>
#include <QtCore/QLocale>
#include <QtCore/QMargins>
#include <QtCore/QUrl>
#include <QtCore/QUuid>

#include <optional>
#include <vector>

namespace zq::platform {

// The name of a value class and of its superclass below NSObject, if any.
struct ValueClass {
  const char* name;
  const char* superclass = nullptr;
};

// Holds what has been written: the object table, the values of the records that are being encoded,
// and which object stands where.
class KeyedArchiverState {
 public:
  using Index = PropertyListWriter::Index;
  using Uid = std::uint32_t;

  explicit KeyedArchiverState(KeyedArchiver& coder);

  // Adds a value under a key of the current record. Raises InvalidArgumentException for a key that
  // it already has.
  void add(QAnyStringView key, Index value);
  // The same for a key as it stands in the archive.
  void addRaw(Index key, Index value);

  // Writes any value as an object and returns its place.
  Uid encode(const Any& value);
  // The same under a key of the current record.
  void encode(const Any& value, QAnyStringView key);
  void encodeConditional(const Ref<Object>& object, QAnyStringView key);
  Uid encodeString(QStringView text);
  void encodeFieldsOf(const PlaceholderObject& placeholder);

  QByteArray finish();

  QString keyPath(QAnyStringView key) const;

  PropertyListWriter writer;

 private:
  struct Field {
    Index key;
    Index value;
  };
  // One record that is being encoded: where its fields begin, and the key in hand, for messages.
  struct Scope {
    std::size_t firstField = 0;
    QAnyStringView key;
    Scope* enclosing = nullptr;
  };
  // Makes a record the current one while it lives.
  class OpenScope {
   public:
    explicit OpenScope(KeyedArchiverState& state);
    ~OpenScope();
    OpenScope(const OpenScope&) = delete;
    OpenScope& operator=(const OpenScope&) = delete;

   private:
    KeyedArchiverState& state_;
    Scope scope_;
  };

  Index internKey(QAnyStringView key);
  Index uidValue(Uid uid);
  Uid append(Index value);
  Uid encodeEntry(Index value);
  std::optional<Uid> encodeNumber(const Any& value);
  Uid encodeReference(const Ref<Object>& object);
  Uid placeOfConditional(const Ref<Object>& object);
  Index inlineValue(const Any& value);
  Index references(const QVariantList& values);
  Uid classUid(const QMetaObject& metaObject);
  Uid classUid(const ValueClass& valueClass);
  Uid classUid(const QString& name, const QStringList& classes, const QStringList& hints = {});

  // Records of the value classes.
  Uid encodeNull();
  Uid encodeList(const QVariantList& list);
  Uid encodeMap(const QVariantMap& map);
  Uid encodeDate(const QDateTime& date);
  Uid encodeUrl(const QUrl& url);
  Uid encodeUuid(const QUuid& uuid);
  Uid encodeLocale(const QLocale& locale);
  Uid encodeIndexSet(const IndexSet& indices);
  Uid encodeMargins(const QMarginsF& margins);
  Uid encodeRange(Range range);
  Uid encodeGeometry(int special, QLatin1StringView key, const QString& text);
  std::optional<Uid> encodeValueObject(const Any& value);
  template <class Body>
  Uid encodeRecord(const ValueClass& valueClass, Body body) {
    const Uid uid = append(nothing_);
    OpenScope scope(*this);
    body();
    closeRecord(uid, classUid(valueClass));
    return uid;
  }

  void closeRecord(Uid uid, Uid classUid);

  KeyedArchiver& coder_;
  Scope top_;
  Scope* scope_ = &top_;
  int depth_ = 0;

  // The values of the records that are open, the innermost last.
  std::vector<Field> fields_;
  // Room for a record's keys and values.
  std::vector<Index> keys_;
  std::vector<Index> values_;

  // By UID: the entry of the object table.
  std::vector<Index> objects_;
  // By UID: its value as a UID in the writer; 0 is not yet known.
  std::vector<Index> uidValues_;
  // By value of the writer: the UID of its entry, 0 for none.
  std::vector<Uid> entries_;
  // By identity: the place, and whether it has been encoded other than conditionally. Objects are
  // held, so that no address comes twice.
  struct Place {
    Uid uid;
    bool isEncoded;
  };
  QHash<const Object*, Place> places_;
  std::vector<Ref<Object>> held_;
  // By the address of a meta-object or of a ValueClass.
  QHash<const void*, Uid> classesByAddress_;
  QHash<QString, Uid> classesByRecord_;
  Uid null_ = 0;

  Index nothing_;
  Index classKey_;
  QByteArray finished_;
};

} // namespace zq::platform
