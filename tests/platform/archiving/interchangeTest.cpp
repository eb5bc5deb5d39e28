// Archives written here, read by Python's plistlib, and the same archives as XML, read back here.
#include "tests/platform/archiving/ArchiveBuilder.h"
#include "zqticker/platform/archiving/KeyedArchiver.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/platform/text/text_attributes.h"

#include <gtest/gtest.h>

#include <QtCore/QDateTime>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>
#include <QtCore/QStandardPaths>
#include <QtCore/QUrl>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {

// What python3 prints for `script` with `input` on its standard input.
QByteArray python(const QString& script, const QByteArray& input) {
  QProcess process;
  process.start(u"python3"_s, {u"-c"_s, script});
  process.write(input);
  process.closeWriteChannel();
  EXPECT_TRUE(process.waitForFinished());
  EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().constData();
  return process.readAllStandardOutput();
}

bool hasPython() {
  return !QStandardPaths::findExecutable(u"python3"_s).isEmpty();
}

Any sample() {
  const auto text = AttributedString::make(
      u"grüß 𝄞"_s, {{FontAttributeName, any(Font::fontWithName(u"DejaVuSans"_s, 12))},
                    {ForegroundColorAttributeName, any(Color::deviceRGB(0.25, 0.5, 0.75, 0.5))}});
  return QVariantMap{{u"text"_s, any(text)},
                     {u"list"_s, QVariantList{1LL, -5LL, 0.1, 0.1F, true, QByteArray("a\0b", 3)}},
                     {u"large"_s, std::numeric_limits<qulonglong>::max()},
                     {u"long"_s, QString(70000, u'x')},
                     {u"date"_s, QDateTime(QDate(2000, 12, 31), QTime(0, 0), Qt::UTC)},
                     {u"url"_s, QUrl(u"https://example.org/"_s)},
                     {u"null"_s, Any::fromValue(nullptr)},
                     {u"nil"_s, u"$null"_s}};
}

} // namespace

TEST(Interchange, PythonReadsTheSameObjects) {
  if (!hasPython())
    GTEST_SKIP() << "python3, whose plistlib is the other reader, is not installed";
  const QByteArray printed = python(uR"(
import json, plistlib, sys
archive = plistlib.loads(sys.stdin.buffer.read())
objects = archive["$objects"]
def plain(value):
    if isinstance(value, plistlib.UID):
        return plain(objects[value.data])
    if isinstance(value, dict):
        if "NS.keys" in value:
            return {plain(k): plain(v) for k, v in zip(value["NS.keys"], value["NS.objects"])}
        if "NS.objects" in value:
            return [plain(v) for v in value["NS.objects"]]
        if "$classname" in value:
            return value["$classname"]
        return {k: plain(v) for k, v in value.items()}
    if isinstance(value, bytes):
        return "hex " + value.hex()
    return value
print(json.dumps([archive["$archiver"], archive["$version"], objects[0],
                  plain(archive["$top"]["root"])]))
)"_s,
                                    KeyedArchiver::archivedDataWithRootObject(sample()));
  const QJsonArray archive = QJsonDocument::fromJson(printed).array();
  EXPECT_EQ(archive[0].toString(), u"NSKeyedArchiver"_s);
  EXPECT_EQ(archive[1].toInt(), 100000);
  EXPECT_EQ(archive[2].toString(), u"$null"_s);
  const QJsonObject root = archive[3].toObject();
  EXPECT_EQ(root[u"list"_s].toArray(),
            (QJsonArray{1, -5, 0.1, double(0.1F), true, u"hex 610062"_s}));
  EXPECT_TRUE(printed.contains("18446744073709551615"));
  EXPECT_EQ(root[u"long"_s].toString().size(), 70000);
  EXPECT_EQ(root[u"date"_s].toObject(),
            (QJsonObject{{u"$class"_s, u"NSDate"_s}, {u"NS.time"_s, -86400.0}}));
  EXPECT_EQ(root[u"url"_s].toObject()[u"NS.relative"_s].toString(), u"https://example.org/"_s);
  EXPECT_EQ(root[u"null"_s].toObject(), (QJsonObject{{u"$class"_s, u"NSNull"_s}}));
  EXPECT_EQ(root[u"nil"_s].toObject()[u"NS.string"_s].toString(), u"$null"_s);
  const QJsonObject text = root[u"text"_s].toObject();
  EXPECT_EQ(text[u"$class"_s].toString(), u"NSAttributedString"_s);
  EXPECT_EQ(text[u"NSString"_s].toString(), u"grüß 𝄞"_s);
  const QJsonObject attributes = text[u"NSAttributes"_s].toObject();
  EXPECT_EQ(attributes[u"NSFont"_s].toObject()[u"NSName"_s].toString(), u"DejaVuSans"_s);
  EXPECT_EQ(attributes[u"NSFont"_s].toObject()[u"NSSize"_s].toDouble(), 12);
  EXPECT_EQ(attributes[u"NSColor"_s].toObject()[u"NSColorSpace"_s].toInt(), 2);
}

TEST(Interchange, WhatPythonWritesAgainReadsEqualInBothEncodings) {
  if (!hasPython())
    GTEST_SKIP() << "python3, whose plistlib is the other writer, is not installed";
  const QByteArray archive = KeyedArchiver::archivedDataWithRootObject(sample());
  for (const char* format : {"FMT_BINARY", "FMT_XML"}) {
    const QByteArray again =
        python(u"import plistlib, sys\n"
               "def plain(value):\n"
               "    if isinstance(value, plistlib.UID):\n"
               "        return {'CF$UID': value.data}\n"
               "    if isinstance(value, dict):\n"
               "        return {key: plain(item) for key, item in value.items()}\n"
               "    return [plain(item) for item in value] if isinstance(value, list) else value\n"
               "data = plistlib.loads(sys.stdin.buffer.read())\n"
               "if plistlib.%1 == plistlib.FMT_XML:\n"
               "    data = plain(data)\n"
               "sys.stdout.buffer.write(plistlib.dumps(data, fmt=plistlib.%1))\n"_s.arg(
                   QLatin1StringView(format)),
               archive);
    const Any value = KeyedUnarchiver::unarchiveObjectWithData(again);
    QVariantMap expected = sample().toMap();
    if (QByteArrayView(format) == "FMT_XML") {
      // XML knows one width of reals only.
      QVariantList list = expected[u"list"_s].toList();
      list[3] = double(0.1F);
      expected[u"list"_s] = list;
    }
    EXPECT_TRUE(isEqualValue(value, Any(expected))) << format;
  }
}
