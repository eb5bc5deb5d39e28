#include "zqticker/views/view_utils.h"

#include "zqticker/platform/controls/Button.h"
#include "zqticker/platform/controls/ButtonCell.h"
#include "zqticker/platform/controls/view_tree.h"

#include <gtest/gtest.h>

#include <QtWidgets/QFrame>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollArea>

using namespace zq;
using zq::platform::Button;
using zq::platform::setTag;

TEST(ViewOfClass, FindsTheReceiverBeforeItsSubviews) {
  QFrame view;
  QFrame subview(&view);
  setTag(view, 3);
  setTag(subview, 3);
  EXPECT_EQ(viewOfClass<QFrame>(view, 3), &view);
}

TEST(ViewOfClass, FindsAGrandchildInTheFirstSubviewBeforeTheSecondSubview) {
  QWidget view;
  QWidget first(&view);
  QFrame second(&view);
  QFrame grandchild(&first);
  setTag(second, 3);
  setTag(grandchild, 3);
  EXPECT_EQ(viewOfClass<QFrame>(view, 3), &grandchild);
}

TEST(ViewOfClass, WantsClassAndTag) {
  QWidget view;
  QWidget otherClass(&view);
  QFrame otherTag(&view);
  setTag(view, 3);
  setTag(otherClass, 3);
  setTag(otherTag, 4);
  EXPECT_EQ(viewOfClass<QFrame>(view, 3), nullptr);
  QFrame found(&otherClass);
  setTag(found, 3);
  EXPECT_EQ(viewOfClass<QFrame>(view, 3), &found);
}

TEST(ViewOfClass, TakesSubclasses) {
  QWidget view;
  QLabel label(&view);
  setTag(label, 3);
  EXPECT_EQ(viewOfClass<QFrame>(view, 3), &label);
  EXPECT_EQ(viewOfClass(view, QFrame::staticMetaObject, 3), &label);
  EXPECT_EQ(viewOfClass<QScrollArea>(view, 3), nullptr);
}

TEST(ViewOfClass, FollowsTheOrderOfTheSubviews) {
  QWidget view;
  QFrame first(&view);
  QFrame second(&view);
  setTag(first, 3);
  setTag(second, 3);
  EXPECT_EQ(viewOfClass<QFrame>(view, 3), &first);
  first.raise();
  EXPECT_EQ(viewOfClass<QFrame>(view, 3), &second);
}

TEST(ViewOfClass, LooksIntoScrollViewsButNotIntoOtherWindows) {
  QWidget view;
  QScrollArea area(&view);
  auto* document = new QFrame;
  setTag(*document, 3);
  area.setWidget(document);
  EXPECT_EQ(viewOfClass<QFrame>(view, 3), document);
  QFrame dialog(&view, Qt::Dialog);
  setTag(dialog, 4);
  EXPECT_EQ(viewOfClass<QFrame>(view, 4), nullptr);
}

TEST(ViewOfClass, FindsViewsWithoutATagByMinusOne) {
  QWidget view;
  QFrame frame(&view);
  setTag(view, 0);
  EXPECT_EQ(viewOfClass<QFrame>(view, -1), &frame);
}

TEST(SubviewWithTag, FindsAnyViewTheReceiverIncluded) {
  QWidget view;
  QLabel label(&view);
  setTag(view, 1);
  setTag(label, 2);
  EXPECT_EQ(subviewWithTag(view, 1), &view);
  EXPECT_EQ(subviewWithTag(view, 2), &label);
  EXPECT_EQ(subviewWithTag(view, 3), nullptr);
}

TEST(ButtonWithTag, FindsButtonsOnly) {
  QWidget view;
  QLabel label(&view);
  setTag(label, 2);
  EXPECT_EQ(buttonWithTag(view, 2), nullptr);
  Button button(&label);
  button.cell()->setTag(2);
  EXPECT_EQ(buttonWithTag(view, 2), &button);
  EXPECT_EQ(buttonWithTag(button, 2), &button);
  QPushButton other(&view);
  setTag(other, 5);
  EXPECT_EQ(buttonWithTag(view, 5), &other);
}

// A window of 200 × 100 with a view whose lower left corner is at (10, 20), and in it, from behind
// to the front, a frame on (0, 0, 50, 50) and a label on (30, 0, 50, 50), y upwards.
class HitView : public ::testing::Test {
 protected:
  HitView() : view(&window), frame(&view), label(&view) {
    window.resize(200, 100);
    view.setGeometry(10, 20, 100, 60);
    frame.setGeometry(0, 10, 50, 50);
    label.setGeometry(30, 10, 50, 50);
  }

  QWidget window;
  QWidget view;
  QFrame frame;
  QLabel label;
};

TEST_F(HitView, TakesAPointOfTheWindow) {
  EXPECT_EQ(hitView(view, {15, 25}), &frame);
  EXPECT_EQ(hitView(view, {85, 65}), &label);
  EXPECT_EQ(hitView(view, {15, 75}), nullptr) << "above both";
  EXPECT_EQ(hitView(view, {5, 25}), nullptr);
}

TEST_F(HitView, NeverFindsTheReceiver) {
  EXPECT_EQ(hitView(view, {100, 75}), nullptr);
  EXPECT_EQ(hitViewOfClass<QWidget>(view, {100, 75}), nullptr);
  EXPECT_EQ(hitView(window, {100, 75}), &view);
}

TEST_F(HitView, FindsTheDeepestViewInsideASubview) {
  QPushButton button(&frame);
  button.setGeometry(0, 40, 10, 10);
  EXPECT_EQ(hitView(view, {15, 25}), &button);
  EXPECT_EQ(hitView(view, {25, 25}), &frame);
}

// The first answer counts, although the user sees the other one.
TEST_F(HitView, AsksOverlappingSubviewsInTheirOrder) {
  EXPECT_EQ(hitView(view, {45, 25}), &frame);
  frame.raise();
  EXPECT_EQ(hitView(view, {45, 25}), &label);
}

TEST_F(HitView, OfAClassPassesOverSubviewsThatShowAnother) {
  EXPECT_EQ(hitViewOfClass<QLabel>(view, {45, 25}), &label);
  EXPECT_EQ(hitViewOfClass(view, QLabel::staticMetaObject, {45, 25}), &label);
  EXPECT_EQ(hitViewOfClass<QFrame>(view, {45, 25}), &frame);
  EXPECT_EQ(hitViewOfClass<QFrame>(view, {85, 25}), &label) << "a subclass";
}

TEST_F(HitView, OfAClassDoesNotLookUnderAViewOfAnother) {
  QPushButton under(&frame);
  under.setGeometry(0, 40, 10, 10);
  QWidget over(&frame);
  over.setGeometry(0, 40, 10, 10);
  EXPECT_EQ(hitViewOfClass<QPushButton>(view, {15, 25}), nullptr);
  EXPECT_EQ(hitViewOfClass<QFrame>(view, {15, 25}), nullptr) << "nor at what is around it";
  over.hide();
  EXPECT_EQ(hitViewOfClass<QPushButton>(view, {15, 25}), &under);
}

TEST_F(HitView, TakesAPointOfTheWindowForAFlippedReceiverToo) {
  Button button(&window);
  button.setGeometry(120, 10, 60, 40);
  QFrame inside(&button);
  inside.setGeometry(0, 0, 60, 10);
  EXPECT_EQ(hitView(button, {125, 85}), &inside);
  EXPECT_EQ(hitView(button, {125, 55}), nullptr);
}
