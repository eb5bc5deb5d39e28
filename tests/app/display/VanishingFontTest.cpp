#include "tests/app/DisplayFrames.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/signs/ZQTextTickerSign.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>
#include <QtGui/QFontDatabase>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;
using namespace zq::platform;

namespace {

// As long as the name that it takes the place of.
constexpr char16_t Before[] = u"DejaVu Sans Mono";
constexpr char16_t Name[] = u"Vanishing Fontxx";
static_assert(std::size(Before) == std::size(Name));

// A font that the desktop does not have.
QByteArray fontFile() {
  QFile file(u"/usr/share/fonts/truetype/dejavu/DejaVuSansMono.ttf"_s);
  if (!file.open(QIODevice::ReadOnly))
    return {};
  QByteArray data = file.readAll();
  const auto bigEndian = [](const char16_t* text) {
    QByteArray bytes;
    for (; *text; ++text)
      bytes.append(char(*text >> 8)).append(char(*text & 0xff));
    return bytes;
  };
  data.replace(bigEndian(Before), bigEndian(Name));
  data.replace(QString::fromUtf16(Before).toLatin1(), QString::fromUtf16(Name).toLatin1());
  return data;
}

} // namespace

TEST(VanishingFont, LeavesTheSignsThatHoldItWhereTheyAre) {
  const int font = QFontDatabase::addApplicationFontFromData(fontFile());
  ASSERT_GE(font, 0);
  ASSERT_EQ(QFontDatabase::applicationFontFamilies(font), QStringList{QString::fromUtf16(Name)});

  TickerDisplay display;
  setUp(display, QSizeF(200, 24));
  display.setDefaultFont(Font::fontWithName(QString::fromUtf16(Name), 14));
  for (int i = 0; i < 10; ++i) {
    const auto sign = display.makeTextSign(u"sign %1"_s.arg(i));
    sign->setLoopCount(ZQEndlessLoopCount);
    sign->setContinuousScrolling(true);
    display.addSign(sign, 0);
  }
  display.addLine(u"a line"_s, 0);
  const QImage before = shown(display, 3);
  const double start = display.strip().runs().front().start;
  ASSERT_TRUE(QFontDatabase::removeApplicationFont(font));
  EXPECT_EQ(shown(display, 3), before) << "nothing moves";
  EXPECT_EQ(display.strip().runs().front().start, start);

  // New and changed texts, another scale, and all of them once more.
  display.addSign(display.makeTextSign(u"new"_s), 3);
  display.setScale(1.5);
  for (double time = 3; time < 60; time += 0.5) {
    const QImage image = shown(display, time);
    const auto ink = inkAlong(image, true);
    ASSERT_LT(ink.first, ink.second) << time;
  }
  display.setDefaultFont(Font::fontWithName(u"DejaVu Sans"_s, 12));
  EXPECT_TRUE(display.advanceTo(61));
}
