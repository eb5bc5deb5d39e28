#include "zqticker/platform/graphics/Color.h"

#include "zqticker/platform/archiving/KeyedArchiver.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"
#include "zqticker/platform/graphics/ColorSpace_p.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/graphics/component_text_p.h"
#include "zqticker/platform/objects/Exception.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <locale>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace zq::testing {

// Writes a colour's record key by key, as other writers do.
class ColorRecord : public Object {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSColor")

 public:
  explicit ColorRecord(std::function<void(Coder&)> fields) : write(std::move(fields)) {}
  void encodeWithCoder(Coder& coder) override { write(coder); }

  std::function<void(Coder&)> write;
};

} // namespace zq::testing

namespace {

Ref<Color> reread(const Ref<Color>& color) {
  return KeyedUnarchiver::unarchiveObjectOfClass<Color>(
      KeyedArchiver::archivedDataWithRootObject(color));
}

Ref<Color> read(std::function<void(Coder&)> write) {
  return KeyedUnarchiver::unarchiveObjectOfClass<Color>(KeyedArchiver::archivedDataWithRootObject(
      std::make_shared<zq::testing::ColorRecord>(std::move(write))));
}

// A record of a space and of component bytes.
Ref<Color> read(int space, const char* key, const QByteArray& components) {
  return read([=](Coder& coder) {
    coder.encodeInt(space, "NSColorSpace");
    coder.encodeBytes(components, key);
  });
}

// What is written under a key of the archive's root.
template <class T>
T written(const Ref<Color>& color, T (KeyedUnarchiver::*decode)(QAnyStringView), const char* key) {
  // The record itself is the top level here.
  struct Spy : KeyedArchiver {
  } archiver;
  color->encodeWithCoder(archiver);
  KeyedUnarchiver unarchiver(archiver.finishEncoding());
  return (unarchiver.*decode)(key);
}

std::vector<double> rgba(const Color& color) {
  return {color.redComponent(), color.greenComponent(), color.blueComponent(),
          color.alphaComponent()};
}

} // namespace

TEST(Color, LimitsComponentsToZeroAndOne) {
  const Ref<Color> color = Color::deviceRGB(-1, 2, std::nan(""), 1e300);
  EXPECT_EQ(rgba(*color), (std::vector<double>{0, 1, 0, 1}));
  EXPECT_TRUE(Color::deviceRGB(7, 0, 0)->qColor().isValid());
}

TEST(Color, ConvertsEverySpaceToRGB) {
  EXPECT_EQ(rgba(*Color::calibratedRGB(0.25, 0.5, 0.75, 0.5)),
            (std::vector<double>{0.25, 0.5, 0.75, 0.5}));
  EXPECT_EQ(rgba(*Color::deviceWhite(0.25, 0.5)), (std::vector<double>{0.25, 0.25, 0.25, 0.5}));
  EXPECT_EQ(rgba(*Color::deviceCMYK(0, 0.5, 1, 0.5)), (std::vector<double>{0.5, 0.25, 0, 1}));
  EXPECT_EQ(rgba(*Color::sRGB(0.25, 0.5, 0.75)), (std::vector<double>{0.25, 0.5, 0.75, 1}));
  EXPECT_EQ(rgba(*Color::catalog(u"System"_s, u"textColor"_s, Color::deviceRGB(0, 0.5, 1, 0.25))),
            (std::vector<double>{0, 0.5, 1, 0.25}));
  EXPECT_EQ(rgba(*Color::catalog(u"System"_s, u"textColor"_s, nullptr)),
            (std::vector<double>{0, 0, 0, 1}));
}

TEST(Color, IsMadeFromHueSaturationAndBrightness) {
  const auto expectRGB = [](const Ref<Color>& color, double red, double green, double blue) {
    EXPECT_EQ(color->space(), Color::Space::CalibratedRGB);
    EXPECT_NEAR(color->redComponent(), red, 1e-15);
    EXPECT_NEAR(color->greenComponent(), green, 1e-15);
    EXPECT_NEAR(color->blueComponent(), blue, 1e-15);
  };
  // One colour of each sixth of the circle, by saturation 0.5 and brightness 0.8: the lowest
  // channel is 0.4, the one that runs stands at a quarter of the way.
  expectRGB(Color::calibratedHSB(0.25 / 6, 0.5, 0.8), 0.8, 0.5, 0.4);
  expectRGB(Color::calibratedHSB(1.25 / 6, 0.5, 0.8), 0.7, 0.8, 0.4);
  expectRGB(Color::calibratedHSB(2.25 / 6, 0.5, 0.8), 0.4, 0.8, 0.5);
  expectRGB(Color::calibratedHSB(3.25 / 6, 0.5, 0.8), 0.4, 0.7, 0.8);
  expectRGB(Color::calibratedHSB(4.25 / 6, 0.5, 0.8), 0.5, 0.4, 0.8);
  expectRGB(Color::calibratedHSB(5.25 / 6, 0.5, 0.8), 0.8, 0.4, 0.7);
  expectRGB(Color::calibratedHSB(1, 1, 1), 1, 0, 0);
  expectRGB(Color::calibratedHSB(0.3, 0, 0.7), 0.7, 0.7, 0.7);
}

TEST(Color, LimitsHueSaturationAndBrightnessBeforeConverting) {
  EXPECT_EQ(rgba(*Color::calibratedHSB(0, 0.5, 1.27, 2)), (std::vector<double>{1, 0.5, 0.5, 1}));
  EXPECT_EQ(rgba(*Color::calibratedHSB(-1, 7, 0.5, -1)), (std::vector<double>{0.5, 0, 0, 0}));
  EXPECT_EQ(rgba(*Color::calibratedHSB(std::nan(""), std::nan(""), std::nan(""))),
            (std::vector<double>{0, 0, 0, 1}));
}

TEST(Color, TellsItsHueSaturationAndBrightness) {
  for (int sixth = 0; sixth < 6; ++sixth)
    for (const double part : {0.0, 0.25, 0.75}) {
      const double hue = (sixth + part) / 6;
      const Ref<Color> color = Color::calibratedHSB(hue, 0.5, 0.8);
      EXPECT_NEAR(color->hueComponent(), hue, 1e-12);
      EXPECT_NEAR(color->saturationComponent(), 0.5, 1e-12);
      EXPECT_EQ(color->brightnessComponent(), 0.8);
    }
  const Ref<Color> gray = Color::deviceWhite(0.3);
  EXPECT_EQ(gray->hueComponent(), 0);
  EXPECT_EQ(gray->saturationComponent(), 0);
  EXPECT_EQ(gray->brightnessComponent(), 0.3);
  EXPECT_EQ(Color::deviceWhite(0)->saturationComponent(), 0);
}

TEST(Color, TakesAnotherAlphaInItsOwnSpace) {
  for (const Ref<Color>& color : {Color::deviceRGB(0.25, 0.5, 0.75), Color::calibratedWhite(0.5),
                                  Color::sRGB(1, 0, 0), Color::deviceCMYK(0.1, 0.2, 0.3, 0.4)}) {
    const Ref<Color> faded = color->colorWithAlphaComponent(0.25);
    EXPECT_EQ(faded->space(), color->space());
    std::vector<double> components = color->components();
    components.back() = 0.25;
    EXPECT_EQ(faded->components(), components);
    EXPECT_EQ(color->alphaComponent(), 1);
    EXPECT_EQ(color->colorWithAlphaComponent(7)->alphaComponent(), 1);
  }
}

TEST(Color, ANamedOneWithAnotherAlphaIsWhatItShows) {
  const auto shown = Color::deviceRGB(1, 0, 0, 0.75);
  const auto named = Color::catalog(u"System"_s, u"textColor"_s, shown);
  EXPECT_TRUE(named->colorWithAlphaComponent(0.5)->isEqual(*Color::deviceRGB(1, 0, 0, 0.5)));
  EXPECT_TRUE(Color::catalog(u"System"_s, u"textColor"_s, nullptr)
                  ->colorWithAlphaComponent(0.5)
                  ->isEqual(*Color::calibratedWhite(0, 0.5)));
}

TEST(Color, APatternHasNoAlphaToTake) {
  const auto pattern = Color::pattern(Image::make(QSizeF(2, 2)));
  EXPECT_TRUE(pattern->colorWithAlphaComponent(0.5)->isEqual(*pattern));
  EXPECT_NE(pattern->colorWithAlphaComponent(0.5), pattern);
}

TEST(Color, ReadsNames) {
  EXPECT_EQ(Color::fromName(u"red"_s)->qColor(), QColor(255, 0, 0));
  EXPECT_EQ(Color::fromName(u"#336699"_s)->redComponent(), 0x33 / 255.0);
  EXPECT_EQ(Color::fromName(u"transparent"_s)->alphaComponent(), 0);
  EXPECT_EQ(Color::fromName(u"reddish"_s), nullptr);
  EXPECT_EQ(Color::fromName(u""_s), nullptr);
  EXPECT_EQ(Color::fromQColor(QColor()), nullptr);
}

TEST(Color, IsEqualByValue) {
  EXPECT_TRUE(Color::deviceRGB(0.1, 0.2, 0.3)->isEqual(*Color::deviceRGB(0.1, 0.2, 0.3)));
  EXPECT_FALSE(Color::deviceRGB(0.1, 0.2, 0.3)->isEqual(*Color::deviceRGB(0.1, 0.2, 0.4)));
  EXPECT_FALSE(Color::deviceRGB(0.1, 0.2, 0.3)->isEqual(*Color::calibratedRGB(0.1, 0.2, 0.3)));
  EXPECT_TRUE(Color::catalog(u"a"_s, u"b"_s, Color::deviceWhite(1))
                  ->isEqual(*Color::catalog(u"a"_s, u"b"_s, Color::deviceWhite(1))));
  EXPECT_FALSE(
      Color::catalog(u"a"_s, u"b"_s, nullptr)->isEqual(*Color::catalog(u"a"_s, u"c"_s, nullptr)));
  EXPECT_FALSE(Color::deviceWhite(1)->isEqual(*Image::make(QSizeF(1, 1))));
}

TEST(Color, CopiesAreOtherObjectsOfTheSameValue) {
  const Ref<Color> color = Color::deviceRGB(0.1, 0.2, 0.3);
  EXPECT_NE(copyOf(color), color);
  EXPECT_TRUE(copyOf(color)->isEqual(*color));
}

TEST(Color, DescribesItselfBySpaceAndComponents) {
  EXPECT_EQ(Color::deviceRGB(0.25, 0.5, 0.75)->description(), u"DeviceRGB 0.25 0.5 0.75 1"_s);
  EXPECT_EQ(Color::catalog(u"System"_s, u"textColor"_s, nullptr)->description(),
            u"Catalog System textColor"_s);
}

TEST(Color, APatternKeepsItsImageAsItWas) {
  QImage tile(2, 2, QImage::Format_RGB32);
  tile.fill(Qt::red);
  const Ref<Image> image = Image::fromQImage(tile);
  const Ref<Color> color = Color::pattern(image);
  image->setSize(QSizeF(7, 7));
  EXPECT_EQ(color->patternImage()->size(), QSizeF(2, 2));
  EXPECT_TRUE(color->components().empty());
}

TEST(ColorArchive, KeepsEveryKindOfColour) {
  QImage tile(2, 2, QImage::Format_RGB32);
  tile.fill(Qt::red);
  for (const Ref<Color>& color :
       {Color::deviceRGB(0.1, 0.2, 0.3, 0.4), Color::calibratedRGB(0, 1, 1.0 / 3),
        Color::sRGB(0.1, 0.2, 0.3), Color::calibratedWhite(0.7, 0), Color::deviceWhite(1),
        Color::deviceCMYK(0.1, 0.2, 0.3, 0.4, 0.5), Color::pattern(Image::fromQImage(tile)),
        Color::catalog(u"System"_s, u"controlColor"_s, Color::calibratedWhite(2.0 / 3))})
    EXPECT_TRUE(reread(color)->isEqual(*color)) << color->description().toStdString();
}

TEST(ColorArchive, WritesComponentsAsTextWithATrailingNul) {
  const auto bytes = [](const Ref<Color>& color, const char* key) {
    return written(color, &KeyedUnarchiver::decodeBytesForKey, key);
  };
  EXPECT_EQ(bytes(Color::calibratedRGB(0.1, 0.2, 0.3), "NSRGB"), QByteArray("0.1 0.2 0.3", 12));
  EXPECT_EQ(bytes(Color::deviceRGB(0.25, 0.5, 0.75, 0.5), "NSRGB"),
            QByteArray("0.25 0.5 0.75 0.5", 18));
  EXPECT_EQ(bytes(Color::calibratedWhite(1), "NSWhite"), QByteArray("1", 2));
  EXPECT_EQ(bytes(Color::deviceWhite(0, 0), "NSWhite"), QByteArray("0 0", 4));
  EXPECT_EQ(bytes(Color::deviceCMYK(0.1, 0.2, 0.3, 0.4), "NSCMYK"),
            QByteArray("0.1 0.2 0.3 0.4", 16));
  EXPECT_EQ(bytes(Color::sRGB(0, 0, 1), "NSRGB"), QByteArray("0 0 1", 6));
  EXPECT_EQ(bytes(Color::sRGB(0, 0, 1), "NSComponents"), "0 0 1 1");
}

TEST(ColorArchive, WritesTheNumberOfTheSpace) {
  const auto space = [](const Ref<Color>& color) {
    return written(color, &KeyedUnarchiver::decodeIntForKey, "NSColorSpace");
  };
  EXPECT_EQ(space(Color::calibratedRGB(0, 0, 0)), 1);
  EXPECT_EQ(space(Color::deviceRGB(0, 0, 0)), 2);
  EXPECT_EQ(space(Color::calibratedWhite(0)), 3);
  EXPECT_EQ(space(Color::deviceWhite(0)), 4);
  EXPECT_EQ(space(Color::deviceCMYK(0, 0, 0, 0)), 5);
  EXPECT_EQ(space(Color::catalog(u"a"_s, u"b"_s, nullptr)), 6);
  EXPECT_EQ(space(Color::pattern(nullptr)), 10);
  EXPECT_EQ(space(Color::sRGB(0, 0, 0)), 1);
}

TEST(ColorArchive, ReadsTextWithAndWithoutTheNul) {
  for (const QByteArray& end : {QByteArray(), QByteArray("\0", 1), QByteArray("\0 junk", 6)}) {
    EXPECT_TRUE(
        read(1, "NSRGB", "0.1 0.2 0.3" + end)->isEqual(*Color::calibratedRGB(0.1, 0.2, 0.3)));
    EXPECT_TRUE(read(2, "NSRGB", "0.25 0.5 0.75 0.5" + end)
                    ->isEqual(*Color::deviceRGB(0.25, 0.5, 0.75, 0.5)));
    EXPECT_TRUE(read(3, "NSWhite", "1" + end)->isEqual(*Color::calibratedWhite(1)));
    EXPECT_TRUE(read(4, "NSWhite", "0 0" + end)->isEqual(*Color::deviceWhite(0, 0)));
    EXPECT_TRUE(read(5, "NSCMYK", "0.1 0.2 0.3 0.4" + end)
                    ->isEqual(*Color::deviceCMYK(0.1, 0.2, 0.3, 0.4)));
    EXPECT_TRUE(read(5, "NSCYMK", "0.1 0.2 0.3 0.4" + end)
                    ->isEqual(*Color::deviceCMYK(0.1, 0.2, 0.3, 0.4)));
  }
}

TEST(ColorArchive, PrefersAKnownCustomSpace) {
  const auto withSpace = [](int identifier, const char* plainKey, int space,
                            const char* components) {
    return read([=](Coder& coder) {
      coder.encodeInt(space, "NSColorSpace");
      coder.encodeBytes(QByteArray("0.5 0.5 0.9981889725", 21), plainKey);
      coder.encodeBytes(components, "NSComponents");
      coder.encodeObject(std::make_shared<ColorSpace>(identifier), "NSCustomColorSpace");
    });
  };
  EXPECT_TRUE(withSpace(7, "NSRGB", 1, "0 0 1 1")->isEqual(*Color::sRGB(0, 0, 1)));
  EXPECT_TRUE(
      withSpace(99, "NSRGB", 1, "0 0 1 1")->isEqual(*Color::calibratedRGB(0.5, 0.5, 0.9981889725)));
  EXPECT_EQ(withSpace(2, "NSWhite", 3, "0.25 0.75")->components(),
            (std::vector<double>{0.25, 0.75}));
  EXPECT_EQ(withSpace(9, "NSWhite", 3, "0.25 0.75")->space(), Color::Space::GenericGamma22Gray);
}

TEST(ColorArchive, AnUnknownSpaceRaisesWithItsNumber) {
  try {
    read(77, "NSRGB", "0 0 0");
    FAIL() << "nothing raised";
  } catch (const ArchiveException& exception) {
    EXPECT_TRUE(exception.reason().contains(u"77"_s));
    EXPECT_EQ(exception.keyPath(), u"root.NSColorSpace"_s);
  }
}

TEST(ColorArchive, ComponentsThatAreNoNumbersRaise) {
  for (const char* text : {"", "1", "0 0", "0 0 x", "0,5 0 0", "nan 0 0", "inf 0 0", "0 0 0x1"})
    EXPECT_THROW(read(1, "NSRGB", text), ArchiveException) << text;
  EXPECT_THROW(read(5, "NSCMYK", "0 0 0"), ArchiveException);
}

TEST(ColorArchive, LimitsWhatItReads) {
  EXPECT_EQ(rgba(*read(1, "NSRGB", "-1 2 0.5 9")), (std::vector<double>{0, 1, 0.5, 1}));
}

TEST(ColorArchive, AColourThatStandsInForItselfRaises) {
  // The fallback of the root is the root.
  const auto record = std::make_shared<zq::testing::ColorRecord>(nullptr);
  record->write = [self = std::weak_ptr<Object>(record)](Coder& coder) {
    coder.encodeInt(6, "NSColorSpace");
    coder.encodeObject(self.lock(), "NSColor");
  };
  EXPECT_THROW(
      KeyedUnarchiver::unarchiveObjectWithData(KeyedArchiver::archivedDataWithRootObject(record)),
      ArchiveException);
}

TEST(component_text, ReadsBackToTheSameDoubles) {
  for (const double value : {0.0, 1.0, 0.1, 1.0 / 3, 2.0 / 3, 0.03529411764705882, 1e-5, 5e-324,
                             std::nextafter(1.0, 0.0)}) {
    const QByteArray text = componentText({value});
    EXPECT_FALSE(text.contains('e')) << text.toStdString();
    EXPECT_EQ(parsedComponents(text), (std::vector<double>{value})) << text.toStdString();
  }
  EXPECT_EQ(componentText({0.5, 1, 0}), "0.5 1 0");
}

TEST(component_text, DoesNotFollowTheLocale) {
  const std::locale before = std::locale::global(std::locale::classic());
  struct Comma : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
  };
  std::locale::global(std::locale(std::locale::classic(), new Comma));
  EXPECT_EQ(componentText({0.5}), "0.5");
  EXPECT_EQ(parsedComponents("0.5"), (std::vector<double>{0.5}));
  std::locale::global(before);
}

#include "ColorTest.moc"
