#include "tests/platform/graphics/Canvas.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/platform/text/string_drawing.h"

#include <gtest/gtest.h>

#include <limits>

#include <QtCore/QProcess>
#include <QtGui/QTextLayout>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using zq::testing::Canvas;
using zq::testing::inkBounds;
using zq::testing::maximumDifference;

namespace {

const Ref<Font> sans = Font::fontWithName(u"DejaVu Sans"_s, 20);

Attributes inSans(const Ref<Color>& color = nullptr) {
  Attributes attributes{{FontAttributeName, any(sans)}};
  if (color)
    attributes.insert(ForegroundColorAttributeName, any(color));
  return attributes;
}

// The line as one QTextLayout draws it, its box's lower left corner at `point`.
QImage drawnInOnePiece(const QString& text, QSizeF size, QPointF point, double scale) {
  QFont font(u"DejaVu Sans"_s);
  font.setPixelSize(256);
  font.setHintingPreference(QFont::PreferNoHinting);
  QTextLayout layout(text, font);
  QTextOption option(Qt::AlignLeft | Qt::AlignAbsolute);
  option.setWrapMode(QTextOption::NoWrap);
  option.setUseDesignMetrics(true);
  option.setTextDirection(text.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
  layout.setTextOption(option);
  layout.beginLayout();
  QTextLine line = layout.createLine();
  line.setLineWidth(1 << 24);
  layout.endLayout();
  Canvas canvas(size, scale);
  canvas.painter->translate(point.x(), point.y() + 20 * line.descent() / 256);
  canvas.painter->scale(20.0 / 256, -20.0 / 256);
  layout.draw(canvas.painter.get(), QPointF(0, -line.ascent()));
  return canvas.finished();
}

} // namespace

TEST(text_drawing, InkLiesInTheBoxAtItsPoint) {
  for (const double scale : {1.0, 1.5, 2.0}) {
    Canvas canvas({200, 60}, scale);
    const auto text = AttributedString::make(u"HÄxpg"_s, inSans());
    text->drawAtPoint(QPointF(10, 20));
    const QRect ink = inkBounds(canvas.finished(), Qt::white, 60);
    const QSizeF size = text->size();
    EXPECT_GE(ink.left(), std::floor(10 * scale));
    EXPECT_LE(ink.right(), std::ceil((10 + size.width()) * scale));
    // The capitals' height above the baseline, the hanging letters' depth below it.
    const double baseline = 20 - sans->descender() + sans->leading();
    EXPECT_NEAR(ink.bottom() + 1, (baseline + 20 * 0.96) * scale, 1.5 * scale);
    EXPECT_NEAR(ink.top(), (baseline - 20 * 0.21) * scale, 1.5 * scale);
  }
}

TEST(text_drawing, IsUprightInAFlippedContext) {
  Canvas upright({100, 40});
  drawAtPoint(u"Fp"_s, QPointF(5, 8), inSans());
  const QImage expected = upright.finished();
  Canvas flipped({100, 40}, 1, true);
  const QSizeF size = sizeWithAttributes(u"Fp"_s, inSans());
  drawAtPoint(u"Fp"_s, QPointF(5, 40 - 8 - size.height()), inSans());
  EXPECT_LE(maximumDifference(flipped.finished(), expected), 8);
}

TEST(text_drawing, DoesNothingWithoutAContext) {
  ASSERT_EQ(GraphicsContext::currentContext(), nullptr);
  drawAtPoint(u"text"_s, QPointF(), {});
  AttributedString::make(u"text"_s)->drawAtPoint(QPointF());
}

TEST(text_drawing, HonoursTheColour) {
  Canvas canvas({60, 30});
  drawAtPoint(u"█"_s, QPointF(0, 0), inSans(Color::deviceRGB(1, 0, 0)));
  canvas.finished();
  EXPECT_EQ(canvas.pixel(5, 10), QColor(Qt::red));
}

TEST(text_drawing, IsBlackWithoutAColourWhateverTheFillIs) {
  Canvas canvas({60, 30});
  canvas.context->setFillColor(Color::deviceRGB(0, 1, 0));
  canvas.painter->setPen(Qt::cyan);
  drawAtPoint(u"█"_s, QPointF(0, 0), inSans());
  EXPECT_EQ(canvas.painter->pen().color(), QColor(Qt::cyan));
  canvas.finished();
  EXPECT_EQ(canvas.pixel(5, 10), QColor(Qt::black));
}

TEST(text_drawing, FillsTheBackgroundOfItsRun) {
  const auto text = MutableAttributedString::make(u"aaa    aaa"_s, inSans());
  text->addAttribute(BackgroundColorAttributeName, any(Color::deviceRGB(0, 0, 1)), {4, 2});
  Canvas canvas({200, 40});
  text->drawAtPoint(QPointF(0, 5));
  const QImage& picture = canvas.finished();
  const double start = sizeWithAttributes(u"aaa "_s, inSans()).width();
  const double end = sizeWithAttributes(u"aaa   "_s, inSans()).width();
  QRect blue;
  for (int y = 0; y < picture.height(); ++y)
    for (int x = 0; x < picture.width(); ++x)
      if (picture.pixelColor(x, y) == QColor(Qt::blue))
        blue |= QRect(x, y, 1, 1);
  EXPECT_NEAR(blue.left(), start, 1.1);
  EXPECT_NEAR(blue.right() + 1, end, 1.1);
  EXPECT_NEAR(blue.height(), text->size().height(), 2);
}

TEST(text_drawing, DrawsLinesUnderAndThroughTheText) {
  const auto rowsWithInk = [](const char* name) {
    Canvas canvas({60, 40});
    drawAtPoint(u"   "_s, QPointF(0, 5), [&] {
      Attributes attributes = inSans();
      if (name)
        attributes.insert(QString::fromLatin1(name), 1);
      return attributes;
    }());
    return inkBounds(canvas.finished(), Qt::white, 100);
  };
  const double baseline = 5 - sans->descender();
  EXPECT_TRUE(rowsWithInk(nullptr).isNull());
  const QRect underline = rowsWithInk("NSUnderline");
  EXPECT_LT(underline.bottom(), baseline);
  EXPECT_GT(underline.width(), 15);
  EXPECT_GT(rowsWithInk("NSStrikethrough").top(), baseline + 2);
}

TEST(text_drawing, RaisesTheBaseline) {
  Attributes raised = inSans();
  raised.insert(BaselineOffsetAttributeName, 4.0);
  Canvas plain({40, 50});
  drawAtPoint(u"x"_s, QPointF(), inSans());
  const QRect before = inkBounds(plain.finished(), Qt::white, 100);
  Canvas offset({40, 50});
  drawAtPoint(u"x"_s, QPointF(), raised);
  const QRect after = inkBounds(offset.finished(), Qt::white, 100);
  // Alone on its line, its box grows by nothing: the descent shrinks as the ascent grows.
  EXPECT_EQ(sizeWithAttributes(u"x"_s, raised), sizeWithAttributes(u"x"_s, inSans()));
  EXPECT_EQ(before, after);

  const auto both = MutableAttributedString::make(u"xx"_s, inSans());
  both->addAttribute(BaselineOffsetAttributeName, 4.0, {1, 1});
  EXPECT_NEAR(both->size().height(), sans->lineHeight() + 4, 1e-9);
  Canvas canvas({40, 50});
  both->drawAtPoint(QPointF());
  EXPECT_EQ(inkBounds(canvas.finished(), Qt::white, 100).height(), before.height() + 4);
}

TEST(text_drawing, OrdersBidirectionalTextLikeOneLayout) {
  for (const QString& text : {u"Hello, world"_s, u"abc שלום (12.5) def"_s, u"שלום abc 42% עולם"_s,
                              u"السلام عليكم abc"_s, u"abc السلام, 123 عليكم!"_s, u"(שלום) [abc]"_s,
                              u"a \u2067b (c) שלום\u2069 d"_s, u"\u202babc שלום\u202c def"_s})
    for (const double scale : {1.0, 2.0}) {
      Canvas canvas({300, 40}, scale);
      drawAtPoint(text, QPointF(3, 4), inSans());
      const QImage expected = drawnInOnePiece(text, QSizeF(300, 40), QPointF(3, 4), scale);
      // Glyphs may fall on another quarter of a pixel.
      EXPECT_LE(maximumDifference(canvas.finished(), expected), 90) << text.toStdString();
    }
}

TEST(text_drawing, ShowsOverriddenDirections) {
  Canvas forced({100, 40});
  drawAtPoint(u"\u202eabc\u202c"_s, QPointF(), inSans());
  Canvas expected({100, 40});
  drawAtPoint(u"cba"_s, QPointF(), inSans());
  EXPECT_LE(maximumDifference(forced.finished(), expected.finished()), 90);
}

TEST(text_drawing, ShowsNoSeamBetweenSegments) {
  const QString text = u"AVATAR office, To Wave. "_s.repeated(60);
  const double width = sizeWithAttributes(text, inSans()).width();
  for (double x = 0; x < width; x += 900) {
    Canvas canvas({1000, 40});
    drawAtPoint(text, QPointF(-x, 4), inSans());
    const QImage expected = drawnInOnePiece(text, QSizeF(1000, 40), QPointF(-x, 4), 1);
    EXPECT_FALSE(inkBounds(canvas.finished()).isNull());
    EXPECT_LE(maximumDifference(canvas.image, expected), 90) << x;
  }
}

TEST(text_drawing, ShowsColourfulEmoji) {
  Canvas canvas({60, 40});
  drawAtPoint(u"😀"_s, QPointF(5, 5), inSans());
  const QImage& picture = canvas.finished();
  int yellow = 0;
  for (int y = 0; y < picture.height(); ++y)
    for (int x = 0; x < picture.width(); ++x) {
      const QColor pixel = picture.pixelColor(x, y);
      yellow += pixel.red() > 200 && pixel.green() > 150 && pixel.blue() < 120;
    }
  EXPECT_GT(yellow, 50);
}

TEST(text_drawing, BearsSizesBeyondAllMeasure) {
  // A log line or an endless drawing would fail this.
  for (const double size : {1e-300, 1e-3, 1.0, 1e5, 1e9, 1e300, 1.7e308}) {
    const Attributes attributes{
        {FontAttributeName, any(Font::fontWithName(u"DejaVu Sans"_s, size))}};
    const QString text = u"Text 😀"_s;
    Canvas canvas({40, 20});
    drawAtPoint(text, QPointF(), attributes);
    const QSizeF measured = sizeWithAttributes(text, attributes);
    drawAtPoint(text, QPointF(-measured.width() / 2, -measured.height() / 2), attributes);
    const Ref<Image> image = Image::make(measured);
    {
      const ImageFocus focus(*image);
      drawAtPoint(text, QPointF(), attributes);
    }
    image->dissolveToPoint(QPointF(), 1);
    image->drawInRect(QRectF(0, 0, 40, 20));
    EXPECT_GE(measured.height(), 0);
  }
  const double infinite = std::numeric_limits<double>::infinity();
  Canvas canvas({40, 20});
  for (const QPointF point :
       {QPointF(infinite, 0), QPointF(0, std::nan("")), QPointF(1e300, -1e300)})
    drawAtPoint(u"Text"_s, point, inSans());
  EXPECT_TRUE(inkBounds(canvas.finished()).isNull());
}

TEST(text_drawing, KeepsCombinedCharactersWholeAcrossRuns) {
  const QString letter = u"e\u0301\u0323"_s;
  const auto split = MutableAttributedString::make(letter, inSans());
  split->addAttribute(ForegroundColorAttributeName, any(Color::deviceWhite(0)), {1, 2});
  Canvas canvas({40, 40});
  split->drawAtPoint(QPointF(5, 5));
  Canvas whole({40, 40});
  drawAtPoint(letter, QPointF(5, 5), inSans());
  EXPECT_EQ(maximumDifference(canvas.finished(), whole.finished()), 0);
}

TEST(text_drawing, RecordsTextAsItIsAtThatMoment) {
  const auto text = MutableAttributedString::make(u"███"_s, inSans());
  const Ref<Image> image = Image::make(QSizeF(60, 30));
  {
    const ImageFocus focus(*image);
    text->drawAtPoint(QPointF(0, 2));
  }
  const QImage before = image->rasterised(2);
  EXPECT_FALSE(inkBounds(before, Qt::transparent).isNull());
  text->deleteCharactersInRange({0, 3});
  EXPECT_EQ(image->rasterised(2), before);
}

TEST(text_drawing, ARecordingIsAsSharpAsDrawingItself) {
  const auto text = AttributedString::make(u"Sharp"_s, inSans());
  const Ref<Image> image = Image::make(QSizeF(80, 30));
  {
    const ImageFocus focus(*image);
    text->drawAtPoint(QPointF(0, 2));
  }
  for (const double scale : {1.0, 1.25, 1.5, 2.0}) {
    Canvas direct({80, 30}, scale);
    text->drawAtPoint(QPointF(0, 2));
    Canvas recorded({80, 30}, scale);
    image->dissolveToPoint(QPointF(), 1);
    EXPECT_LE(maximumDifference(direct.finished(), recorded.finished()), 2) << scale;
  }
}

TEST(text_drawing, NeedsAGuiApplication) {
  QProcess probe;
  probe.start(u"" ZQTICKER_BINARY_DIR "/bin/zqticker-text-probe"_s, {u"without-gui"_s});
  ASSERT_TRUE(probe.waitForFinished());
  EXPECT_EQ(probe.exitStatus(), QProcess::NormalExit);
  EXPECT_EQ(probe.exitCode(), 0);
}

TEST(text_drawing, DoesNotFollowTheScreensResolution) {
  const auto measure = [](const QString& dpi) {
    QProcess probe;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"QT_FONT_DPI"_s, dpi);
    probe.setProcessEnvironment(environment);
    probe.start(u"" ZQTICKER_BINARY_DIR "/bin/zqticker-text-probe"_s, {u"metrics"_s});
    EXPECT_TRUE(probe.waitForFinished());
    EXPECT_EQ(probe.exitCode(), 0);
    return probe.readAllStandardOutput();
  };
  const QByteArray at72 = measure(u"72"_s);
  EXPECT_FALSE(at72.isEmpty());
  EXPECT_EQ(measure(u"96"_s), at72);
  EXPECT_EQ(measure(u"192"_s), at72);
}
