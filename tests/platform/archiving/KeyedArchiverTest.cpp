#include "zqticker/platform/archiving/KeyedArchiver.h"

#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"
#include "zqticker/platform/objects/Exception.h"

#include <gtest/gtest.h>

#include <QtCore/QDateTime>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace zq::testing {

// The class of the primitive values' example.
class T : public Object {
  Q_GADGET
  ZQ_OBJECT

 public:
  void encodeWithCoder(Coder& coder) override {
    coder.encodeInt(-5, "i");
    coder.encodeBool(true, "b");
    coder.encodeDouble(0.5, "f");
    coder.encodeObject(Any(), "n");
  }
};

// Refers to another value, and conditionally to its owner.
class Node : public Object {
  Q_GADGET
  ZQ_OBJECT

 public:
  void encodeWithCoder(Coder& coder) override {
    coder.encodeObject(next, "next");
    coder.encodeConditionalObject(owner, "owner");
  }
  Ref<Object> initWithCoder(Coder& coder) override {
    next = coder.decodeObjectForKey("next");
    owner = objectOf(coder.decodeObjectForKey("owner"));
    return shared_from_this();
  }
  Any next;
  Ref<Object> owner;
};
ZQ_REGISTER_CLASS(Node);

class PrivateNode : public Node {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "")
};

} // namespace zq::testing

using zq::testing::Node;
using zq::testing::PrivateNode;

static Any roundTrip(const Any& value) {
  return KeyedUnarchiver::unarchiveObjectWithData(KeyedArchiver::archivedDataWithRootObject(value));
}

TEST(KeyedArchiver, WritesAStringByteForByteLikeThePlatform) {
  EXPECT_EQ(KeyedArchiver::archivedDataWithRootObject(Any(u"hello"_s)).toHex(),
            "62706c6973743030d4010203040506090a582476657273696f6e58246f626a65"
            "637473592461726368697665725424746f7012000186a0a2070855246e756c6c"
            "5568656c6c6f5f100f4e534b657965644172636869766572d10b0c54726f6f74"
            "800108111a232d32373a4046585b600000000000000101000000000000000d00"
            "000000000000000000000000000062");
}

TEST(KeyedArchiver, WritesPrimitivesByteForByteLikeThePlatform) {
  EXPECT_EQ(KeyedArchiver::archivedDataWithRootObject(std::make_shared<zq::testing::T>()).toHex(),
            "62706c6973743030d4010203040506191a582476657273696f6e58246f626a65"
            "637473592461726368697665725424746f7012000186a0a307081355246e756c"
            "6cd5090a0b0c0d0e0f1011125624636c617373516951625166516e800213ffff"
            "fffffffffffb09233fe00000000000008000d2141516175a24636c6173736e61"
            "6d655824636c61737365735154a21618584e534f626a6563745f100f4e534b65"
            "7965644172636869766572d11b1c54726f6f74800108111a232d32373b414c53"
            "5557595b5d6667707277828b8d9099abaeb30000000000000101000000000000"
            "001d000000000000000000000000000000b5");
}

// Identity and cycles.

TEST(KeyedArchiver, AnObjectEncodedTwiceHasOnePlace) {
  const auto node = std::make_shared<Node>();
  const QVariantList list = roundTrip(QVariantList{any(node), any(node)}).toList();
  EXPECT_EQ(objectOf(list[0]), objectOf(list[1]));
}

TEST(KeyedArchiver, EqualObjectsKeepTheirOwnPlaces) {
  const QVariantList list =
      roundTrip(QVariantList{any(std::make_shared<Node>()), any(std::make_shared<Node>())})
          .toList();
  EXPECT_NE(objectOf(list[0]), objectOf(list[1]));
}

TEST(KeyedArchiver, AnObjectMayReferToItself) {
  const auto node = std::make_shared<Node>();
  node->next = any(node);
  const auto read = objectOf<Node>(roundTrip(any(node)));
  EXPECT_EQ(objectOf(read->next), read);
  node->next = Any();
  read->next = Any();
}

TEST(KeyedArchiver, EqualStringsAndNumbersShareTheirPlace) {
  const KeyedArchive archive(KeyedArchiver::archivedDataWithRootObject(
      Any(QVariantList{u"a"_s, u"a"_s, 7, 7LL, 7.0, true})));
  // $null, the list, a, 7, 7.0, true, and the class.
  EXPECT_EQ(archive.objectCount(), 7U);
}

// Conditional objects.

TEST(KeyedArchiver, AConditionalObjectThatIsNowhereElseIsAnEntryOfNothing) {
  const auto node = std::make_shared<Node>();
  node->owner = std::make_shared<Node>();
  const QByteArray bytes = KeyedArchiver::archivedDataWithRootObject(node);
  const KeyedArchive archive(bytes);
  const auto owner = archive.list().find(archive.object(1), "owner"_L1);
  ASSERT_TRUE(owner);
  const quint32 uid = archive.list().uid(*owner);
  EXPECT_NE(uid, 0U);
  EXPECT_EQ(archive.entry(uid), KeyedArchive::Entry::Nothing);
  EXPECT_EQ(objectOf<Node>(KeyedUnarchiver::unarchiveObjectWithData(bytes))->owner, nullptr);
}

TEST(KeyedArchiver, AConditionalObjectThatIsEncodedBeforeIsThatObject) {
  const auto owner = std::make_shared<Node>();
  const auto node = std::make_shared<Node>();
  node->owner = owner;
  const QVariantList list = roundTrip(QVariantList{any(owner), any(node)}).toList();
  EXPECT_EQ(objectOf<Node>(list[1])->owner, objectOf(list[0]));
}

TEST(KeyedArchiver, AConditionalObjectThatIsEncodedAfterwardsIsThatObject) {
  const auto owner = std::make_shared<Node>();
  const auto node = std::make_shared<Node>();
  node->owner = owner;
  const QVariantList list = roundTrip(QVariantList{any(node), any(owner)}).toList();
  EXPECT_EQ(objectOf<Node>(list[0])->owner, objectOf(list[1]));
}

TEST(KeyedArchiver, AConditionalNothingIsNothing) {
  const KeyedArchive archive(KeyedArchiver::archivedDataWithRootObject(std::make_shared<Node>()));
  const auto owner = archive.list().find(archive.object(1), "owner"_L1);
  ASSERT_TRUE(owner);
  EXPECT_EQ(archive.list().uid(*owner), 0U);
}

// Keys.

TEST(KeyedArchiver, AKeyThatBeginsWithADollarGetsOneMore) {
  KeyedArchiver archiver;
  archiver.encodeObject(Any(u"v"_s), "$x");
  archiver.encodeInt(1, u"$ü");
  archiver.encodeInt(2, "$class"_L1);
  const QByteArray bytes = archiver.finishEncoding();
  const KeyedArchive archive(bytes);
  EXPECT_TRUE(archive.list().find(archive.top(), "$$x"_L1));
  EXPECT_FALSE(archive.list().find(archive.top(), "$x"_L1));
  KeyedUnarchiver unarchiver(bytes);
  EXPECT_EQ(unarchiver.decodeStringForKey("$x"), u"v"_s);
  EXPECT_EQ(unarchiver.decodeIntForKey("$ü"), 1);
  EXPECT_EQ(unarchiver.decodeIntForKey("$class"), 2);
}

TEST(KeyedArchiver, TheSameKeyTwiceInOneObjectIsAnArgumentError) {
  KeyedArchiver archiver;
  archiver.encodeInt(1, "a");
  EXPECT_THROW(archiver.encodeInt(2, "a"), InvalidArgumentException);
  EXPECT_THROW(archiver.encodeObject(Any(), u"a"), InvalidArgumentException);
  EXPECT_THROW(archiver.encodeConditionalObject(nullptr, "a"_L1), InvalidArgumentException);
}

TEST(KeyedArchiver, TheSameKeyInTwoObjectsIsNone) {
  const auto inner = std::make_shared<Node>();
  const auto outer = std::make_shared<Node>();
  outer->next = any(inner);
  EXPECT_NO_THROW(KeyedArchiver::archivedDataWithRootObject(outer));
}

TEST(KeyedArchiver, KeysOfEveryKindOfTextAreTheSameKey) {
  KeyedArchiver archiver;
  archiver.encodeInt(1, "grün");
  EXPECT_THROW(archiver.encodeInt(1, u"grün"), InvalidArgumentException);
  EXPECT_THROW(archiver.encodeInt(1, "gr\xfcn"_L1), InvalidArgumentException);
}

// Values.

TEST(KeyedArchiver, ScalarsStandInTheRecordInTheirOwnWidth) {
  KeyedArchiver archiver;
  archiver.encodeInt(-2080374784, "NSCellFlags");
  archiver.encodeInt64(5000000000, "long");
  archiver.encodeBool(true, "bool");
  archiver.encodeFloat(0.1F, "float");
  archiver.encodeDouble(0.1, "double");
  archiver.encodeBytes("abc", "bytes");
  const QByteArray bytes = archiver.finishEncoding();
  const KeyedArchive archive(bytes);
  const PropertyList& list = archive.list();
  const auto value = [&](QLatin1StringView key) { return *list.find(archive.top(), key); };
  EXPECT_EQ(list.integer(value("NSCellFlags"_L1)), -2080374784);
  EXPECT_EQ(list.integer(value("long"_L1)), 5000000000);
  EXPECT_EQ(list.kind(value("bool"_L1)), PropertyList::Kind::Boolean);
  EXPECT_TRUE(list.isSinglePrecision(value("float"_L1)));
  EXPECT_EQ(list.real(value("float"_L1)), 0.10000000149011612);
  EXPECT_FALSE(list.isSinglePrecision(value("double"_L1)));
  EXPECT_EQ(list.data(value("bytes"_L1)), "abc");
}

TEST(KeyedArchiver, GeometryIsAReferenceToAString) {
  KeyedArchiver archiver;
  archiver.encodePoint({1, 2.5}, "point");
  archiver.encodeSize({100, 20}, "size");
  archiver.encodeRect({0, -1.25, 100, 0.5}, "rect");
  KeyedUnarchiver unarchiver(archiver.finishEncoding());
  EXPECT_EQ(unarchiver.decodeStringForKey("point"), u"{1, 2.5}"_s);
  EXPECT_EQ(unarchiver.decodeStringForKey("size"), u"{100, 20}"_s);
  EXPECT_EQ(unarchiver.decodeStringForKey("rect"), u"{{0, -1.25}, {100, 0.5}}"_s);
  EXPECT_EQ(unarchiver.decodeRectForKey("rect"), QRectF(0, -1.25, 100, 0.5));
}

TEST(KeyedArchiver, NothingIsAKeyWithTheFirstEntry) {
  KeyedArchiver archiver;
  archiver.encodeObject(Any(), "nil");
  archiver.encodeObject(std::optional<QString>(), "text");
  archiver.encodeObject(Ref<Node>(), "object");
  KeyedUnarchiver unarchiver(archiver.finishEncoding());
  for (const char* key : {"nil", "text", "object"}) {
    EXPECT_TRUE(unarchiver.containsValueForKey(key));
    EXPECT_FALSE(unarchiver.decodeObjectForKey(key).isValid());
  }
}

TEST(KeyedArchiver, PrivateSubclassesGoUnderThePublicName) {
  const KeyedArchive archive(
      KeyedArchiver::archivedDataWithRootObject(std::make_shared<PrivateNode>()));
  const KeyedArchive::Class type = archive.classAt(archive.classUidOf(archive.object(1)));
  EXPECT_EQ(type.name, u"Node"_s);
  EXPECT_EQ(type.classes, (QStringList{u"Node"_s, u"NSObject"_s}));
}

TEST(KeyedArchiver, OneClassRecordServesAllObjectsOfAClass) {
  const KeyedArchive archive(KeyedArchiver::archivedDataWithRootObject(Any(QVariantList{
      any(std::make_shared<Node>()), any(std::make_shared<PrivateNode>()), QVariantList{}})));
  int classes = 0;
  for (quint32 uid = 0; uid < archive.objectCount(); ++uid)
    classes += archive.entry(uid) == KeyedArchive::Entry::Class ? 1 : 0;
  EXPECT_EQ(classes, 2);
}

TEST(KeyedArchiver, IncrementalArchivesHoldManyValuesAtTheTop) {
  KeyedArchiver archiver;
  EXPECT_TRUE(archiver.allowsKeyedCoding());
  archiver.encodeInt(1, "version");
  archiver.encodeObject(std::make_shared<Node>(), "node");
  const QByteArray bytes = archiver.finishEncoding();
  EXPECT_EQ(archiver.finishEncoding(), bytes);
  EXPECT_THROW(archiver.encodeInt(2, "more"), InvalidArgumentException);
  KeyedUnarchiver unarchiver(bytes);
  EXPECT_EQ(unarchiver.decodeIntForKey("version"), 1);
  EXPECT_TRUE(unarchiver.decodeObjectOfClass<Node>("node"));
}

TEST(KeyedArchiver, RefusesToDecode) {
  KeyedArchiver archiver;
  EXPECT_THROW(archiver.decodeIntForKey("x"), ArchiveException);
  EXPECT_THROW(archiver.decodeObjectForKey("x"), ArchiveException);
  EXPECT_THROW(archiver.containsValueForKey("x"), ArchiveException);
  EXPECT_THROW(archiver.encodeValue(1), InvalidArgumentException);
}

TEST(KeyedArchiver, ObjectsMayBeNestedUpToTheDepthLimit) {
  const auto nested = [](int depth) {
    Any value = QVariantList{};
    for (int i = 1; i < depth; ++i)
      value = QVariantList{value};
    return value;
  };
  EXPECT_TRUE(isEqualValue(roundTrip(nested(KeyedArchiver::MaximumDepth)),
                           nested(KeyedArchiver::MaximumDepth)));
  EXPECT_THROW(roundTrip(nested(KeyedArchiver::MaximumDepth + 1)), ArchiveException);
}

TEST(KeyedArchiver, MessagesNameTheWayToTheKey) {
  const auto node = std::make_shared<Node>();
  node->next = QDateTime();
  try {
    KeyedArchiver::archivedDataWithRootObject(node);
    ADD_FAILURE();
  } catch (const InvalidArgumentException& exception) {
    EXPECT_EQ(exception.reason(), u"root.next: the date is invalid"_s);
  }
}

TEST(KeyedArchiver, TheSameObjectsGiveTheSameBytes) {
  const auto bytes = [] {
    return KeyedArchiver::archivedDataWithRootObject(
        Any(QVariantMap{{u"list"_s, QVariantList{1, 2.5, true, u"x"_s, QByteArray("d")}},
                        {u"grüß"_s, any(std::make_shared<Node>())}}));
  };
  EXPECT_EQ(bytes(), bytes());
}

#include "KeyedArchiverTest.moc"
