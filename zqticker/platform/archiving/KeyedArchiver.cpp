#include "zqticker/platform/archiving/KeyedArchiver.h"

#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/archiving/KeyedArchive.h"
#include "zqticker/platform/archiving/KeyedArchiver_p.h"
#include "zqticker/platform/archiving/PlaceholderObject.h"
#include "zqticker/platform/archiving/number_text.h"
#include "zqticker/platform/objects/Exception.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zq::platform {

KeyedArchiverState::KeyedArchiverState(KeyedArchiver& coder)
    : coder_(coder), nothing_(writer.addAscii("$null"_L1)),
      classKey_(writer.addAscii("$class"_L1)) {
  append(nothing_);
}

KeyedArchiverState::OpenScope::OpenScope(KeyedArchiverState& state) : state_(state) {
  if (state_.depth_ >= KeyedArchiver::MaximumDepth)
    throw ArchiveException(u"objects are nested too deeply"_s, state_.keyPath({}).left(200));
  ++state_.depth_;
  scope_.firstField = state_.fields_.size();
  scope_.enclosing = state_.scope_;
  state_.scope_ = &scope_;
}

KeyedArchiverState::OpenScope::~OpenScope() {
  state_.fields_.resize(scope_.firstField);
  state_.scope_ = scope_.enclosing;
  --state_.depth_;
}

QString KeyedArchiverState::keyPath(QAnyStringView key) const {
  QStringList path;
  for (const Scope* scope = scope_->enclosing; scope; scope = scope->enclosing)
    path.prepend(scope->key.toString());
  if (!key.isNull())
    path.append(key.toString());
  return path.join('.'_L1);
}

// A key that begins with $ is told from the archive's own ones by a second $.
KeyedArchiverState::Index KeyedArchiverState::internKey(QAnyStringView key) {
  return key.visit([this](auto text) {
    if constexpr (std::is_same_v<decltype(text), QStringView>) {
      if (text.startsWith(u'$'))
        return writer.addString(QString(u'$' + text));
      return writer.addString(text);
    } else {
      const QByteArrayView bytes(text.data(), text.size());
      if (bytes.startsWith('$'))
        return writer.addUtf8(QByteArray("$" + bytes.toByteArray()));
      if constexpr (std::is_same_v<decltype(text), QLatin1StringView>)
        if (std::any_of(bytes.begin(), bytes.end(), [](char c) { return c < 0; }))
          return writer.addString(QString(text));
      return writer.addUtf8(bytes);
    }
  });
}

void KeyedArchiverState::add(QAnyStringView key, Index value) {
  const Index interned = internKey(key);
  for (auto field = fields_.begin() + std::ptrdiff_t(scope_->firstField); field != fields_.end();
       ++field)
    if (field->key == interned)
      throw InvalidArgumentException(u"the key %1 is encoded twice"_s.arg(keyPath(key)));
  addRaw(interned, value);
}

void KeyedArchiverState::addRaw(Index key, Index value) {
  if (!finished_.isNull())
    throw InvalidArgumentException(u"the archive is finished"_s);
  fields_.push_back({key, value});
}

KeyedArchiverState::Uid KeyedArchiverState::append(Index value) {
  if (objects_.size() >= KeyedArchive::MaximumObjectCount)
    throw ArchiveException(u"more than %1 objects"_s.arg(KeyedArchive::MaximumObjectCount));
  objects_.push_back(value);
  uidValues_.push_back(0);
  return Uid(objects_.size() - 1);
}

KeyedArchiverState::Index KeyedArchiverState::uidValue(Uid uid) {
  Index& value = uidValues_[uid];
  if (value == 0)
    value = writer.addUid(uid);
  return value;
}

// The place of an entry that is a plain value; equal values share one.
KeyedArchiverState::Uid KeyedArchiverState::encodeEntry(Index value) {
  if (value >= entries_.size())
    entries_.resize(std::max<std::size_t>(value + 1, entries_.size() * 2), 0);
  if (entries_[value] == 0)
    entries_[value] = append(value);
  return entries_[value];
}

void KeyedArchiverState::encode(const Any& value, QAnyStringView key) {
  scope_->key = key;
  const Uid uid = encode(value);
  add(key, uidValue(uid));
}

KeyedArchiverState::Uid KeyedArchiverState::encodeReference(const Ref<Object>& object) {
  if (!object)
    return 0;
  const auto known = places_.constFind(object.get());
  const bool isPlaced = known != places_.cend();
  if (isPlaced && known->isEncoded)
    return known->uid;
  const Uid uid = isPlaced ? known->uid : append(nothing_);
  places_.insert(object.get(), {uid, true});
  if (!isPlaced)
    held_.push_back(object);

  OpenScope scope(*this);
  object->encodeWithCoder(coder_);
  const QMetaObject& metaObject = *object->metaObject();
  const auto* placeholder = metaObject.inherits(&PlaceholderObject::staticMetaObject)
                                ? static_cast<const PlaceholderObject*>(object.get())
                                : nullptr;
  closeRecord(uid, placeholder
                       ? classUid(placeholder->archivedClassName(), placeholder->archivedClasses(),
                                  placeholder->archivedClassHints())
                       : classUid(metaObject));
  return uid;
}

// The entry of an object that is never encoded otherwise stays "$null".
KeyedArchiverState::Uid KeyedArchiverState::placeOfConditional(const Ref<Object>& object) {
  if (!object)
    return 0;
  if (const auto known = places_.constFind(object.get()); known != places_.cend())
    return known->uid;
  const Uid uid = append(nothing_);
  places_.insert(object.get(), {uid, false});
  held_.push_back(object);
  return uid;
}

void KeyedArchiverState::encodeConditional(const Ref<Object>& object, QAnyStringView key) {
  add(key, uidValue(placeOfConditional(object)));
}

void KeyedArchiverState::closeRecord(Uid uid, Uid classUid) {
  keys_.assign(1, classKey_);
  values_.assign(1, uidValue(classUid));
  for (std::size_t i = scope_->firstField; i < fields_.size(); ++i) {
    keys_.push_back(fields_[i].key);
    values_.push_back(fields_[i].value);
  }
  objects_[uid] = writer.addDictionary(keys_, values_);
}

KeyedArchiverState::Uid KeyedArchiverState::classUid(const QMetaObject& metaObject) {
  if (const auto known = classesByAddress_.constFind(&metaObject);
      known != classesByAddress_.cend())
    return *known;
  const QStringList classes = ClassRegistry::archiveClassesOf(metaObject);
  const Uid uid = classUid(classes.first(), classes);
  classesByAddress_.insert(&metaObject, uid);
  return uid;
}

KeyedArchiverState::Uid KeyedArchiverState::classUid(const QString& name,
                                                     const QStringList& classes,
                                                     const QStringList& hints) {
  const QString record = name + u'\n' + classes.join(u'\n') + u"\n\n"_s + hints.join(u'\n');
  if (const auto known = classesByRecord_.constFind(record); known != classesByRecord_.cend())
    return *known;
  const auto names = [this](const QStringList& texts) {
    std::vector<Index> elements;
    for (const QString& text : texts)
      elements.push_back(writer.addString(text));
    return writer.addArray(elements);
  };
  std::vector<Index> keys{writer.addAscii("$classname"_L1)};
  std::vector<Index> values{writer.addString(name)};
  if (!classes.isEmpty()) {
    keys.push_back(writer.addAscii("$classes"_L1));
    values.push_back(names(classes));
  }
  if (!hints.isEmpty()) {
    keys.push_back(writer.addAscii("$classhints"_L1));
    values.push_back(names(hints));
  }
  const Uid uid = append(writer.addDictionary(keys, values));
  classesByRecord_.insert(record, uid);
  return uid;
}

void KeyedArchiverState::encodeFieldsOf(const PlaceholderObject& placeholder) {
  for (const PlaceholderObject::Field& field : placeholder.fields_) {
    scope_->key = field.key;
    Index value = 0;
    if (field.form == PlaceholderObject::Form::Inline) {
      value = inlineValue(field.inlineValue);
    } else if (field.form == PlaceholderObject::Form::Reference) {
      value = uidValue(encode(field.references.front().get()));
    } else {
      std::vector<Index> elements;
      for (const PlaceholderObject::Reference& reference : field.references)
        elements.push_back(uidValue(encode(reference.get())));
      value = writer.addArray(elements);
    }
    addRaw(writer.addString(field.key), value);
  }
}

QByteArray KeyedArchiverState::finish() {
  if (!finished_.isNull())
    return finished_;
  keys_.clear();
  values_.clear();
  for (const Field& field : fields_) {
    keys_.push_back(field.key);
    values_.push_back(field.value);
  }
  const Index top = writer.addDictionary(keys_, values_);
  const Index keys[] = {writer.addAscii("$version"_L1), writer.addAscii("$objects"_L1),
                        writer.addAscii("$archiver"_L1), writer.addAscii("$top"_L1)};
  const Index values[] = {writer.addInteger(100000), writer.addArray(objects_),
                          writer.addAscii("NSKeyedArchiver"_L1), top};
  finished_ = writer.finish(writer.addDictionary(keys, values));
  return finished_;
}

QByteArray KeyedArchiver::archivedDataWithRootObject(const Any& root) {
  KeyedArchiver archiver;
  archiver.encodeObject(root, "root");
  return archiver.finishEncoding();
}

KeyedArchiver::KeyedArchiver() : state_(std::make_unique<KeyedArchiverState>(*this)) {}
KeyedArchiver::~KeyedArchiver() = default;

QByteArray KeyedArchiver::finishEncoding() {
  return state_->finish();
}

bool KeyedArchiver::allowsKeyedCoding() const {
  return true;
}

void KeyedArchiver::encodeInt(std::int32_t value, QAnyStringView forKey) {
  state_->add(forKey, state_->writer.addInteger(value));
}
void KeyedArchiver::encodeInt64(std::int64_t value, QAnyStringView forKey) {
  state_->add(forKey, state_->writer.addInteger(value));
}
void KeyedArchiver::encodeBool(bool value, QAnyStringView forKey) {
  state_->add(forKey, state_->writer.addBoolean(value));
}
void KeyedArchiver::encodeFloat(float value, QAnyStringView forKey) {
  state_->add(forKey, state_->writer.addSingle(value));
}
void KeyedArchiver::encodeDouble(double value, QAnyStringView forKey) {
  state_->add(forKey, state_->writer.addReal(value));
}
void KeyedArchiver::encodeBytes(const QByteArray& bytes, QAnyStringView forKey) {
  state_->add(forKey, state_->writer.addData(bytes));
}
void KeyedArchiver::encodePoint(QPointF point, QAnyStringView forKey) {
  state_->encode(textOfPoint(point), forKey);
}
void KeyedArchiver::encodeSize(QSizeF size, QAnyStringView forKey) {
  state_->encode(textOfSize(size), forKey);
}
void KeyedArchiver::encodeRect(const QRectF& rect, QAnyStringView forKey) {
  state_->encode(textOfRect(rect), forKey);
}
void KeyedArchiver::encodeObject(const Any& object, QAnyStringView forKey) {
  state_->encode(object, forKey);
}
void KeyedArchiver::encodeConditionalObject(const Ref<Object>& object, QAnyStringView forKey) {
  state_->encodeConditional(object, forKey);
}

QString KeyedArchiver::keyPath(QAnyStringView key) const {
  return state_->keyPath(key);
}

void KeyedArchiver::raiseUnsupported(QAnyStringView key, Operation operation) const {
  if (operation == Operation::Decode)
    throw ArchiveException(u"an archiver does not decode"_s, keyPath(key));
  Coder::raiseUnsupported(key, operation);
}

void KeyedArchiver::encodeFieldsOf(const PlaceholderObject& placeholder) {
  state_->encodeFieldsOf(placeholder);
}

} // namespace zq::platform
