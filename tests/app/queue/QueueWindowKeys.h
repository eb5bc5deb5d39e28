// The queue window over a queue of the test, by keys.
#pragma once

#include "app/queue/QueueTable.h"
#include "app/queue/QueueWindow.h"
#include "tests/app/queue/FakeQueue.h"
#include "tests/support/LogWatch.h"

#include <gtest/gtest.h>

#include <QtCore/QTemporaryDir>
#include <QtGui/QAction>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QApplication>

#include <vector>

namespace zq::app::testing {

class QueueWindowKeys : public ::testing::Test {
 protected:
  void SetUp() override { zq::testing::allowLog(QStringLiteral("propagateSizeHints")); }
  void fill(const QStringList& texts) {
    for (const QString& text : texts)
      queue.addText(text);
    show();
  }
  void show() {
    window.show();
    window.activateWindow();
    QApplication::processEvents();
    window.table().setFocus();
  }
  // As the window system would give it: to whoever has the focus, shortcuts first.
  void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier, const QString& text = {}) {
    QWidget* target = QApplication::focusWidget();
    ASSERT_TRUE(target);
    QKeyEvent asked(QEvent::ShortcutOverride, key, modifiers, text);
    asked.ignore();
    QApplication::sendEvent(target, &asked);
    if (!asked.isAccepted())
      for (QAction* action : target->actions() + target->window()->actions())
        if (action->isEnabled() &&
            action->shortcuts().contains(QKeySequence(key | int(modifiers)))) {
          action->trigger();
          return;
        }
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
      QKeyEvent event(type, key, modifiers, text);
      if (QApplication::focusWidget())
        QApplication::sendEvent(QApplication::focusWidget(), &event);
    }
    QApplication::processEvents();
  }
  void type(const QString& text) {
    for (const QChar& character : text)
      press(character.unicode(), Qt::NoModifier, QString(character));
  }
  void select(const std::vector<int>& rows) {
    std::vector<Strip::Entry> entries;
    for (const int row : rows)
      entries.push_back(window.model().queueRow(row).entry);
    window.table().selectEntries(entries);
  }
  QStringList selected() {
    QStringList texts;
    for (const Strip::Entry& entry : window.table().selectedEntries())
      texts.append(window.model().queueRow(window.model().rowOf(entry)).text);
    return texts;
  }
  template <class Widget>
  Widget* called(const QString& name) {
    for (Widget* widget : window.findChildren<Widget*>())
      if (widget->accessibleName() == name)
        return widget;
    ADD_FAILURE() << "nothing called " << name.toStdString();
    return nullptr;
  }

  FakeQueue queue;
  QTemporaryDir folder;
  QString state = folder.filePath(QStringLiteral("windows.ini"));
  QueueWindow window{queue, state};
};

} // namespace zq::app::testing
