#include "zqticker/rollover/ZQRollOverButtonCell.h"

#include "tests/rollover/RollOverView.h"
#include "zqticker/platform/graphics/BezierPath.h"
#include "zqticker/platform/graphics/Font.h"

#include <gtest/gtest.h>

#include <typeinfo>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;
using Appearance = ZQRollOverButtonAppearance;

namespace {

// The cell's accessors of the list's attributes; two of them have other names there.
#define ZQ_CELL_VALUES(X)                                                                          \
  X(ZQIntegerAttribute, bezelStyle, zqBezelStyle, setZqBezelStyle)                                 \
  X(ZQIntegerAttribute, shadingMode, shadingMode, setShadingMode)                                  \
  X(ZQFlagAttribute, isBordered, isBordered, setBordered)                                          \
  X(ZQSecondsAttribute, popUpMenuDelay, popUpMenuDelay, setPopUpMenuDelay)                         \
  X(ZQFlagAttribute, alwaysShowMenuIndicator, alwaysShowMenuIndicator, setAlwaysShowMenuIndicator)
#define ZQ_CELL_ATTRIBUTES(X) ZQ_APPEARANCE_OBJECTS(X) ZQ_CELL_VALUES(X)

void expectEqual(const Appearance& a, const Appearance& b) {
#define ZQ_COMPARE(Type, property, getter, setter)                                                 \
  EXPECT_TRUE(equalAttributes<Type>(a.getter(), b.getter())) << #property;
  ZQ_APPEARANCE_ATTRIBUTES(ZQ_COMPARE)
#undef ZQ_COMPARE
}

void expectNothing(const ZQRollOverButtonCell& cell) {
#define ZQ_EXPECT_NOTHING(Type, property, getter, setter)                                          \
  EXPECT_EQ(cell.getter(), Type()) << #property;
  ZQ_CELL_ATTRIBUTES(ZQ_EXPECT_NOTHING)
#undef ZQ_EXPECT_NOTHING
}

} // namespace

TEST(RollOverButtonCell, IsCentredAndWithoutAnAppearanceAtFirst) {
  const ZQRollOverButtonCell cell;
  EXPECT_EQ(cell.title(), u"Button"_s);
  EXPECT_EQ(cell.alignment(), TextAlignment::Center);
  EXPECT_EQ(cell.appearance(), nullptr);
  EXPECT_FALSE(cell.mouseOver());
  EXPECT_EQ(cell.lastFrameSize(), QSizeF(0, 0));
  EXPECT_EQ(cell.backgroundPath(), nullptr);
  EXPECT_EQ(cell.highlightedBackgroundPath(), nullptr);
  EXPECT_EQ(cell.arrowPath(), nullptr);
  EXPECT_EQ(zq_insetCell, 0.0F);
  const ZQRollOverButtonCell titled(u"Play"_s);
  EXPECT_EQ(titled.title(), u"Play"_s);
  EXPECT_EQ(titled.alignment(), TextAlignment::Center);
}

TEST(RollOverButtonCell, ReadsAndWritesEachAttributeOfItsOwnAppearance) {
  int count = 0;
#define ZQ_EXPECT_FORWARDED(Type, property, getter, setter)                                        \
  {                                                                                                \
    const auto appearance = std::make_shared<Appearance>();                                        \
    ZQRollOverButtonCell cell;                                                                     \
    cell.setAppearance(appearance);                                                                \
    const Type value = distinctAttribute<Type>(++count);                                           \
    cell.setter(value);                                                                            \
    EXPECT_EQ(cell.getter(), value) << #property;                                                  \
    EXPECT_EQ(appearance->property(), value) << #property;                                         \
    cell.setter(Type());                                                                           \
    expectEqual(*appearance, Appearance());                                                        \
  }
  ZQ_CELL_ATTRIBUTES(ZQ_EXPECT_FORWARDED)
#undef ZQ_EXPECT_FORWARDED
  EXPECT_EQ(count, 25);
}

TEST(RollOverButtonCell, SharesTheAppearanceOfTheClassOfItsView) {
  RollOverView view;
  view.shared = distinctAppearance();
  RollOverView other;
  other.shared = view.shared;
  ZQRollOverButtonCell cell;
  ZQRollOverButtonCell second;
  cell.setControlView(&view);
  second.setControlView(&other);
  EXPECT_EQ(cell.appearance(), view.shared);
  const Ref<Color> red = Color::deviceRGB(1, 0, 0);
  cell.setControlColor(red);
  EXPECT_EQ(second.controlColor(), red);
  EXPECT_EQ(view.shared->controlColor(), red);

  const auto own = std::make_shared<Appearance>();
  cell.setAppearance(own);
  EXPECT_EQ(cell.appearance(), own);
  EXPECT_EQ(cell.controlColor(), nullptr);
  cell.setAppearance(nullptr);
  EXPECT_EQ(cell.appearance(), view.shared);
}

TEST(RollOverButtonCell, HasNoAppearanceWhereThatOfTheClassIsSomethingElse) {
  class OddView : public RollOverView {
   public:
    Ref<Object> classAppearance() const override { return Color::deviceWhite(1); }
  } view;
  ZQRollOverButtonCell cell;
  cell.setControlView(&view);
  EXPECT_EQ(cell.appearance(), nullptr);
}

TEST(RollOverButtonCell, ReadsNothingAndWritesNowhereWithoutAnAppearance) {
  ZQRollOverButtonCell cell;
  expectNothing(cell);
  int index = 0;
#define ZQ_SET(Type, property, getter, setter) cell.setter(distinctAttribute<Type>(++index));
  ZQ_CELL_ATTRIBUTES(ZQ_SET)
#undef ZQ_SET
  expectNothing(cell);
  RollOverView view;
  cell.setControlView(&view);
  expectNothing(cell);
}

TEST(RollOverButtonCell, NeverStoresABezelStyleOfThePlatform) {
  ZQRollOverButtonCell cell;
  cell.setAppearance(std::make_shared<Appearance>());
  ButtonCell& base = cell;
  base.setBezelStyle(6);
  EXPECT_EQ(cell.zqBezelStyle(), 6U);
  EXPECT_EQ(cell.bezelStyle(), 1);
  base.setBezelStyle(-1);
  EXPECT_EQ(cell.zqBezelStyle(), ~std::uint64_t(0));
}

TEST(RollOverButtonCell, KeepsTheVeryPathsThatItIsGiven) {
  ZQRollOverButtonCell cell;
  const Ref<BezierPath> path = BezierPath::make();
  cell.setBackgroundPath(path);
  cell.setBackgroundPath(path);
  EXPECT_EQ(cell.backgroundPath(), path);
  cell.setHighlightedBackgroundPath(path);
  EXPECT_EQ(cell.highlightedBackgroundPath(), path);
  cell.setArrowPath(path);
  EXPECT_EQ(cell.arrowPath(), path);
  EXPECT_EQ(path.use_count(), 4);
  cell.setBackgroundPath(nullptr);
  EXPECT_EQ(path.use_count(), 3);
}

TEST(RollOverButtonCell, RedrawsNothingForItsMouseOverFlag) {
  RollOverView view;
  ZQRollOverButtonCell cell;
  cell.setControlView(&view);
  cell.setMouseOver(true);
  EXPECT_TRUE(cell.mouseOver());
  EXPECT_EQ(view.log, QStringList());
}

// Whoever makes copies keep their look must change this.
TEST(RollOverButtonCellCopy, HasTheLookOfItsClassAndNothingOfTheCell) {
  RollOverView view;
  view.shared = std::make_shared<Appearance>();
  ZQRollOverButtonCell cell(u"Play"_s);
  cell.setAppearance(distinctAppearance());
  cell.setControlView(&view);
  cell.setTag(7);
  cell.setState(CellState::On);
  cell.setFont(Font::fontWithName(u"DejaVu Sans"_s, 20));
  cell.setMouseOver(true);
  cell.setLastFrameSize({100, 22});

  const auto copy = std::dynamic_pointer_cast<ZQRollOverButtonCell>(cell.copy());
  ASSERT_NE(copy, nullptr);
  const Object& made = *copy;
  EXPECT_EQ(typeid(made), typeid(ZQRollOverButtonCell));
  EXPECT_EQ(copy->appearance(), nullptr);
  EXPECT_EQ(copy->controlView(), nullptr);
  expectNothing(*copy);
  EXPECT_EQ(copy->title(), u"Button"_s);
  EXPECT_EQ(copy->tag(), 0);
  EXPECT_EQ(copy->state(), CellState::Off);
  EXPECT_EQ(copy->font(), nullptr);
  EXPECT_FALSE(copy->mouseOver());
  EXPECT_EQ(copy->lastFrameSize(), QSizeF(0, 0));
  EXPECT_EQ(copy->alignment(), TextAlignment::Center);

  copy->setControlView(&view);
  EXPECT_EQ(copy->appearance(), view.shared);
  expectEqual(*view.shared, Appearance());
  expectEqual(*cell.appearance(), *distinctAppearance());
}

TEST(RollOverButtonCellCopy, CopiesTheColorsAndShadowsOfTheAppearanceThatItThenLeaves) {
  class CountedColor : public Color {
   public:
    explicit CountedColor(int& copies) : copies_(copies) {}
    Ref<Object> copy() override {
      ++copies_;
      return Color::copy();
    }

   private:
    int& copies_;
  };
  int copies = 0;
  ZQRollOverButtonCell cell;
  cell.setAppearance(std::make_shared<Appearance>());
  cell.setTextColor(std::make_shared<CountedColor>(copies));
  cell.copy();
  EXPECT_EQ(copies, 1);
}
