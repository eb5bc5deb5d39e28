// The outer structure of a keyed archive, looked at without making any object.
#pragma once

#include "zqticker/platform/archiving/PropertyList.h"

#include <QtCore/QStringList>

namespace zq::platform {

// A keyed archive whose outer structure has been checked: an object table and the values of the
// top level. What the entries hold is checked when it is asked for.
class ZQTICKER_EXPORT KeyedArchive {
 public:
  // What an entry of the object table is.
  enum class Entry {
    Nothing, // the text "$null"
    String,
    Number, // integer, real or boolean
    Data,
    Date,
    Record, // an object's values by key, with its class
    Class,  // a class record
    Invalid // none of these
  };

  // What a class record says.
  struct Class {
    QString name;
    // The class and its superclasses; as the file says, so it may be short or wrong.
    QStringList classes;
    // Classes to try where `name` is unknown.
    QStringList hints;
  };

  // The most entries that an object table may have.
  static constexpr std::uint32_t MaximumObjectCount = 1U << 24;

  // Raises ArchiveException where `data` is no property list or no keyed archive.
  explicit KeyedArchive(const QByteArray& data);

  const PropertyList& list() const { return list_; }

  // The dictionary of the values encoded at the outermost level.
  PropertyList::Index top() const { return top_; }

  std::uint32_t objectCount() const { return list_.count(objects_); }
  // The value of the entry `uid`, which must be below objectCount.
  PropertyList::Index object(std::uint32_t uid) const { return list_.element(objects_, uid); }
  Entry entry(std::uint32_t uid) const;

  // The index of the class record of a record. Raises ArchiveException where `$class` is missing,
  // no UID, outside the table, or leads to something else.
  std::uint32_t classUidOf(PropertyList::Index record) const;
  // Reads a class record.
  Class classAt(std::uint32_t uid) const;

  // A key as the object knows it: without the $ that archives put before another one.
  static QString unescapedKey(const QString& key);

 private:
  PropertyList list_;
  PropertyList::Index objects_ = 0;
  PropertyList::Index top_ = 0;
};

} // namespace zq::platform
