// How a KeyedUnarchiver finds values and decodes entries of the object table.
#include "zqticker/platform/archiving/KeyedUnarchiver_p.h"
#include "zqticker/platform/archiving/reference_date_p.h"
#include "zqticker/platform/objects/Exception.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {

// Strings and data from this many bytes on are kept, so that many references to one do not make
// many copies.
constexpr quint64 LongByteCount = 64;
// What an object, a value in a record and an element of a list count as, in bytes.
constexpr quint64 ObjectBytes = 32;
constexpr quint64 ElementBytes = 16;

ValueKind valueKind(const QString& className) {
  static const QHash<QString, ValueKind> kinds{
      {u"NSString"_s, ValueKind::String},
      {u"NSMutableString"_s, ValueKind::String},
      {u"NSData"_s, ValueKind::Data},
      {u"NSMutableData"_s, ValueKind::Data},
      {u"NSNumber"_s, ValueKind::Number},
      {u"NSDecimalNumber"_s, ValueKind::DecimalNumber},
      {u"NSDecimalNumberPlaceholder"_s, ValueKind::DecimalNumber},
      {u"NSArray"_s, ValueKind::Array},
      {u"NSMutableArray"_s, ValueKind::Array},
      {u"NSSet"_s, ValueKind::Set},
      {u"NSMutableSet"_s, ValueKind::Set},
      {u"NSOrderedSet"_s, ValueKind::OrderedSet},
      {u"NSMutableOrderedSet"_s, ValueKind::OrderedSet},
      {u"NSCountedSet"_s, ValueKind::CountedSet},
      {u"NSDictionary"_s, ValueKind::Dictionary},
      {u"NSMutableDictionary"_s, ValueKind::Dictionary},
      {u"NSNull"_s, ValueKind::Null},
      {u"NSDate"_s, ValueKind::Date},
      {u"NSURL"_s, ValueKind::Url},
      {u"NSUUID"_s, ValueKind::Uuid},
      {u"NSValue"_s, ValueKind::Value},
      {u"NSIndexSet"_s, ValueKind::IndexSet},
      {u"NSMutableIndexSet"_s, ValueKind::IndexSet},
      {u"NSLocale"_s, ValueKind::Locale}};
  return kinds.value(className, ValueKind::None);
}

} // namespace

// Makes a record or a container the current one while it lives.
class KeyedUnarchiverState::OpenScope {
 public:
  OpenScope(KeyedUnarchiverState& state, Index record, bool isExact)
      : state_(state), weightBefore_(state.weight_), heightBefore_(state.contentHeight_) {
    if (state.depth_ >= KeyedUnarchiver::MaximumDepth)
      state.fail(u"objects are nested too deeply"_s);
    ++state.depth_;
    state.weight_ = 1;
    state.contentHeight_ = 0;
    scope_.record = record;
    scope_.isExact = isExact;
    scope_.enclosing = state.scope_;
    state.scope_ = &scope_;
  }
  ~OpenScope() {
    state_.scope_ = scope_.enclosing;
    state_.weight_ = weightBefore_;
    state_.contentHeight_ = heightBefore_;
    --state_.depth_;
  }
  OpenScope(const OpenScope&) = delete;
  OpenScope& operator=(const OpenScope&) = delete;

 private:
  KeyedUnarchiverState& state_;
  quint64 weightBefore_;
  int heightBefore_;
  Scope scope_;
};

// Names a key in messages while it lives; views of keys do not live longer.
class KeyedUnarchiverState::KeyInHand {
 public:
  KeyInHand(KeyedUnarchiverState& state, QAnyStringView key) : scope_(*state.scope_) {
    if (!key.isNull())
      scope_.key = key;
  }
  ~KeyInHand() { scope_.key = {}; }
  KeyInHand(const KeyInHand&) = delete;
  KeyInHand& operator=(const KeyInHand&) = delete;

 private:
  Scope& scope_;
};

KeyedUnarchiverState::KeyedUnarchiverState(KeyedUnarchiver& coder, const QByteArray& data,
                                           const KeyedUnarchiver::Options& options)
    : archive(data), list(archive.list()), coder_(coder), options_(options),
      budget_(quint64(list.sourceSize() * KeyedUnarchiver::MaximumExpansionFactor +
                      KeyedUnarchiver::ExpansionAllowance)),
      maximumWeight_(quint64(list.sourceSize() * KeyedUnarchiver::MaximumExpansionFactor +
                             KeyedUnarchiver::ElementAllowance)) {
  top_.record = archive.top();
  top_.isExact = options_.keepUnknownClasses;
  slots_[0].resize(archive.objectCount());
  if (options_.keepUnknownClasses)
    slots_[1].resize(archive.objectCount());
}

QString KeyedUnarchiverState::keyPath(QAnyStringView key) const {
  // Of a very deep path both ends tell where it is.
  constexpr qsizetype KeptSteps = 16;
  QStringList path;
  const auto append = [&path](const Scope& scope) {
    if (scope.element >= 0)
      path.append(u"[%1]"_s.arg(scope.element));
    else if (!scope.key.isNull())
      path.append(scope.key.toString());
  };
  if (key.isNull())
    append(*scope_);
  else
    path.append(key.toString());
  for (const Scope* scope = scope_->enclosing; scope; scope = scope->enclosing)
    append(*scope);
  if (path.size() > 2 * KeptSteps) {
    path.remove(KeptSteps, path.size() - 2 * KeptSteps);
    path.insert(KeptSteps, u"…"_s);
  }
  QString joined;
  for (auto step = path.crbegin(); step != path.crend(); ++step) {
    if (!joined.isEmpty() && !step->startsWith(u'['))
      joined += u'.';
    joined += *step;
  }
  return joined;
}

void KeyedUnarchiverState::fail(const QString& reason, QAnyStringView key) const {
  throw ArchiveException(reason, keyPath(key));
}

void KeyedUnarchiverState::charge(quint64 bytes) {
  if (bytes > budget_)
    fail(u"the archive expands to more than its size allows"_s);
  budget_ -= bytes;
}

std::optional<PropertyList::Index> KeyedUnarchiverState::find(QLatin1StringView rawKey) const {
  const auto position = list.position(scope_->record, rawKey, scope_->nextKey);
  if (!position)
    return std::nullopt;
  scope_->nextKey = *position + 1;
  return list.value(scope_->record, *position);
}

std::optional<PropertyList::Index> KeyedUnarchiverState::find(QAnyStringView key) const {
  return key.visit([&](auto text) -> std::optional<Index> {
    const auto* units = text.data();
    const auto isAscii = [](auto unit) {
      return std::make_unsigned_t<decltype(unit)>(unit) < 0x80;
    };
    if constexpr (sizeof(*units) == 1) {
      if (text.size() > 0 && units[0] != '$' && std::all_of(units, units + text.size(), isAscii))
        return find(QLatin1StringView(reinterpret_cast<const char*>(units), text.size()));
    }
    // A key that begins with $ stands with one more in the archive.
    QString raw = QAnyStringView(text).toString();
    if (raw.startsWith(u'$'))
      raw.prepend(u'$');
    const auto position = list.position(scope_->record, QStringView(raw));
    return position ? std::optional(list.value(scope_->record, *position)) : std::nullopt;
  });
}

std::int64_t KeyedUnarchiverState::integer(Index value, QAnyStringView key) const {
  switch (list.kind(value)) {
  case Kind::Boolean:
    return list.boolean(value) ? 1 : 0;
  case Kind::Integer:
    if (list.isUnsigned(value))
      fail(u"%1 is outside the range of 64 bits"_s.arg(quint64(list.integer(value))), key);
    return list.integer(value);
  case Kind::Real:
    if (options_.convertNumbers) {
      // 2^63 as a double is exact; one below is not.
      const double real = std::trunc(list.real(value));
      if (!(real >= -0x1p63 && real < 0x1p63))
        fail(u"a real is outside the range of 64 bits"_s, key);
      return std::int64_t(real);
    }
    fail(u"expected an integer, found a real"_s, key);
  default:
    fail(u"expected an integer"_s, key);
  }
}

double KeyedUnarchiverState::real(Index value, QAnyStringView key) const {
  switch (list.kind(value)) {
  case Kind::Real:
    return list.real(value);
  case Kind::Boolean:
  case Kind::Integer:
    if (options_.convertNumbers)
      return list.isUnsigned(value)              ? double(quint64(list.integer(value)))
             : list.kind(value) == Kind::Boolean ? double(list.boolean(value))
                                                 : double(list.integer(value));
    fail(u"expected a real, found an integer"_s, key);
  default:
    fail(u"expected a real"_s, key);
  }
}

bool KeyedUnarchiverState::boolean(Index value, QAnyStringView key) const {
  switch (list.kind(value)) {
  case Kind::Boolean:
    return list.boolean(value);
  case Kind::Integer:
    return list.integer(value) != 0;
  case Kind::Real:
    return list.real(value) != 0;
  default:
    fail(u"expected a boolean"_s, key);
  }
}

QByteArray KeyedUnarchiverState::bytes(Index value, QAnyStringView key) {
  if (list.kind(value) != Kind::Data)
    fail(u"expected data"_s, key);
  KeyInHand hand(*this, key);
  return data(value);
}

QString KeyedUnarchiverState::text(Index value, QAnyStringView key) {
  const Any found = object(value, key);
  if (!found.isValid())
    return {};
  if (found.metaType() != QMetaType::fromType<QString>())
    fail(u"expected a reference to a string"_s, key);
  return found.toString();
}

Any KeyedUnarchiverState::object(Index value, QAnyStringView key) {
  if (list.kind(value) != Kind::Uid)
    fail(u"expected a reference to an object"_s, key);
  const Uid uid = list.uid(value);
  if (uid >= archive.objectCount())
    fail(u"the reference %1 leads outside the table of %2 objects"_s.arg(uid).arg(
             archive.objectCount()),
         key);
  KeyInHand hand(*this, key);
  return decode(uid);
}

Any KeyedUnarchiverState::objectAt(Uid uid) {
  if (uid >= archive.objectCount())
    fail(u"the reference %1 leads outside the table of %2 objects"_s.arg(uid).arg(
        archive.objectCount()));
  return decode(uid);
}

// Counts one value into the container or the object that is being decoded. Objects that were
// decoded one after the other can still make a chain that is too long to be walked or freed.
void KeyedUnarchiverState::addContent(quint64 weight, int height) {
  contentHeight_ = std::max(contentHeight_, height);
  if (contentHeight_ > KeyedUnarchiver::MaximumDepth)
    fail(u"objects are nested too deeply"_s);
  // Values of the top level are not part of one another.
  weight_ = (scope_->enclosing ? weight_ : 1) + weight;
  if (weight_ > maximumWeight_)
    fail(u"containers expand to more than %1 elements"_s.arg(maximumWeight_));
}

Any KeyedUnarchiverState::decode(Uid uid) {
  if (uid == 0)
    return {};
  if (const std::uint32_t known = slot(uid, scope_->isExact)) {
    const Entry& entry = entries_[known - 1];
    if (entry.progress == Progress::Failed)
      fail(u"the object could not be decoded"_s);
    if (entry.progress == Progress::Decoding && !(entry.mayEnclose && scope_->mayReferBack))
      fail(u"an object or a container contains itself"_s);
    addContent(entry.weight, entry.progress == Progress::Decoded ? entry.height : 0);
    return entry.value;
  }
  const Index value = archive.object(uid);
  switch (list.kind(value)) {
  case Kind::Dictionary: {
    Any decoded = decodeRecord(uid, value);
    const Entry& entry = entries_[slot(uid, scope_->isExact) - 1];
    addContent(entry.weight, entry.height);
    return decoded;
  }
  case Kind::Array:
  case Kind::Set:
  case Kind::Uid:
    fail(u"the entry %1 is no object"_s.arg(uid));
  default:
    addContent(1, 0);
    return decodePlain(uid, value);
  }
}

Any KeyedUnarchiverState::decodePlain(Uid uid, Index value) {
  if (list.isString(value, "$null"_L1))
    return {};
  Any decoded = list.kind(value) == Kind::String ? Any(string(value)) : inlineValue(value);
  charge(ObjectBytes);
  entries_.push_back({decoded, 1, 0, Progress::Decoded});
  slot(uid, scope_->isExact) = std::uint32_t(entries_.size());
  return decoded;
}

// Decodes into an entry of its own, which stays marked where that fails.
template <class Body>
Any KeyedUnarchiverState::decodeEntry(Uid uid, bool inBothTables, Body body) {
  charge(ObjectBytes);
  const std::size_t entry = entries_.size();
  entries_.emplace_back();
  const bool exact = scope_->isExact;
  slot(uid, exact) = std::uint32_t(entry + 1);
  if (inBothTables && options_.keepUnknownClasses)
    slot(uid, !exact) = std::uint32_t(entry + 1);
  try {
    Any decoded = body(entry);
    entries_[entry].value = decoded;
    entries_[entry].progress = Progress::Decoded;
    return decoded;
  } catch (...) {
    entries_[entry].value = Any();
    entries_[entry].progress = Progress::Failed;
    throw;
  }
}

const KeyedUnarchiverState::Class& KeyedUnarchiverState::classAt(Uid uid) {
  if (lastClass_ && lastClassUid_ == uid)
    return *lastClass_;
  auto known = classes_.find(uid);
  if (known == classes_.end()) {
    Class type;
    type.record = archive.classAt(uid);
    resolve(type, type.record.name);
    if (!type.factory && type.kind == ValueKind::None)
      if (const QString mapped = options_.classNames.value(type.record.name); !mapped.isEmpty())
        resolve(type, mapped);
    for (const QString& hint : type.record.hints)
      if (!type.factory && type.kind == ValueKind::None)
        resolve(type, hint);
    if (!type.factory && type.kind == ValueKind::None && options_.substituteClassName)
      resolve(type, options_.substituteClassName(type.record.name, type.record.classes));
    known = classes_.emplace(uid, std::move(type)).first;
  }
  lastClass_ = &known->second;
  lastClassUid_ = uid;
  return *lastClass_;
}

void KeyedUnarchiverState::resolve(Class& type, const QString& name) const {
  const ClassRegistry::Registration registration = ClassRegistry::registration(name);
  type.factory = registration.factory;
  type.cycles = registration.cycles;
  type.kind = type.factory ? ValueKind::None : valueKind(name);
}

const KeyedUnarchiverState::Class& KeyedUnarchiverState::classOf(Index record) {
  try {
    return classAt(archive.classUidOf(record));
  } catch (const ArchiveException& exception) {
    if (!exception.keyPath().isEmpty())
      throw;
    fail(exception.reason(), scope_->key);
  }
}

Any KeyedUnarchiverState::decodeRecord(Uid uid, Index record) {
  const Class& type = classOf(record);
  if (type.factory)
    return decodeRegistered(uid, record, type);
  if (type.kind != ValueKind::None) {
    if (scope_->isExact && (!keepsKind(type.kind, record) || refersBack(record)))
      return decodePlaceholder(uid, record, type, false);
    return decodeValue(uid, record, type);
  }
  if (options_.keepUnknownClasses)
    return decodePlaceholder(uid, record, type, true);
  fail(u"the class %1 is unknown"_s.arg(type.record.name.left(200)), scope_->key);
}

Any KeyedUnarchiverState::decodeRegistered(Uid uid, Index record, const Class& type) {
  return decodeEntry(uid, true, [&](std::size_t entry) {
    const Ref<Object> object = type.factory();
    // Registered before its values are read: they may refer to it.
    entries_[entry].value = any(object);
    entries_[entry].mayEnclose = type.cycles == ClassRegistry::Cycles::Allowed;
    OpenScope scope(*this, record, false);
    scope_->mayReferBack = entries_[entry].mayEnclose;
    const Ref<Object> decoded = object->initWithCoder(coder_);
    if (!decoded)
      fail(u"the object of class %1 could not be decoded"_s.arg(type.record.name));
    entries_[entry].height = contentHeight_ + 1;
    return any(decoded);
  });
}

// Whether a plain value says all that a record of a value class says.
bool KeyedUnarchiverState::keepsKind(ValueKind kind, Index record) const {
  const auto className = list.find(archive.object(archive.classUidOf(record)), "$classname"_L1);
  switch (kind) {
  case ValueKind::Null:
  case ValueKind::Uuid:
    return true;
  case ValueKind::Array:
    return list.isString(*className, "NSArray"_L1) && list.find(record, "NS.objects"_L1);
  case ValueKind::Dictionary: {
    const auto keys = list.find(record, "NS.keys"_L1);
    if (!list.isString(*className, "NSDictionary"_L1) || !keys || list.kind(*keys) != Kind::Array)
      return false;
    for (std::uint32_t i = 0; i < list.count(*keys); ++i) {
      const Index key = list.element(*keys, i);
      if (list.kind(key) != Kind::Uid || list.uid(key) >= archive.objectCount() ||
          archive.entry(list.uid(key)) != KeyedArchive::Entry::String)
        return false;
    }
    return true;
  }
  default:
    return false;
  }
}

// Whether a container holds an object around it, which a plain value would own in a circle.
bool KeyedUnarchiverState::refersBack(Index record) {
  const auto elements = list.find(record, "NS.objects"_L1);
  if (!elements || list.kind(*elements) != Kind::Array)
    return false;
  for (std::uint32_t i = 0; i < list.count(*elements); ++i) {
    const Index element = list.element(*elements, i);
    if (list.kind(element) != Kind::Uid || list.uid(element) >= archive.objectCount())
      continue;
    const std::uint32_t known = slot(list.uid(element), true);
    if (known && entries_[known - 1].progress == Progress::Decoding &&
        entries_[known - 1].mayEnclose)
      return true;
  }
  return false;
}

Any KeyedUnarchiverState::decodeValue(Uid uid, Index record, const Class& type) {
  return decodeEntry(uid, false, [&](std::size_t entry) {
    OpenScope scope(*this, record, scope_->isExact);
    // What a container may hold is for the object to say that reads it; a placeholder only keeps.
    scope_->mayReferBack = !scope_->isExact && scope_->enclosing->mayReferBack;
    Any value = valueOf(type.kind, record);
    entries_[entry].weight = weight_;
    entries_[entry].height = contentHeight_ + 1;
    return value;
  });
}

Any KeyedUnarchiverState::decodePlaceholder(Uid uid, Index record, const Class& type,
                                            bool isUnknown) {
  return decodeEntry(uid, isUnknown, [&](std::size_t entry) {
    const auto object = std::make_shared<PlaceholderObject>(type.record.name, type.record.classes,
                                                            type.record.hints);
    entries_[entry].value = any(object);
    entries_[entry].mayEnclose = true;
    OpenScope scope(*this, record, true);
    scope_->mayReferBack = true;
    for (std::uint32_t i = 0; i < list.count(record); ++i) {
      const Index key = list.key(record, i);
      if (list.isString(key, "$class"_L1))
        continue;
      PlaceholderObject::Field field{string(key), PlaceholderObject::Form::Inline, {}, {}};
      charge(ElementBytes);
      const QString keyName = KeyedArchive::unescapedKey(field.key);
      KeyInHand hand(*this, keyName);
      const Index value = list.value(record, i);
      if (list.kind(value) == Kind::Uid) {
        field.form = PlaceholderObject::Form::Reference;
        field.references.push_back(reference(value));
      } else if (list.kind(value) == Kind::Array) {
        field.form = PlaceholderObject::Form::References;
        for (std::uint32_t j = 0; j < list.count(value); ++j) {
          charge(ElementBytes);
          scope_->element = j;
          field.references.push_back(reference(list.element(value, j)));
        }
        scope_->element = -1;
      } else {
        field.inlineValue = inlineValue(value);
      }
      object->fields_.push_back(std::move(field));
    }
    entries_[entry].height = contentHeight_ + 1;
    return any(object);
  });
}

// A reference out of a placeholder. One to an object that is still being decoded encloses this one
// and must not be owned.
PlaceholderObject::Reference KeyedUnarchiverState::reference(Index value) {
  const Any target = object(value, scope_->key);
  const std::uint32_t known = list.uid(value) == 0 ? 0 : slot(list.uid(value), true);
  if (known && entries_[known - 1].progress == Progress::Decoding)
    return {Any(), objectOf(target)};
  return {target, {}};
}

Any KeyedUnarchiverState::number(Index value) const {
  switch (list.kind(value)) {
  case Kind::Boolean:
    return list.boolean(value);
  case Kind::Integer:
    return list.isUnsigned(value) ? Any(qulonglong(list.integer(value)))
                                  : Any(qlonglong(list.integer(value)));
  case Kind::Real:
    return list.isSinglePrecision(value) ? Any(float(list.real(value))) : Any(list.real(value));
  default:
    fail(u"expected a number"_s, scope_->key);
  }
}

Any KeyedUnarchiverState::inlineValue(Index value) {
  switch (list.kind(value)) {
  case Kind::String:
    return string(value);
  case Kind::Data:
    return data(value);
  case Kind::Date:
    if (const auto date = dateOfSeconds(list.real(value)))
      return *date;
    fail(u"a date is out of range"_s, scope_->key);
  case Kind::Boolean:
  case Kind::Integer:
  case Kind::Real:
    return number(value);
  default:
    fail(u"a value in a record is neither simple nor a reference"_s, scope_->key);
  }
}

QString KeyedUnarchiverState::string(Index value) {
  const quint64 size = list.byteCount(value);
  if (size < LongByteCount) {
    charge(2 * size);
    return list.string(value);
  }
  if (const auto known = longStrings_.constFind(value); known != longStrings_.cend())
    return *known;
  charge(2 * size);
  return *longStrings_.insert(value, list.string(value));
}

QByteArray KeyedUnarchiverState::data(Index value) {
  const quint64 size = list.byteCount(value);
  if (size < LongByteCount) {
    charge(size);
    return list.data(value);
  }
  if (const auto known = longData_.constFind(value); known != longData_.cend())
    return *known;
  charge(size);
  return *longData_.insert(value, list.data(value));
}

} // namespace zq::platform
