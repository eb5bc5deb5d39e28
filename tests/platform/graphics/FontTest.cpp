#include "zqticker/platform/graphics/Font.h"

#include "zqticker/platform/archiving/KeyedArchiver.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"
#include "zqticker/platform/controls/control_types.h"
#include "zqticker/platform/graphics/FontManager.h"
#include "zqticker/platform/graphics/FontName_p.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/text/string_drawing.h"

#include <gtest/gtest.h>

#include <QtGui/QFontDatabase>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;
using namespace zq::platform;

TEST(Font, KeepsNameAndSizeAsGiven) {
  const Ref<Font> font = Font::fontWithName(u"No Such Font-Bold"_s, 12.6);
  EXPECT_EQ(font->fontName(), u"No Such Font-Bold"_s);
  EXPECT_EQ(font->pointSize(), 12.6);
  EXPECT_EQ(font->description(), u"No Such Font-Bold 12.6"_s);
}

TEST(Font, NoNameIsNoFont) {
  EXPECT_EQ(Font::fontWithName(std::nullopt, 12), nullptr);
}

TEST(Font, ASizeThatIsNotAboveZeroMeansTwelve) {
  for (const double size : {0.0, -3.0, std::nan(""), std::numeric_limits<double>::infinity()})
    EXPECT_EQ(Font::fontWithName(u"DejaVu Sans"_s, size)->pointSize(), 12);
}

TEST(Font, TheSystemFontIsTheDesktopsGeneralOneAtThirteenPoints) {
  const Ref<Font> font = Font::systemFontOfSize(0);
  EXPECT_EQ(font->pointSize(), 13);
  EXPECT_EQ(font->fontName(), QFontDatabase::systemFont(QFontDatabase::GeneralFont).family());
  EXPECT_EQ(Font::systemFontOfSize(9.5)->pointSize(), 9.5);
}

TEST(Font, MetricsAreLinearInTheSize) {
  for (const QString& name : {u"DejaVu Sans"_s, u"Lohit Devanagari"_s, u"Helvetica"_s}) {
    const Ref<Font> unit = Font::fontWithName(name, 1);
    for (const double size : {0.5, 9.0, 12.6, 13.0, 100.0, 1000.0}) {
      const Ref<Font> font = Font::fontWithName(name, size);
      EXPECT_DOUBLE_EQ(font->ascender(), unit->ascender() * size);
      EXPECT_DOUBLE_EQ(font->descender(), unit->descender() * size);
      EXPECT_DOUBLE_EQ(font->leading(), unit->leading() * size);
      EXPECT_DOUBLE_EQ(font->lineHeight(), unit->lineHeight() * size);
      EXPECT_DOUBLE_EQ(font->xHeight(), unit->xHeight() * size);
      EXPECT_DOUBLE_EQ(font->capHeight(), unit->capHeight() * size);
      EXPECT_NEAR(font->lineHeight(), font->ascender() - font->descender() + font->leading(),
                  1e-9 * size);
    }
  }
}

TEST(Font, MetricsAreTheFontsOwnUnits) {
  // DejaVu Sans has 2048 units an em: x-height 1120, capitals 1493, ascent 1901, descent 483.
  const Ref<Font> font = Font::fontWithName(u"DejaVu Sans"_s, 2048);
  EXPECT_NEAR(font->xHeight(), 1120, 1);
  EXPECT_NEAR(font->capHeight(), 1493, 1);
  EXPECT_NEAR(font->ascender(), 1901, 8);
  EXPECT_NEAR(font->descender(), -483, 8);
}

TEST(Font, ResolvesCompactNamesToFamilyAndStyle) {
  struct Row {
    QString name;
    QString family;
    QFont::Weight weight;
    bool italic;
  };
  const Row rows[] = {
      {u"DejaVu Sans"_s, u"DejaVu Sans"_s, QFont::Normal, false},
      {u"DejaVuSans"_s, u"DejaVu Sans"_s, QFont::Normal, false},
      {u"dejavu sans"_s, u"DejaVu Sans"_s, QFont::Normal, false},
      {u"DejaVuSans-Bold"_s, u"DejaVu Sans"_s, QFont::Bold, false},
      {u"DejaVuSans-BoldOblique"_s, u"DejaVu Sans"_s, QFont::Bold, true},
      {u"DejaVu Sans Bold"_s, u"DejaVu Sans"_s, QFont::Bold, false},
      {u"DejaVu Sans Mono Bold Oblique"_s, u"DejaVu Sans Mono"_s, QFont::Bold, true},
      {u"DejaVuSansMT"_s, u"DejaVu Sans"_s, QFont::Normal, false},
      {u"Absent-SemiboldItalic"_s, u"Absent"_s, QFont::DemiBold, true},
      {u"Absent-Fraktur"_s, u"Absent-Fraktur"_s, QFont::Normal, false},
      {u"Absent"_s, u"Absent"_s, QFont::Normal, false},
      {u""_s, u""_s, QFont::Normal, false},
      {u"-"_s, u"-"_s, QFont::Normal, false},
  };
  for (const Row& row : rows) {
    const FontName name = FontName::parse(row.name);
    EXPECT_EQ(name.family, row.family) << row.name.toStdString();
    EXPECT_EQ(name.weight, row.weight) << row.name.toStdString();
    EXPECT_EQ(name.italic, row.italic) << row.name.toStdString();
    EXPECT_EQ(name.isInstalled, row.family.startsWith(u"DejaVu"_s)) << row.name.toStdString();
  }
}

TEST(Font, KnowsWhichNamesTheDesktopHas) {
  EXPECT_TRUE(Font::isNameKnown(u"DejaVu Sans"_s));
  EXPECT_TRUE(Font::isNameKnown(u"DejaVuSans-Bold"_s));
  EXPECT_FALSE(Font::isNameKnown(u"No Such Font"_s));
}

TEST(Font, BoldIsWider) {
  const auto widthIn = [](const QString& name) {
    return sizeWithAttributes(u"minimum"_s,
                              {{FontAttributeName, any(Font::fontWithName(name, 12))}})
        .width();
  };
  EXPECT_GT(widthIn(u"DejaVuSans-Bold"_s), widthIn(u"DejaVuSans"_s) * 1.05);
}

TEST(Font, AnUnknownNameIsDrawnInAStandIn) {
  const Ref<Font> font = Font::fontWithName(u"No Such Font"_s, 12);
  EXPECT_FALSE(font->drawnFamily().isEmpty());
  EXPECT_NE(font->drawnFamily(), font->fontName());
  EXPECT_GT(font->lineHeight(), 0);
}

TEST(Font, IsEqualByNameAndSize) {
  const Ref<Font> font = Font::fontWithName(u"DejaVu Sans"_s, 12);
  EXPECT_TRUE(font->isEqual(*Font::fontWithName(u"DejaVu Sans"_s, 12)));
  EXPECT_FALSE(font->isEqual(*Font::fontWithName(u"DejaVu Sans"_s, 12.5)));
  EXPECT_FALSE(font->isEqual(*Font::fontWithName(u"DejaVuSans"_s, 12)));
  EXPECT_NE(copyOf(font), font);
  EXPECT_TRUE(copyOf(font)->isEqual(*font));
}

TEST(Font, ArchivesNameSizeAndFlags) {
  const Ref<Font> font = Font::fontWithName(u"Helvetica-Bold"_s, 12.6);
  KeyedArchiver archiver;
  font->encodeWithCoder(archiver);
  KeyedUnarchiver unarchiver(archiver.finishEncoding());
  EXPECT_EQ(unarchiver.decodeStringForKey("NSName"), u"Helvetica-Bold"_s);
  EXPECT_EQ(unarchiver.decodeDoubleForKey("NSSize"), 12.6);
  EXPECT_EQ(unarchiver.decodeIntForKey("NSfFlags"), 16);

  const auto decoded = KeyedUnarchiver::unarchiveObjectOfClass<Font>(
      KeyedArchiver::archivedDataWithRootObject(font));
  EXPECT_TRUE(decoded->isEqual(*font));
}

namespace zq::testing {

class FontRecord : public Object {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSFont")

 public:
  void encodeWithCoder(Coder& coder) override {
    if (name)
      coder.encodeObject(Any(*name), "NSName");
    coder.encodeFloat(9.5F, "NSSize");
    coder.encodeInt(1044, "NSfFlags");
  }
  std::optional<QString> name;
};

} // namespace zq::testing

TEST(Font, ReadsFourByteSizesAndIgnoresTheFlags) {
  const auto record = std::make_shared<zq::testing::FontRecord>();
  record->name = u"Helvetica"_s;
  const auto font = KeyedUnarchiver::unarchiveObjectOfClass<Font>(
      KeyedArchiver::archivedDataWithRootObject(record));
  EXPECT_EQ(font->fontName(), u"Helvetica"_s);
  EXPECT_EQ(font->pointSize(), 9.5);
}

TEST(Font, AnArchiveWithoutANameRaises) {
  EXPECT_THROW(KeyedUnarchiver::unarchiveObjectWithData(KeyedArchiver::archivedDataWithRootObject(
                   std::make_shared<zq::testing::FontRecord>())),
               ArchiveException);
}

TEST(FontManager, ConvertsToASizeAndKeepsTheName) {
  FontManager& manager = FontManager::sharedFontManager();
  const Ref<Font> font = Font::fontWithName(u"Absent-Bold"_s, 12);
  const Ref<Font> converted = manager.convertFontToSize(font, 8.25);
  EXPECT_EQ(converted->fontName(), u"Absent-Bold"_s);
  EXPECT_EQ(converted->pointSize(), 8.25);
  EXPECT_EQ(font->pointSize(), 12);
  EXPECT_EQ(manager.convertFontToSize(nullptr, 8), nullptr);
}

TEST(FontManager, FitsTheLargestSixtyFourthOfAPoint) {
  FontManager& manager = FontManager::sharedFontManager();
  constexpr double step = 1.0 / 64;
  for (const QString& name : {u"DejaVu Sans"_s, u"DejaVu Serif"_s, u"DejaVuSansMono-Bold"_s,
                              u"Lohit Devanagari"_s, u"Noto Color Emoji"_s, u"Helvetica"_s})
    for (double height = 0.05; height < 5000; height *= 1.037) {
      const Ref<Font> font = Font::fontWithName(name, 12);
      double offset = -1;
      const Ref<Font> fitted = manager.convertFontToFitHeight(font, height, &offset);
      const double steps = fitted->pointSize() / step;
      EXPECT_EQ(fitted->fontName(), name);
      EXPECT_EQ(steps, std::floor(steps));
      EXPECT_LE(fitted->lineHeight(), height) << name.toStdString();
      EXPECT_GT(Font::fontWithName(name, fitted->pointSize() + step)->lineHeight(), height)
          << name.toStdString() << ' ' << height;
      EXPECT_DOUBLE_EQ(offset, fitted->leading() - fitted->descender());
    }
}

TEST(FontManager, FitsAFontToItsOwnLineHeight) {
  FontManager& manager = FontManager::sharedFontManager();
  for (const double size : {9.0, 12.0, 13.0, 16.5, 24.0}) {
    const Ref<Font> font = Font::fontWithName(u"DejaVu Sans"_s, size);
    EXPECT_EQ(manager.convertFontToFitHeight(font, font->lineHeight())->pointSize(), size);
  }
}

TEST(FontManager, NeverFitsToNothing) {
  FontManager& manager = FontManager::sharedFontManager();
  const Ref<Font> font = Font::fontWithName(u"DejaVu Sans"_s, 12);
  for (const double height : {0.0, -5.0, 1e-9, std::nan("")})
    EXPECT_EQ(manager.convertFontToFitHeight(font, height)->pointSize(), 1.0 / 64);
  const double huge = std::numeric_limits<double>::infinity();
  EXPECT_TRUE(std::isfinite(manager.convertFontToFitHeight(font, huge)->pointSize()));
  double offset = 7;
  EXPECT_EQ(manager.convertFontToFitHeight(nullptr, 10, &offset), nullptr);
  EXPECT_EQ(offset, 0);
}

TEST(FontManager, MayBeReplaced) {
  struct Doubling : FontManager {
    Ref<Font> convertFontToSize(const Ref<Font>& font, double size) override {
      return FontManager::convertFontToSize(font, size * 2);
    }
  } doubling;
  EXPECT_EQ(FontManager::setSharedFontManager(&doubling), nullptr);
  const Ref<Font> font = Font::fontWithName(u"Helvetica"_s, 12);
  EXPECT_EQ(FontManager::sharedFontManager().convertFontToSize(font, 5)->pointSize(), 10);
  EXPECT_EQ(FontManager::setSharedFontManager(nullptr), &doubling);
  EXPECT_EQ(FontManager::sharedFontManager().convertFontToSize(font, 5)->pointSize(), 5);
}

TEST(Font, OfTheSystemHasASizeForEachControlSize) {
  EXPECT_EQ(Font::systemFontSizeForControlSize(ControlSize::Regular), 13);
  EXPECT_EQ(Font::systemFontSizeForControlSize(ControlSize::Small), 11);
  EXPECT_EQ(Font::systemFontSizeForControlSize(ControlSize::Mini), 9);
  EXPECT_EQ(Font::systemFontSizeForControlSize(ControlSize(7)), 13);
}

TEST(Font, OfTheSystemIsBoldInTheSameFamily) {
  const Ref<Font> plain = Font::systemFontOfSize(0);
  const Ref<Font> bold = Font::boldSystemFontOfSize(0);
  EXPECT_EQ(bold->pointSize(), 13);
  EXPECT_EQ(bold->drawnFamily(), plain->drawnFamily());
  EXPECT_NE(bold->fontName(), plain->fontName());
  const auto widthIn = [](const Ref<Font>& font) {
    return sizeWithAttributes(u"mmmmmmmm"_s, {{FontAttributeName, any(font)}}).width();
  };
  EXPECT_GT(widthIn(bold), widthIn(plain));
}

#include "FontTest.moc"
