#include "zqticker/platform/archiving/SequentialArchiver.h"

#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/archiving/PropertyListWriter_p.h"
#include "zqticker/platform/archiving/SequentialUnarchiver.h"
#include "zqticker/platform/archiving/sequential_format_p.h"
#include "zqticker/platform/objects/AssertionHandler.h"
#include "zqticker/platform/objects/Exception.h"

#include <gtest/gtest.h>

#include <QtCore/QDateTime>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace zq::testing {

// Writes and reads its values in order.
class Ordered : public Object {
  Q_GADGET
  ZQ_OBJECT

 public:
  void encodeWithCoder(Coder& coder) override {
    coder.encodeValue(number);
    coder.encodeValue(other);
  }
  Ref<Object> initWithCoder(Coder& coder) override {
    number = coder.decodeValue().toInt();
    other = coder.decodeValue();
    return shared_from_this();
  }
  int number = 0;
  Any other;
};
ZQ_REGISTER_CLASS(Ordered);

class OwningOrdered : public Ordered {
  Q_GADGET
  ZQ_OBJECT
};
ZQ_REGISTER_VALUE_CLASS(OwningOrdered);

// Insists on keys.
class Keyed : public Object {
  Q_GADGET
  ZQ_OBJECT

 public:
  void encodeWithCoder(Coder& coder) override {
    ZQ_ASSERT(coder.allowsKeyedCoding(), u"keyed coding support is required"_s);
  }
  Ref<Object> initWithCoder(Coder& coder) override {
    ZQ_ASSERT(coder.allowsKeyedCoding(), u"keyed coding support is required"_s);
    return shared_from_this();
  }
};
ZQ_REGISTER_CLASS(Keyed);

} // namespace zq::testing

using zq::testing::Keyed;
using zq::testing::Ordered;
using zq::testing::OwningOrdered;

static Any roundTrip(const Any& value) {
  SequentialArchiver archiver;
  archiver.encodeValue(value);
  SequentialUnarchiver unarchiver(archiver.encodedData());
  const Any result = unarchiver.decodeValue();
  EXPECT_TRUE(unarchiver.isAtEnd());
  return result;
}

TEST(SequentialArchiver, KnowsNoKeys) {
  SequentialArchiver archiver;
  EXPECT_FALSE(archiver.allowsKeyedCoding());
  EXPECT_THROW(archiver.encodeInt(1, "key"), InvalidArgumentException);
  EXPECT_THROW(archiver.encodeObject(Any(), "key"), InvalidArgumentException);
  SequentialUnarchiver unarchiver(archiver.encodedData());
  EXPECT_FALSE(unarchiver.allowsKeyedCoding());
  EXPECT_THROW(unarchiver.decodeIntForKey("key"), InvalidArgumentException);
  EXPECT_THROW(unarchiver.containsValueForKey("key"), InvalidArgumentException);
}

TEST(SequentialArchiver, ValuesComeBackInTheirOrder) {
  SequentialArchiver archiver;
  archiver.encodeValue(1);
  archiver.encodeValue(u"two"_s);
  SequentialUnarchiver unarchiver(archiver.encodedData());
  EXPECT_EQ(unarchiver.decodeValue(), Any(qlonglong(1)));
  EXPECT_FALSE(unarchiver.isAtEnd());
  EXPECT_EQ(unarchiver.decodeValue(), Any(u"two"_s));
  EXPECT_TRUE(unarchiver.isAtEnd());
  EXPECT_THROW(unarchiver.decodeValue(), ArchiveException);
}

TEST(SequentialArchiver, PlainValuesRoundTrip) {
  for (const Any& value :
       {Any(), Any(u"text"_s), Any(QByteArray("data")), Any(true), Any(-5LL), Any(~0ULL), Any(0.1),
        Any(0.1F), Any(QDateTime::fromMSecsSinceEpoch(12345, Qt::UTC)),
        Any(QVariantList{1LL, Any(), QVariantList{}}),
        Any(QVariantMap{{u"a"_s, 1LL}, {u"b"_s, QVariantMap{}}})})
    EXPECT_TRUE(isEqualValue(roundTrip(value), value)) << value.typeName();
}

TEST(SequentialArchiver, AnObjectEncodedTwiceIsOneObject) {
  const auto object = std::make_shared<Ordered>();
  object->number = 7;
  const QVariantList list = roundTrip(QVariantList{any(object), any(object)}).toList();
  EXPECT_EQ(objectOf<Ordered>(list[0])->number, 7);
  EXPECT_EQ(objectOf(list[0]), objectOf(list[1]));
}

TEST(SequentialArchiver, AnObjectMayReferToItselfUnlessItOwnsWhatItRefersTo) {
  const auto object = std::make_shared<Ordered>();
  object->other = any(object);
  const auto read = objectOf<Ordered>(roundTrip(any(object)));
  EXPECT_EQ(objectOf(read->other), read);
  read->other = object->other = Any();

  const auto owning = std::make_shared<OwningOrdered>();
  owning->other = any(owning);
  EXPECT_THROW(roundTrip(any(owning)), ArchiveException);
  owning->other = Any();
}

TEST(SequentialArchiver, ClassesThatInsistOnKeysRefuseBothWays) {
  SequentialArchiver archiver;
  EXPECT_THROW(archiver.encodeValue(any(std::make_shared<Keyed>())),
               InternalInconsistencyException);
  // What was written before is still there.
  archiver.encodeValue(1);
  SequentialUnarchiver unarchiver(archiver.encodedData());
  EXPECT_EQ(unarchiver.decodeValue(), Any(qlonglong(1)));
  EXPECT_THROW(std::make_shared<Keyed>()->initWithCoder(unarchiver),
               InternalInconsistencyException);
}

TEST(SequentialArchiver, WhatHasNoPlaceIsAnArgumentError) {
  SequentialArchiver archiver;
  EXPECT_THROW(archiver.encodeValue(QDateTime()), InvalidArgumentException);
  EXPECT_THROW(archiver.encodeValue(QChar(u'x')), InvalidArgumentException);
}

TEST(SequentialArchiver, NestingIsLimited) {
  Any value = QVariantList{};
  for (int i = 1; i < SequentialArchiver::MaximumDepth; ++i)
    value = QVariantList{value};
  EXPECT_TRUE(isEqualValue(roundTrip(value), value));
  EXPECT_THROW(roundTrip(QVariantList{value}), ArchiveException);
}

namespace {

using Index = PropertyListWriter::Index;

SequentialUnarchiver unarchiverOf(PropertyListWriter& writer, Index value) {
  const Index values[] = {writer.addAscii(SequentialSignature),
                          writer.addInteger(SequentialVersion), value};
  return SequentialUnarchiver(writer.finish(writer.addArray(values)));
}

Index pair(PropertyListWriter& writer, QLatin1StringView key, Index value) {
  const Index name = writer.addAscii(key);
  return writer.addDictionary({&name, 1}, {&value, 1});
}

} // namespace

TEST(SequentialUnarchiver, RefusesOtherData) {
  EXPECT_THROW(SequentialUnarchiver({}), ArchiveException);
  EXPECT_THROW(SequentialUnarchiver("hello"), ArchiveException);
  PropertyListWriter writer;
  EXPECT_THROW(SequentialUnarchiver(writer.finish(writer.addArray({}))), ArchiveException);
}

TEST(SequentialUnarchiver, RefusesValuesOfNoKnownKind) {
  PropertyListWriter writer;
  EXPECT_THROW(unarchiverOf(writer, writer.addArray({})).decodeValue(), ArchiveException);
  EXPECT_THROW(unarchiverOf(writer, writer.addUid(0)).decodeValue(), ArchiveException);
  EXPECT_THROW(unarchiverOf(writer, pair(writer, "x"_L1, writer.addArray({}))).decodeValue(),
               ArchiveException);
  EXPECT_THROW(
      unarchiverOf(writer, pair(writer, SequentialListKey, writer.addInteger(1))).decodeValue(),
      ArchiveException);
  const Index number = writer.addInteger(1);
  EXPECT_THROW(unarchiverOf(writer, pair(writer, SequentialMapKey, writer.addArray({&number, 1})))
                   .decodeValue(),
               ArchiveException);
}

TEST(SequentialUnarchiver, RefusesUnknownClasses) {
  PropertyListWriter writer;
  const Index keys[] = {writer.addAscii(SequentialClassKey), writer.addAscii(SequentialValuesKey)};
  const Index values[] = {writer.addString(u"Unknown"), writer.addArray({})};
  EXPECT_THROW(unarchiverOf(writer, writer.addDictionary(keys, values)).decodeValue(),
               ArchiveException);
}

TEST(SequentialUnarchiver, AnObjectCannotReadBeyondItsOwnValues) {
  PropertyListWriter writer;
  const Index keys[] = {writer.addAscii(SequentialClassKey), writer.addAscii(SequentialValuesKey)};
  const Index values[] = {writer.addString(u"Ordered"), writer.addArray({})};
  EXPECT_THROW(unarchiverOf(writer, writer.addDictionary(keys, values)).decodeValue(),
               ArchiveException);
}

TEST(SequentialUnarchiver, ListsThatHoldOneAnotherTwiceAreRefusedBeforeTheyExplode) {
  PropertyListWriter writer;
  Index list = pair(writer, SequentialListKey, writer.addArray({}));
  for (int i = 0; i < 60; ++i) {
    const Index twice[] = {list, list};
    list = pair(writer, SequentialListKey, writer.addArray(twice));
  }
  EXPECT_THROW(unarchiverOf(writer, list).decodeValue(), ArchiveException);
}

#include "SequentialArchiverTest.moc"
