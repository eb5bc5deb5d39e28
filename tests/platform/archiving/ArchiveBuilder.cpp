#include "tests/platform/archiving/ArchiveBuilder.h"

#include "zqticker/platform/archiving/PropertyListWriter_p.h"
#include "zqticker/platform/archiving/reference_date_p.h"

#include <gtest/gtest.h>

#include <QtCore/QDateTime>
#include <QtCore/QFile>
#include <QtCore/QXmlStreamWriter>

using namespace Qt::StringLiterals;

namespace zq::testing {

struct Uid {
  quint32 index;
};

} // namespace zq::testing

Q_DECLARE_METATYPE(zq::testing::Uid)

namespace zq::testing {

namespace {

using platform::PropertyListWriter;

PropertyListWriter::Index add(PropertyListWriter& writer, const QVariant& value) {
  if (value.canConvert<Uid>())
    return writer.addUid(value.value<Uid>().index);
  switch (value.typeId()) {
  case QMetaType::Bool:
    return writer.addBoolean(value.toBool());
  case QMetaType::Int:
  case QMetaType::LongLong:
    return writer.addInteger(value.toLongLong());
  case QMetaType::ULongLong:
    return writer.addUnsigned(value.toULongLong());
  case QMetaType::Float:
    return writer.addSingle(value.toFloat());
  case QMetaType::Double:
    return writer.addReal(value.toDouble());
  case QMetaType::QByteArray:
    return writer.addData(value.toByteArray());
  case QMetaType::QDateTime:
    return writer.addDate(platform::secondsOfDate(value.toDateTime()));
  case QMetaType::QVariantList: {
    std::vector<PropertyListWriter::Index> elements;
    for (const QVariant& element : value.toList())
      elements.push_back(add(writer, element));
    return writer.addArray(elements);
  }
  case QMetaType::QVariantMap: {
    std::vector<PropertyListWriter::Index> keys;
    std::vector<PropertyListWriter::Index> values;
    const QVariantMap map = value.toMap();
    for (auto pair = map.begin(); pair != map.end(); ++pair) {
      keys.push_back(writer.addString(pair.key()));
      values.push_back(add(writer, pair.value()));
    }
    return writer.addDictionary(keys, values);
  }
  default:
    return writer.addString(value.toString());
  }
}

void write(QXmlStreamWriter& xml, const QVariant& value) {
  if (value.canConvert<Uid>()) {
    xml.writeStartElement(u"dict"_s);
    xml.writeTextElement(u"key"_s, u"CF$UID"_s);
    xml.writeTextElement(u"integer"_s, QString::number(value.value<Uid>().index));
    xml.writeEndElement();
    return;
  }
  switch (value.typeId()) {
  case QMetaType::Bool:
    xml.writeEmptyElement(value.toBool() ? u"true"_s : u"false"_s);
    break;
  case QMetaType::Int:
  case QMetaType::LongLong:
  case QMetaType::ULongLong:
    xml.writeTextElement(u"integer"_s, value.toString());
    break;
  case QMetaType::Float:
  case QMetaType::Double:
    xml.writeTextElement(u"real"_s, QString::number(value.toDouble(), 'g', 17));
    break;
  case QMetaType::QByteArray:
    xml.writeTextElement(u"data"_s, QString::fromLatin1(value.toByteArray().toBase64()));
    break;
  case QMetaType::QDateTime:
    xml.writeTextElement(u"date"_s, value.toDateTime().toUTC().toString(Qt::ISODate));
    break;
  case QMetaType::QVariantList:
    xml.writeStartElement(u"array"_s);
    for (const QVariant& element : value.toList())
      write(xml, element);
    xml.writeEndElement();
    break;
  case QMetaType::QVariantMap: {
    xml.writeStartElement(u"dict"_s);
    const QVariantMap map = value.toMap();
    for (auto pair = map.begin(); pair != map.end(); ++pair) {
      xml.writeTextElement(u"key"_s, pair.key());
      write(xml, pair.value());
    }
    xml.writeEndElement();
    break;
  }
  default:
    xml.writeTextElement(u"string"_s, value.toString());
  }
}

} // namespace

QVariant U(quint32 index) {
  return QVariant::fromValue(Uid{index});
}

Record classRecord(const QString& name, const QStringList& superclasses) {
  QVariantList classes{name};
  for (const QString& superclass : superclasses)
    classes.append(superclass);
  classes.append(u"NSObject"_s);
  return {{u"$classname"_s, name}, {u"$classes"_s, classes}};
}

QByteArray binaryPropertyList(const QVariant& value) {
  PropertyListWriter writer;
  return writer.finish(add(writer, value));
}

QByteArray xmlPropertyList(const QVariant& value) {
  QByteArray text;
  QXmlStreamWriter xml(&text);
  xml.writeStartDocument();
  xml.writeStartElement(u"plist"_s);
  xml.writeAttribute(u"version"_s, u"1.0"_s);
  write(xml, value);
  xml.writeEndDocument();
  return text;
}

Record archiveDictionary(const Table& objects) {
  return {{u"$archiver"_s, u"NSKeyedArchiver"_s},
          {u"$version"_s, 100000},
          {u"$objects"_s, objects},
          {u"$top"_s, Record{{u"root"_s, U(1)}}}};
}

QByteArray binaryArchive(const Table& objects) {
  return binaryPropertyList(archiveDictionary(objects));
}

QByteArray xmlArchive(const Table& objects) {
  return xmlPropertyList(archiveDictionary(objects));
}

QByteArray goldenFile(const QString& name) {
  QFile file(QStringLiteral(ZQTICKER_SOURCE_DIR "/tests/platform/archiving/golden/") + name);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(file.fileName());
  return file.readAll();
}

} // namespace zq::testing
