// What the queue window shows, tells and keeps.
#include "app/queue/QueueWindow.h"

#include "app/queue/QueueButton.h"
#include "app/queue/QueueDelegate.h"
#include "tests/app/XServer.h"
#include "tests/app/queue/QueueWindowKeys.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>
#include <QtCore/QMimeData>
#include <QtCore/QSettings>
#include <QtCore/QUrl>
#include <QtGui/QAccessible>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QSpinBox>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;
using namespace zq::platform;

TEST_F(QueueWindowKeys, GoThroughEveryControl) {
  fill({u"a"_s, u"b"_s});
  select({0});
  press(Qt::Key_Delete); // so that there is something to bring back
  select({0});
  called<QLineEdit>(u"Text to add"_s)->setFocus();
  QStringList names;
  do {
    names.append(QApplication::focusWidget()->accessibleName());
    press(Qt::Key_Tab);
  } while (QApplication::focusWidget()->accessibleName() != names.first() && names.size() < 20);
  EXPECT_EQ(names, (QStringList{u"Text to add"_s, u"Showings of what is added"_s, u"Add"_s,
                                u"Queued signs"_s, u"Up"_s, u"Down"_s, u"Edit"_s, u"Remove"_s,
                                u"Undo"_s, u"Open…"_s, u"Save…"_s}));
}

TEST_F(QueueWindowKeys, ClickTheButtonThatHasTheFocus) {
  fill({u"a"_s, u"b"_s});
  select({0});
  called<QueueButton>(u"Remove"_s)->setFocus();
  press(Qt::Key_Space);
  EXPECT_EQ(queue.texts(), QStringList{u"b"_s});
  called<QueueButton>(u"Undo"_s)->setFocus();
  press(Qt::Key_Return);
  EXPECT_EQ(queue.texts(), (QStringList{u"a"_s, u"b"_s}));
}

TEST_F(QueueWindowKeys, AreNamedForAssistiveTechnology) {
  fill({u"a"_s});
  for (QWidget* widget : window.findChildren<QWidget*>()) {
    if (widget->focusPolicy() == Qt::NoFocus || !widget->isVisible() ||
        qobject_cast<QWidget*>(widget->parent())->focusProxy() ||
        qobject_cast<QSpinBox*>(widget->parent()) || qobject_cast<QLineEdit*>(widget->parent()))
      continue;
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(widget);
    ASSERT_TRUE(accessible);
    EXPECT_FALSE(accessible->text(QAccessible::Name).isEmpty())
        << widget->metaObject()->className();
  }
  for (const QueueButton* button : window.findChildren<QueueButton*>()) {
    QAccessibleInterface* accessible =
        QAccessible::queryAccessibleInterface(const_cast<QueueButton*>(button));
    EXPECT_EQ(accessible->role(), QAccessible::Button);
    EXPECT_FALSE(accessible->text(QAccessible::Description).isEmpty());
  }
  QAccessibleInterface* table = QAccessible::queryAccessibleInterface(&window.table());
  ASSERT_TRUE(table && table->tableInterface());
  EXPECT_EQ(table->tableInterface()->rowCount(), 1);
  const auto said = [&](int column) {
    return table->tableInterface()->cellAt(0, column)->text(QAccessible::Name);
  };
  EXPECT_EQ(said(QueueModel::StateColumn), u"Waiting"_s);
  EXPECT_EQ(said(QueueModel::PictureColumn), u"No picture"_s);
  EXPECT_EQ(said(QueueModel::TextColumn), u"a"_s);
  EXPECT_EQ(said(QueueModel::LoopsColumn), u"1 showing left"_s);
}

// What became of an action is a name that a screen reader reads out.
TEST_F(QueueWindowKeys, SayWhatCameOfThem) {
  fill({u"a"_s});
  select({0});
  press(Qt::Key_Delete);
  auto* label = called<QLabel>(u"“a” removed"_s);
  ASSERT_TRUE(label);
  EXPECT_EQ(QAccessible::queryAccessibleInterface(label)->text(QAccessible::Name),
            u"“a” removed"_s);
  EXPECT_EQ(label->textFormat(), Qt::PlainText);
}

TEST_F(QueueWindowKeys, StayWhereFilesAreReadUntilTheWindowGoes) {
  fill({u"a"_s, u"b"_s});
  const QString path = folder.filePath(u"lines.txt"_s);
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write("from a file");
  file.close();
  QMimeData contents;
  contents.setUrls({QUrl::fromLocalFile(path)});
  window.editor().addDrop(contents, 1, 4);
  EXPECT_EQ(window.status(), u"Reading…"_s);
  EXPECT_EQ(queue.list.size(), 2u);
  ASSERT_TRUE(waitUntil([&] { return queue.list.size() == 3; }));
  EXPECT_EQ(queue.texts(), (QStringList{u"a"_s, u"from a file"_s, u"b"_s}));
  EXPECT_EQ(window.status(), u"1 sign added"_s);
  {
    QueueWindow other(queue, QString());
    other.show();
    for (int i = 0; i < 20; ++i)
      other.editor().addDrop(contents, 0, 1);
  }
  QApplication::processEvents();
  EXPECT_EQ(queue.list.size(), 3u);
}

TEST_F(QueueWindowKeys, SaveAndLoad) {
  fill({u"a"_s, u"b"_s});
  queue.addLines(1);
  const QString path = folder.filePath(u"kept.sign"_s);
  EXPECT_TRUE(window.editor().save(path));
  EXPECT_EQ(window.status(), u"3 signs saved in kept.sign"_s);
  queue.list.clear();
  queue.changed();
  EXPECT_TRUE(window.editor().load(path));
  EXPECT_EQ(queue.texts(), (QStringList{u"a"_s, u"b"_s, u"line 0"_s}));
  EXPECT_EQ(window.status(), u"3 signs added from kept.sign"_s);
  EXPECT_FALSE(window.editor().load(folder.filePath(u"missing.sign"_s)));
  EXPECT_FALSE(window.editor().save(folder.filePath(u"no/kept.sign"_s)));
  EXPECT_EQ(queue.list.size(), 3u);
  queue.isFull = true;
  EXPECT_FALSE(window.editor().load(path));
  EXPECT_EQ(window.status(), u"0 of 3 signs added, the queue takes no more"_s);
}

TEST_F(QueueWindowKeys, LoseNothingWhereTheQueueTakesNoMore) {
  fill({u"a"_s, u"b"_s});
  select({0});
  press(Qt::Key_Delete);
  queue.isFull = true;
  press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(window.status(), u"The queue takes no more"_s);
  queue.isFull = false;
  press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(queue.texts(), (QStringList{u"a"_s, u"b"_s}));
}

TEST_F(QueueWindowKeys, BeginAtTheFirstRow) {
  queue.addText(u"a"_s);
  queue.addText(u"b"_s);
  window.show();
  window.activateWindow();
  QApplication::processEvents();
  EXPECT_EQ(QApplication::focusWidget(), &window.table());
  EXPECT_EQ(window.table().currentIndex(), window.model().index(0, QueueModel::TextColumn));
  EXPECT_TRUE(selected().isEmpty());
  press(Qt::Key_Down);
  EXPECT_EQ(selected(), QStringList{u"b"_s});
}

TEST_F(QueueWindowKeys, KeepSelectionAndPlaceWhileTheQueueChanges) {
  queue.addLines(300);
  show();
  QScrollBar* bar = window.table().verticalScrollBar();
  bar->setValue(100 * QueueDelegate::RowHeight + 7);
  select({101});
  const auto seen = [&] { return window.model().queueRow(window.table().rowAt(0)).text; };
  const int offset = window.table().rowViewportPosition(window.table().rowAt(0));
  ASSERT_EQ(seen(), u"line 100"_s);
  queue.list.erase(queue.list.begin(), queue.list.begin() + 30);
  queue.changed();
  window.table().refreshRows();
  EXPECT_EQ(seen(), u"line 100"_s);
  EXPECT_EQ(window.table().rowViewportPosition(window.table().rowAt(0)), offset);
  EXPECT_EQ(selected(), QStringList{u"line 101"_s});
  // So much that the table starts anew.
  std::vector<QueuedSign> odd;
  for (std::size_t i = 1; i < queue.list.size(); i += 2)
    odd.push_back(queue.list[i]);
  queue.list = odd;
  queue.changed();
  window.table().refreshRows();
  EXPECT_EQ(selected(), QStringList{u"line 101"_s});
  EXPECT_EQ(seen(), u"line 101"_s) << "the next one of those that were seen";
  // The one at the top has gone, and the beginning stays in sight.
  bar->setValue(0);
  queue.list.erase(queue.list.begin());
  queue.changed();
  window.table().refreshRows();
  EXPECT_EQ(bar->value(), 0);
}

TEST_F(QueueWindowKeys, HoldWithAHundredThousandRows) {
  queue.addLines(100'000);
  queue.add(ZQImageTickerSign::make(plainPicture({4, 4}, Qt::red)), {}, nullptr);
  show();
  EXPECT_EQ(window.model().rowCount(), 100'001);
  EXPECT_EQ(window.table().queueDelegate().thumbnails().drawnCount(), 0) << "out of sight";
  select({100'000});
  QApplication::processEvents();
  window.table().viewport()->grab();
  EXPECT_EQ(window.table().queueDelegate().thumbnails().drawnCount(), 1);
  window.table().selectAll();
  EXPECT_EQ(window.table().selectedEntries().size(), 100'001u);
  // Rows that are next to each other go in one step.
  queue.list.resize(50'000);
  queue.changed();
  window.table().refreshRows();
  EXPECT_EQ(window.table().selectedEntries().size(), 50'000u);
}

TEST_F(QueueWindowKeys, RefreshOnlyWhileItIsShown) {
  fill({u"a"_s});
  const int before = queue.readings;
  queue.addText(u"b"_s);
  ASSERT_TRUE(waitUntil([&] { return window.model().rowCount() == 2; }));
  window.hide();
  queue.addText(u"c"_s);
  const int hidden = queue.readings;
  EXPECT_GT(hidden, before);
  // Longer than a refresh takes to come.
  QueueWindow other(queue, QString());
  other.show();
  queue.addText(u"d"_s);
  ASSERT_TRUE(waitUntil([&] { return other.model().rowCount() == 4; }));
  EXPECT_EQ(window.model().rowCount(), 2);
  window.show();
  EXPECT_EQ(window.model().rowCount(), 4);
}

TEST_F(QueueWindowKeys, KeepTheSizeOfTheWindow) {
  show();
  window.resize(700, 500);
  window.close();
  QueueWindow next(queue, state);
  EXPECT_EQ(next.size(), QSize(700, 500));
  QSettings(state, QSettings::IniFormat).setValue(u"queueWindow/geometry"_s, u"garbage"_s);
  const QueueWindow last(queue, state);
  EXPECT_FALSE(last.size().isEmpty());
}

TEST_F(QueueWindowKeys, GiveButtonsALookThatSuitsThePalette) {
  const QPalette before = QApplication::palette();
  QueueButton button(u"Button"_s);
  for (const bool isDark : {false, true}) {
    QPalette palette(isDark ? QColor(40, 40, 40) : QColor(240, 240, 240));
    QApplication::setPalette(palette);
    QueueButton::followPalette();
    const QColor text = button.textColor()->qColor();
    const QColor body = button.controlColor()->qColor();
    EXPECT_EQ(text.lightness() > body.lightness(), isDark);
    EXPECT_GT(std::abs(text.lightness() - body.lightness()), 100);
  }
  QApplication::setPalette(before);
  QueueButton::followPalette();
}
