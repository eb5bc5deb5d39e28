#include "zqticker/platform/controls/view_tree.h"

#include "zqticker/platform/controls/Button.h"
#include "zqticker/platform/controls/ButtonCell.h"
#include "zqticker/platform/controls/TextField.h"
#include "zqticker/platform/controls/TextFieldCell.h"

#include <gtest/gtest.h>

#include <QtCore/QVariant>
#include <QtWidgets/QScrollArea>

using namespace zq::platform;

TEST(ViewTag, IsTheOneOfTheControlsCell) {
  Button button;
  button.setProperty("tag", 5);
  EXPECT_EQ(tagOf(button), 0) << "a cell's at first";
  button.cell()->setTag(7);
  EXPECT_EQ(tagOf(button), 7);
  setTag(button, 8);
  EXPECT_EQ(button.cell()->tag(), 8);
  TextField field;
  setTag(field, -3);
  EXPECT_EQ(field.cell()->tag(), -3);
  EXPECT_EQ(tagOf(field), -3);
}

TEST(ViewTag, IsElseAProperty) {
  QWidget view;
  view.setProperty("tag", 5);
  EXPECT_EQ(tagOf(view), 5);
  setTag(view, std::int64_t(1) << 40);
  EXPECT_EQ(tagOf(view), std::int64_t(1) << 40);
  view.setProperty("tag", QStringLiteral("12"));
  EXPECT_EQ(tagOf(view), 12);
}

TEST(ViewTag, IsMinusOneWithoutANumber) {
  QWidget view;
  EXPECT_EQ(tagOf(view), -1);
  view.setProperty("tag", QStringLiteral("twelve"));
  EXPECT_EQ(tagOf(view), -1);
}

TEST(ViewTree, HasWindowsOutsideOfTheirParents) {
  QWidget window;
  QWidget first(&window);
  QWidget dialog(&window, Qt::Dialog);
  QObject object(&window);
  QWidget second(&window);
  EXPECT_EQ(subviewsOf(window), (QList<QWidget*>{&first, &second}));
  EXPECT_EQ(superviewOf(first), &window);
  EXPECT_EQ(superviewOf(dialog), nullptr);
  EXPECT_EQ(superviewOf(window), nullptr);
  first.raise();
  EXPECT_EQ(subviewsOf(window), (QList<QWidget*>{&second, &first})) << "from behind to the front";
}

TEST(ViewTree, HasTheClipViewAroundWhatIsScrolled) {
  QScrollArea area;
  auto* document = new QWidget;
  area.setWidget(document);
  EXPECT_EQ(superviewOf(*document), area.viewport());
  EXPECT_EQ(superviewOf(*area.viewport()), &area);
}

TEST(ViewCoordinates, RunUpwardsUnlessTheViewIsFlipped) {
  QWidget window;
  window.resize(200, 100);
  QWidget view(&window);
  view.setGeometry(10, 20, 50, 30);
  Button button(&view);
  button.setGeometry(5, 5, 20, 10);
  EXPECT_FALSE(isFlipped(view));
  EXPECT_TRUE(isFlipped(button));
  // The view's lower left corner is 100 - 20 - 30 above that of the window.
  EXPECT_EQ(convertPointToWindow(view, {0, 0}), QPointF(10, 50));
  EXPECT_EQ(convertPointFromWindow(view, {10.5, 50.25}), QPointF(0.5, 0.25));
  // The button's upper left corner.
  EXPECT_EQ(convertPointToWindow(button, {0, 0}), QPointF(15, 75));
  EXPECT_EQ(convertPointFromWindow(button, {15, 74}), QPointF(0, 1));
  EXPECT_EQ(convertPointToWindow(window, {3, 4}), QPointF(3, 4));
  EXPECT_EQ(convertPointToWindow(button, {2, 3}), button.convertPointToWindow({2, 3}));
  EXPECT_EQ(convertPointFromWindow(button, {20, 70}), button.convertPointFromWindow({20, 70}));
}

class HitTest : public ::testing::Test {
 protected:
  HitTest() : view(&window), back(&view), front(&view) {
    window.resize(200, 100);
    view.setGeometry(10, 20, 50, 30);
    back.setGeometry(0, 0, 20, 20);
    front.setGeometry(10, 0, 20, 20);
  }

  QWidget window;
  QWidget view;
  QWidget back;
  QWidget front;
};

TEST_F(HitTest, TakesAPointOfTheSuperview) {
  // In the view (5, 25), y upwards, that is 5 below its upper edge.
  EXPECT_EQ(hitTest(back, {5, 25}), &back);
  EXPECT_EQ(hitTest(view, {15, 75}), &back);
  EXPECT_EQ(hitTest(window, {15, 75}), &back) << "a window's own";
  EXPECT_EQ(hitTest(back, {5, 5}), nullptr);
}

TEST_F(HitTest, FindsTheViewItselfBesidesItsSubviews) {
  EXPECT_EQ(hitTest(view, {50, 55}), &view);
  EXPECT_EQ(hitTest(view, {5, 75}), nullptr);
}

TEST_F(HitTest, FindsTheOneInFront) {
  EXPECT_EQ(hitTest(view, {25, 75}), &front);
  back.raise();
  EXPECT_EQ(hitTest(view, {25, 75}), &back);
}

TEST_F(HitTest, PassesOverWhatIsNotSeen) {
  front.hide();
  EXPECT_EQ(hitTest(view, {25, 75}), &back);
  EXPECT_EQ(hitTest(front, {15, 25}), nullptr);
  front.show();
  front.setAttribute(Qt::WA_TransparentForMouseEvents);
  EXPECT_EQ(hitTest(view, {25, 75}), &back);
  EXPECT_EQ(hitTest(front, {15, 25}), nullptr);
}

TEST_F(HitTest, GivesAViewItsUpperAndLeftEdgeOnly) {
  // The view spans 10 to 60 and 50 to 80 of the window.
  back.hide();
  front.hide();
  EXPECT_EQ(hitTest(view, {10, 80}), &view);
  EXPECT_EQ(hitTest(view, {9.9, 80}), nullptr);
  EXPECT_EQ(hitTest(view, {10, 80.1}), nullptr);
  EXPECT_EQ(hitTest(view, {59.9, 50.1}), &view);
  EXPECT_EQ(hitTest(view, {60, 60}), nullptr);
  EXPECT_EQ(hitTest(view, {20, 50}), nullptr);
}

TEST_F(HitTest, TakesAPointOfAFlippedSuperviewAsThatHasIt) {
  Button button(&window);
  button.setGeometry(100, 0, 40, 40);
  QWidget inside(&button);
  inside.setGeometry(0, 0, 10, 10);
  EXPECT_EQ(hitTest(inside, {5, 5}), &inside);
  EXPECT_EQ(hitTest(inside, {5, 35}), nullptr);
}
