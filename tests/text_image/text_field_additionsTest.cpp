#include "zqticker/text_image/text_field_additions.h"

#include "zqticker/platform/controls/TextField.h"
#include "zqticker/platform/controls/TextFieldCell.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/text/AttributedString.h"

#include <gtest/gtest.h>

#include <QtWidgets/QWidget>

#include <cmath>

using namespace Qt::StringLiterals;
using namespace zq;
using namespace zq::platform;

namespace {

// A field in a window of 400 by 300.
class ShrunkField : public ::testing::Test {
 protected:
  ShrunkField() : field(&window) {
    window.resize(400, 300);
    field.cell()->setFont(font);
  }

  // The height of so many lines in whole points.
  double heightOf(int lines) const { return std::ceil(lines * font->lineHeight()); }

  const Ref<Font> font = Font::fontWithName(u"DejaVu Sans Mono"_s, 10);
  QWidget window;
  TextField field;
};

// Says what it was asked.
class AskedCell : public TextFieldCell {
 public:
  QSizeF cellSizeForBounds(const QRectF& bounds) const override {
    asked = bounds;
    return answer;
  }
  mutable QRectF asked;
  QSizeF answer{7, 42};
};

} // namespace

TEST_F(ShrunkField, AsksItsCellWithinTenThousandPoints) {
  const auto cell = std::make_shared<AskedCell>();
  field.setCell(cell);
  field.setFrame({10, 20, 50, 200});
  shrinkHeight(field);
  EXPECT_EQ(cell->asked, QRectF(10, 20, 50, 10000));
  // Only the height is taken from the answer.
  EXPECT_EQ(field.frame(), QRectF(10, 20, 50, 42));
}

TEST_F(ShrunkField, KeepsItsLowerEdgeAndItsWidth) {
  field.setStringValue(u"one line"_s);
  field.setFrame({10, 20, 150, 200});
  shrinkHeight(field);
  EXPECT_EQ(field.frame(), QRectF(10, 20, 150, heightOf(1)));
  // In the coordinates of widgets the upper edge has moved down.
  EXPECT_EQ(field.geometry().bottom() + 1, 280);
}

TEST_F(ShrunkField, GrowsWhereItsContentNeedsMore) {
  field.setStringValue(u"aaaa bbbb cccc"_s);
  field.setFrame({10, 20, 32, 5});
  shrinkHeight(field);
  EXPECT_EQ(field.frame(), QRectF(10, 20, 32, heightOf(3)));
}

TEST_F(ShrunkField, TakesAttributedTextAndTerminators) {
  field.setAttributedStringValue(
      AttributedString::make(u"a\nb\n\nc"_s, {{FontAttributeName, any(font)}}));
  field.setFrame({0, 0, 100, 250});
  shrinkHeight(field);
  EXPECT_EQ(field.frame().height(), heightOf(4));
}

TEST_F(ShrunkField, IsOneLineHighWithoutText) {
  field.setFrame({0, 0, 100, 250});
  shrinkHeight(field);
  EXPECT_EQ(field.frame().height(), heightOf(1));
}

TEST_F(ShrunkField, IsTenThousandPointsHighAtMost) {
  field.setStringValue(u"word "_s.repeated(100000));
  field.setFrame({0, 0, 100, 250});
  shrinkHeight(field);
  EXPECT_EQ(field.frame(), QRectF(0, 0, 100, 10000));
}

TEST_F(ShrunkField, ShrinksTwiceToTheSame) {
  field.setStringValue(u"aaaa bbbb cccc"_s);
  field.setFrame({10, 20, 32, 200});
  shrinkHeight(field);
  const QRectF once = field.frame();
  shrinkHeight(field);
  EXPECT_EQ(field.frame(), once);
}

TEST_F(ShrunkField, BearsAWidthOfNothing) {
  field.setStringValue(u"aaaa"_s);
  field.setFrame({10, 20, 0, 200});
  shrinkHeight(field);
  EXPECT_EQ(field.frame().width(), 0);
  EXPECT_LE(field.frame().height(), 10000);
}
