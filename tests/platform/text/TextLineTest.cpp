#include "zqticker/platform/text/TextLine_p.h"

#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/text/ParagraphStyle.h"
#include "zqticker/platform/text/line_breaks_p.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {

Attributes inFont(const QString& name, double size) {
  return {{FontAttributeName, any(Font::fontWithName(name, size))}};
}

std::shared_ptr<TextLine> lineOf(const QString& text, const Attributes& attributes = {}) {
  return std::make_shared<TextLine>(text, AttributedString::make(text, attributes)->runs(),
                                    attributes);
}

// The width in points of the same text in one QTextLayout, which cuts nothing.
double uncutWidth(const QString& text, const QString& font, double size) {
  QFont reference(font);
  reference.setPixelSize(256);
  reference.setHintingPreference(QFont::PreferNoHinting);
  QTextLayout layout(text, reference);
  QTextOption option;
  option.setWrapMode(QTextOption::NoWrap);
  option.setUseDesignMetrics(true);
  option.setFlags(QTextOption::IncludeTrailingSpaces);
  layout.setTextOption(option);
  layout.beginLayout();
  QTextLine line = layout.createLine();
  line.setLineWidth(1 << 24);
  layout.endLayout();
  return line.horizontalAdvance() * size / 256;
}

} // namespace

struct Sample {
  const char* name;
  QString text;
  QString font;
};

class TextLineOfScript : public ::testing::TestWithParam<Sample> {};

TEST_P(TextLineOfScript, IsAsWideInSegmentsAsInOnePiece) {
  const auto& [name, text, font] = GetParam();
  const QString lengthened = text.repeated(4000 / text.size() + 1);
  const auto line = lineOf(lengthened, inFont(font, 12.6));
  EXPECT_GT(line->segmentCount(), 3U);
  const double expected = uncutWidth(lengthened, font, 12.6);
  EXPECT_GT(expected, 1000);
  // One unit of the layout is 1/64 pixel of 256 an em.
  EXPECT_NEAR(line->size().width(), expected, 0.001);
}

INSTANTIATE_TEST_SUITE_P(
    Scripts, TextLineOfScript,
    ::testing::Values(
        Sample{"LatinWithKerning", u"AVATAR To Wave, Yet. P.A. "_s, u"DejaVu Sans"_s},
        Sample{"LatinWithLigatures", u"office fluffy affine "_s, u"DejaVu Serif"_s},
        Sample{"LatinWithoutSpaces", u"AVAToffiWave"_s, u"DejaVu Sans"_s},
        Sample{"Arabic", u"السلام عليكم ورحمة الله "_s, u"DejaVu Sans"_s},
        Sample{"ArabicWithoutSpaces", u"السلامعليكمورحمة"_s, u"DejaVu Sans"_s},
        Sample{"HebrewMixedWithLatin", u"abc שלום עולם (12.5 def) "_s, u"DejaVu Sans"_s},
        Sample{"HebrewBeforeLatin", u"שלום abc עולם, 42% "_s, u"DejaVu Sans"_s},
        Sample{"Devanagari", u"नमस्ते दुनिया क्षत्रिय "_s, u"Lohit Devanagari"_s},
        Sample{"EmojiJoined", u"👩‍👩‍👧‍👦 👍🏽 🇩🇪🇫🇷 "_s,
               u"DejaVu Sans"_s},
        Sample{"CombiningMarks", u"é́ ñ̃ x̧̌ "_s, u"DejaVu Sans"_s}),
    [](const auto& row) { return std::string(row.param.name); });
