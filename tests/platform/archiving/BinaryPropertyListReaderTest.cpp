// The rules that a binary property list must keep, each broken once.
#include "zqticker/platform/archiving/PropertyList.h"

#include "tests/platform/archiving/ArchiveBuilder.h"
#include "zqticker/platform/objects/Exception.h"

#include <gtest/gtest.h>

#include <QtCore/QDateTime>
#include <QtCore/QVariant>

#include <cmath>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {

using Kind = PropertyList::Kind;

QByteArray bigEndian(quint64 value, int size) {
  QByteArray bytes(size, '\0');
  for (int i = size; i-- > 0; value >>= 8)
    bytes[i] = char(value);
  return bytes;
}

// A binary list put together by hand, so that each part can be wrong.
struct RawList {
  QByteArray header = "bplist00";
  QList<QByteArray> objects = {};
  int offsetSize = 1;
  int referenceSize = 1;
  std::optional<quint64> count = {};
  quint64 top = 0;
  std::optional<quint64> tableOffset = {};
  QList<quint64> offsets = {};

  QByteArray bytes() const {
    QByteArray file = header;
    QList<quint64> places;
    for (const QByteArray& object : objects) {
      places.append(quint64(file.size()));
      file += object;
    }
    const quint64 table = quint64(file.size());
    for (const quint64 place : offsets.isEmpty() ? places : offsets)
      file += bigEndian(place, std::min(offsetSize, 8));
    file += QByteArray(6, '\0') + char(offsetSize) + char(referenceSize);
    file += bigEndian(count.value_or(quint64(objects.size())), 8) + bigEndian(top, 8) +
            bigEndian(tableOffset.value_or(table), 8);
    return file;
  }
  PropertyList read() const { return PropertyList::fromData(bytes()); }
};

RawList listOf(const QByteArray& object) {
  return {.objects = {object}};
}

QByteArray hex(const char* digits) {
  return QByteArray::fromHex(digits);
}

void expectRefused(const RawList& list, const char* reason) {
  try {
    list.read();
    ADD_FAILURE() << "was read; expected: " << reason;
  } catch (const ArchiveException& exception) {
    EXPECT_TRUE(exception.reason().contains(QLatin1StringView(reason))) << exception.what();
  }
}

} // namespace

TEST(BinaryPropertyListReader, ReadsBooleans) {
  EXPECT_TRUE(listOf(hex("09")).read().boolean(0));
  EXPECT_FALSE(listOf(hex("08")).read().boolean(0));
}

TEST(BinaryPropertyListReader, IntegersOfOneTwoAndFourBytesAreUnsigned) {
  EXPECT_EQ(listOf(hex("10ff")).read().integer(0), 255);
  EXPECT_EQ(listOf(hex("11ffff")).read().integer(0), 65535);
  EXPECT_EQ(listOf(hex("12ffffffff")).read().integer(0), 4294967295);
}

TEST(BinaryPropertyListReader, IntegersOfEightBytesAreSigned) {
  EXPECT_EQ(listOf(hex("13fffffffffffffffb")).read().integer(0), -5);
  EXPECT_EQ(listOf(hex("137fffffffffffffff")).read().integer(0),
            std::numeric_limits<qint64>::max());
}

TEST(BinaryPropertyListReader, IntegersMayBeLongerThanNeeded) {
  EXPECT_EQ(listOf(hex("120000002a")).read().integer(0), 42);
  EXPECT_EQ(listOf(hex("14"
                       "0000000000000000"
                       "000000000000002a"))
                .read()
                .integer(0),
            42);
}

TEST(BinaryPropertyListReader, IntegersOfSixteenBytesHoldUnsignedOnesFrom2To63) {
  const PropertyList list = listOf(hex("14"
                                       "0000000000000000"
                                       "ffffffffffffffff"))
                                .read();
  EXPECT_TRUE(list.isUnsigned(0));
  EXPECT_EQ(quint64(list.integer(0)), std::numeric_limits<quint64>::max());
  EXPECT_EQ(quint64(listOf(hex("14"
                               "0000000000000000"
                               "8000000000000000"))
                        .read()
                        .integer(0)),
            quint64(1) << 63);
}

TEST(BinaryPropertyListReader, NegativeIntegersOfSixteenBytesStayNegative) {
  const PropertyList list = listOf(hex("14"
                                       "ffffffffffffffff"
                                       "ffffffffffffffff"))
                                .read();
  EXPECT_FALSE(list.isUnsigned(0));
  EXPECT_EQ(list.integer(0), -1);
}

TEST(BinaryPropertyListReader, ReadsRealsOfBothWidths) {
  const PropertyList single = listOf(hex("223dcccccd")).read();
  EXPECT_TRUE(single.isSinglePrecision(0));
  EXPECT_EQ(single.real(0), double(0.1F));
  const PropertyList wide = listOf(hex("233fb999999999999a")).read();
  EXPECT_FALSE(wide.isSinglePrecision(0));
  EXPECT_EQ(wide.real(0), 0.1);
}

TEST(BinaryPropertyListReader, ReadsDatesAsSecondsSince2001) {
  const PropertyList list = listOf(hex("33c0f5180000000000")).read();
  EXPECT_EQ(list.kind(0), Kind::Date);
  EXPECT_EQ(list.real(0), -86400.0);
}

TEST(BinaryPropertyListReader, ReadsData) {
  const PropertyList list = listOf(hex("4300ff41")).read();
  EXPECT_EQ(list.kind(0), Kind::Data);
  EXPECT_EQ(list.data(0), hex("00ff41"));
}

TEST(BinaryPropertyListReader, CountsUtf16StringsInCodeUnits) {
  const PropertyList list = listOf(hex("63"
                                       "d834"
                                       "dd1e"
                                       "0078"))
                                .read();
  EXPECT_EQ(list.string(0), u"\U0001D11Ex"_s);
  EXPECT_EQ(list.string(0).size(), 3);
}

TEST(BinaryPropertyListReader, ReadsUtf8StringsOfNewerFiles) {
  EXPECT_EQ(listOf(hex("72c3bc")).read().string(0), u"ü"_s);
}

TEST(BinaryPropertyListReader, CountsOfFifteenAndMoreFollowAsAnInteger) {
  const QByteArray text(300, 'a');
  EXPECT_EQ(RawList({.objects = {hex("5f11012c") + text}, .offsetSize = 2}).read().string(0),
            QString::fromLatin1(text));
  EXPECT_EQ(listOf(hex("5f1003") + "abc").read().string(0), u"abc"_s);
}

TEST(BinaryPropertyListReader, ReadsUidsOfOneToSixteenBytes) {
  EXPECT_EQ(listOf(hex("80ff")).read().uid(0), 255U);
  EXPECT_EQ(listOf(hex("81ffff")).read().uid(0), 65535U);
  EXPECT_EQ(listOf(hex("82010000")).read().uid(0), 65536U);
  EXPECT_EQ(listOf(hex("83ffffffff")).read().uid(0), 4294967295U);
  EXPECT_EQ(listOf(hex("87"
                       "00000000"
                       "00000007"))
                .read()
                .uid(0),
            7U);
}

TEST(BinaryPropertyListReader, RefusesUidsBeyond32Bits) {
  expectRefused(listOf(hex("840100000000")), "UID is larger");
  expectRefused(listOf(hex("87"
                           "00000001"
                           "00000000")),
                "UID is larger");
}

TEST(BinaryPropertyListReader, ReadsArraysSetsAndDictionaries) {
  const PropertyList list =
      RawList{.objects = {hex("d10102"), hex("5161"), hex("a20303"), hex("09")}}.read();
  EXPECT_EQ(list.kind(0), Kind::Dictionary);
  const auto array = list.find(0, "a"_L1);
  ASSERT_TRUE(array);
  ASSERT_EQ(list.count(*array), 2U);
  EXPECT_EQ(list.element(*array, 0), list.element(*array, 1));
  EXPECT_EQ(RawList({.objects = {hex("b101"), hex("09")}}).read().kind(0), Kind::Set);
  EXPECT_EQ(RawList({.objects = {hex("c101"), hex("09")}}).read().kind(0), Kind::Set);
}

TEST(BinaryPropertyListReader, ReadsReferencesAndOffsetsOfEverySize) {
  for (int size = 1; size <= 8; ++size) {
    RawList list{.offsetSize = size, .referenceSize = size};
    list.objects = {hex("a1") + bigEndian(1, size), hex("5161")};
    const PropertyList read = list.read();
    EXPECT_EQ(read.string(read.element(0, 0)), u"a"_s) << size;
  }
}

TEST(BinaryPropertyListReader, TheTopObjectMayStandAnywhere) {
  EXPECT_EQ(RawList({.objects = {hex("08"), hex("5161")}, .top = 1}).read().top(), 1U);
}

TEST(BinaryPropertyListReader, AcceptsAnyLastCharacterOfTheVersion) {
  EXPECT_TRUE(RawList({.header = "bplist01", .objects = {hex("09")}}).read().boolean(0));
  expectRefused(RawList{.header = "bplist10", .objects = {hex("09")}}, "bplist0");
}

TEST(BinaryPropertyListReader, IgnoresUnusedTrailerBytes) {
  QByteArray file = listOf(hex("09")).bytes();
  file[file.size() - 32] = 'x';
  file[file.size() - 28] = 'y';
  EXPECT_TRUE(PropertyList::fromData(file).boolean(0));
}

TEST(BinaryPropertyListReader, RefusesNull) {
  expectRefused(listOf(hex("00")), "unknown marker");
}

TEST(BinaryPropertyListReader, RefusesAFillByteAsAnObject) {
  expectRefused(listOf(hex("0f")), "unknown marker");
}

TEST(BinaryPropertyListReader, SkipsFillBytesBetweenObjects) {
  EXPECT_TRUE(
      RawList({.objects = {hex("0f"), hex("09")}, .count = 1, .offsets = {9}}).read().boolean(0));
}

TEST(BinaryPropertyListReader, RefusesUnknownMarkers) {
  for (const char* object : {"01", "0a", "90", "e0", "f0"})
    expectRefused(listOf(hex(object)), "unknown marker");
}

TEST(BinaryPropertyListReader, RefusesFilesShorterThanHeaderOneObjectAndTrailer) {
  const QByteArray file = listOf(hex("09")).bytes();
  for (qsizetype size = 0; size < file.size(); ++size)
    EXPECT_THROW(PropertyList::fromData(file.first(size)), ArchiveException) << size;
}

TEST(BinaryPropertyListReader, RefusesAnEmptyTable) {
  expectRefused(RawList{.objects = {hex("09")}, .count = 0}, "no object");
}

TEST(BinaryPropertyListReader, RefusesATopObjectOutsideTheTable) {
  expectRefused(RawList{.objects = {hex("09")}, .top = 1}, "top object");
  expectRefused(RawList{.objects = {hex("09")}, .top = quint64(1) << 63}, "top object");
}

TEST(BinaryPropertyListReader, RefusesAnOffsetTableInTheHeaderOrTheTrailer) {
  expectRefused(RawList{.objects = {hex("09")}, .tableOffset = 8}, "offset table");
  expectRefused(RawList{.objects = {hex("09")}, .tableOffset = 11}, "offset table");
  expectRefused(RawList{.objects = {hex("09")}, .tableOffset = ~quint64(0)}, "offset table");
}

TEST(BinaryPropertyListReader, RefusesSizesOfZeroAndAboveEight) {
  expectRefused(RawList{.objects = {hex("09")}, .offsetSize = 0}, "size");
  expectRefused(RawList{.objects = {hex("09")}, .referenceSize = 0}, "size");
  expectRefused(RawList{.objects = {hex("09")}, .offsetSize = 9}, "size");
  expectRefused(RawList{.objects = {hex("09")}, .referenceSize = 9}, "size");
}

TEST(BinaryPropertyListReader, RefusesALengthThatDoesNotAgreeWithTheTable) {
  expectRefused(RawList{.objects = {hex("09"), hex("08")}, .count = 1}, "length");
  expectRefused(RawList{.objects = {hex("09")}, .count = 2}, "length");
  QByteArray file = listOf(hex("09")).bytes();
  file.insert(10, 'x');
  EXPECT_THROW(PropertyList::fromData(file), ArchiveException);
}

TEST(BinaryPropertyListReader, RefusesCountsWhoseProductOverflows) {
  // 2^61 + 1 offsets of 8 bytes take 8 bytes in 64-bit arithmetic.
  expectRefused(RawList{.objects = {hex("09")}, .offsetSize = 8, .count = (quint64(1) << 61) + 1},
                "length");
  expectRefused(listOf(hex("af13"
                           "2000000000000001")),
                "runs past");
  expectRefused(listOf(hex("6f13"
                           "8000000000000001")),
                "runs past");
  expectRefused(listOf(hex("df13"
                           "8000000000000001")),
                "runs past");
}

TEST(BinaryPropertyListReader, RefusesReferencesTooShortForTheCount) {
  RawList list{.offsetSize = 2};
  for (int i = 0; i < 257; ++i)
    list.objects.append(hex("09"));
  expectRefused(list, "references are too short");
  list.referenceSize = 2;
  EXPECT_EQ(list.read().size(), 257U);
}

TEST(BinaryPropertyListReader, RefusesOffsetsTooShortForTheTable) {
  expectRefused(listOf(hex("4f10ff") + QByteArray(255, 'x')), "offsets are too short");
}

TEST(BinaryPropertyListReader, RefusesOffsetsIntoTheHeaderOrTheTable) {
  expectRefused(RawList{.objects = {hex("09")}, .offsets = {7}}, "outside the object table");
  expectRefused(RawList{.objects = {hex("09")}, .offsets = {9}}, "outside the object table");
  expectRefused(RawList{.objects = {hex("09")}, .offsets = {255}}, "outside the object table");
}

TEST(BinaryPropertyListReader, RefusesBodiesThatRunPastTheObjectTable) {
  for (const char* object : {"10", "11ff", "1300", "140000", "2200", "2300", "33", "41", "51", "61",
                             "6100", "71", "80", "8100", "a1", "d101", "4f", "4f10", "4f1001"})
    EXPECT_THROW(listOf(hex(object)).read(), ArchiveException) << object;
}

TEST(BinaryPropertyListReader, RefusesReferencesOutsideTheTable) {
  expectRefused(listOf(hex("a101")), "reference leads outside");
  expectRefused(RawList{.objects = {hex("d10102"), hex("5161")}}, "reference leads outside");
  RawList wide{.objects = {hex("a1") + bigEndian((quint64(1) << 32) + 1, 8), hex("09")}};
  wide.referenceSize = 8;
  expectRefused(wide, "reference leads outside");
}

TEST(BinaryPropertyListReader, RefusesIntegersLongerThanSixteenBytes) {
  expectRefused(listOf(hex("15") + QByteArray(32, '\0')), "longer than 16");
}

TEST(BinaryPropertyListReader, RefusesRealsAndDatesOfOtherSizes) {
  expectRefused(listOf(hex("210000")), "real");
  expectRefused(listOf(hex("24") + QByteArray(16, '\0')), "real");
  expectRefused(listOf(hex("3200000000")), "date");
}

TEST(BinaryPropertyListReader, RefusesCountsThatAreNoInteger) {
  expectRefused(listOf(hex("5f5161")), "count is not an integer");
  expectRefused(listOf(hex("5f14") + QByteArray(16, '\0')), "count is not an integer");
}

TEST(BinaryPropertyListReader, RefusesDictionaryKeysThatAreNoStrings) {
  expectRefused(RawList{.objects = {hex("d10101"), hex("1005")}}, "key is not a string");
}

TEST(BinaryPropertyListReader, RefusesContainersThatContainThemselves) {
  expectRefused(listOf(hex("a100")), "contains itself");
  expectRefused(RawList{.objects = {hex("a101"), hex("a100")}}, "contains itself");
  expectRefused(RawList{.objects = {hex("d10100"), hex("5161")}}, "contains itself");
  // Also where the top value does not lead there.
  expectRefused(RawList{.objects = {hex("09"), hex("a101")}}, "contains itself");
}

static RawList nested(int depth) {
  RawList list{.offsetSize = 2, .referenceSize = 2};
  for (int i = 0; i + 1 < depth; ++i)
    list.objects.append(hex("a1") + bigEndian(quint64(i) + 1, 2));
  list.objects.append(hex("a0"));
  return list;
}

TEST(BinaryPropertyListReader, ReadsContainersUpToTheDepthLimit) {
  EXPECT_EQ(nested(PropertyList::MaximumDepth).read().size(), quint32(PropertyList::MaximumDepth));
  expectRefused(nested(PropertyList::MaximumDepth + 1), "nested too deeply");
}

TEST(BinaryPropertyListReader, DepthCountsFromTheTopEvenIfInnerContainersComeFirst) {
  RawList list = nested(PropertyList::MaximumDepth + 1);
  // The same chain backwards: each container holds the one before it.
  std::reverse(list.objects.begin(), list.objects.end());
  for (qsizetype i = 1; i < list.objects.size(); ++i)
    list.objects[i] = hex("a1") + bigEndian(quint64(i) - 1, 2);
  list.top = quint64(list.objects.size()) - 1;
  expectRefused(list, "nested too deeply");
}

TEST(BinaryPropertyListReader, SharedContainersDoNotExpand) {
  // 60 arrays, each holding the next one twice: 2^60 leaves for those who would walk the tree.
  RawList list{.offsetSize = 2};
  for (int i = 0; i < 60; ++i)
    list.objects.append(hex("a2") + QByteArray(2, char(i + 1)));
  list.objects.append(hex("a0"));
  EXPECT_EQ(list.read().size(), 61U);
}

TEST(BinaryPropertyListReader, RefusesObjectsThatLieOnTopOfOneAnother) {
  // Every offset leads to the same large array, so that the references of all would be many times
  // the file.
  RawList list{.offsetSize = 2, .referenceSize = 2};
  list.objects = {hex("af110800") + QByteArray(2 * 0x800, '\0')};
  list.objects[0].replace(4, 2, bigEndian(0x7ff, 2));
  list.count = 0x800;
  list.offsets = QList<quint64>(0x800, 8);
  expectRefused(list, "on top of one another");
}

TEST(BinaryPropertyListReader, EqualObjectsMayShareOneOffset) {
  const PropertyList list =
      RawList{.objects = {hex("a20102"), hex("5161"), {}}, .offsets = {8, 11, 11}}.read();
  EXPECT_EQ(list.string(1), list.string(2));
}

TEST(BinaryPropertyListReader, RefusesEmptyFilesAndOtherFiles) {
  EXPECT_THROW(PropertyList::fromData({}), ArchiveException);
  EXPECT_THROW(PropertyList::fromData("hello"), ArchiveException);
  EXPECT_THROW(PropertyList::fromData("{ a = 1; }"), ArchiveException);
}

TEST(BinaryPropertyListReader, TruncatedAtEveryByteItRaises) {
  const QByteArray file = zq::testing::goldenFile(u"probe.archive"_s);
  for (qsizetype size = 0; size < file.size(); ++size)
    EXPECT_THROW(PropertyList::fromData(file.first(size)), ArchiveException) << size;
}

TEST(BinaryPropertyListReader, WithAnyBitFlippedItReadsOrRaises) {
  const QByteArray file = zq::testing::goldenFile(u"attr-three-runs.archive"_s);
  int refused = 0;
  for (qsizetype bit = 0; bit < 8 * file.size(); ++bit) {
    QByteArray changed = file;
    changed[bit / 8] = char(changed[bit / 8] ^ (1 << (bit % 8)));
    try {
      PropertyList::fromData(changed);
    } catch (const ArchiveException&) {
      ++refused;
    }
  }
  EXPECT_GT(refused, 100);
}

TEST(PropertyList, FindsKeysWhereverTheSearchBegins) {
  const PropertyList list = PropertyList::fromData(
      zq::testing::binaryPropertyList(QVariantMap{{u"a"_s, 1}, {u"b"_s, 2}, {u"ü"_s, 3}}));
  for (quint32 from = 0; from <= 4; ++from) {
    EXPECT_EQ(list.position(list.top(), "a"_L1, from), 0U);
    EXPECT_EQ(list.position(list.top(), "b"_L1, from), 1U);
    EXPECT_EQ(list.position(list.top(), "c"_L1, from), std::nullopt);
  }
  EXPECT_EQ(list.position(list.top(), QStringView(u"ü")), 2U);
  EXPECT_EQ(list.asciiString(list.key(list.top(), 0)), "a"_L1);
  EXPECT_EQ(list.asciiString(list.key(list.top(), 2)), std::nullopt);
}

TEST(PropertyList, AnAsciiTextEqualsItselfInEveryEncoding) {
  EXPECT_TRUE(listOf(hex("5161")).read().isString(0, "a"_L1));
  EXPECT_TRUE(listOf(hex("610061")).read().isString(0, "a"_L1));
  EXPECT_TRUE(listOf(hex("7161")).read().isString(0, "a"_L1));
  EXPECT_FALSE(listOf(hex("610161")).read().isString(0, "a"_L1));
  EXPECT_FALSE(listOf(hex("4161")).read().isString(0, "a"_L1));
}
