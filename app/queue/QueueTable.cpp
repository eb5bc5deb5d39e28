#include "app/queue/QueueTable.h"

#include "app/queue/QueueDelegate.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/platform/graphics/SystemColors.h"

#include <QtCore/QMimeData>
#include <QtCore/QPointer>
#include <QtGui/QDrag>
#include <QtGui/QKeyEvent>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QScrollBar>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace zq::app {

using namespace platform;

namespace {
// Points.
constexpr int StateWidth = 26;
constexpr int PictureWidth = QueueDelegate::PictureRoom.width() + 12;
constexpr int SenderWidth = 130;
constexpr int LoopsWidth = 70;
constexpr double DropLineWidth = 3;
constexpr int ScrollMargin = 24;
constexpr int EmptyMargin = 24;
constexpr int RowMargin = 8;
// Texts that are dragged to other programs.
constexpr std::size_t MostDraggedRows = 10'000;
constexpr int MostCaptionCharacters = 40;

QPixmap captionPixmap(const QString& text, const QWidget& of) {
  const QFontMetrics metrics = of.fontMetrics();
  const QSize size(metrics.horizontalAdvance(text) + 16, metrics.height() + 8);
  QPixmap pixmap(size * of.devicePixelRatioF());
  pixmap.setDevicePixelRatio(of.devicePixelRatioF());
  pixmap.fill(of.palette().color(QPalette::Highlight));
  QPainter painter(&pixmap);
  painter.setFont(of.font());
  painter.setPen(of.palette().color(QPalette::HighlightedText));
  painter.drawText(QRect(QPoint(), size), Qt::AlignCenter, text);
  return pixmap;
}
} // namespace

// What is in sight and selected, by entries.
struct QueueTable::Place {
  bool isAtTop = true;
  // The rows in sight, from the first one, and where that stands.
  std::vector<Strip::Entry> seen;
  int offset = 0;
  std::vector<Strip::Entry> selected;
  Strip::Entry current;
  int currentColumn = QueueModel::TextColumn;
};

QueueTable::QueueTable(QueueModel& model, QWidget* parent)
    : ZQHighlightTableView(parent), model_(model), delegate_(new QueueDelegate(this)) {
  setModel(&model);
  setItemDelegate(delegate_);
  setFrameShape(QFrame::NoFrame);
  setSelectionBehavior(SelectRows);
  setSelectionMode(ExtendedSelection);
  setEditTriggers(EditKeyPressed | DoubleClicked);
  setVerticalScrollMode(ScrollPerPixel);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setTabKeyNavigation(false);
  setWordWrap(false);
  setShowGrid(false);
  setAlternatingRowColors(true);
  setDragEnabled(true);
  setContextMenuPolicy(Qt::CustomContextMenu);
  verticalHeader()->hide();
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  fitRowsToFont();
  QHeaderView* columns = horizontalHeader();
  columns->setHighlightSections(false);
  columns->setSectionsClickable(false);
  columns->setMinimumSectionSize(StateWidth);
  columns->setSectionResizeMode(QHeaderView::Fixed);
  columns->setSectionResizeMode(QueueModel::TextColumn, QHeaderView::Stretch);
  columns->setSectionResizeMode(QueueModel::SenderColumn, QHeaderView::Interactive);
  columns->resizeSection(QueueModel::StateColumn, StateWidth);
  columns->resizeSection(QueueModel::PictureColumn, PictureWidth);
  columns->resizeSection(QueueModel::SenderColumn, SenderWidth);
  columns->resizeSection(QueueModel::LoopsColumn, LoopsWidth);
  columns->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}
QueueTable::~QueueTable() = default;

void QueueTable::fitRowsToFont() {
  const int height = std::max(QueueDelegate::RowHeight, fontMetrics().height() + RowMargin);
  verticalHeader()->setMinimumSectionSize(height);
  verticalHeader()->setDefaultSectionSize(height);
}

void QueueTable::changeEvent(QEvent* event) {
  ZQHighlightTableView::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
    fitRowsToFont();
}

void QueueTable::makeSomeRowCurrent() {
  if (model_.rowCount() > 0 &&
      (!currentIndex().isValid() || currentIndex().column() == QueueModel::StateColumn))
    selectionModel()->setCurrentIndex(
        model_.index(std::max(currentIndex().row(), 0), QueueModel::TextColumn),
        QItemSelectionModel::NoUpdate);
}

std::vector<Strip::Entry> QueueTable::selectedEntries() const {
  std::vector<int> rows;
  for (const QItemSelectionRange& range : selectionModel()->selection())
    for (int row = range.top(); row <= range.bottom(); ++row)
      rows.push_back(row);
  std::sort(rows.begin(), rows.end());
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  std::vector<Strip::Entry> entries;
  entries.reserve(rows.size());
  for (const int row : rows)
    entries.push_back(model_.queueRow(row).entry);
  return entries;
}

bool QueueTable::isEditing() const {
  return state() == EditingState && indexWidget(currentIndex());
}

void QueueTable::selectEntries(const std::vector<Strip::Entry>& entries) {
  if (isEditing())
    return;
  std::vector<int> rows;
  for (const Strip::Entry& entry : entries)
    if (const int row = model_.rowOf(entry); row >= 0)
      rows.push_back(row);
  if (rows.empty())
    return;
  const int first = rows.front();
  std::sort(rows.begin(), rows.end());
  QItemSelection selection;
  for (std::size_t i = 0; i < rows.size();) {
    std::size_t end = i + 1;
    while (end < rows.size() && rows[end] <= rows[end - 1] + 1)
      ++end;
    selection.select(model_.index(rows[i], 0),
                     model_.index(rows[end - 1], QueueModel::ColumnCount - 1));
    i = end;
  }
  const QModelIndex current = model_.index(first, QueueModel::TextColumn);
  selectionModel()->setCurrentIndex(current, QItemSelectionModel::NoUpdate);
  selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
  scrollTo(current);
}

QueueTable::Place QueueTable::place() const {
  Place place;
  place.isAtTop = verticalScrollBar()->value() == 0;
  const int first = rowAt(0);
  const int last = rowAt(viewport()->height() - 1);
  if (first >= 0) {
    place.offset = rowViewportPosition(first);
    for (int row = first; row <= (last < 0 ? model_.rowCount() - 1 : last); ++row)
      place.seen.push_back(model_.queueRow(row).entry);
  }
  if (const QModelIndex current = currentIndex(); current.isValid()) {
    place.current = model_.queueRow(current.row()).entry;
    place.currentColumn = current.column();
  }
  return place;
}

// Where the first row has gone that was in sight, the next one that has not stands in its place.
void QueueTable::restore(const Place& place) {
  executeDelayedItemsLayout();
  if (place.isAtTop)
    return verticalScrollBar()->setValue(0);
  int offset = place.offset;
  for (const Strip::Entry& entry : place.seen) {
    if (const int row = model_.rowOf(entry); row >= 0)
      return verticalScrollBar()->setValue(verticalHeader()->sectionPosition(row) - offset);
    offset = std::min(offset + verticalHeader()->defaultSectionSize(), 0);
  }
}

void QueueTable::refreshRows() {
  const Place before = place();
  const bool wasEditing = isEditing();
  std::vector<Strip::Entry> selected;
  const auto remember = connect(&model_, &QAbstractItemModel::modelAboutToBeReset, this,
                                [&] { selected = selectedEntries(); });
  const bool isChanged = model_.refresh(wasEditing ? QueueModel::Refresh::KeepsIndexes
                                                   : QueueModel::Refresh::MayStartAnew);
  disconnect(remember);
  if (!isChanged)
    return;
  if (wasEditing && !isEditing())
    setFocus();
  const bool lostCurrent = before.current && !currentIndex().isValid();
  if (!selected.empty())
    selectEntries(selected);
  if (const int row = model_.rowOf(before.current); lostCurrent && row >= 0)
    selectionModel()->setCurrentIndex(model_.index(row, before.currentColumn),
                                      QItemSelectionModel::NoUpdate);
  restore(before);
}

void QueueTable::editCurrent(QueueModel::Column column) {
  const QModelIndex index = model_.index(currentIndex().row(), column);
  if (currentIndex().isValid() && (index.flags() & Qt::ItemIsEditable)) {
    setCurrentIndex(index);
    ZQHighlightTableView::edit(index, AllEditTriggers, nullptr);
  }
}

bool QueueTable::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) {
  const bool asks = trigger == EditKeyPressed || trigger == DoubleClicked;
  if (!asks || !index.isValid() || index.column() == QueueModel::LoopsColumn)
    return ZQHighlightTableView::edit(index, trigger, event);
  return ZQHighlightTableView::edit(index.siblingAtColumn(QueueModel::TextColumn), trigger, event);
}

void QueueTable::keyPressEvent(QKeyEvent* event) {
  const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (isEnter && !event->modifiers().testFlag(Qt::ControlModifier) && state() != EditingState &&
      currentIndex().isValid())
    edit(currentIndex(), EditKeyPressed, event);
  else
    ZQHighlightTableView::keyPressEvent(event);
}

void QueueTable::startDrag(Qt::DropActions) {
  dragged_ = selectedEntries();
  if (dragged_.empty())
    return;
  QStringList texts;
  for (std::size_t i = 0; i < dragged_.size() && i < MostDraggedRows; ++i)
    texts.append(model_.queueRow(model_.rowOf(dragged_[i])).text);
  auto* contents = new QMimeData;
  contents->setText(texts.join(u'\n'));
  auto* drag = new QDrag(this);
  drag->setMimeData(contents);
  const QString caption = dragged_.size() == 1 ? texts.first().simplified() : QString();
  drag->setPixmap(captionPixmap(caption.isEmpty()
                                    ? tr("%n sign(s)", nullptr, static_cast<int>(dragged_.size()))
                                    : fontMetrics().elidedText(caption.left(MostCaptionCharacters),
                                                               Qt::ElideRight, SenderWidth),
                                *this));
  const QPointer<QueueTable> alive = this;
  // A move is for this table only: other programs get a copy.
  drag->exec(Qt::CopyAction | Qt::MoveAction, Qt::CopyAction);
  if (alive)
    dragged_.clear();
}

int QueueTable::dropRowAt(QPoint point) const {
  const int rows = model_.rowCount();
  const int row = rowAt(point.y());
  int before = point.y() < 0 ? rowAt(0) : rows;
  if (row >= 0)
    before = point.y() - rowViewportPosition(row) > rowHeight(row) / 2 ? row + 1 : row;
  return std::clamp(before, std::min(model_.firstWaitingRow(), rows), rows);
}

bool QueueTable::canMove(const Strip::Entry& entry) const {
  const int row = model_.rowOf(entry);
  return row >= 0 && !model_.queueRow(row).isOnStrip;
}

void QueueTable::setDropRow(std::optional<int> row) {
  if (row == dropRow_)
    return;
  dropRow_ = row;
  setNeedsDisplay();
}

void QueueTable::scrollNear(QPoint point) {
  QScrollBar* bar = verticalScrollBar();
  if (point.y() < ScrollMargin)
    bar->setValue(bar->value() - verticalHeader()->defaultSectionSize() / 2);
  else if (point.y() > viewport()->height() - ScrollMargin)
    bar->setValue(bar->value() + verticalHeader()->defaultSectionSize() / 2);
}

void QueueTable::setEmptyText(const QString& text) {
  emptyText_ = text;
  setNeedsDisplay();
}

// The upper edge of a row in the viewport; the lower edge of the last one for the row behind it.
int QueueTable::rowEdge(int row) const {
  if (row < model_.rowCount())
    return rowViewportPosition(row);
  return row > 0 ? rowViewportPosition(row - 1) + rowHeight(row - 1) : 0;
}

void QueueTable::drawRect(const QRectF& dirtyRect) {
  GraphicsContext* context = GraphicsContext::currentContext();
  if (context && dropRow_ && model_.rowCount() > 0) {
    const SavedGraphicsState saved(context);
    context->setFillColor(SystemColors::colorNamed(u"selectedTextBackgroundColor"_s));
    const double last = viewport()->height() - DropLineWidth;
    const double y = std::clamp(rowEdge(*dropRow_) - DropLineWidth / 2, 0.0, last);
    QPainterPath line;
    line.addRect(QRectF(0, y, viewport()->width(), DropLineWidth));
    context->fillPath(line);
  }
  ZQHighlightTableView::drawRect(dirtyRect);
}

void QueueTable::paintEvent(QPaintEvent* event) {
  ZQHighlightTableView::paintEvent(event);
  if (model_.rowCount() > 0 || emptyText_.isEmpty())
    return;
  QPainter painter(viewport());
  painter.setPen(palette().color(QPalette::Text));
  painter.drawText(
      viewport()->rect().adjusted(EmptyMargin, EmptyMargin, -EmptyMargin, -EmptyMargin),
      int(Qt::AlignCenter) | int(Qt::TextWordWrap), emptyText_);
}

} // namespace zq::app
