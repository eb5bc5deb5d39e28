#include "app/queue/QueueWindow.h"

#include "app/queue/QueueButton.h"
#include "app/queue/ShowingsBox.h"
#include "tests/app/XServer.h"
#include "tests/app/queue/QueueWindowKeys.h"

#include <gtest/gtest.h>

#include <QtCore/QMimeData>
#include <QtCore/QPointer>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;
using namespace zq::platform;

TEST_F(QueueWindowKeys, RemoveAndBringBack) {
  fill({u"a"_s, u"b"_s, u"c"_s, u"d"_s});
  queue.list[1].loopsLeft = 5;
  queue.list[1].origin.senderName = u"Mail"_s;
  queue.changed();
  window.table().refreshRows();
  select({1, 2});
  press(Qt::Key_Delete);
  EXPECT_EQ(queue.texts(), (QStringList{u"a"_s, u"d"_s}));
  EXPECT_EQ(selected(), QStringList{u"d"_s});
  EXPECT_EQ(window.status(), u"2 signs removed"_s);
  press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(queue.texts(), (QStringList{u"a"_s, u"b"_s, u"c"_s, u"d"_s}));
  EXPECT_EQ(selected(), (QStringList{u"b"_s, u"c"_s}));
  EXPECT_EQ(queue.list[1].sign->loopCount(), 5) << "as often as it was still to be shown";
  EXPECT_EQ(queue.list[1].origin.senderName, u"Mail"_s);
  EXPECT_FALSE(window.editor().canUndo());
}

TEST_F(QueueWindowKeys, BringBackBeforeWhatIsStillThere) {
  fill({u"a"_s, u"b"_s, u"c"_s, u"d"_s});
  select({0});
  press(Qt::Key_Delete);
  queue.list.erase(queue.list.begin()); // b
  queue.changed();
  window.editor().undoRemoval();
  EXPECT_EQ(queue.texts(), (QStringList{u"a"_s, u"c"_s, u"d"_s}));
  select({2});
  press(Qt::Key_Delete);
  queue.addText(u"e"_s);
  window.editor().undoRemoval();
  EXPECT_EQ(queue.texts(), (QStringList{u"a"_s, u"c"_s, u"e"_s, u"d"_s}))
      << "nothing that followed it is left";
}

TEST_F(QueueWindowKeys, BringBackRemovalsOneByOne) {
  fill({u"a"_s, u"b"_s, u"c"_s});
  select({0});
  press(Qt::Key_Delete);
  press(Qt::Key_Delete);
  press(Qt::Key_Delete);
  EXPECT_TRUE(queue.list.empty());
  for (int i = 0; i < 3; ++i)
    press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(queue.texts(), (QStringList{u"a"_s, u"b"_s, u"c"_s}));
}

TEST_F(QueueWindowKeys, LeaveWhatIsOnTheStripForTheLastTime) {
  fill({u"a"_s, u"b"_s});
  queue.run(1);
  queue.list[0].isWaiting = false;
  window.table().refreshRows();
  select({0});
  press(Qt::Key_Delete);
  EXPECT_EQ(queue.list.size(), 2u);
  EXPECT_EQ(window.status(), u"What is on the strip for the last time leaves by itself"_s);
  EXPECT_FALSE(window.editor().canUndo());
}

TEST_F(QueueWindowKeys, Move) {
  fill({u"run"_s, u"a"_s, u"b"_s, u"c"_s, u"d"_s});
  queue.run(1);
  window.table().refreshRows();
  select({3});
  press(Qt::Key_Up, Qt::ControlModifier);
  EXPECT_EQ(queue.texts(), (QStringList{u"run"_s, u"a"_s, u"c"_s, u"b"_s, u"d"_s}));
  EXPECT_EQ(selected(), QStringList{u"c"_s});
  EXPECT_EQ(window.status(), u"“c” is now in row 3"_s);
  press(Qt::Key_Up, Qt::AltModifier);
  EXPECT_EQ(queue.texts(), (QStringList{u"run"_s, u"c"_s, u"a"_s, u"b"_s, u"d"_s}));
  press(Qt::Key_Up, Qt::ControlModifier);
  EXPECT_EQ(queue.texts()[1], u"c"_s) << "never before what is on the strip";
  press(Qt::Key_Down, Qt::AltModifier);
  press(Qt::Key_Down, Qt::ControlModifier);
  press(Qt::Key_Down, Qt::ControlModifier);
  EXPECT_EQ(queue.texts(), (QStringList{u"run"_s, u"a"_s, u"b"_s, u"d"_s, u"c"_s}));
  press(Qt::Key_Down, Qt::ControlModifier);
  EXPECT_EQ(window.status(), u"The last one cannot go further down"_s);
}

TEST_F(QueueWindowKeys, MoveSeveralTogether) {
  fill({u"a"_s, u"b"_s, u"c"_s, u"d"_s, u"e"_s});
  select({1, 3});
  press(Qt::Key_Down, Qt::ControlModifier);
  EXPECT_EQ(queue.texts(), (QStringList{u"a"_s, u"c"_s, u"e"_s, u"b"_s, u"d"_s}));
  EXPECT_EQ(selected(), (QStringList{u"b"_s, u"d"_s}));
  press(Qt::Key_Up, Qt::ControlModifier);
  EXPECT_EQ(queue.texts(), (QStringList{u"a"_s, u"c"_s, u"b"_s, u"d"_s, u"e"_s}));
}

TEST_F(QueueWindowKeys, EditTheTextInItsPlace) {
  fill({u"first"_s, u"second"_s});
  for (const int key : {int(Qt::Key_F2), int(Qt::Key_Return)}) {
    select({1});
    press(key);
    auto* field = qobject_cast<QLineEdit*>(QApplication::focusWidget());
    ASSERT_TRUE(field) << key;
    EXPECT_EQ(field->accessibleName(), u"Text"_s);
    field->selectAll();
    type(u"other"_s);
    // What comes meanwhile disturbs nothing.
    queue.addText(u"new"_s);
    window.table().refreshRows();
    type(QString::number(key));
    press(Qt::Key_Return);
    EXPECT_EQ(queue.texts()[1], u"other%1"_s.arg(key));
  }
  select({1});
  press(Qt::Key_F2);
  type(u"xyz"_s);
  press(Qt::Key_Escape);
  EXPECT_FALSE(queue.texts()[1].contains(u"xyz"));
  EXPECT_TRUE(window.isVisible()) << "the key ends the edit only";
}

TEST_F(QueueWindowKeys, KeepWhatIsBeingTyped) {
  queue.addLines(300);
  show();
  select({101});
  press(Qt::Key_F2);
  const QPointer<QLineEdit> field = qobject_cast<QLineEdit*>(QApplication::focusWidget());
  ASSERT_TRUE(field);
  field->selectAll();
  type(u"half"_s);
  // So much that the table would start anew.
  std::vector<QueuedSign> odd;
  for (std::size_t i = 1; i < queue.list.size(); i += 2)
    odd.push_back(queue.list[i]);
  queue.list = odd;
  queue.changed();
  window.table().refreshRows();
  QMimeData contents;
  contents.setText(u"dropped"_s);
  window.editor().addDrop(contents, 0, 1);
  QApplication::processEvents();
  ASSERT_EQ(QApplication::focusWidget(), field);
  ASSERT_TRUE(queue.texts().contains(u"line 101"_s)) << "nothing is taken before it is done";
  type(u" done"_s);
  press(Qt::Key_Return);
  EXPECT_EQ(queue.texts().filter(u"half"_s), QStringList{u"half done"_s});
  EXPECT_FALSE(queue.texts().contains(u"line 101"_s));
  window.table().refreshRows();
  EXPECT_EQ(window.model().rowCount(), 151);
  EXPECT_EQ(selected(), QStringList{u"half done"_s});
}

TEST_F(QueueWindowKeys, EndTheEditOfASignThatHasGone) {
  fill({u"a"_s, u"b"_s, u"c"_s});
  select({1});
  press(Qt::Key_F2);
  const QPointer<QLineEdit> field = qobject_cast<QLineEdit*>(QApplication::focusWidget());
  ASSERT_TRUE(field);
  type(u"x"_s);
  queue.list.erase(queue.list.begin() + 1);
  queue.changed();
  window.table().refreshRows();
  EXPECT_EQ(QApplication::focusWidget(), &window.table());
  EXPECT_TRUE(waitUntil([&] { return !field; }));
  EXPECT_EQ(queue.texts(), (QStringList{u"a"_s, u"c"_s}));
  select({1});
  EXPECT_EQ(selected(), QStringList{u"c"_s});
  press(Qt::Key_F2);
  EXPECT_TRUE(qobject_cast<QLineEdit*>(QApplication::focusWidget()));
}

TEST_F(QueueWindowKeys, EditHowOftenASignIsShown) {
  fill({u"first"_s});
  select({0});
  window.table().setCurrentIndex(window.model().index(0, QueueModel::LoopsColumn));
  press(Qt::Key_F2);
  auto* box = window.table().findChild<ShowingsBox*>();
  ASSERT_TRUE(box);
  EXPECT_EQ(box->accessibleName(), u"Showings left"_s);
  EXPECT_EQ(box->showings(), 1);
  box->setShowings(-1);
  press(Qt::Key_Return);
  EXPECT_EQ(queue.list[0].loopsLeft, -1);
}

TEST_F(QueueWindowKeys, LeaveNumbersThatTheFieldCannotShow) {
  fill({u"first"_s});
  for (const std::int64_t left : {std::int64_t(0), std::int64_t(ShowingsBox::MostShowings) + 1}) {
    queue.list[0].loopsLeft = left;
    queue.changed();
    window.table().refreshRows();
    select({0});
    window.table().setCurrentIndex(window.model().index(0, QueueModel::LoopsColumn));
    press(Qt::Key_F2);
    ASSERT_TRUE(window.table().findChild<ShowingsBox*>());
    press(Qt::Key_Return);
    EXPECT_EQ(queue.list[0].loopsLeft, left);
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
}

TEST_F(QueueWindowKeys, AddALine) {
  fill({u"first"_s});
  auto* field = called<QLineEdit>(u"Text to add"_s);
  auto* box = called<ShowingsBox>(u"Showings of what is added"_s);
  EXPECT_EQ(box->showings(), -1);
  field->setFocus();
  type(u" new line "_s);
  press(Qt::Key_Return);
  EXPECT_EQ(queue.texts(), (QStringList{u"first"_s, u"new line"_s}));
  EXPECT_EQ(queue.list[1].loopsLeft, -1);
  EXPECT_TRUE(field->text().isEmpty());
  EXPECT_EQ(window.status(), u"“new line” added"_s);
  press(Qt::Key_Return);
  EXPECT_EQ(queue.list.size(), 2u);
  EXPECT_EQ(window.status(), u"Type the text to add"_s);
  box->setShowings(3);
  type(u"x"_s);
  called<QueueButton>(u"Add"_s)->click();
  EXPECT_EQ(queue.list.at(2).loopsLeft, 3);
  queue.isFull = true;
  type(u"y"_s);
  press(Qt::Key_Return);
  EXPECT_EQ(window.status(), u"The queue takes no more"_s);
  EXPECT_EQ(field->text(), u"y"_s) << "nothing is lost";
}

TEST_F(QueueWindowKeys, CloseTheWindow) {
  for (const auto& [key, modifiers] : {std::pair{int(Qt::Key_Escape), Qt::NoModifier},
                                       std::pair{int(Qt::Key_W), Qt::ControlModifier}}) {
    show();
    ASSERT_TRUE(window.isVisible());
    press(key, modifiers);
    EXPECT_FALSE(window.isVisible());
  }
  EXPECT_FALSE(window.testAttribute(Qt::WA_QuitOnClose));
}
