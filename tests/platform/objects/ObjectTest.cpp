#include "zqticker/platform/objects/Object.h"

#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/archiving/PortCoder.h"
#include "zqticker/platform/objects/Exception.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace zq::testing {

class Plain : public Object {
  Q_GADGET
  ZQ_OBJECT
};

class Renamed : public Plain {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSRenamed")

 public:
  explicit Renamed(int value) : number(value) {}
  bool isEqual(const Object& other) const override {
    const auto* renamed = dynamic_cast<const Renamed*>(&other);
    return renamed && renamed->number == number;
  }
  Ref<Object> copy() override { return std::make_shared<Renamed>(number); }
  int number;
};

} // namespace zq::testing

using zq::testing::Plain;
using zq::testing::Renamed;

TEST(Object, DescribesItselfByClassNameAndAddress) {
  const auto object = std::make_shared<Plain>();
  EXPECT_EQ(object->description(),
            u"<Plain: 0x%1>"_s.arg(QString::number(quintptr(object.get()), 16)));
}

TEST(Object, NothingDescribesItselfAsNull) {
  EXPECT_EQ(describe(nullptr), u"(null)"_s);
}

TEST(Object, IsEqualToItselfOnlyByDefault) {
  const auto one = std::make_shared<Plain>();
  const auto other = std::make_shared<Plain>();
  EXPECT_TRUE(one->isEqual(*one));
  EXPECT_FALSE(one->isEqual(*other));
}

TEST(Object, CopyIsAnotherObjectOfTheSameStaticType) {
  const auto source = std::make_shared<Renamed>(3);
  const Ref<Renamed> copy = copyOf(source);
  EXPECT_NE(copy, source);
  EXPECT_TRUE(copy->isEqual(*source));
  EXPECT_EQ(copyOf(Ref<Renamed>()), nullptr);
}

TEST(Object, ClassesWithoutCopyOrArchiveRefuse) {
  const auto object = std::make_shared<Plain>();
  PortCoder coder(PortCoder::Passing::ByCopy);
  EXPECT_THROW(object->copy(), UnrecognizedSelectorException);
  EXPECT_THROW(object->encodeWithCoder(coder), UnrecognizedSelectorException);
  EXPECT_THROW(object->initWithCoder(coder), UnrecognizedSelectorException);
}

TEST(Object, ArchiveNameIsTheClassNameUnlessAnotherIsStated) {
  EXPECT_EQ(ClassRegistry::archiveNameOf(Plain::staticMetaObject), u"Plain"_s);
  EXPECT_EQ(ClassRegistry::archiveNameOf(Renamed::staticMetaObject), u"NSRenamed"_s);
}

TEST(Object, ArchiveClassesLeadToTheRoot) {
  EXPECT_EQ(ClassRegistry::archiveClassesOf(Renamed::staticMetaObject),
            (QStringList{u"NSRenamed"_s, u"Plain"_s, u"NSObject"_s}));
}

TEST(PortCoder, SendsAProxyForAnObjectThatDoesNotSayOtherwise) {
  const auto object = std::make_shared<Plain>();
  for (const auto passing : {PortCoder::Passing::ByCopy, PortCoder::Passing::ByReference}) {
    PortCoder coder(passing);
    const auto proxy =
        std::dynamic_pointer_cast<ObjectProxy>(object->replacementObjectForPortCoder(coder));
    ASSERT_NE(proxy, nullptr);
    EXPECT_EQ(proxy->target(), object);
    EXPECT_EQ(object->replacementObjectForPortCoder(coder), proxy);
  }
}

TEST(PortCoder, IsNotKeyed) {
  PortCoder coder(PortCoder::Passing::ByCopy);
  EXPECT_FALSE(coder.allowsKeyedCoding());
  EXPECT_THROW(coder.encodeInt(1, "key"), InvalidArgumentException);
  EXPECT_THROW(coder.decodeObjectForKey("key"), InvalidArgumentException);
}

TEST(Any, NothingIsTheInvalidVariant) {
  EXPECT_FALSE(any(Ref<Plain>()).isValid());
  EXPECT_FALSE(any(std::optional<QString>()).isValid());
  EXPECT_TRUE(any(std::optional<QString>(u""_s)).isValid());
}

TEST(Any, ReferenceObjectsAreStoredUnderTheirBase) {
  const auto object = std::make_shared<Renamed>(1);
  const Any value = any(object);
  EXPECT_EQ(objectOf(value), object);
  EXPECT_EQ(objectOf<Renamed>(value), object);
  EXPECT_EQ(objectOf<ObjectProxy>(value), nullptr);
}

TEST(Any, SameObjectIsIdentityForReferencesAndEqualityForPlainValues) {
  const auto one = std::make_shared<Renamed>(1);
  const auto equal = std::make_shared<Renamed>(1);
  EXPECT_TRUE(isSameObject(any(one), any(one)));
  EXPECT_FALSE(isSameObject(any(one), any(equal)));
  EXPECT_TRUE(isSameObject(Any(u"a"_s), Any(u"a"_s)));
  EXPECT_FALSE(isSameObject(Any(u"a"_s), Any(u"b"_s)));
  EXPECT_FALSE(isSameObject(Any(u"1"_s), Any(1)));
  EXPECT_FALSE(isSameObject(Any(), any(one)));
}

TEST(Any, EqualValuesAreComparedThroughContainers) {
  const Any one = any(std::make_shared<Renamed>(1));
  const Any equal = any(std::make_shared<Renamed>(1));
  const Any other = any(std::make_shared<Renamed>(2));
  EXPECT_TRUE(isEqualValue(QVariantList{one, u"x"_s}, QVariantList{equal, u"x"_s}));
  EXPECT_FALSE(isEqualValue(QVariantList{one}, QVariantList{other}));
  EXPECT_TRUE(isEqualValue(QVariantMap{{u"k"_s, one}}, QVariantMap{{u"k"_s, equal}}));
  EXPECT_FALSE(isEqualValue(QVariantMap{{u"k"_s, one}}, QVariantMap{{u"l"_s, equal}}));
  EXPECT_FALSE(isEqualValue(QVariantMap{{u"k"_s, one}}, QVariantMap{}));
}

#include "ObjectTest.moc"
