// The window that shows what is queued.
#pragma once

#include "app/queue/QueueEditor.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QTimer>
#include <QtWidgets/QWidget>

class QAction;
class QLabel;
class QLineEdit;

namespace zq::app {

class QueueButton;
class QueueDrops;
class ShowingsBox;

// Lists the signs that are on the strip or wait, and lets the user add, drop, edit, move, remove,
// save and load them. It looks for changes of the queue some four times a second, less often where
// that takes long, and not at all while it is hidden.
//
// Everything can be done from the keyboard: Tab goes through fields, table and buttons; Delete
// removes, Ctrl or Alt with Up and Down moves, Enter and F2 edit, Ctrl+Z brings back, Ctrl+O and
// Ctrl+S load and save, Escape and Ctrl+W close. Closing only hides it. What came of an action
// stands in the status line, and is told to assistive technology.
//
// Thread: main.
class QueueWindow : public QWidget {
  Q_OBJECT

 public:
  // `queue` must outlive the window. Size and place are kept in the file `stateFile`; an empty name
  // keeps none.
  explicit QueueWindow(QueueSource& queue, const QString& stateFile = defaultStateFile());
  ~QueueWindow() override;

  // The file among those of the user's settings.
  static QString defaultStateFile();

  // Shows the window in front of others, and gives it the keyboard.
  void present();

  QueueTable& table() { return *table_; }
  QueueModel& model() { return model_; }
  QueueEditor& editor() { return *editor_; }
  // It was closed, however.
  Q_SIGNAL void closed();

  // The sentence in the status line.
  QString status() const;

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void makeRows();
  QWidget* makeAddRow();
  QWidget* makeTable();
  QWidget* makeButtons();
  void makeActions();
  QAction* addAction(const QString& text, const QList<QKeySequence>& keys, QWidget* within,
                     void (QueueWindow::*perform)());
  QueueButton* makeButton(const QString& title, QChar mnemonic, const QString& purpose,
                          QAction* action);

  void addTyped();
  void editText();
  void editLoops();
  void moveUp();
  void moveDown();
  void removeSelected();
  void undo();
  void open();
  void save();
  void showContextMenu(QPoint point);

  void refresh();
  void scheduleRefresh();
  void say(const QString& text);
  void updateActions();
  void updateCount();
  void restoreState();
  void keepState();

  QString stateFile_;
  QueueModel model_;
  QueueTable* table_ = nullptr;
  QueueEditor* editor_ = nullptr;
  QueueDrops* drops_ = nullptr;
  QLineEdit* textField_ = nullptr;
  ShowingsBox* showingsBox_ = nullptr;
  QLabel* status_ = nullptr;
  QLabel* count_ = nullptr;
  QAction* add_ = nullptr;
  QAction* editText_ = nullptr;
  QAction* editLoops_ = nullptr;
  QAction* up_ = nullptr;
  QAction* down_ = nullptr;
  QAction* remove_ = nullptr;
  QAction* undo_ = nullptr;
  QAction* open_ = nullptr;
  QAction* save_ = nullptr;
  QAction* close_ = nullptr;
  std::vector<QueueButton*> buttons_;
  QTimer refresh_;
  QString folder_; // of the file that was chosen last
};

} // namespace zq::app
