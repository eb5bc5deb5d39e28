// How records of the value classes read, and what plain values are written as.
#include "zqticker/platform/archiving/IndexSet.h"
#include "zqticker/platform/archiving/KeyedArchiver.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"

#include "tests/platform/archiving/ArchiveBuilder.h"
#include "zqticker/platform/archiving/seven_bit_groups.h"
#include "zqticker/platform/objects/Exception.h"

#include <gtest/gtest.h>

#include <QtCore/QDateTime>
#include <QtCore/QLocale>
#include <QtCore/QMargins>
#include <QtCore/QTimeZone>
#include <QtCore/QUrl>
#include <QtCore/QUuid>

#include <cmath>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {

// The root, a record of `className`, read from the binary and the XML form.
Any read(const QString& className, Record record, const Table& moreObjects = {}) {
  record.insert(u"$class"_s, U(2));
  const Table objects = Table{u"$null"_s, record, classRecord(className)} + moreObjects;
  const Any binary = KeyedUnarchiver::unarchiveObjectWithData(binaryArchive(objects));
  const Any xml = KeyedUnarchiver::unarchiveObjectWithData(xmlArchive(objects));
  EXPECT_TRUE(isEqualValue(binary, xml) || binary != binary);
  return binary;
}

void expectRefused(const QString& className, const Record& record, const Table& moreObjects,
                   const char* words) {
  try {
    read(className, record, moreObjects);
    ADD_FAILURE() << "was read; expected: " << words;
  } catch (const ArchiveException& exception) {
    EXPECT_TRUE(exception.reason().contains(QLatin1StringView(words))) << exception.what();
    EXPECT_TRUE(exception.keyPath().startsWith("root"_L1)) << exception.what();
  }
}

Any roundTrip(const Any& value) {
  return KeyedUnarchiver::unarchiveObjectWithData(KeyedArchiver::archivedDataWithRootObject(value));
}

void expectRoundTrip(const Any& value) {
  const Any result = roundTrip(value);
  EXPECT_EQ(result.metaType(), value.metaType()) << value.typeName();
  EXPECT_TRUE(isEqualValue(result, value)) << value.typeName();
}

// What `value` is archived as, by class name; empty where it is an entry of its own.
QString classWrittenFor(const Any& value) {
  const KeyedArchive archive(KeyedArchiver::archivedDataWithRootObject(value));
  if (archive.entry(1) != KeyedArchive::Entry::Record)
    return {};
  return archive.classAt(archive.classUidOf(archive.object(1))).classes.join(u' ');
}

} // namespace

TEST(ValueClasses, StringsHaveFourForms) {
  EXPECT_EQ(read(u"NSMutableString"_s, {{u"NS.string"_s, u"m"_s}}), Any(u"m"_s));
  EXPECT_EQ(read(u"NSString"_s, {{u"NS.string"_s, u"m"_s}}), Any(u"m"_s));
  EXPECT_EQ(read(u"NSString"_s, {{u"NS.bytes"_s, u"gr\u00fc\u00df"_s.toUtf8()}}), Any(u"grüß"_s));
  EXPECT_EQ(read(u"NSString"_s, {{u"NS.bytes"_s, U(3)}}, {u"ß"_s.toUtf8()}), Any(u"ß"_s));
  EXPECT_EQ(read(u"NSString"_s, {{u"NS.bytes"_s, U(3)}}, {u"text"_s}), Any(u"text"_s));
  EXPECT_EQ(read(u"NSString"_s, {}), Any(QString()));
  expectRefused(u"NSString"_s, {{u"NS.string"_s, 7}}, {}, "string");
}

TEST(ValueClasses, DataHasThreeForms) {
  EXPECT_EQ(read(u"NSMutableData"_s, {{u"NS.data"_s, QByteArray("d")}}), Any(QByteArray("d")));
  EXPECT_EQ(read(u"NSMutableData"_s, {{u"NS.data"_s, U(3)}}, {QByteArray("d")}),
            Any(QByteArray("d")));
  EXPECT_EQ(read(u"NSData"_s, {{u"NS.bytes"_s, QByteArray("d")}}), Any(QByteArray("d")));
  expectRefused(u"NSData"_s, {{u"NS.data"_s, u"text"_s}}, {}, "data");
}

TEST(ValueClasses, EntriesOfTheTableAreStringsNumbersDataAndDates) {
  const auto root = [](const QVariant& entry) {
    return KeyedUnarchiver::unarchiveObjectWithData(binaryArchive({u"$null"_s, entry}));
  };
  EXPECT_EQ(root(u"s"_s), Any(u"s"_s));
  EXPECT_EQ(root(7).metaType(), QMetaType::fromType<qlonglong>());
  EXPECT_EQ(root(quint64(1) << 63), Any(qulonglong(1) << 63));
  EXPECT_EQ(root(true), Any(true));
  EXPECT_EQ(root(0.1), Any(0.1));
  EXPECT_EQ(root(0.1F), Any(0.1F));
  EXPECT_EQ(root(QByteArray("d")), Any(QByteArray("d")));
  const QDateTime date(QDate(2000, 12, 31), QTime(0, 0), Qt::UTC);
  EXPECT_EQ(root(date), Any(date));
}

TEST(ValueClasses, OldNumbersHaveFourForms) {
  EXPECT_EQ(read(u"NSNumber"_s, {{u"NS.number"_s, 7}}), Any(qlonglong(7)));
  EXPECT_EQ(read(u"NSNumber"_s, {{u"NS.number"_s, U(3)}}, {2.5}), Any(2.5));
  EXPECT_EQ(read(u"NSNumber"_s, {{u"NS.boolval"_s, true}}), Any(true));
  EXPECT_EQ(read(u"NSNumber"_s, {{u"NS.boolval"_s, 1}}), Any(true));
  EXPECT_EQ(read(u"NSNumber"_s, {{u"NS.intval"_s, -3}}), Any(qlonglong(-3)));
  EXPECT_EQ(read(u"NSNumber"_s, {{u"NS.dblval"_s, 0.25}}), Any(0.25));
  expectRefused(u"NSNumber"_s, {}, {}, "without a value");
  expectRefused(u"NSNumber"_s, {{u"NS.intval"_s, u"7"_s}}, {}, "number");
}

static Record decimal(const char* mantissa, int length, int exponent, bool negative,
                      int order = 1) {
  return {{u"NS.compact"_s, true},
          {u"NS.exponent"_s, exponent},
          {u"NS.length"_s, length},
          {u"NS.negative"_s, negative},
          {u"NS.mantissa"_s, QByteArray::fromHex(mantissa)},
          {u"NS.mantissa.bo"_s, order}};
}

TEST(ValueClasses, DecimalNumbersAreMantissaTimesAPowerOfTen) {
  for (const QString& name : {u"NSDecimalNumberPlaceholder"_s, u"NSDecimalNumber"_s}) {
    EXPECT_EQ(read(name, decimal("d204"
                                 "0000000000000000000000000000",
                                 1, -2, false)),
              Any(12.34));
    EXPECT_EQ(read(name, decimal("d204"
                                 "0000000000000000000000000000",
                                 1, 0, true)),
              Any(qlonglong(-1234)));
    EXPECT_EQ(read(name, decimal("0500"
                                 "0000000000000000000000000000",
                                 1, 3, false)),
              Any(qlonglong(5000)));
    EXPECT_EQ(read(name, decimal("04d2"
                                 "0000000000000000000000000000",
                                 1, 0, false, 2)),
              Any(qlonglong(1234)));
  }
  EXPECT_EQ(read(u"NSDecimalNumber"_s, decimal("ffffffffffffff7f"
                                               "0000000000000000",
                                               4, 0, false)),
            Any(std::numeric_limits<qlonglong>::max()));
  EXPECT_EQ(read(u"NSDecimalNumber"_s, decimal("ffffffffffffffffffffffffffffffff", 8, 127, false)),
            Any(340282366920938463463374607431768211455e127));
  EXPECT_EQ(read(u"NSDecimalNumber"_s, decimal("", 0, 0, false)), Any(qlonglong(0)));
}

TEST(ValueClasses, ANegativeDecimalNumberWithoutWordsIsNoNumber) {
  EXPECT_TRUE(std::isnan(read(u"NSDecimalNumber"_s, decimal("", 0, 0, true)).toDouble()));
}

TEST(ValueClasses, MalformedDecimalNumbersAreRefused) {
  expectRefused(u"NSDecimalNumber"_s, decimal("d204", 2, 0, false), {}, "decimal");
  expectRefused(u"NSDecimalNumber"_s, decimal("d204", 9, 0, false), {}, "decimal");
  expectRefused(u"NSDecimalNumber"_s, decimal("d204", -1, 0, false), {}, "decimal");
  expectRefused(u"NSDecimalNumber"_s, decimal("d204", 1, 100000, false), {}, "decimal");
  expectRefused(u"NSDecimalNumber"_s, decimal("d204", 1, 0, false, 3), {}, "decimal");
}

TEST(ValueClasses, ArraysAndSetsAreLists) {
  for (const QString& name : {u"NSArray"_s, u"NSMutableArray"_s, u"NSSet"_s, u"NSMutableSet"_s,
                              u"NSOrderedSet"_s, u"NSMutableOrderedSet"_s}) {
    EXPECT_EQ(read(name, {{u"NS.objects"_s, Table{U(3), U(4)}}}, {u"a"_s, u"b"_s}).toList(),
              (QVariantList{u"a"_s, u"b"_s}));
    EXPECT_EQ(
        read(name, {{u"NS.object.0"_s, U(3)}, {u"NS.object.1"_s, U(4)}}, {u"a"_s, u"b"_s}).toList(),
        (QVariantList{u"a"_s, u"b"_s}));
    EXPECT_TRUE(read(name, {{u"NS.objects"_s, Table{}}}).toList().isEmpty());
  }
}

TEST(ValueClasses, TheIndexedFormKeepsItsOrderBeyondTen) {
  Record record;
  Table objects;
  for (int i = 0; i < 12; ++i) {
    record.insert(u"NS.object.%1"_s.arg(i), U(quint32(3 + i)));
    objects.append(QString::number(i));
  }
  EXPECT_EQ(read(u"NSOrderedSet"_s, record, objects).toList(), objects);
}

TEST(ValueClasses, AGapInTheIndexedFormIsRefused) {
  expectRefused(u"NSOrderedSet"_s, {{u"NS.object.0"_s, U(3)}, {u"NS.object.2"_s, U(3)}}, {u"a"_s},
                "NS.object.1 is missing");
}

TEST(ValueClasses, AListThatHoldsNothingIsRefused) {
  expectRefused(u"NSArray"_s, {{u"NS.objects"_s, Table{U(0)}}}, {}, "holds nothing");
  expectRefused(u"NSArray"_s, {{u"NS.objects"_s, Table{U(3)}}}, {u"$null"_s}, "holds nothing");
}

TEST(ValueClasses, AListOfOtherThanReferencesIsRefused) {
  expectRefused(u"NSArray"_s, {{u"NS.objects"_s, Table{u"x"_s}}}, {}, "reference");
  expectRefused(u"NSArray"_s, {{u"NS.objects"_s, U(3)}}, {u"x"_s}, "array of references");
}

TEST(ValueClasses, CountedSetsGiveEachElementAsOftenAsItCounts) {
  EXPECT_EQ(read(u"NSCountedSet"_s,
                 {{u"NS.count"_s, 2},
                  {u"NS.object0"_s, U(3)},
                  {u"NS.count0"_s, 1},
                  {u"NS.object1"_s, U(4)},
                  {u"NS.count1"_s, 3}},
                 {u"a"_s, u"b"_s})
                .toList(),
            (QVariantList{u"a"_s, u"b"_s, u"b"_s, u"b"_s}));
  expectRefused(u"NSCountedSet"_s,
                {{u"NS.count"_s, 2}, {u"NS.object0"_s, U(3)}, {u"NS.count0"_s, 1}}, {u"a"_s},
                "does not agree");
  expectRefused(u"NSCountedSet"_s,
                {{u"NS.count"_s, 1}, {u"NS.object0"_s, U(3)}, {u"NS.count0"_s, 0}}, {u"a"_s},
                "counts 0 times");
}

TEST(ValueClasses, DictionariesAreMaps) {
  for (const QString& name : {u"NSDictionary"_s, u"NSMutableDictionary"_s}) {
    EXPECT_EQ(
        read(name, {{u"NS.keys"_s, Table{U(3)}}, {u"NS.objects"_s, Table{U(4)}}}, {u"seven"_s, 7})
            .toMap(),
        (QVariantMap{{u"seven"_s, qlonglong(7)}}));
    EXPECT_EQ(
        read(name, {{u"NS.key.0"_s, U(3)}, {u"NS.object.0"_s, U(4)}}, {u"seven"_s, 7}).toMap(),
        (QVariantMap{{u"seven"_s, qlonglong(7)}}));
  }
}

TEST(ValueClasses, DictionariesThatDoNotMatchAreRefused) {
  expectRefused(u"NSDictionary"_s, {{u"NS.keys"_s, Table{U(3)}}, {u"NS.objects"_s, Table{}}},
                {u"a"_s}, "1 keys for 0 objects");
  expectRefused(u"NSDictionary"_s, {{u"NS.keys"_s, Table{U(3)}}, {u"NS.objects"_s, Table{U(3)}}},
                {7}, "key is no string");
  expectRefused(u"NSDictionary"_s, {{u"NS.keys"_s, Table{U(0)}}, {u"NS.objects"_s, Table{U(3)}}},
                {7}, "holds nothing");
}

TEST(ValueClasses, NullIsANullPointer) {
  EXPECT_EQ(read(u"NSNull"_s, {}).metaType(), QMetaType::fromType<std::nullptr_t>());
}

TEST(ValueClasses, DatesAreSecondsSince2001) {
  EXPECT_EQ(read(u"NSDate"_s, {{u"NS.time"_s, -86400.0}}).toDateTime(),
            QDateTime(QDate(2000, 12, 31), QTime(0, 0), Qt::UTC));
  EXPECT_EQ(read(u"NSDate"_s, {{u"NS.time"_s, 0.5}}).toDateTime(),
            QDateTime(QDate(2001, 1, 1), QTime(0, 0, 0, 500), Qt::UTC));
  expectRefused(u"NSDate"_s, {{u"NS.time"_s, 1e300}}, {}, "out of range");
  expectRefused(u"NSDate"_s, {{u"NS.time"_s, u"now"_s}}, {}, "real");
}

TEST(ValueClasses, UrlsAreResolvedAgainstTheirBase) {
  const Any url = KeyedUnarchiver::unarchiveObjectWithData(binaryArchive(
      {u"$null"_s, Record{{u"NS.base"_s, U(2)}, {u"NS.relative"_s, U(4)}, {u"$class"_s, U(5)}},
       Record{{u"NS.base"_s, U(0)}, {u"NS.relative"_s, U(3)}, {u"$class"_s, U(5)}},
       u"http://example.org/a/"_s, u"b/c"_s, classRecord(u"NSURL"_s)}));
  EXPECT_EQ(url.toUrl(), QUrl(u"http://example.org/a/b/c"_s));
  expectRefused(u"NSURL"_s, {{u"NS.base"_s, U(3)}, {u"NS.relative"_s, U(3)}}, {u"x"_s},
                "base of a URL");
  expectRefused(u"NSURL"_s, {{u"NS.base"_s, U(0)}, {u"NS.relative"_s, U(3)}}, {7}, "string");
}

TEST(ValueClasses, UuidsHaveSixteenBytes) {
  const QUuid uuid(u"{00112233-4455-6677-8899-aabbccddeeff}"_s);
  EXPECT_EQ(read(u"NSUUID"_s, {{u"NS.uuidbytes"_s, uuid.toRfc4122()}}).toUuid(), uuid);
  expectRefused(u"NSUUID"_s, {{u"NS.uuidbytes"_s, QByteArray(15, 'x')}}, {}, "16 bytes");
  expectRefused(u"NSUUID"_s, {}, {}, "16 bytes");
}

TEST(ValueClasses, ValuesArePointsSizesRectsRangesAndInsets) {
  EXPECT_EQ(read(u"NSValue"_s, {{u"NS.special"_s, 1}, {u"NS.pointval"_s, U(3)}}, {u"{1, 2}"_s}),
            Any(QPointF(1, 2)));
  EXPECT_EQ(read(u"NSValue"_s, {{u"NS.special"_s, 2}, {u"NS.sizeval"_s, U(3)}}, {u"{18, 18}"_s}),
            Any(QSizeF(18, 18)));
  EXPECT_EQ(
      read(u"NSValue"_s, {{u"NS.special"_s, 3}, {u"NS.rectval"_s, U(3)}}, {u"{{1, 2}, {3, 4}}"_s}),
      Any(QRectF(1, 2, 3, 4)));
  EXPECT_EQ(read(u"NSValue"_s,
                 {{u"NS.special"_s, 4},
                  {u"NS.rangeval.location"_s, U(3)},
                  {u"NS.rangeval.length"_s, U(4)}},
                 {5, 3})
                .value<Range>(),
            (Range{5, 3}));
  EXPECT_EQ(read(u"NSValue"_s, {{u"NS.special"_s, 12},
                                {u"NS.edgeval.top"_s, 1.0},
                                {u"NS.edgeval.left"_s, 2.0},
                                {u"NS.edgeval.bottom"_s, 3.0},
                                {u"NS.edgeval.right"_s, 4.0}})
                .value<QMarginsF>(),
            QMarginsF(2, 1, 4, 3));
}

TEST(ValueClasses, ValuesWithoutAKindNameTheirType) {
  const auto value = [](const QString& type, const QString& text) {
    return read(u"NSValue"_s, {{u"$0"_s, U(3)}, {u"$1"_s, U(4)}}, {type, text});
  };
  EXPECT_EQ(value(u"{CGPoint=dd}"_s, u"{1, 2}"_s), Any(QPointF(1, 2)));
  EXPECT_EQ(value(u"{_NSSize=ff}"_s, u"{1, 2}"_s), Any(QSizeF(1, 2)));
  EXPECT_EQ(value(u"{_NSRect={_NSPoint=ff}{_NSSize=ff}}"_s, u"{{1, 2}, {3, 4}}"_s),
            Any(QRectF(1, 2, 3, 4)));
}

TEST(ValueClasses, ValuesOfUnknownKindsAreRefused) {
  expectRefused(u"NSValue"_s, {{u"NS.special"_s, 9}}, {}, "unknown kind 9");
  expectRefused(u"NSValue"_s, {{u"$0"_s, U(3)}, {u"$1"_s, U(3)}}, {u"^v"_s}, "unknown type ^v");
  expectRefused(
      u"NSValue"_s,
      {{u"NS.special"_s, 4}, {u"NS.rangeval.location"_s, U(3)}, {u"NS.rangeval.length"_s, U(3)}},
      {-1}, "no index");
}

TEST(ValueClasses, IndexSetsAreRanges) {
  const auto ranges = [](const Record& record, const Table& objects = {}) {
    return read(u"NSIndexSet"_s, record, objects).value<IndexSet>().ranges;
  };
  EXPECT_TRUE(ranges({{u"NSRangeCount"_s, 0}}).isEmpty());
  EXPECT_EQ(ranges({{u"NSRangeCount"_s, 1}, {u"NSLocation"_s, 5}, {u"NSLength"_s, 3}}),
            (QList<Range>{{5, 3}}));
  EXPECT_EQ(ranges({{u"NSRangeCount"_s, 2}, {u"NSRangeData"_s, U(3)}},
                   {QByteArray::fromHex("0102ac0201")}),
            (QList<Range>{{1, 2}, {300, 1}}));
  expectRefused(u"NSIndexSet"_s, {{u"NSRangeCount"_s, 3}, {u"NSRangeData"_s, U(3)}},
                {QByteArray::fromHex("0102ac0201")}, "count");
  expectRefused(u"NSIndexSet"_s, {{u"NSRangeCount"_s, 2}, {u"NSRangeData"_s, U(3)}},
                {QByteArray::fromHex("0102ac")}, "cut off");
  expectRefused(u"NSIndexSet"_s, {{u"NSRangeCount"_s, 2}, {u"NSRangeData"_s, U(3)}},
                {QByteArray::fromHex("05020101")}, "not in order");
}

TEST(ValueClasses, LocalesAreNamed) {
  EXPECT_EQ(read(u"NSLocale"_s, {{u"NS.identifier"_s, U(3)}}, {u"de_AT"_s}).toLocale(),
            QLocale(QLocale::German, QLocale::Austria));
}

TEST(ValueClasses, PlainValuesRoundTripInKindAndValue) {
  expectRoundTrip(u"text"_s);
  expectRoundTrip(u""_s);
  expectRoundTrip(QByteArray("da\0ta", 5));
  expectRoundTrip(QByteArray());
  expectRoundTrip(true);
  expectRoundTrip(qlonglong(-5));
  expectRoundTrip(std::numeric_limits<qlonglong>::min());
  expectRoundTrip(std::numeric_limits<qulonglong>::max());
  expectRoundTrip(0.1);
  expectRoundTrip(0.1F);
  expectRoundTrip(QDateTime(QDate(1970, 2, 3), QTime(4, 5, 6, 789), Qt::UTC));
  expectRoundTrip(QUrl(u"https://example.org/a%20b?c=d#e"_s));
  expectRoundTrip(QUuid(u"{00112233-4455-6677-8899-aabbccddeeff}"_s));
  expectRoundTrip(QVariantList{1LL, u"a"_s, QVariantList{}});
  expectRoundTrip(QVariantMap{{u"k"_s, 1LL}, {u"ü"_s, QVariantMap{}}});
  expectRoundTrip(Any::fromValue(nullptr));
  expectRoundTrip(QPointF(1, 2.5));
  expectRoundTrip(QSizeF(1, 2.5));
  expectRoundTrip(QRectF(1, 2.5, -3, 0.1));
  expectRoundTrip(Any::fromValue(Range{1, 2}));
  expectRoundTrip(Any::fromValue(QMarginsF(1, 2, 3, 4)));
  expectRoundTrip(Any::fromValue(IndexSet{{{1, 2}, {300, 7}}}));
  expectRoundTrip(Any::fromValue(IndexSet{{{1, 2}}}));
  expectRoundTrip(Any::fromValue(IndexSet{}));
  expectRoundTrip(QLocale(QLocale::German, QLocale::Austria));
  EXPECT_FALSE(roundTrip(Any()).isValid());
}

TEST(ValueClasses, SmallerIntegersReadAsWideOnes) {
  EXPECT_EQ(roundTrip(int(-7)), Any(qlonglong(-7)));
  EXPECT_EQ(roundTrip(uint(7)), Any(qlonglong(7)));
  EXPECT_EQ(roundTrip(Any::fromValue(short(-7))), Any(qlonglong(-7)));
  EXPECT_EQ(roundTrip(qulonglong(7)), Any(qlonglong(7)));
}

TEST(ValueClasses, TheTextOfNilIsToldFromNil) {
  EXPECT_EQ(roundTrip(u"$null"_s), Any(u"$null"_s));
  EXPECT_EQ(classWrittenFor(u"$null"_s), u"NSMutableString NSString NSObject"_s);
}

TEST(ValueClasses, ValuesAreWrittenUnderTheirPublicNames) {
  EXPECT_EQ(classWrittenFor(u"text"_s), QString());
  EXPECT_EQ(classWrittenFor(7), QString());
  EXPECT_EQ(classWrittenFor(QByteArray("d")), QString());
  EXPECT_EQ(classWrittenFor(QVariantList{}), u"NSArray NSObject"_s);
  EXPECT_EQ(classWrittenFor(QStringList{u"a"_s}), u"NSArray NSObject"_s);
  EXPECT_EQ(classWrittenFor(QVariantMap{}), u"NSDictionary NSObject"_s);
  EXPECT_EQ(classWrittenFor(QDateTime::fromMSecsSinceEpoch(0)), u"NSDate NSObject"_s);
  EXPECT_EQ(classWrittenFor(QUrl(u"x:y"_s)), u"NSURL NSObject"_s);
  EXPECT_EQ(classWrittenFor(QUuid::createUuid()), u"NSUUID NSObject"_s);
  EXPECT_EQ(classWrittenFor(Any::fromValue(nullptr)), u"NSNull NSObject"_s);
  EXPECT_EQ(classWrittenFor(QPointF()), u"NSValue NSObject"_s);
  EXPECT_EQ(classWrittenFor(Any::fromValue(IndexSet{})), u"NSIndexSet NSObject"_s);
  EXPECT_EQ(classWrittenFor(QLocale()), u"NSLocale NSObject"_s);
}

TEST(ValueClasses, DatesOfOtherZonesAreTheSameMoment) {
  const QDateTime date(QDate(2020, 1, 1), QTime(12, 0), QTimeZone(3600));
  EXPECT_EQ(roundTrip(date).toDateTime(), date);
  EXPECT_EQ(roundTrip(date).toDateTime().timeSpec(), Qt::UTC);
}

TEST(ValueClasses, WhatHasNoArchiveIsAnArgumentError) {
  EXPECT_THROW(roundTrip(QDateTime()), InvalidArgumentException);
  EXPECT_THROW(roundTrip(QVariantList{Any()}), InvalidArgumentException);
  EXPECT_THROW(roundTrip(QVariantMap{{u"k"_s, Any()}}), InvalidArgumentException);
  EXPECT_THROW(roundTrip(QChar(u'x')), InvalidArgumentException);
}

TEST(SevenBitGroups, NumbersHaveTheirLeastSignificantGroupFirst) {
  const auto groups = [](quint64 number) {
    QByteArray bytes;
    appendSevenBitGroups(bytes, number);
    return bytes.toHex();
  };
  EXPECT_EQ(groups(0), "00");
  EXPECT_EQ(groups(100), "64");
  EXPECT_EQ(groups(127), "7f");
  EXPECT_EQ(groups(128), "8001");
  EXPECT_EQ(groups(300), "ac02");
  EXPECT_EQ(groups(16384), "808001");
  EXPECT_EQ(groups(200), "c801");
}

TEST(SevenBitGroups, NumbersReadBack) {
  for (int bits = 0; bits < 63; ++bits)
    for (const quint64 number : {(quint64(1) << bits) - 1, quint64(1) << bits}) {
      QByteArray bytes;
      appendSevenBitGroups(bytes, number);
      qsizetype at = 0;
      EXPECT_EQ(takeSevenBitGroups(bytes, at), qint64(number));
      EXPECT_EQ(at, bytes.size());
    }
}

TEST(SevenBitGroups, NumbersCutOffOrTooWideAreNone) {
  qsizetype at = 0;
  EXPECT_EQ(takeSevenBitGroups(QByteArray("\x80"), at), std::nullopt);
  at = 0;
  EXPECT_EQ(takeSevenBitGroups(QByteArray(), at), std::nullopt);
  at = 0;
  EXPECT_EQ(takeSevenBitGroups(QByteArray::fromHex("80808080808080808001"), at), std::nullopt);
  at = 0;
  EXPECT_EQ(takeSevenBitGroups(QByteArray(QByteArray(100, '\x80') + '\0'), at), 0);
}
