// Writes keyed archives for tests as the object tables that they hold, value by value.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QVariant>

namespace zq::testing {

// A reference to the entry `index` of the object table.
QVariant U(quint32 index);

using Table = QVariantList;
using Record = QVariantMap;

// A class record with the given name and classes; NSObject is added.
Record classRecord(const QString& name, const QStringList& superclasses = {});

// A property list of any values, `U` included.
QByteArray binaryPropertyList(const QVariant& value);
QByteArray xmlPropertyList(const QVariant& value);

// The top-level dictionary of an archive with `objects` and, under "root", entry 1.
Record archiveDictionary(const Table& objects);

QByteArray binaryArchive(const Table& objects);
QByteArray xmlArchive(const Table& objects);

// A file of the golden folder.
QByteArray goldenFile(const QString& name);

} // namespace zq::testing
