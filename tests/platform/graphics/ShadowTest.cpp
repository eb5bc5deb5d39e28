#include "zqticker/platform/graphics/Shadow.h"

#include "zqticker/platform/archiving/KeyedArchiver.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"
#include "zqticker/platform/graphics/Color.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {

QByteArray archiveOf(const QByteArray& fields) {
  return "<plist><dict><key>$archiver</key><string>NSKeyedArchiver</string><key>$version</key>"
         "<integer>100000</integer><key>$objects</key><array><string>$null</string><dict>"
         "<key>$class</key><dict><key>CF$UID</key><integer>2</integer></dict>" +
         fields +
         "</dict><dict><key>$classname</key><string>NSShadow</string></dict></array><key>$top"
         "</key><dict><key>root</key><dict><key>CF$UID</key><integer>1</integer></dict></dict>"
         "</dict></plist>";
}

Ref<Shadow> read(const QByteArray& archive) {
  return KeyedUnarchiver::unarchiveObjectOfClass<Shadow>(archive);
}

} // namespace

TEST(Shadow, ANewOneHasNoOffsetNoBlurAndTheDefaultColor) {
  const Shadow shadow;
  EXPECT_EQ(shadow.shadowOffset(), QSizeF(0, 0));
  EXPECT_EQ(shadow.shadowBlurRadius(), 0);
  ASSERT_TRUE(shadow.shadowColor());
  EXPECT_TRUE(shadow.shadowColor()->isEqual(*Color::calibratedWhite(0, 1.0 / 3)));
}

TEST(Shadow, ANegativeBlurCountsAsNone) {
  Shadow shadow;
  shadow.setShadowBlurRadius(-1);
  EXPECT_EQ(shadow.shadowBlurRadius(), 0);
  shadow.setShadowBlurRadius(qQNaN());
  EXPECT_EQ(shadow.shadowBlurRadius(), 0);
}

TEST(Shadow, ACopyIsEqualAndChangesByItself) {
  const auto shadow = std::make_shared<Shadow>(QSizeF(1, -2), 3, Color::calibratedWhite(0, 0.5));
  const Ref<Shadow> copy = copyOf(shadow);
  EXPECT_NE(copy, shadow);
  EXPECT_TRUE(copy->isEqual(*shadow));
  copy->setShadowOffset({1, -2.5});
  EXPECT_FALSE(copy->isEqual(*shadow));
  EXPECT_EQ(shadow->shadowOffset(), QSizeF(1, -2));
}

TEST(Shadow, DiffersByEachOfItsValues) {
  const Shadow shadow({1, -2}, 3, Color::calibratedWhite(0, 0.5));
  EXPECT_TRUE(shadow.isEqual(Shadow({1, -2}, 3, Color::calibratedWhite(0, 0.5))));
  EXPECT_FALSE(shadow.isEqual(Shadow({2, -2}, 3, Color::calibratedWhite(0, 0.5))));
  EXPECT_FALSE(shadow.isEqual(Shadow({1, 2}, 3, Color::calibratedWhite(0, 0.5))));
  EXPECT_FALSE(shadow.isEqual(Shadow({1, -2}, 4, Color::calibratedWhite(0, 0.5))));
  EXPECT_FALSE(shadow.isEqual(Shadow({1, -2}, 3, Color::calibratedWhite(1, 0.5))));
  EXPECT_FALSE(shadow.isEqual(Shadow({1, -2}, 3, nullptr)));
}

TEST(Shadow, ReadsWhatAnotherProgramWrote) {
  QFile file(QStringLiteral(ZQTICKER_SOURCE_DIR "/tests/platform/archiving/golden/shadow.archive"));
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  const Ref<Shadow> shadow = read(file.readAll());
  EXPECT_TRUE(shadow->isEqual(Shadow({1, -2}, 3, Color::calibratedWhite(0, 0.5))));
}

TEST(Shadow, MissingKeysGiveZerosAndTheDefaultColor) {
  EXPECT_TRUE(read(archiveOf(""))->isEqual(Shadow()));
}

TEST(Shadow, AColorOfNothingStaysNothing) {
  const Ref<Shadow> shadow =
      read(archiveOf("<key>NSShadowColor</key><dict><key>CF$UID</key><integer>0</integer></dict>"));
  EXPECT_EQ(shadow->shadowColor(), nullptr);
}

TEST(Shadow, ArchivesRoundTrip) {
  for (const Ref<Color>& color : {Color::deviceRGB(0.1, 0.2, 0.3, 0.4), Ref<Color>()}) {
    const auto shadow = std::make_shared<Shadow>(QSizeF(0.1, -1e10), 2.5, color);
    EXPECT_TRUE(read(KeyedArchiver::archivedDataWithRootObject(shadow))->isEqual(*shadow));
  }
}
