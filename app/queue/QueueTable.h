// The table of the queue window.
#pragma once

#include "app/queue/QueueModel.h"
#include "zqticker/views/ZQHighlightTableView.h"

#include <optional>

namespace zq::app {

class QueueDelegate;

// A table of signs that can be dragged, out of it and within it; drops are for the view around.
// Enter, F2 and a double click edit the text of a row, or where they meet it how often it is shown.
//
// Thread: main.
class QueueTable : public ZQHighlightTableView {
  Q_OBJECT

 public:
  // `model` must outlive the table.
  explicit QueueTable(QueueModel& model, QWidget* parent = nullptr);
  ~QueueTable() override;

  const QueueDelegate& queueDelegate() const { return *delegate_; }

  // The entries of the selected rows, in their order.
  std::vector<Strip::Entry> selectedEntries() const;
  // Selects these, and makes the first one current and seen; not while a cell is being edited,
  // since that would end the edit.
  void selectEntries(const std::vector<Strip::Entry>& entries);

  // Refreshes the model. What is selected and current stays so; what is in sight keeps its place,
  // except that the beginning of the table stays in sight where it is. A cell that is being edited
  // stays so for as long as its sign is queued; then the keyboard comes back to the table.
  void refreshRows();

  // Makes the first row current where none is, for the keyboard to begin at.
  void makeSomeRowCurrent();

  // Edits the cell of the current row in that column.
  void editCurrent(QueueModel::Column column);

  // The row before which a drop at `point` (in coordinates of the viewport) puts signs, from 0 to
  // the number of rows, and never before what is on the strip.
  int dropRowAt(QPoint point) const;
  // Shows a line before that row; nullopt shows none.
  void setDropRow(std::optional<int> row);
  std::optional<int> dropRow() const { return dropRow_; }
  // Scrolls a little where `point` is near an end of what is in sight.
  void scrollNear(QPoint point);

  // Whether the entry is shown and only waits.
  bool canMove(const Strip::Entry& entry) const;
  // What is being dragged out of the table; empty while nothing is.
  const std::vector<Strip::Entry>& draggedEntries() const { return dragged_; }

  // What an empty table says.
  void setEmptyText(const QString& text);

 protected:
  void startDrag(Qt::DropActions supportedActions) override;
  bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void changeEvent(QEvent* event) override;
  void drawRect(const QRectF& dirtyRect) override;

 private:
  struct Place;

  bool isEditing() const;
  Place place() const;
  void restore(const Place& place);
  int rowEdge(int row) const;
  void fitRowsToFont();

  QueueModel& model_;
  QueueDelegate* delegate_;
  std::optional<int> dropRow_;
  std::vector<Strip::Entry> dragged_;
  QString emptyText_;
};

} // namespace zq::app
