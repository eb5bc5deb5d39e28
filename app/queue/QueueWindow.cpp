#include "app/queue/QueueWindow.h"

#include "app/queue/QueueButton.h"
#include "app/queue/QueueDrops.h"
#include "app/queue/ShowingsBox.h"

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFileInfo>
#include <QtCore/QSettings>
#include <QtCore/QStandardPaths>
#include <QtGui/QAccessible>
#include <QtGui/QAction>
#include <QtGui/QShortcut>
#include <QtWidgets/QApplication>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zq::app {

using namespace platform;

namespace {
constexpr int RefreshMilliseconds = 250;
// A refresh may take this part of the time, so that the strip goes on moving.
constexpr int RefreshShare = 20;
constexpr QSize UsualSize(640, 420);
constexpr int MostTextCharacters = 10'000;
const QString GeometryKey = u"queueWindow/geometry"_s;
} // namespace

QueueWindow::QueueWindow(QueueSource& queue, const QString& stateFile)
    : stateFile_(stateFile), model_(queue) {
  setWindowTitle(tr("Ticker Queue"));
  setWindowIcon(QIcon::fromTheme(u"org.zqticker.Ticker"_s, QApplication::windowIcon()));
  // The ticker goes on without it.
  setAttribute(Qt::WA_QuitOnClose, false);
  QueueButton::followPalette();
  table_ = new QueueTable(model_, this);
  editor_ = new QueueEditor(queue, model_, *table_, this);
  makeActions();
  makeRows();
  connect(editor_, &QueueEditor::said, this, &QueueWindow::say);
  connect(editor_, &QueueEditor::canUndoChanged, this, &QueueWindow::updateActions);
  connect(table_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
          &QueueWindow::updateActions);
  connect(table_, &QWidget::customContextMenuRequested, this, &QueueWindow::showContextMenu);
  refresh_.setSingleShot(true);
  connect(&refresh_, &QTimer::timeout, this, &QueueWindow::refresh);
  restoreState();
  updateActions();
  table_->setFocus();
}

QueueWindow::~QueueWindow() {
  // While all of it is still there: hiding keeps its state and ends edits.
  hide();
}

QString QueueWindow::defaultStateFile() {
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
         u"/zqticker/windows.ini"_s;
}

// Building.

QAction* QueueWindow::addAction(const QString& text, const QList<QKeySequence>& keys,
                                QWidget* within, void (QueueWindow::*perform)()) {
  auto* action = new QAction(text, this);
  action->setShortcuts(keys);
  action->setShortcutContext(within == this ? Qt::WindowShortcut : Qt::WidgetWithChildrenShortcut);
  within->addAction(action);
  connect(action, &QAction::triggered, this, perform);
  return action;
}

void QueueWindow::makeActions() {
  editText_ = addAction(tr("&Edit Text"), {}, table_, &QueueWindow::editText);
  editLoops_ = addAction(tr("Edit S&howings Left"), {}, table_, &QueueWindow::editLoops);
  up_ = addAction(tr("Move &Up"),
                  {QKeySequence(Qt::CTRL | Qt::Key_Up), QKeySequence(Qt::ALT | Qt::Key_Up)}, table_,
                  &QueueWindow::moveUp);
  down_ = addAction(tr("Move &Down"),
                    {QKeySequence(Qt::CTRL | Qt::Key_Down), QKeySequence(Qt::ALT | Qt::Key_Down)},
                    table_, &QueueWindow::moveDown);
  remove_ = addAction(tr("&Remove"), {QKeySequence(Qt::Key_Delete)}, table_,
                      &QueueWindow::removeSelected);
  undo_ =
      addAction(tr("Undo Re&move"), {QKeySequence(QKeySequence::Undo)}, this, &QueueWindow::undo);
  open_ = addAction(tr("&Open…"), {QKeySequence(QKeySequence::Open)}, this, &QueueWindow::open);
  save_ = addAction(tr("&Save…"), {QKeySequence(QKeySequence::Save)}, this, &QueueWindow::save);
  add_ = addAction(tr("&Add"), {}, this, &QueueWindow::addTyped);
  close_ = new QAction(tr("&Close"), this);
  close_->setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_W), QKeySequence(Qt::Key_Escape)});
  QWidget::addAction(close_);
  connect(close_, &QAction::triggered, this, &QWidget::close);
}

void QueueWindow::makeRows() {
  auto* rows = new QVBoxLayout(this);
  rows->addWidget(makeAddRow());
  rows->addWidget(makeTable(), 1);
  rows->addWidget(makeButtons());
  auto* line = new QHBoxLayout;
  status_ = new QLabel(this);
  status_->setTextFormat(Qt::PlainText);
  status_->setWordWrap(true);
  status_->setAccessibleDescription(tr("Status"));
  count_ = new QLabel(this);
  count_->setTextFormat(Qt::PlainText);
  line->addWidget(status_, 1);
  line->addWidget(count_);
  rows->addLayout(line);
}

QueueButton* QueueWindow::makeButton(const QString& title, QChar mnemonic, const QString& purpose,
                                     QAction* action) {
  auto* button = new QueueButton(title, this);
  button->setMnemonic(mnemonic);
  const QString keys = QKeySequence(u"Alt+"_s + mnemonic).toString(QKeySequence::NativeText);
  button->setToolTip(tr("%1 (%2)").arg(purpose, keys));
  button->setAccessibleName(title);
  button->setAccessibleDescription(purpose);
  button->setEnabled(action->isEnabled());
  connect(button, &QAbstractButton::clicked, action, &QAction::trigger);
  connect(action, &QAction::enabledChanged, button, &QWidget::setEnabled);
  auto* shortcut = new QShortcut(QKeySequence(u"Alt+"_s + mnemonic), this);
  connect(shortcut, &QShortcut::activated, button, &QAbstractButton::click);
  buttons_.push_back(button);
  return button;
}

QWidget* QueueWindow::makeAddRow() {
  auto* row = new QWidget(this);
  auto* layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  textField_ = new QLineEdit(row);
  textField_->setMaxLength(MostTextCharacters);
  textField_->setPlaceholderText(tr("A line to add to the queue"));
  textField_->setAccessibleName(tr("Text to add"));
  textField_->setClearButtonEnabled(true);
  showingsBox_ = new ShowingsBox(row);
  showingsBox_->setAccessibleName(tr("Showings of what is added"));
  showingsBox_->setToolTip(tr("How often what is added or dropped is shown; ∞ is without end"));
  showingsBox_->setAccessibleDescription(
      tr("How often what is added or dropped is shown; below 1 it is without end"));
  auto* textLabel = new QLabel(tr("&Text:"), row);
  textLabel->setBuddy(textField_);
  auto* showingsLabel = new QLabel(tr("S&howings:"), row);
  showingsLabel->setBuddy(showingsBox_);
  layout->addWidget(textLabel);
  layout->addWidget(textField_, 1);
  layout->addWidget(showingsLabel);
  layout->addWidget(showingsBox_);
  layout->addWidget(makeButton(tr("Add"), u'A', tr("Adds the text at the end"), add_));
  connect(textField_, &QLineEdit::returnPressed, add_, &QAction::trigger);
  return row;
}

QWidget* QueueWindow::makeTable() {
  auto* around = new ZQDraggingDestinationScrollView(this);
  // The table scrolls its rows itself.
  around->setWidgetResizable(true);
  around->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  around->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  around->setFocusPolicy(Qt::NoFocus);
  around->setWidget(table_);
  table_->setAccessibleName(tr("Queued signs"));
  table_->setAccessibleDescription(
      tr("Enter edits, Delete removes, Control with Up or Down moves. Text, pictures, links and "
         "files can be dropped here."));
  table_->setEmptyText(tr("Nothing is queued.\nDrop text, pictures, links or files here."));
  drops_ = new QueueDrops(*around, *table_, this);
  connect(drops_, &QueueDrops::refused, this, &QueueWindow::say);
  connect(drops_, &QueueDrops::contentsDropped, this, [this](const QMimeData& contents, int row) {
    editor_->addDrop(contents, row, showingsBox_->showings());
  });
  connect(drops_, &QueueDrops::entriesDropped, editor_, &QueueEditor::moveEntries);
  return around;
}

QWidget* QueueWindow::makeButtons() {
  QWidget::setTabOrder(buttons_.back(), table_);
  auto* row = new QWidget(this);
  auto* layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(makeButton(tr("Up"), u'U', tr("Moves the selected signs up"), up_));
  layout->addWidget(makeButton(tr("Down"), u'D', tr("Moves the selected signs down"), down_));
  layout->addWidget(makeButton(tr("Edit"), u'E', tr("Edits the text"), editText_));
  layout->addWidget(makeButton(tr("Remove"), u'R', tr("Removes the selected signs"), remove_));
  layout->addWidget(makeButton(tr("Undo"), u'N', tr("Brings back what was removed last"), undo_));
  layout->addStretch(1);
  layout->addWidget(makeButton(tr("Open…"), u'O', tr("Adds the signs of a file"), open_));
  layout->addWidget(makeButton(tr("Save…"), u'S', tr("Keeps all signs in a file"), save_));
  QWidget* before = table_;
  for (QueueButton* button : row->findChildren<QueueButton*>(Qt::FindDirectChildrenOnly)) {
    QWidget::setTabOrder(before, button);
    before = button;
  }
  return row;
}

// Commands.

void QueueWindow::addTyped() {
  if (editor_->addText(textField_->text(), showingsBox_->showings()))
    textField_->clear();
  else
    textField_->setFocus();
}

void QueueWindow::editText() {
  table_->setFocus();
  table_->editCurrent(QueueModel::TextColumn);
}

void QueueWindow::editLoops() {
  table_->setFocus();
  table_->editCurrent(QueueModel::LoopsColumn);
}

void QueueWindow::moveUp() {
  editor_->moveSelectedUp();
}

void QueueWindow::moveDown() {
  editor_->moveSelectedDown();
}

void QueueWindow::removeSelected() {
  editor_->removeSelected();
}

void QueueWindow::undo() {
  editor_->undoRemoval();
}

void QueueWindow::open() {
  auto* dialog =
      new QFileDialog(this, tr("Add Signs"), folder_, tr("Signs (*.sign);;All files (*)"));
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setFileMode(QFileDialog::ExistingFile);
  connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& path) {
    folder_ = QFileInfo(path).path();
    editor_->load(path);
  });
  dialog->open();
}

void QueueWindow::save() {
  auto* dialog =
      new QFileDialog(this, tr("Save Signs"), folder_, tr("Signs (*.sign);;All files (*)"));
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setAcceptMode(QFileDialog::AcceptSave);
  dialog->setDefaultSuffix(u"sign"_s);
  dialog->selectFile(u"queue.sign"_s);
  connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& path) {
    folder_ = QFileInfo(path).path();
    editor_->save(path);
  });
  dialog->open();
}

void QueueWindow::showContextMenu(QPoint point) {
  auto* menu = new QMenu(this);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  menu->addActions({editText_, editLoops_});
  menu->addSeparator();
  menu->addActions({up_, down_});
  menu->addSeparator();
  menu->addActions({remove_, undo_});
  menu->popup(table_->viewport()->mapToGlobal(point));
}

// What is shown.

void QueueWindow::present() {
  if (isMinimized())
    showNormal();
  else
    show();
  raise();
  activateWindow();
}

QString QueueWindow::status() const {
  return status_->text();
}

void QueueWindow::say(const QString& text) {
  status_->setText(text);
  status_->setAccessibleName(text);
  if (QAccessible::isActive()) {
    QAccessibleEvent event(status_, QAccessible::Alert);
    QAccessible::updateAccessibility(&event);
  }
}

void QueueWindow::refresh() {
  QElapsedTimer clock;
  clock.start();
  table_->refreshRows();
  updateActions();
  refresh_.setInterval(std::max(RefreshMilliseconds, RefreshShare * int(clock.elapsed())));
  scheduleRefresh();
}

void QueueWindow::scheduleRefresh() {
  if (isVisible() && !isMinimized())
    refresh_.start();
  else
    refresh_.stop();
}

void QueueWindow::updateActions() {
  const bool hasSelection = table_->selectionModel()->hasSelection();
  for (QAction* action : {up_, down_, remove_, editText_, editLoops_})
    action->setEnabled(hasSelection);
  undo_->setEnabled(editor_->canUndo());
  save_->setEnabled(model_.rowCount() > 0);
  updateCount();
}

void QueueWindow::updateCount() {
  const int rows = model_.rowCount();
  const int running = model_.firstWaitingRow();
  const QString text =
      rows == 0 ? QString() : tr("%1 queued, %2 on the strip").arg(rows).arg(running);
  if (text == count_->text())
    return;
  count_->setText(text);
  count_->setAccessibleName(text);
}

void QueueWindow::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  refresh();
  table_->makeSomeRowCurrent();
}

void QueueWindow::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  scheduleRefresh();
  if (event->spontaneous())
    return;
  keepState();
  Q_EMIT closed();
}

void QueueWindow::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::WindowStateChange && isVisible())
    refresh();
  if (event->type() != QEvent::PaletteChange)
    return;
  QueueButton::followPalette();
  for (QueueButton* button : buttons_)
    button->setNeedsDisplay();
}

void QueueWindow::restoreState() {
  resize(UsualSize);
  if (!stateFile_.isEmpty())
    restoreGeometry(QSettings(stateFile_, QSettings::IniFormat).value(GeometryKey).toByteArray());
}

void QueueWindow::keepState() {
  if (!stateFile_.isEmpty())
    QSettings(stateFile_, QSettings::IniFormat).setValue(GeometryKey, saveGeometry());
}

} // namespace zq::app
