// Lines that are measured in steps, and drawn in segments.
#include "tests/support/LogWatch.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/text/TextAttachment.h"
#include "zqticker/platform/text/TextLine_p.h"
#include "zqticker/platform/text/line_breaks_p.h"

#include <gtest/gtest.h>

#include <QtGui/QPainter>

#include <cmath>
#include <cstdlib>
#include <random>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {

constexpr double PointSize = 14;
constexpr QSize Window(1500, 30);

struct Sample {
  const char* name;
  QString text;
  QString font = u"DejaVu Sans"_s;
};

void PrintTo(const Sample& sample, std::ostream* stream) {
  *stream << sample.name;
}

QString lengthened(const Sample& sample, qsizetype length) {
  return sample.text.repeated(length / sample.text.size() + 1);
}

std::shared_ptr<TextLine> lineOf(const QString& text, const QString& font,
                                 TextLine::Measuring measuring = TextLine::Measuring::AtOnce) {
  const Attributes attributes{{FontAttributeName, any(Font::fontWithName(font, PointSize))}};
  return std::make_shared<TextLine>(text, AttributedString::make(text, attributes)->runs(),
                                    attributes, measuring);
}

// The pixels of the line from `left` points on.
template <class Draw>
QImage windowAt(Draw draw) {
  QImage image(Window, QImage::Format_RGB32);
  image.fill(Qt::white);
  QPainter painter(&image);
  painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
  draw(painter);
  return image;
}

QImage windowOf(const std::shared_ptr<const TextLine>& line, double left) {
  return windowAt([&](QPainter& painter) {
    GraphicsContext context(&painter, Window, true);
    TextLine::draw(line, context, QPointF(-left, 2));
  });
}

// The largest difference of a channel.
int difference(const QImage& a, const QImage& b) {
  int largest = 0;
  for (int y = 0; y < a.height(); ++y)
    for (int x = 0; x < a.width(); ++x)
      largest = std::max(largest, std::abs(qGray(a.pixel(x, y)) - qGray(b.pixel(x, y))));
  return largest;
}

const Sample Samples[] = {
    {"LatinWithKerning", u"AVATAR To Wave, Yet. P.A. "_s},
    {"LatinWithLigatures", u"office fluffy affine "_s, u"DejaVu Serif"_s},
    {"LatinWithoutSpaces", u"AVAToffiWave"_s},
    {"Cyrillic", u"Съешь же ещё этих мягких булок "_s},
    {"Arabic", u"السلام عليكم ورحمة الله "_s},
    {"ArabicWithoutSpaces", u"السلامعليكمورحمة"_s},
    {"HebrewWithMarks", u"בְּרֵאשִׁית בָּרָא "_s},
    {"CombiningMarks", u"é́ ñ̃ x̧̌ "_s},
    {"Devanagari", u"नमस्ते दुनिया क्षत्रिय "_s, u"Lohit Devanagari"_s},
    {"HebrewMixedWithLatin", u"abc שלום עולם (12.5 def) "_s},
    {"EmojiJoined", u"👩‍👩‍👧‍👦 👍🏽 🇩🇪🇫🇷 1️⃣ a"_s},
    {"EmojiWithoutSpaces", u"😀👍🏽👩‍👩‍👧‍👦"_s},
};
std::string nameOf(const ::testing::TestParamInfo<Sample>& row) {
  return row.param.name;
}

} // namespace

class TextLineInSteps : public ::testing::TestWithParam<Sample> {};

TEST_P(TextLineInSteps, ComesToTheSameAsAtOnce) {
  const QString text = lengthened(GetParam(), 20000);
  const auto atOnce = lineOf(text, GetParam().font);
  const auto inSteps = lineOf(text, GetParam().font, TextLine::Measuring::InSteps);
  std::size_t steps = 1;
  while (!inSteps->measureUntil(QDeadlineTimer(0)))
    ++steps;
  EXPECT_GT(steps, 2 * atOnce->segmentCount())
      << "a step looks for one break or places one segment";
  EXPECT_TRUE(inSteps->measureUntil(QDeadlineTimer(0)));
  EXPECT_EQ(inSteps->size(), atOnce->size());
  EXPECT_EQ(inSteps->segmentCount(), atOnce->segmentCount());
  for (const double part : {0.0, 0.31, 0.72, 1.0}) {
    const double left = part * (atOnce->size().width() - Window.width());
    EXPECT_EQ(windowOf(inSteps, left), windowOf(atOnce, left)) << part;
  }
}

INSTANTIATE_TEST_SUITE_P(Scripts, TextLineInSteps, ::testing::ValuesIn(Samples), nameOf);

class TextLineInSegments : public ::testing::TestWithParam<Sample> {};

// The whole text in one layout, which knows no segments, at every window along it.
TEST_P(TextLineInSegments, ShowsThePixelsOfOneLayout) {
  const QString text = lengthened(GetParam(), 4000);
  const auto line = lineOf(text, GetParam().font);
  EXPECT_GT(line->segmentCount(), 3U);
  QFont font(GetParam().font);
  font.setPixelSize(256);
  font.setHintingPreference(QFont::PreferNoHinting);
  font.setStyleStrategy(QFont::PreferQuality);
  const bool rightToLeft = text.isRightToLeft();
  const auto whole = layOut(text, {font, rightToLeft});
  const double scale = PointSize / 256;
  ASSERT_NEAR(whole->lineAt(0).horizontalAdvance() * scale, line->size().width(), 0.001);
  for (double left = 0; left < line->size().width(); left += Window.width()) {
    const QImage expected = windowAt([&](QPainter& painter) {
      painter.translate(-left, 2 + line->ascent());
      painter.scale(scale, scale);
      painter.setPen(Qt::black);
      whole->draw(&painter, QPointF(0, -whole->lineAt(0).ascent()));
    });
    EXPECT_LE(difference(windowOf(line, left), expected), 0) << left;
  }
}

INSTANTIATE_TEST_SUITE_P(Scripts, TextLineInSegments, ::testing::ValuesIn(Samples, Samples + 9),
                         nameOf);

// Words and characters of every script, in random order, in runs of random looks, some of which
// begin within a character.
class RandomText {
 public:
  explicit RandomText(unsigned seed) : random_(seed) {
    while (text_.size() < 6000)
      text_ += Pieces[below(std::size(Pieces))];
  }

  Ref<MutableAttributedString> styled() {
    const auto string = MutableAttributedString::make(
        text_, {{FontAttributeName, any(Font::fontWithName(u"DejaVu Sans"_s, PointSize))}});
    for (int i = 0; i < 40; ++i) {
      const auto start = qsizetype(below(std::size_t(text_.size())));
      const Range range{start, std::min<qsizetype>(qsizetype(below(400)), text_.size() - start)};
      switch (below(4)) {
      case 0:
        string->addAttribute(FontAttributeName,
                             any(Font::fontWithName(u"DejaVu Serif"_s, 8 + double(below(12)))),
                             range);
        break;
      case 1:
        string->addAttribute(ForegroundColorAttributeName, any(Color::sRGB(1, 0, 0)), range);
        break;
      case 2:
        string->addAttribute(KernAttributeName, double(below(3)), range);
        break;
      default:
        string->addAttribute(AttachmentAttributeName, any(picture_), range);
        break;
      }
    }
    return string;
  }

 private:
  static constexpr QStringView Pieces[] = {
      u"AVATAR ",      u"office, ", u"Wave",   u" ",      u"1234.5",   u"(x)",
      u"] ",           u"שלום ",    u"בְּרֵאשִׁית", u"السلام", u" عليكم",   u"नमस्ते ",
      u"क्षत्रिय",       u"é́",        u"ñ̃ ",     u"😀",      u"👍🏽", u"👩‍👩‍👧‍👦",
      u"🇩🇪",           u"1️⃣",  u"\n",     u"\t",     u"\x1f",     u"\xfffc",
      u"\xfffc\xfffc", u"\x202e",   u"\x202c", u"\x2067", u"\x2069",   u"\x200f",
      u"\xd83d",       u"\x0301",   u"\x200d"};

  std::size_t below(std::size_t limit) { return random_() % limit; }

  std::mt19937 random_;
  QString text_;
  Ref<TextAttachment> picture_ =
      TextAttachment::make(Image::fromQImage(QImage(9, 7, QImage::Format_RGB32)));
};

TEST(TextMeasurement, ComesToTheSameInStepsWhateverTheTextWhileAnotherThreadReadsIt) {
  zq::testing::allowLog(u"OpenType support missing"_s);
  for (unsigned seed = 0; seed < 8; ++seed) {
    SCOPED_TRACE(seed);
    const auto string = RandomText(seed).styled();
    const auto atOnce = std::make_shared<TextLine>(string->string(), string->runs());
    const auto inSteps = std::make_shared<TextLine>(string->string(), string->runs(), Attributes(),
                                                    TextLine::Measuring::InSteps);
    while (!inSteps->measureUntil(QDeadlineTimer(0)))
      ;
    ASSERT_EQ(inSteps->size(), atOnce->size());
    EXPECT_EQ(inSteps->segmentCount(), atOnce->segmentCount());
    for (double left = 0; left < atOnce->size().width(); left += 8 * Window.width())
      ASSERT_EQ(windowOf(inSteps, left), windowOf(atOnce, left)) << left;
  }
}

// The pictures of one attachment are placed a piece at a time.
TEST(TextMeasurement, PlacesMorePicturesThanOneStepTakesInTheirOrder) {
  const auto attachment =
      TextAttachment::make(Image::fromQImage(QImage(3, 7, QImage::Format_RGB32)));
  for (const QString& front : {u"a"_s, u"א"_s}) {
    const QString text = front + QString(5000, QChar(TextAttachment::AttachmentCharacter));
    const auto string = AttributedString::make(text, {{AttachmentAttributeName, any(attachment)}});
    const auto plain = AttributedString::make(front);
    const auto line = std::make_shared<TextLine>(text, string->runs());
    EXPECT_EQ(line->segmentCount(), 5001U);
    EXPECT_DOUBLE_EQ(line->size().width(), plain->size().width() + 5000 * 3);
  }
}

TEST(TextMeasurement, IsDoneForATextThatTakesNoTime) {
  EXPECT_TRUE(lineOf(QString(), u"DejaVu Sans"_s, TextLine::Measuring::InSteps)
                  ->measureUntil(QDeadlineTimer(0)));
  const auto text = AttributedString::make(u"short"_s);
  while (!text->measureUntil(QDeadlineTimer(0)))
    ;
  EXPECT_EQ(text->size(), AttributedString::make(u"short"_s)->size());
}

TEST(TextMeasurement, GivesTheSizeAlsoOfATextThatIsHalfMeasured) {
  const QString characters = u"word and Wave, "_s.repeated(2000);
  const auto text = AttributedString::make(characters);
  ASSERT_FALSE(text->measureUntil(QDeadlineTimer(0)));
  EXPECT_EQ(text->size(), AttributedString::make(characters)->size());
  EXPECT_TRUE(text->measureUntil(QDeadlineTimer(0)));
}
