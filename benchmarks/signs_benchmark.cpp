// Signs: what laying out, setting a text and drawing cost, beside the same work done with Qt alone.
//
//   ComboLayout        the layout of a combo sign with a picture and 32 characters of plain text
//   ComboLayoutFloor   measuring the same characters with QTextLayout, nothing else
//   SetText            a text sign given 32 new characters: measuring and recording the buffer
//   SetTextFloor       measuring the same characters with QTextLayout
//   DrawText           drawing a text sign of 32 characters into a raster image
//   DrawTextFloor      drawing the same characters with a prepared QTextLayout
#include "benchmarks/ratio_main.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/signs/ZQComboTickerSign.h"
#include "zqticker/signs/ZQTextTickerSign.h"

#include <QtGui/QPainter>
#include <QtGui/QTextLayout>

using namespace zq::platform;

namespace {

constexpr double PointSize = 14;
constexpr QSizeF StripSize(1920, 24);

// 32 characters, another text for every number, so that no cache answers.
QString text(int number) {
  return QStringLiteral("Quotes %1 up, rain by evening")
      .arg(number, 7, 10, QLatin1Char('0'))
      .left(32);
}

class Display : public ZQTickerDisplayProtocol {
 public:
  QSizeF size() const override { return StripSize; }
  int scrollDirection() const override { return 1; }
  qreal textOffset() const override { return 4; }
  Ref<Font> defaultFont() const override { return font_; }
  Ref<Color> defaultTextColor() const override { return color_; }
  bool shouldAutoscale() const override { return false; }

 private:
  Ref<Font> font_ = Font::fontWithName(QStringLiteral("DejaVu Sans"), PointSize);
  Ref<Color> color_ = Color::deviceRGB(0, 0, 0);
};

QFont qtFont() {
  QFont font(QStringLiteral("DejaVu Sans"));
  font.setPixelSize(int(PointSize));
  return font;
}

void layOut(QTextLayout& layout) {
  layout.beginLayout();
  layout.createLine().setNumColumns(1000);
  layout.endLayout();
}

void ComboLayout(benchmark::State& state) {
  Display display;
  QImage pixels(32, 32, QImage::Format_ARGB32_Premultiplied);
  pixels.fill(Qt::red);
  const auto sign = ZQComboTickerSign::make(text(0), Image::fromQImage(pixels));
  sign->setDisplay(&display);
  int number = 0;
  for (auto _ : state) {
    sign->setText(text(++number));
    sign->setNeedsLayout(true);
    benchmark::DoNotOptimize(sign->size());
  }
}
BENCHMARK(ComboLayout);

void MeasureFloor(benchmark::State& state) {
  const QFont font = qtFont();
  int number = 0;
  for (auto _ : state) {
    QTextLayout layout(text(++number), font);
    layOut(layout);
    benchmark::DoNotOptimize(layout.lineAt(0).naturalTextWidth());
  }
}
BENCHMARK(MeasureFloor)->Name("ComboLayoutFloor");

void SetText(benchmark::State& state) {
  const auto sign = ZQTextTickerSign::make(text(0));
  const Attributes attributes{
      {FontAttributeName, any(Font::fontWithName(QStringLiteral("DejaVu Sans"), PointSize))}};
  int number = 0;
  for (auto _ : state) {
    sign->setText(AttributedString::make(text(++number), attributes));
    benchmark::DoNotOptimize(sign->size());
  }
}
BENCHMARK(SetText);
BENCHMARK(MeasureFloor)->Name("SetTextFloor");

QImage canvas() {
  QImage image(StripSize.toSize(), QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::white);
  return image;
}

void DrawText(benchmark::State& state) {
  const Attributes attributes{
      {FontAttributeName, any(Font::fontWithName(QStringLiteral("DejaVu Sans"), PointSize))}};
  const auto line = AttributedString::make(text(0), attributes);
  QImage image = canvas();
  QPainter painter(&image);
  GraphicsContext context(&painter, StripSize);
  for (auto _ : state)
    line->drawAtPoint(QPointF(10, 4));
}
BENCHMARK(DrawText);

void DrawTextFloor(benchmark::State& state) {
  QTextLayout layout(text(0), qtFont());
  layout.setCacheEnabled(true);
  layOut(layout);
  QImage image = canvas();
  QPainter painter(&image);
  for (auto _ : state)
    layout.draw(&painter, QPointF(10, 4));
}
BENCHMARK(DrawTextFloor);

} // namespace

int main(int argc, char** argv) {
  return runBenchmarks(argc, argv,
                       {{"ComboLayout", "ComboLayoutFloor"},
                        {"SetText", "SetTextFloor"},
                        {"DrawText", "DrawTextFloor"}});
}
