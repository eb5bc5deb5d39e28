#include "zqticker/platform/archiving/KeyedArchiver.h"

#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"
#include "zqticker/platform/objects/Exception.h"

#include <gtest/gtest.h>

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

} // namespace zq::testing

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

TEST(KeyedArchiver, RoundTrips) {
  const Any value = QVariantMap{{u"list"_s, QVariantList{1, 2.5, true, u"x"_s, QByteArray("d")}},
                                {u"grüß"_s, u"𝄞"_s}};
  EXPECT_TRUE(isEqualValue(
      KeyedUnarchiver::unarchiveObjectWithData(KeyedArchiver::archivedDataWithRootObject(value)),
      value));
}

#include "KeyedArchiverTest.moc"
