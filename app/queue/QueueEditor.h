// What the queue window does with the queue.
#pragma once

#include "app/queue/QueueTable.h"

#include <QtCore/QThreadPool>

#include <atomic>
#include <deque>

class QMimeData;

namespace zq::app {

struct DroppedSigns;

// Adds, removes, moves, keeps and reads signs, and says in a sentence what came of it. What is not
// possible changes nothing.
//
// Thread: main.
class QueueEditor : public QObject {
  Q_OBJECT

 public:
  // The most removals, and the most signs in them, that can be taken back.
  static constexpr std::size_t MostRemovals = 100;
  static constexpr std::size_t MostRemovedSigns = 100'000;

  // All of these must outlive the editor.
  QueueEditor(QueueSource& queue, QueueModel& model, QueueTable& table, QObject* parent = nullptr);
  ~QueueEditor() override;

  // The selected signs that wait. Those that come after get the selection.
  void removeSelected();
  // Brings back what was removed last, where it was, as often as it was still to be shown.
  void undoRemoval();
  bool canUndo() const { return !removals_.empty(); }

  // By one row, together.
  void moveSelectedUp();
  void moveSelectedDown();
  // Before that row; the number of rows is the end.
  void moveEntries(const std::vector<Strip::Entry>& entries, int beforeRow);

  // At the end; a negative number of showings is without end. False for a blank text.
  bool addText(const QString& text, std::int64_t showings);
  // Files are read beside the main thread; their signs come when all have been read.
  void addDrop(const QMimeData& contents, int beforeRow, std::int64_t showings);

  // Keeps all signs in a file, and adds those of a file at the end. False where that fails.
  bool save(const QString& path);
  bool load(const QString& path);

  // A sentence for people.
  Q_SIGNAL void said(const QString& text);
  Q_SIGNAL void canUndoChanged(bool canUndo);

 private:
  struct Removed {
    QueuedSign row;
    // Those that came after it, the nearest first.
    std::vector<Strip::Entry> followers;
  };
  using Removal = std::vector<Removed>;

  Strip::Entry firstQueued(const std::vector<Strip::Entry>& entries) const;
  Strip::Entry entryAt(int row) const;
  void keep(Removal removal);
  bool move(const std::vector<Strip::Entry>& entries, const Strip::Entry& before);
  void addDropped(const DroppedSigns& dropped, const Strip::Entry& before);
  std::vector<Strip::Entry> add(const std::vector<platform::Ref<ZQTickerSign>>& signs,
                                const Strip::Entry& before);

  QueueSource& queue_;
  QueueModel& model_;
  QueueTable& table_;
  std::deque<Removal> removals_; // the last one at the end
  std::atomic<bool> isEnding_ = false;
  QThreadPool loader_; // with one thread
};

} // namespace zq::app
