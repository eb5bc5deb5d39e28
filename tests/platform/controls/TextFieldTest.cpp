#include "zqticker/platform/controls/TextField.h"

#include "tests/platform/graphics/Canvas.h"
#include "tests/support/LogWatch.h"
#include "zqticker/platform/archiving/KeyedArchiver.h"
#include "zqticker/platform/controls/TextFieldCell.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/text/AttributedString.h"

#include <gtest/gtest.h>

#include <QtWidgets/QWidget>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using zq::testing::Canvas;
using zq::testing::inkBounds;

namespace {

const double infinity = std::numeric_limits<double>::infinity();

Ref<Font> mono() {
  return Font::fontWithName(u"DejaVu Sans Mono"_s, 10);
}

Ref<TextFieldCell> cellWith(const QString& text) {
  const auto cell = std::make_shared<TextFieldCell>();
  cell->setFont(mono());
  cell->setTitle(text);
  return cell;
}

} // namespace

TEST(TextFieldCell, NeedsTheHeightOfItsLinesAtAWidth) {
  const auto cell = cellWith(u"aaaa bbbb cccc"_s);
  const double line = mono()->lineHeight();
  const double word = cellWith(u"aaaa"_s)->cellSize().width() - 4;
  EXPECT_NEAR(cell->cellSize().height(), line, 1e-9);
  EXPECT_NEAR(cell->cellSizeForBounds({0, 0, 1000, 1000}).height(), line, 1e-9);
  EXPECT_NEAR(cell->cellSizeForBounds({0, 0, word + 4.5, 1000}).height(), 3 * line, 1e-9);
  EXPECT_NEAR(cell->cellSizeForBounds({0, 0, word + 4.5, 1000}).width(), word + 4, 1e-9);
  // Two points of padding on each side: half a point less breaks the words.
  EXPECT_NEAR(cell->cellSizeForBounds({0, 0, word + 3.5, 1000}).height(), 6 * line, 1e-9);
}

TEST(TextFieldCell, NeedsRoomForItsBorder) {
  const auto cell = cellWith(u"a"_s);
  const QSizeF plain = cell->cellSize();
  cell->setBordered(true);
  EXPECT_EQ(cell->cellSize(), plain + QSizeF(2, 2));
  EXPECT_EQ(cell->drawingRectForBounds({10, 20, 100, 50}), QRectF(13, 21, 94, 48));
}

TEST(TextFieldCell, NeedsOneLineWithoutText) {
  EXPECT_NEAR(cellWith(QString())->cellSizeForBounds({0, 0, 50, 1000}).height(),
              mono()->lineHeight(), 1e-9);
}

TEST(TextFieldCell, NeedsNoMoreThanTheBounds) {
  const auto cell = cellWith(u"a\nb\nc"_s);
  EXPECT_EQ(cell->cellSizeForBounds({0, 0, 50, 20}).height(), 20);
  for (const double side : {0.0, -1.0, std::nan("")})
    EXPECT_EQ(cell->cellSizeForBounds({0, 0, side, side}), QSizeF(0, 0));
  EXPECT_NEAR(cell->cellSizeForBounds({0, 0, infinity, infinity}).height(),
              3 * mono()->lineHeight(), 1e-9);
}

TEST(TextFieldCell, MeasuresAttributedTextInItsOwnFonts) {
  const auto cell = cellWith(QString());
  const auto large = Font::fontWithName(u"DejaVu Sans"_s, 30);
  cell->setObjectValue(any(AttributedString::make(u"a"_s, {{FontAttributeName, any(large)}})));
  EXPECT_NEAR(cell->cellSize().height(), large->lineHeight(), 1e-9);
}

TEST(TextFieldCell, DrawsItsLinesFromTheTop) {
  const auto cell = cellWith(u"HHHH HHHH"_s);
  const double line = mono()->lineHeight();
  for (const bool flipped : {false, true}) {
    Canvas canvas({60, 60}, 1, flipped);
    cell->drawWithFrame({10, 10, 32, 40}, nullptr);
    const QRect ink = inkBounds(canvas.finished(), Qt::white, 60);
    // Counted from the lower left of the bitmap: the frame's top is at 50 in both.
    EXPECT_GE(ink.left(), 12);
    EXPECT_LE(ink.right(), 40);
    EXPECT_GT(ink.height(), line);
    EXPECT_LE(ink.bottom(), 49);
    EXPECT_GE(ink.top(), 50 - 2 * line - 1);
  }
}

TEST(TextFieldCell, AlignsItsLines) {
  const auto inkOf = [](TextAlignment alignment) {
    Canvas canvas({60, 30});
    const auto cell = cellWith(u"H"_s);
    cell->setAlignment(alignment);
    cell->drawWithFrame({0, 0, 60, 30}, nullptr);
    return inkBounds(canvas.finished(), Qt::white, 60);
  };
  EXPECT_LT(inkOf(TextAlignment::Left).left(), 5);
  EXPECT_NEAR(inkOf(TextAlignment::Center).center().x(), 30, 2);
  EXPECT_GT(inkOf(TextAlignment::Right).right(), 54);
}

TEST(TextFieldCell, CutsOffWhatHasNoRoom) {
  Canvas canvas({60, 60});
  cellWith(u"HHHHHHHHHHHHHHHHHHHHHH\nH\nH\nH\nH"_s)->drawWithFrame({10, 20, 30, 20}, nullptr);
  const QRect ink = inkBounds(canvas.finished());
  EXPECT_GE(ink.top(), 20);
  EXPECT_LE(ink.bottom(), 39);
  EXPECT_LE(ink.right(), 39);
}

TEST(TextFieldCell, CopiesWithItsText) {
  const auto cell = cellWith(u"abc"_s);
  const auto copy = copyOf(cell);
  EXPECT_NE(copy, cell);
  EXPECT_EQ(copy->cellSize(), cell->cellSize());
}

TEST(TextFieldCell, DoesNotArchive) {
  EXPECT_THROW(KeyedArchiver::archivedDataWithRootObject(cellWith(u"a"_s)),
               UnrecognizedSelectorException);
}

TEST(TextField, HasAFrameWhoseOriginIsTheLowerLeftCorner) {
  QWidget parent;
  parent.resize(200, 100);
  TextField field(&parent);
  field.setFrame({10, 20, 50, 30});
  EXPECT_EQ(field.geometry(), QRect(10, 50, 50, 30));
  EXPECT_EQ(field.frame(), QRectF(10, 20, 50, 30));
  field.setFrame({10.4, 20.6, 49.1, 29.5});
  EXPECT_EQ(field.frame(), QRectF(10, 21, 50, 30));
}

TEST(TextField, BearsFramesBeyondAllMeasure) {
  QWidget parent;
  parent.resize(200, 100);
  TextField field(&parent);
  for (const double length : {std::nan(""), -5.0, infinity, -infinity, 1e300})
    for (QWidget* superview : {&parent, static_cast<QWidget*>(nullptr)}) {
      field.setParent(superview);
      field.setFrame({length, length, length, length});
      EXPECT_GE(field.width(), 0);
    }
}

TEST(TextField, ShowsItsText) {
  TextField field;
  field.cell()->setFont(mono());
  field.setStringValue(u"HHHH"_s);
  EXPECT_EQ(field.stringValue(), u"HHHH"_s);
  EXPECT_EQ(field.accessibleName(), u"HHHH"_s);
  field.resize(field.sizeHint());
  QPalette palette;
  palette.setColor(QPalette::Window, Qt::white);
  palette.setColor(QPalette::WindowText, Qt::blue);
  field.setPalette(palette);
  const QImage shown = field.grab().toImage();
  const QRect ink = inkBounds(shown, Qt::white, 60);
  EXPECT_GT(ink.width(), 15);
  bool isBlue = false;
  for (int x = 0; x < shown.width(); ++x)
    for (int y = 0; y < shown.height(); ++y) {
      const QColor pixel = shown.pixelColor(x, y);
      isBlue |= pixel.blue() > 200 && pixel.red() < 100;
      EXPECT_GE(pixel.blue(), 200);
    }
  EXPECT_TRUE(isBlue);
  field.setAttributedStringValue(nullptr);
  EXPECT_EQ(field.stringValue(), QString());
}

TEST(TextField, IsHigherWhereItIsNarrower) {
  TextField field;
  field.cell()->setFont(mono());
  field.setStringValue(u"aaaa bbbb cccc"_s);
  EXPECT_TRUE(field.hasHeightForWidth());
  EXPECT_EQ(field.heightForWidth(1000), std::ceil(mono()->lineHeight()));
  EXPECT_EQ(field.heightForWidth(32), std::ceil(3 * mono()->lineHeight()));
}

TEST(TextField, NeedsACell) {
  TextField field;
  EXPECT_THROW(field.setCell(nullptr), InvalidArgumentException);
  const auto cell = cellWith(u"x"_s);
  const Ref<TextFieldCell> before = field.cell();
  field.setCell(cell);
  EXPECT_EQ(cell->controlView(), &field);
  EXPECT_EQ(before->controlView(), nullptr);
  field.setEnabled(false);
  EXPECT_FALSE(cell->isEnabled());
}

TEST(TextField, ConvertsPointsOfItsWindow) {
  QWidget window;
  window.resize(200, 100);
  TextField field(&window);
  field.setFrame({10, 20, 50, 30});
  // The upper left corner of the field.
  EXPECT_EQ(field.convertPointToWindow({0, 0}), QPointF(10, 50));
  EXPECT_EQ(field.convertPointFromWindow({10, 50}), QPointF(0, 0));
}

TEST(TextField, LogsWhatItsCellRaisesWhileTheEventLoopDraws) {
  class RaisingCell : public TextFieldCell {
   public:
    void drawInteriorWithFrame(const QRectF&, ControlView*) override {
      throw InvalidArgumentException(u"cannot draw"_s);
    }
  };
  TextField field;
  field.resize(20, 20);
  field.setCell(std::make_shared<RaisingCell>());
  zq::testing::expectLog(u"cannot draw"_s);
  field.grab();
}
