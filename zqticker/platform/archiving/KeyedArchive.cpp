#include "zqticker/platform/archiving/KeyedArchive.h"

#include "zqticker/platform/objects/Exception.h"

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {

using Kind = PropertyList::Kind;

constexpr std::int64_t Version = 100000;

PropertyList::Index member(const PropertyList& list, QLatin1StringView key, Kind kind) {
  const auto found = list.find(list.top(), key);
  if (!found)
    throw ArchiveException(u"not a keyed archive: %1 is missing"_s.arg(key));
  if (list.kind(*found) != kind)
    throw ArchiveException(u"not a keyed archive: %1 is of a wrong type"_s.arg(key));
  return *found;
}

QStringList strings(const PropertyList& list, std::optional<PropertyList::Index> array) {
  QStringList texts;
  if (!array || list.kind(*array) != Kind::Array)
    return texts;
  for (std::uint32_t i = 0; i < list.count(*array); ++i)
    if (const auto element = list.element(*array, i); list.kind(element) == Kind::String)
      texts.append(list.string(element));
  return texts;
}

} // namespace

KeyedArchive::KeyedArchive(const QByteArray& data) : list_(PropertyList::fromData(data)) {
  if (list_.kind(list_.top()) != Kind::Dictionary)
    throw ArchiveException(u"not a keyed archive: the top value is no dictionary"_s);
  const auto archiver = member(list_, "$archiver"_L1, Kind::String);
  if (!list_.isString(archiver, "NSKeyedArchiver"_L1))
    throw ArchiveException(
        u"not a keyed archive: written by %1"_s.arg(list_.string(archiver).left(80)));
  const auto version = member(list_, "$version"_L1, Kind::Integer);
  if (list_.integer(version) != Version || list_.isUnsigned(version))
    throw ArchiveException(
        u"not a keyed archive: the version is %1 instead of %2"_s.arg(list_.integer(version))
            .arg(Version));
  objects_ = member(list_, "$objects"_L1, Kind::Array);
  top_ = member(list_, "$top"_L1, Kind::Dictionary);
  if (objectCount() > MaximumObjectCount)
    throw ArchiveException(
        u"the archive holds %1 objects, more than %2"_s.arg(objectCount()).arg(MaximumObjectCount));
}

KeyedArchive::Entry KeyedArchive::entry(std::uint32_t uid) const {
  const PropertyList::Index value = object(uid);
  switch (list_.kind(value)) {
  case Kind::String:
    return list_.isString(value, "$null"_L1) ? Entry::Nothing : Entry::String;
  case Kind::Boolean:
  case Kind::Integer:
  case Kind::Real:
    return Entry::Number;
  case Kind::Data:
    return Entry::Data;
  case Kind::Date:
    return Entry::Date;
  case Kind::Dictionary:
    if (list_.find(value, "$class"_L1))
      return Entry::Record;
    return list_.find(value, "$classname"_L1) ? Entry::Class : Entry::Invalid;
  default:
    return Entry::Invalid;
  }
}

std::uint32_t KeyedArchive::classUidOf(PropertyList::Index record) const {
  const auto reference = list_.find(record, "$class"_L1);
  if (!reference)
    throw ArchiveException(u"an object without a class"_s);
  if (list_.kind(*reference) != Kind::Uid)
    throw ArchiveException(u"the class of an object is no reference"_s);
  const std::uint32_t uid = list_.uid(*reference);
  if (uid >= objectCount())
    throw ArchiveException(
        u"the class %1 is outside the table of %2 objects"_s.arg(uid).arg(objectCount()));
  if (entry(uid) != Entry::Class)
    throw ArchiveException(u"the class of an object, %1, is no class record"_s.arg(uid));
  return uid;
}

KeyedArchive::Class KeyedArchive::classAt(std::uint32_t uid) const {
  const PropertyList::Index record = object(uid);
  const auto name = list_.find(record, "$classname"_L1);
  if (!name || list_.kind(*name) != Kind::String)
    throw ArchiveException(u"a class record without a class name"_s);
  return {list_.string(*name), strings(list_, list_.find(record, "$classes"_L1)),
          strings(list_, list_.find(record, "$classhints"_L1))};
}

QString KeyedArchive::unescapedKey(const QString& key) {
  return key.startsWith("$$"_L1) ? key.mid(1) : key;
}

} // namespace zq::platform
