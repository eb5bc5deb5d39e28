// The tables behind a KeyedUnarchiver.
#pragma once

#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"
#include "zqticker/platform/archiving/PlaceholderObject.h"

#include <QtCore/QVarLengthArray>

#include <unordered_map>
#include <vector>

namespace zq::platform {

// The classes that read as plain values.
enum class ValueKind : std::uint8_t {
  None,
  String,
  Data,
  Number,
  DecimalNumber,
  Array,
  Set,
  OrderedSet,
  CountedSet,
  Dictionary,
  Null,
  Date,
  Url,
  Uuid,
  Value,
  IndexSet,
  Locale
};

// Decodes entries of the object table, each once, and keeps what has become of them.
class KeyedUnarchiverState {
 public:
  using Index = PropertyList::Index;
  using Uid = std::uint32_t;
  using Kind = PropertyList::Kind;

  KeyedUnarchiverState(KeyedUnarchiver& coder, const QByteArray& data,
                       const KeyedUnarchiver::Options& options);

  // The value under a key of the current record, or nothing.
  std::optional<Index> find(QAnyStringView key) const;
  // The object that a value refers to; the key is for messages.
  Any object(Index value, QAnyStringView key);
  // The text that a value refers to, empty where it refers to nothing.
  QString text(Index value, QAnyStringView key);
  Any objectAt(Uid uid);

  std::int64_t integer(Index value, QAnyStringView key) const;
  double real(Index value, QAnyStringView key) const;
  bool boolean(Index value, QAnyStringView key) const;
  QByteArray bytes(Index value, QAnyStringView key);

  QString keyPath(QAnyStringView key) const;
  [[noreturn]] void fail(const QString& reason, QAnyStringView key = {}) const;

  const KeyedArchive archive;
  const PropertyList& list;

 private:
  // One record or container that is being decoded: where the next key is looked for first, and the
  // key or element in hand, for messages.
  struct Scope {
    Index record = 0;
    mutable std::uint32_t nextKey = 0;
    QAnyStringView key;
    qint64 element = -1;
    // Whether value classes that a plain value would not archive back become placeholders.
    bool isExact = false;
    // Whether what is being decoded may refer to an object around it: it does not own that one.
    bool mayReferBack = false;
    Scope* enclosing = nullptr;
  };
  class OpenScope;
  class KeyInHand;

  enum class Progress : std::uint8_t { Decoding, Decoded, Failed };
  struct Entry {
    Any value;
    // How many elements a traversal of the value meets, and how deep it goes.
    quint64 weight = 1;
    int height = 1;
    Progress progress = Progress::Decoding;
    // Whether the object may be referred to while it is being decoded.
    bool mayEnclose = false;
  };
  struct Class {
    KeyedArchive::Class record;
    ObjectFactory factory = nullptr;
    ClassRegistry::Cycles cycles = ClassRegistry::Cycles::Allowed;
    ValueKind kind = ValueKind::None;
  };

  const Class& classOf(Index record);
  const Class& classAt(Uid uid);
  void resolve(Class& type, const QString& name) const;

  std::uint32_t& slot(Uid uid, bool exact) { return slots_[exact ? 1 : 0][uid]; }
  Any decode(Uid uid);
  Any decodePlain(Uid uid, Index value);
  Any decodeRecord(Uid uid, Index record);
  Any decodeRegistered(Uid uid, Index record, const Class& type);
  Any decodePlaceholder(Uid uid, Index record, const Class& type, bool isUnknown);
  Any decodeValue(Uid uid, Index record, const Class& type);
  bool keepsKind(ValueKind kind, Index record) const;
  bool refersBack(Index record);
  template <class Body>
  Any decodeEntry(Uid uid, bool inBothTables, Body body);

  // Records of the value classes.
  Any valueOf(ValueKind kind, Index record);
  Any stringRecord();
  Any dataRecord();
  Any numberRecord();
  Any decimalNumberRecord();
  Any listRecord();
  Any countedSetRecord();
  Any dictionaryRecord();
  Any dateRecord();
  Any urlRecord();
  Any uuidRecord();
  Any valueRecord();
  Any indexSetRecord();
  Any localeRecord();

  // Helpers of these: values of the current record by keys as they stand in the archive.
  std::optional<Index> find(QLatin1StringView rawKey) const;
  Any valueFor(QLatin1StringView key);
  std::optional<qint64> integerFor(QLatin1StringView key);
  double realFor(QLatin1StringView key);
  QString textFor(QLatin1StringView key);
  std::vector<Index> references(QLatin1StringView listKey, QLatin1StringView indexedPrefix);
  std::vector<Index> indexedValues(QLatin1StringView prefix);
  Any element(Index reference, std::size_t position);
  void addContent(quint64 weight, int height);

  Any number(Index value) const;
  Any inlineValue(Index value);
  QString string(Index value);
  QByteArray data(Index value);
  PlaceholderObject::Reference reference(Index value);
  // Counts decoded bytes against what the file's size allows.
  void charge(quint64 bytes);

  KeyedUnarchiver& coder_;
  const KeyedUnarchiver::Options options_;
  Scope top_;
  Scope* scope_ = &top_;
  int depth_ = 0;
  quint64 budget_;
  const quint64 maximumWeight_;
  // The weight of the container or object that is being decoded, and the height of its contents.
  quint64 weight_ = 1;
  int contentHeight_ = 0;

  // By UID: the entry + 1. The second table is for those who want value classes kept.
  std::vector<std::uint32_t> slots_[2];
  std::vector<Entry> entries_;
  std::unordered_map<Uid, Class> classes_;
  const Class* lastClass_ = nullptr;
  Uid lastClassUid_ = 0;
  // Long strings and data by their place in the list, shared by all that refer to them.
  QHash<Index, QString> longStrings_;
  QHash<Index, QByteArray> longData_;
};

} // namespace zq::platform
