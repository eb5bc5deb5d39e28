#include "app/commands/ArchiveCommand.h"

#include "app/commands/failures.h"
#include "tests/platform/archiving/ArchiveBuilder.h"
#include "zqticker/platform/archiving/PropertyListWriter_p.h"

#include <gtest/gtest.h>

#include <QtCore/QBuffer>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace zq::testing;

namespace {

struct Outcome {
  int status;
  QByteArray output;
  QByteArray errors;
};

Outcome run(const QStringList& arguments, const QByteArray& input = {}) {
  QBuffer in;
  in.setData(input);
  in.open(QIODevice::ReadOnly);
  QBuffer out;
  out.open(QIODevice::WriteOnly);
  QBuffer errors;
  errors.open(QIODevice::WriteOnly);
  const int status = zq::app::archiveCommand(arguments, in, out, errors);
  return {status, out.data(), errors.data()};
}

QString golden(const char* name) {
  return QStringLiteral(ZQTICKER_SOURCE_DIR "/tests/platform/archiving/golden/") +
         QString::fromLatin1(name);
}

QJsonObject jsonOf(const QString& file) {
  const Outcome result = run({u"--json"_s, file});
  EXPECT_EQ(result.status, 0) << result.errors.constData();
  QJsonParseError error;
  const QJsonDocument document = QJsonDocument::fromJson(result.output, &error);
  EXPECT_EQ(error.error, QJsonParseError::NoError) << result.output.constData();
  return document.object();
}

QJsonObject jsonOfTable(const Table& objects) {
  const Outcome result = run({u"--json"_s, u"-"_s}, binaryArchive(objects));
  EXPECT_EQ(result.status, 0) << result.errors.constData();
  return QJsonDocument::fromJson(result.output).object();
}

QByteArray treeOfTable(const Table& objects) {
  const Outcome result = run({u"-"_s}, binaryArchive(objects));
  EXPECT_EQ(result.status, 0) << result.errors.constData();
  return result.output;
}

void expectRefused(const QByteArray& archive, const char* reason) {
  const Outcome result = run({u"-"_s}, archive);
  EXPECT_EQ(result.status, 1) << reason;
  EXPECT_TRUE(result.output.isEmpty());
  EXPECT_TRUE(result.errors.startsWith("zqticker archive: standard input: "))
      << result.errors.constData();
  EXPECT_TRUE(result.errors.contains(reason)) << result.errors.constData();
  EXPECT_EQ(result.errors.count('\n'), 1);
}

} // namespace

TEST(ArchiveCommand, PrintsAString) {
  EXPECT_EQ(run({golden("string-utf16.archive")}).output, "root: \"grüß 𝄞\" (7 code units)\n");
  EXPECT_EQ(jsonOf(golden("string-utf16.archive"))[u"root"_s].toString(), u"grüß 𝄞"_s);
}

TEST(ArchiveCommand, PrintsUnknownClassesWithAllTheirValues) {
  const QJsonObject probe = jsonOf(golden("probe.archive"))[u"root"_s].toObject();
  EXPECT_EQ(probe[u"$class"_s].toString(), u"Probe"_s);
  EXPECT_EQ(probe[u"$classes"_s].toArray(), (QJsonArray{u"Probe"_s, u"NSObject"_s}));
  EXPECT_EQ(probe[u"int"_s].toInt(), -5);
  EXPECT_EQ(probe[u"minusOne"_s].toInt(), -1);
  EXPECT_EQ(probe[u"big"_s].toInt(), 705032704);
  EXPECT_EQ(probe[u"int32"_s].toInt(), 70000);
  EXPECT_EQ(probe[u"int64"_s].toInteger(), 5000000000);
  EXPECT_EQ(probe[u"integer"_s].toInt(), 42);
  EXPECT_EQ(probe[u"yes"_s], QJsonValue(true));
  EXPECT_EQ(probe[u"no"_s], QJsonValue(false));
  EXPECT_EQ(probe[u"float"_s].toDouble(), 0.10000000149011612);
  EXPECT_EQ(probe[u"double"_s].toDouble(), 0.1);
  EXPECT_EQ(probe[u"bytes"_s].toObject()[u"$hex"_s].toString(), u"616263"_s);
  EXPECT_EQ(probe[u"bytes"_s].toObject()[u"$text"_s].toString(), u"abc"_s);
  EXPECT_EQ(probe[u"point"_s].toString(), u"{1, 2.5}"_s);
  EXPECT_EQ(probe[u"size"_s].toString(), u"{100, 20}"_s);
  EXPECT_EQ(probe[u"rect"_s].toString(), u"{{0, -1.25}, {100, 0.1}}"_s);
  EXPECT_TRUE(probe.contains(u"nil"_s) && probe[u"nil"_s].isNull());
  EXPECT_TRUE(probe.contains(u"conditional"_s) && probe[u"conditional"_s].isNull());
  EXPECT_EQ(probe[u"$dollar"_s].toString(), u"escaped"_s);
}

TEST(ArchiveCommand, MarksCyclesByTheNumberOfTheObject) {
  const QJsonObject probe = jsonOf(golden("probe.archive"))[u"root"_s].toObject();
  EXPECT_EQ(probe[u"$id"_s].toInt(), 1);
  EXPECT_EQ(probe[u"self"_s].toObject(), (QJsonObject{{u"$ref"_s, 1}}));
  EXPECT_TRUE(run({golden("probe.archive")}).output.contains("\n  self: -> #1\n"));
}

TEST(ArchiveCommand, PrintsSizesOfDataForPeopleAndBytesForPrograms) {
  EXPECT_TRUE(
      run({golden("probe.archive")}).output.contains("\n  bytes: data of 3.0 B 616263 \"abc\"\n"));
  const QByteArray data(1536, '\x01');
  EXPECT_TRUE(treeOfTable({u"$null"_s, data}).contains("data of 1.5 KB 0101010101"));
  EXPECT_EQ(jsonOfTable({u"$null"_s, data})[u"root"_s].toObject()[u"$hex"_s].toString(),
            QString::fromLatin1(data.toHex()));
}

TEST(ArchiveCommand, PrintsXmlArchivesLikeBinaryOnes) {
  const QJsonObject probe = jsonOf(golden("probe.xml.archive"))[u"root"_s].toObject();
  QJsonObject binary = jsonOf(golden("probe.archive"))[u"root"_s].toObject();
  // The XML form has the single-precision number in its shortest digits.
  binary[u"float"_s] = 0.1;
  EXPECT_EQ(probe, binary);
}

TEST(ArchiveCommand, PrintsTheRunsOfAnAttributedString) {
  const QJsonObject value =
      jsonOf(golden("attr-three-runs.archive"))[u"root"_s].toObject()[u"$value"_s].toObject();
  EXPECT_EQ(value[u"string"_s].toString(), u"abcdef"_s);
  const auto attributes = [](int mark) {
    return mark ? QJsonObject{{u"mark"_s, mark}} : QJsonObject{};
  };
  const auto runOf = [&](int location, int length, int mark) {
    return QJsonObject{
        {u"location"_s, location}, {u"length"_s, length}, {u"attributes"_s, attributes(mark)}};
  };
  EXPECT_EQ(value[u"runs"_s].toArray(),
            (QJsonArray{runOf(0, 1, 0), runOf(1, 2, 1), runOf(3, 3, 0)}));
}

TEST(ArchiveCommand, PrintsColoursFontsAndShadowsByValue) {
  const auto value = [](const char* name) {
    return jsonOf(golden(name))[u"root"_s].toObject()[u"$value"_s].toObject();
  };
  const QJsonObject color = value("color-device-rgb-alpha.archive");
  EXPECT_EQ(color[u"space"_s].toString(), u"DeviceRGB"_s);
  EXPECT_EQ(color[u"components"_s].toArray(), (QJsonArray{0.25, 0.5, 0.75, 0.5}));
  EXPECT_EQ(color[u"alpha"_s].toDouble(), 0.5);
  EXPECT_EQ(value("font.archive"), (QJsonObject{{u"name"_s, u"DejaVuSans"_s}, {u"size"_s, 12.0}}));
  const QJsonObject shadow = value("shadow.archive");
  EXPECT_EQ(shadow[u"offset"_s].toArray(), (QJsonArray{1.0, -2.0}));
  EXPECT_EQ(shadow[u"blurRadius"_s].toDouble(), 3.0);
  const QJsonObject shade = shadow[u"color"_s].toObject()[u"$value"_s].toObject();
  EXPECT_EQ(shade[u"components"_s].toArray(), (QJsonArray{0.0, 0.5}));
}

TEST(ArchiveCommand, PrintsListsAndDictionaries) {
  const QJsonObject root =
      jsonOfTable(
          {u"$null"_s,
           Record{{u"NS.keys"_s, Table{U(2)}}, {u"NS.objects"_s, Table{U(3)}}, {u"$class"_s, U(5)}},
           u"list"_s, Record{{u"NS.objects"_s, Table{U(4), U(4), U(3)}}, {u"$class"_s, U(6)}},
           u"a"_s, classRecord(u"NSDictionary"_s), classRecord(u"NSArray"_s)})[u"root"_s]
          .toObject();
  const QJsonObject list = root[u"$entries"_s].toObject()[u"list"_s].toObject();
  EXPECT_EQ(list[u"$class"_s].toString(), u"NSArray"_s);
  EXPECT_EQ(list[u"$elements"_s].toArray(),
            (QJsonArray{u"a"_s, u"a"_s, QJsonObject{{u"$ref"_s, 3}}}));
}

TEST(ArchiveCommand, PrintsDictionariesWithOtherKeysAsPairs) {
  const QJsonObject root =
      jsonOfTable(
          {u"$null"_s,
           Record{{u"NS.keys"_s, Table{U(2)}}, {u"NS.objects"_s, Table{U(3)}}, {u"$class"_s, U(4)}},
           7, u"seven"_s, classRecord(u"NSDictionary"_s)})[u"root"_s]
          .toObject();
  EXPECT_EQ(root[u"$entries"_s].toArray(),
            (QJsonArray{QJsonObject{{u"key"_s, 7}, {u"value"_s, u"seven"_s}}}));
}

TEST(ArchiveCommand, PrintsTheMeaningOfValueClasses) {
  const QJsonObject root =
      jsonOfTable({u"$null"_s, Record{{u"NS.time"_s, -86400.0}, {u"$class"_s, U(2)}},
                   classRecord(u"NSDate"_s)})[u"root"_s]
          .toObject();
  EXPECT_EQ(root[u"$value"_s].toString(), u"2000-12-31T00:00:00.000Z"_s);
}

TEST(ArchiveCommand, IntegersAreExact) {
  const QByteArray tree = treeOfTable({u"$null"_s,
                                       Record{{u"a"_s, std::numeric_limits<qint64>::min()},
                                              {u"b"_s, std::numeric_limits<quint64>::max()},
                                              {u"c"_s, 12.0},
                                              {u"$class"_s, U(2)}},
                                       classRecord(u"X"_s)});
  EXPECT_TRUE(tree.contains("  a: -9223372036854775808\n"));
  EXPECT_TRUE(tree.contains("  b: 18446744073709551615\n"));
  EXPECT_TRUE(tree.contains("  c: 12.0\n"));
}

TEST(ArchiveCommand, WhatIsNoNumberIsAText) {
  const QJsonObject root =
      jsonOfTable({u"$null"_s, Record{{u"a"_s, qQNaN()}, {u"b"_s, -qInf()}, {u"$class"_s, U(2)}},
                   classRecord(u"X"_s)})[u"root"_s]
          .toObject();
  EXPECT_EQ(root[u"a"_s].toString(), u"nan"_s);
  EXPECT_EQ(root[u"b"_s].toString(), u"-inf"_s);
}

TEST(ArchiveCommand, EscapesLoneSurrogatesAndControlCharacters) {
  const QString text = QString(QChar(0xD834)) + u"\x1b\"\\\n\u2028"_s;
  EXPECT_EQ(treeOfTable({u"$null"_s, text}),
            "root: \"\\ud834\\u001b\\\"\\\\\\n\\u2028\" (6 code units)\n");
}

TEST(ArchiveCommand, AKeyLikeThePrintersOwnKeepsItsSecondDollar) {
  const QJsonObject root =
      jsonOfTable({u"$null"_s, Record{{u"$$class"_s, U(2)}, {u"$class"_s, U(3)}}, u"mine"_s,
                   classRecord(u"X"_s)})[u"root"_s]
          .toObject();
  EXPECT_EQ(root[u"$class"_s].toString(), u"X"_s);
  EXPECT_EQ(root[u"$$class"_s].toString(), u"mine"_s);
}

TEST(ArchiveCommand, ObjectsVeryDeepStandAtTheEnd) {
  Table objects{u"$null"_s};
  constexpr int Length = 5000;
  for (int i = 1; i < Length; ++i)
    objects.append(Record{{u"next"_s, U(quint32(i) + 1)}, {u"$class"_s, U(Length + 1)}});
  objects.append(Record{{u"last"_s, true}, {u"$class"_s, U(Length + 1)}});
  objects.append(classRecord(u"Link"_s));
  const QJsonArray deeper = jsonOfTable(objects)[u"$deeper"_s].toArray();
  ASSERT_EQ(deeper.size(), 49);
  EXPECT_EQ(deeper[0].toObject()[u"$id"_s].toInt(), 101);
}

TEST(ArchiveCommand, SharedContainersDoNotExpandWithoutEnd) {
  // 60 arrays, each holding the next one twice.
  zq::platform::PropertyListWriter writer;
  auto array = writer.addArray({});
  for (int i = 0; i < 60; ++i) {
    const zq::platform::PropertyListWriter::Index twice[] = {array, array};
    array = writer.addArray(twice);
  }
  const auto rootKey = writer.addString(u"root");
  const auto null = writer.addString(u"$null");
  const zq::platform::PropertyListWriter::Index keys[] = {
      writer.addString(u"$archiver"), writer.addString(u"$version"), writer.addString(u"$objects"),
      writer.addString(u"$top")};
  const zq::platform::PropertyListWriter::Index values[] = {
      writer.addString(u"NSKeyedArchiver"), writer.addInteger(100000), writer.addArray({&null, 1}),
      writer.addDictionary({&rootKey, 1}, {&array, 1})};
  expectRefused(writer.finish(writer.addDictionary(keys, values)),
                "expands to more than its size allows");
}

TEST(ArchiveCommand, TwoRunsPrintTheSame) {
  EXPECT_EQ(run({u"--json"_s, golden("probe.archive")}).output,
            run({u"--json"_s, golden("probe.archive")}).output);
}

TEST(ArchiveCommand, SeveralFilesAreNamed) {
  const Outcome trees = run({golden("font.archive"), golden("string-utf16.archive")});
  EXPECT_EQ(trees.status, 0);
  EXPECT_TRUE(trees.output.contains("font.archive:\nroot: NSFont"));
  const Outcome json = run({u"--json"_s, golden("font.archive"), golden("string-utf16.archive")});
  const QJsonArray list = QJsonDocument::fromJson(json.output).array();
  ASSERT_EQ(list.size(), 2);
  EXPECT_EQ(list[1].toObject()[u"$archive"_s].toObject()[u"root"_s].toString(), u"grüß 𝄞"_s);
}

TEST(ArchiveCommand, ABadFileIsOneLineAndTheGoodOnesArePrinted) {
  const Outcome result = run({u"/nonexistent/file"_s, golden("font.archive")});
  EXPECT_EQ(result.status, 1);
  EXPECT_TRUE(result.errors.startsWith("zqticker archive: /nonexistent/file: "));
  EXPECT_EQ(result.errors.count('\n'), 1);
  EXPECT_TRUE(result.output.contains("NSFont"));
}

TEST(ArchiveCommand, AFolderIsRefused) {
  QTemporaryDir folder;
  const Outcome result = run({folder.path()});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.errors, "zqticker archive: " + folder.path().toUtf8() + ": is a folder\n");
}

TEST(ArchiveCommand, RefusesAWrongCommandLine) {
  EXPECT_THROW(run({}), zq::app::UsageError);
  EXPECT_THROW(run({u"--yaml"_s, u"x"_s}), zq::app::UsageError);
  try {
    run({u"--json"_s});
    ADD_FAILURE();
  } catch (const zq::app::UsageError& error) {
    EXPECT_EQ(error.message(), u"FILE: missing (see zqticker archive --help)"_s);
  }
}

TEST(ArchiveCommand, HelpSaysWhatItPrints) {
  const QString help = zq::app::helpText(zq::app::archiveTable());
  EXPECT_TRUE(help.startsWith("Usage: zqticker archive [OPTION]... FILE...\n"_L1));
  for (const QString& key : {u"$class"_s, u"$ref"_s, u"$hex"_s, u"$deeper"_s})
    EXPECT_TRUE(help.contains(key)) << key.toStdString();
}

TEST(ArchiveCommand, TwoDashesEndTheOptions) {
  EXPECT_EQ(run({u"--"_s, u"--json"_s}).status, 1);
}

TEST(ArchiveCommand, RefusesBrokenArchivesWithTheReason) {
  expectRefused({}, "empty");
  expectRefused("hello", "not a property list");
  expectRefused(binaryPropertyList(QVariantMap{{u"a"_s, 1}}), "not a keyed archive");
  expectRefused(binaryArchive({u"$null"_s}), "root: the reference 1 leads outside");
  expectRefused(binaryArchive({u"$null"_s, Record{{u"a"_s, 1}}}), "root: the entry 1 is no object");
  expectRefused(binaryArchive({u"$null"_s, Record{{u"$class"_s, U(2)}}, u"x"_s}),
                "no class record");
  expectRefused(
      binaryArchive({u"$null"_s, Record{{u"NS.objects"_s, Table{U(99)}}, {u"$class"_s, U(2)}},
                     classRecord(u"NSArray"_s)}),
      "root: the reference 99 leads outside");
  expectRefused(binaryArchive({u"$null"_s,
                               Record{{u"NSString"_s, U(2)},
                                      {u"NSAttributes"_s, U(3)},
                                      {u"NSAttributeInfo"_s, U(4)},
                                      {u"$class"_s, U(5)}},
                               u"ab"_s, Record{{u"NS.objects"_s, Table{}}, {u"$class"_s, U(6)}},
                               QByteArray("\x01\x05"), classRecord(u"NSAttributedString"_s),
                               classRecord(u"NSArray"_s)}),
                "root.NSAttributeInfo: ");
  expectRefused(binaryArchive({u"$null"_s, Record{{u"NSColorSpace"_s, 77}, {u"$class"_s, U(2)}},
                               classRecord(u"NSColor"_s)}),
                "77");
}
