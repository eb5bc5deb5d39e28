#include "zqticker/platform/archiving/PropertyListWriter_p.h"

#include <gtest/gtest.h>

#include <array>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {

using Kind = PropertyList::Kind;

// The object of a list of one object, as it stands in the file.
QByteArray written(PropertyListWriter& writer, PropertyListWriter::Index index) {
  const QByteArray file = writer.finish(index);
  const qsizetype tableOffset = uchar(file.back()) | uchar(file[file.size() - 2]) << 8;
  return file.sliced(8, tableOffset - 8).toHex();
}

QByteArray integer(qint64 value) {
  PropertyListWriter writer;
  return written(writer, writer.addInteger(value));
}

QByteArray string(QStringView value) {
  PropertyListWriter writer;
  return written(writer, writer.addString(value));
}

} // namespace

TEST(PropertyListWriter, IntegersTakeTheShortestForm) {
  EXPECT_EQ(integer(0), "1000");
  EXPECT_EQ(integer(255), "10ff");
  EXPECT_EQ(integer(256), "110100");
  EXPECT_EQ(integer(65535), "11ffff");
  EXPECT_EQ(integer(65536), "1200010000");
  EXPECT_EQ(integer(4294967295), "12ffffffff");
  EXPECT_EQ(integer(4294967296), "130000000100000000");
}

TEST(PropertyListWriter, NegativeIntegersTakeEightBytes) {
  EXPECT_EQ(integer(-1), "13ffffffffffffffff");
  EXPECT_EQ(integer(-2147483648), "13ffffffff80000000");
}

TEST(PropertyListWriter, IntegersFrom2To63TakeSixteenBytes) {
  PropertyListWriter writer;
  EXPECT_EQ(written(writer, writer.addUnsigned(quint64(1) << 63)), "14"
                                                                   "0000000000000000"
                                                                   "8000000000000000");
  EXPECT_EQ(written(writer, writer.addUnsigned(7)), "1007");
}

TEST(PropertyListWriter, RealsTakeTheirOwnWidth) {
  PropertyListWriter writer;
  EXPECT_EQ(written(writer, writer.addSingle(0.1F)), "223dcccccd");
  EXPECT_EQ(written(writer, writer.addReal(0.1)), "233fb999999999999a");
  EXPECT_EQ(written(writer, writer.addDate(-86400)), "33c0f5180000000000");
}

TEST(PropertyListWriter, BooleansTakeOneByte) {
  PropertyListWriter writer;
  EXPECT_EQ(written(writer, writer.addBoolean(true)), "09");
  EXPECT_EQ(written(writer, writer.addBoolean(false)), "08");
}

TEST(PropertyListWriter, UidsTakeOneTwoOrFourBytes) {
  PropertyListWriter writer;
  EXPECT_EQ(written(writer, writer.addUid(255)), "80ff");
  EXPECT_EQ(written(writer, writer.addUid(256)), "810100");
  EXPECT_EQ(written(writer, writer.addUid(65536)), "8300010000");
}

TEST(PropertyListWriter, TextIsAsciiWhereItCanBe) {
  EXPECT_EQ(string(u"abc"), "53616263");
  EXPECT_EQ(string(u""), "50");
  EXPECT_EQ(string(u"\x7f"), "517f");
  EXPECT_EQ(string(u"\x80"), "610080");
  EXPECT_EQ(string(u"x\U0001D11E"), "630078d834dd1e");
}

TEST(PropertyListWriter, LoneSurrogatesAreKept) {
  PropertyListWriter writer;
  const QString lone(QChar(0xD834));
  const PropertyList list = PropertyList::fromBinary(writer.finish(writer.addString(lone)));
  EXPECT_EQ(list.string(list.top()), lone);
}

TEST(PropertyListWriter, CountsFromFifteenOnFollowAsAnInteger) {
  EXPECT_EQ(string(QString(14, u'a')), "5e" + QByteArray(14, 'a').toHex());
  EXPECT_EQ(string(QString(15, u'a')), "5f100f" + QByteArray(15, 'a').toHex());
  EXPECT_EQ(string(QString(300, u'a')), "5f11012c" + QByteArray(300, 'a').toHex());
}

TEST(PropertyListWriter, EqualScalarsBecomeOneValue) {
  PropertyListWriter writer;
  EXPECT_EQ(writer.addString(u"a"), writer.addAscii("a"_L1));
  EXPECT_EQ(writer.addString(u"ü"), writer.addUtf8("\xC3\xBC"));
  EXPECT_EQ(writer.addInteger(5), writer.addUnsigned(5));
  EXPECT_EQ(writer.addReal(0.5), writer.addReal(0.5));
  EXPECT_EQ(writer.addUid(5), writer.addUid(5));
}

TEST(PropertyListWriter, ScalarsOfDifferentKindsStayApart) {
  PropertyListWriter writer;
  const std::array indices = {writer.addInteger(1),   writer.addBoolean(true), writer.addReal(1),
                              writer.addSingle(1),    writer.addDate(1),       writer.addUid(1),
                              writer.addString(u"1"), writer.addData("1")};
  for (std::size_t i = 0; i < indices.size(); ++i)
    for (std::size_t j = 0; j < i; ++j)
      EXPECT_NE(indices[i], indices[j]);
}

TEST(PropertyListWriter, ZerosOfBothSignsStayApart) {
  PropertyListWriter writer;
  EXPECT_NE(writer.addReal(0.0), writer.addReal(-0.0));
}

TEST(PropertyListWriter, DataAndContainersStayAsTheyAre) {
  PropertyListWriter writer;
  EXPECT_NE(writer.addData("x"), writer.addData("x"));
  EXPECT_NE(writer.addArray({}), writer.addArray({}));
}

TEST(PropertyListWriter, ManyScalarsAreAllKept) {
  PropertyListWriter writer;
  std::vector<PropertyListWriter::Index> elements;
  for (int i = 0; i < 70000; ++i)
    elements.push_back(writer.addString(QString::number(i)));
  const PropertyList list = PropertyList::fromBinary(writer.finish(writer.addArray(elements)));
  ASSERT_EQ(list.size(), 70001U);
  for (quint32 i = 0; i < 70000; i += 999)
    EXPECT_EQ(list.string(list.element(list.top(), i)), QString::number(i));
}

TEST(PropertyListWriter, ReferencesGrowWithTheCountOfValues) {
  for (const quint32 count : {254U, 255U, 256U, 65535U, 65536U}) {
    PropertyListWriter writer;
    std::vector<PropertyListWriter::Index> elements;
    for (quint32 i = 0; i < count; ++i)
      elements.push_back(writer.addInteger(i));
    const PropertyList list = PropertyList::fromBinary(writer.finish(writer.addArray(elements)));
    ASSERT_EQ(list.count(list.top()), count);
    EXPECT_EQ(list.integer(list.element(list.top(), count - 1)), qint64(count) - 1);
  }
}

TEST(PropertyListWriter, LeavesOutValuesThatTheTopDoesNotLeadTo) {
  PropertyListWriter writer;
  writer.addString(u"unused");
  const PropertyList list = PropertyList::fromBinary(writer.finish(writer.addString(u"used")));
  EXPECT_EQ(list.size(), 1U);
}
