#include "zqticker/platform/archiving/PortCoder.h"

#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace zq::testing {

// Travels by value in messages that ask for it.
class Traveller : public Object {
  Q_GADGET
  ZQ_OBJECT

 public:
  Ref<Object> replacementObjectForPortCoder(PortCoder& coder) override {
    return coder.isBycopy() ? shared_from_this() : Object::replacementObjectForPortCoder(coder);
  }
  void encodeWithCoder(Coder& coder) override { coder.encodeInt(number, "number"); }
  Ref<Object> initWithCoder(Coder& coder) override {
    number = coder.decodeIntForKey("number");
    return shared_from_this();
  }
  int number = 0;
};
ZQ_REGISTER_CLASS(Traveller);

} // namespace zq::testing

using zq::testing::Traveller;

TEST(PortMessageItem, AnObjectTravelsByValueWhereItSaysSo) {
  const auto object = std::make_shared<Traveller>();
  object->number = 7;
  PortCoder coder(PortCoder::Passing::ByCopy);
  const PortMessageItem item = portMessageItem(object, coder);
  ASSERT_TRUE(item.isByValue());
  EXPECT_EQ(item.proxy, nullptr);
  EXPECT_EQ(KeyedUnarchiver::unarchiveObjectOfClass<Traveller>(item.archive)->number, 7);
}

TEST(PortMessageItem, AnObjectStaysBehindAProxyOtherwise) {
  const auto object = std::make_shared<Traveller>();
  PortCoder coder(PortCoder::Passing::ByReference);
  const PortMessageItem item = portMessageItem(object, coder);
  EXPECT_FALSE(item.isByValue());
  ASSERT_TRUE(item.proxy);
  EXPECT_EQ(item.proxy->target(), object);
  EXPECT_EQ(portMessageItem(object, coder).proxy, item.proxy);
}

TEST(PortMessageItem, NothingTravelsByValue) {
  PortCoder coder(PortCoder::Passing::ByReference);
  const PortMessageItem item = portMessageItem(nullptr, coder);
  ASSERT_TRUE(item.isByValue());
  EXPECT_FALSE(KeyedUnarchiver::unarchiveObjectWithData(item.archive).isValid());
}

#include "PortCoderTest.moc"
