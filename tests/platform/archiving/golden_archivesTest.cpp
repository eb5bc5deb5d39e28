// The archives of the golden folder, read as the classes that they hold.
#include "tests/platform/archiving/ArchiveBuilder.h"
#include "zqticker/platform/archiving/KeyedArchiver.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/Shadow.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/text/AttributedString.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QUrl>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using zq::testing::goldenFile;

namespace {

QStringList goldenNames(const QString& pattern) {
  return QDir(QStringLiteral(ZQTICKER_SOURCE_DIR "/tests/platform/archiving/golden"))
      .entryList({pattern}, QDir::Files, QDir::Name);
}

Any root(const QString& name) {
  return KeyedUnarchiver::unarchiveObjectWithData(goldenFile(name + u".archive"_s));
}

// The runs as "location length mark", neighbours of equal attributes merged.
QStringList marksOf(const QString& name) {
  const auto text = objectOf<AttributedString>(root(name));
  QStringList marks;
  if (!text)
    return {u"(no attributed string)"_s};
  qsizetype start = 0;
  for (qsizetype i = 1; i <= text->length(); ++i) {
    const auto mark = [&](qsizetype at) { return text->attributeAtIndex(u"mark"_s, at); };
    if (i < text->length() && isEqualValue(mark(i), mark(start)))
      continue;
    marks.append(u"%1 %2 %3"_s.arg(start).arg(i - start).arg(mark(start).toInt()));
    start = i;
  }
  return marks;
}

void expectColor(const QString& name, Color::Space space, const std::vector<double>& components) {
  const auto color = objectOf<Color>(root(name));
  ASSERT_TRUE(color) << qPrintable(name);
  EXPECT_EQ(color->space(), space) << qPrintable(name);
  EXPECT_EQ(color->components(), components) << qPrintable(name);
}

} // namespace

TEST(GoldenArchives, BrokenOnesAreRefused) {
  const QStringList names = goldenNames(u"broken-*"_s);
  EXPECT_GE(names.size(), 27);
  KeyedUnarchiver::Options keeping;
  keeping.keepUnknownClasses = true;
  for (const QString& name : names) {
    EXPECT_THROW(KeyedUnarchiver::unarchiveObjectWithData(goldenFile(name)), ArchiveException)
        << qPrintable(name);
    // A reader that keeps unknown classes has no other weaknesses.
    if (!name.contains("unknown"_L1) && !name.contains("counted-set"_L1)) {
      EXPECT_THROW(KeyedUnarchiver::unarchiveObjectWithData(goldenFile(name), keeping),
                   ArchiveException)
          << qPrintable(name);
    }
  }
}

TEST(GoldenArchives, GoodOnesAreReadWithUnknownClassesKept) {
  KeyedUnarchiver::Options keeping;
  keeping.keepUnknownClasses = true;
  int read = 0;
  for (const QString& name : goldenNames(u"*.archive"_s)) {
    if (name.startsWith("broken-"_L1))
      continue;
    EXPECT_NO_THROW({
      const Any value = KeyedUnarchiver::unarchiveObjectWithData(goldenFile(name), keeping);
      EXPECT_TRUE(value.isValid());
      KeyedArchiver::archivedDataWithRootObject(value);
    }) << qPrintable(name);
    ++read;
  }
  EXPECT_GE(read, 30);
}

TEST(GoldenArchives, AStringCountsUtf16CodeUnits) {
  EXPECT_EQ(root(u"string-utf16"_s), Any(u"grüß 𝄞"_s));
  EXPECT_EQ(root(u"string-utf16"_s).toString().size(), 7);
}

TEST(GoldenArchives, AttributedStringsHaveTheirRuns) {
  const QStringList three{u"0 1 0"_s, u"1 2 1"_s, u"3 3 0"_s};
  EXPECT_EQ(marksOf(u"attr-three-runs"_s), three);
  EXPECT_EQ(marksOf(u"attr-run-index-used-twice"_s), three);
  EXPECT_EQ(marksOf(u"attr-mutable-parts"_s), three);
  EXPECT_EQ(marksOf(u"attr-data-ends-early"_s), three);
  EXPECT_EQ(marksOf(u"attr-one-run"_s), (QStringList{u"0 3 1"_s}));
  EXPECT_EQ(marksOf(u"attr-long-runs"_s), (QStringList{u"0 300 0"_s, u"300 100 1"_s}));
  EXPECT_EQ(marksOf(u"attr-wide-run-at-index-200"_s), (QStringList{u"0 16384 1"_s}));
  EXPECT_EQ(marksOf(u"attr-surrogate-pair"_s), (QStringList{u"0 2 0"_s, u"2 1 1"_s}));
  EXPECT_TRUE(marksOf(u"attr-empty"_s).isEmpty());
}

TEST(GoldenArchives, MutabilityIsKept) {
  EXPECT_TRUE(objectOf<MutableAttributedString>(root(u"attr-three-runs"_s)));
  EXPECT_FALSE(objectOf<MutableAttributedString>(root(u"attr-one-run"_s)));
}

TEST(GoldenArchives, ColorsHaveTheirComponents) {
  expectColor(u"color-device-rgb-alpha"_s, Color::Space::DeviceRGB, {0.25, 0.5, 0.75, 0.5});
  expectColor(u"color-device-rgb"_s, Color::Space::DeviceRGB, {0.25, 0.5, 0.75, 0.5});
  expectColor(u"color-calibrated-rgb"_s, Color::Space::CalibratedRGB, {0.1, 0.2, 0.3, 1});
  expectColor(u"color-white"_s, Color::Space::CalibratedWhite, {1, 1});
  expectColor(u"color-clear-white"_s, Color::Space::DeviceWhite, {0, 0});
  expectColor(u"color-cmyk"_s, Color::Space::DeviceCMYK, {0.1, 0.2, 0.3, 0.4, 1});
  expectColor(u"color-cmyk-misspelt-key"_s, Color::Space::DeviceCMYK, {0.1, 0.2, 0.3, 0.4, 1});
  expectColor(u"color-srgb"_s, Color::Space::SRGB, {0, 0, 1, 1});
}

TEST(GoldenArchives, ANamedColorHasItsFallback) {
  const auto color = objectOf<Color>(root(u"color-named"_s));
  ASSERT_TRUE(color);
  EXPECT_EQ(color->catalogName(), u"System"_s);
  EXPECT_EQ(color->colorName(), u"controlColor"_s);
  EXPECT_EQ(color->redComponent(), 0.6666666667);
}

TEST(GoldenArchives, FontsHaveNameAndSize) {
  const auto font = objectOf<Font>(root(u"font"_s));
  ASSERT_TRUE(font);
  EXPECT_EQ(font->fontName(), u"DejaVuSans"_s);
  EXPECT_EQ(font->pointSize(), 12);
  EXPECT_EQ(objectOf<Font>(root(u"font-flags"_s))->fontName(), u"Helvetica"_s);
}

TEST(GoldenArchives, ShadowsHaveOffsetBlurAndColor) {
  const auto shadow = objectOf<Shadow>(root(u"shadow"_s));
  ASSERT_TRUE(shadow);
  EXPECT_TRUE(shadow->isEqual(Shadow({1, -2}, 3, Color::calibratedWhite(0, 0.5))));
  EXPECT_TRUE(objectOf<Shadow>(root(u"shadow-empty"_s))->isEqual(Shadow()));
}

TEST(GoldenArchives, AUrlIsResolvedAgainstItsBase) {
  EXPECT_EQ(root(u"url-with-base"_s).toUrl(), QUrl(u"http://example.org/a/b/c"_s));
}

TEST(GoldenArchives, ColorsFontsShadowsAndTextRoundTrip) {
  for (const QString& name : goldenNames(u"*.archive"_s)) {
    if (!name.startsWith("attr-"_L1) && !name.startsWith("color-"_L1) &&
        !name.startsWith("font"_L1) && !name.startsWith("shadow"_L1))
      continue;
    const Any value = KeyedUnarchiver::unarchiveObjectWithData(goldenFile(name));
    EXPECT_TRUE(isEqualValue(value, KeyedUnarchiver::unarchiveObjectWithData(
                                        KeyedArchiver::archivedDataWithRootObject(value))))
        << qPrintable(name);
  }
}
