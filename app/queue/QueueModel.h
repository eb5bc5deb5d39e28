// The rows of the queue window.
#pragma once

#include "app/queue/QueueSource.h"

#include <QtCore/QAbstractTableModel>
#include <QtCore/QHash>

namespace zq::app {

// Shows a queue as a table, a row for each sign. What changes in the queue shows at the next
// refresh; rows keep their indexes and with these their selection, wherever they move.
//
// Cells are read by people, by assistive technology (AccessibleTextRole) and by editors. Texts are
// cut for showing, but edited whole.
//
// Thread: main.
class QueueModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column { StateColumn, PictureColumn, TextColumn, SenderColumn, LoopsColumn, ColumnCount };
  enum Role {
    OnStripRole = Qt::UserRole, // bool: whether the sign is on the strip
  };
  // The most characters (UTF-16 units) of a text that are shown, and that can be edited.
  static constexpr qsizetype MostShownCharacters = 500;
  static constexpr qsizetype MostEditedCharacters = 20'000;

  // Empty until the first refresh. `source` must outlive the model.
  explicit QueueModel(QueueSource& source, QObject* parent = nullptr);
  ~QueueModel() override;

  // A table that starts anew loses its indexes, and with them what is being edited.
  enum class Refresh { MayStartAnew, KeepsIndexes };
  // Takes over what has changed in the queue; whether anything has. What changed so much that the
  // table would have to start anew is left for another refresh where it must not.
  bool refresh(Refresh refresh = Refresh::MayStartAnew);

  const QueuedSign& queueRow(int row) const { return rows_[static_cast<std::size_t>(row)]; }
  // The row of an entry; -1 for one that is not shown.
  int rowOf(const Strip::Entry& entry) const;
  // The first row of what only waits; the number of rows where nothing does.
  int firstWaitingRow() const;

  int rowCount(const QModelIndex& parent = QModelIndex()) const override;
  int columnCount(const QModelIndex& parent = QModelIndex()) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  // Edits a text, or how often a sign is still shown (a negative number: without end).
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;

  // An edit was not possible; a sentence for people without its full stop.
  Q_SIGNAL void editRefused(const QString& why);

 private:
  struct Middle;

  bool takeOver(std::vector<QueuedSign> rows, Refresh refresh);
  bool takeOverStepwise(const std::vector<QueuedSign>& rows, const Middle& middle);
  void removeGone(const QHash<const void*, int>& places, const Middle& middle);
  void reorder(const QHash<const void*, int>& places, const Middle& middle);
  void placesChanged();
  void tellChanges(std::vector<QueuedSign>& rows);
  bool setText(int row, const QString& text);
  bool setLoopsLeft(int row, std::int64_t loopsLeft);
  bool replace(int row, const platform::Ref<ZQTickerSign>& sign,
               std::optional<std::int64_t> loopsLeft);

  QueueSource& source_;
  std::optional<std::uint64_t> revision_;
  std::vector<QueuedSign> rows_;
  // The rows of the entries, made when many of them are looked for; empty until then.
  mutable QHash<const void*, int> places_;
  mutable int searches_ = 0;
};

} // namespace zq::app
