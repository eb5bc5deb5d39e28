#include "app/queue/QueueEditor.h"

#include "app/commands/failures.h"
#include "app/queue/drop_contents.h"
#include "app/queue/queue_text.h"
#include "app/queue/sign_files.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/signs/ZQTickerSign.h"

#include <QtCore/QMimeData>
#include <QtCore/QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zq::app {

using namespace platform;

namespace {
// By which a sign that comes back finds its place.
constexpr std::size_t MostFollowers = 8;
constexpr qsizetype MostNamedCharacters = 40;

QSet<const void*> setOf(const std::vector<Strip::Entry>& entries) {
  QSet<const void*> set;
  set.reserve(static_cast<qsizetype>(entries.size()));
  for (const Strip::Entry& entry : entries)
    set.insert(entry.get());
  return set;
}
} // namespace

QueueEditor::QueueEditor(QueueSource& queue, QueueModel& model, QueueTable& table, QObject* parent)
    : QObject(parent), queue_(queue), model_(model), table_(table) {
  connect(&model, &QueueModel::editRefused, this, &QueueEditor::said);
  loader_.setMaxThreadCount(1);
}

QueueEditor::~QueueEditor() {
  isEnding_ = true;
  loader_.clear();
  loader_.waitForDone();
}

Strip::Entry QueueEditor::entryAt(int row) const {
  return row < model_.rowCount() ? model_.queueRow(row).entry : nullptr;
}

Strip::Entry QueueEditor::firstQueued(const std::vector<Strip::Entry>& entries) const {
  const auto first = std::find_if(entries.begin(), entries.end(), [&](const Strip::Entry& entry) {
    const int row = model_.rowOf(entry);
    return row >= 0 && !model_.queueRow(row).isOnStrip;
  });
  return first == entries.end() ? nullptr : *first;
}

// What a sentence calls a sign.
static QString nameOf(const QueuedSign& row) {
  const QString text = shortened(row.text.simplified(), MostNamedCharacters);
  return text.isEmpty() ? QueueEditor::tr("A picture") : QueueEditor::tr("“%1”").arg(text);
}

void QueueEditor::removeSelected() {
  table_.refreshRows();
  const std::vector<Strip::Entry> entries = table_.selectedEntries();
  if (entries.empty())
    return;
  const QSet<const void*> apart = setOf(entries);
  // From the end, so that each one finds those that follow it.
  Removal removal;
  std::vector<Strip::Entry> followers;
  const int last = model_.rowOf(entries.back());
  for (int row = last + 1; row < model_.rowCount() && followers.size() < MostFollowers; ++row)
    followers.push_back(model_.queueRow(row).entry);
  const Strip::Entry next = followers.empty() ? nullptr : followers.front();
  const int first = model_.rowOf(entries.front());
  std::size_t left = entries.size();
  for (int row = last; row >= first && left > 0; --row) {
    const QueuedSign& shown = model_.queueRow(row);
    if (!apart.contains(shown.entry.get())) {
      followers.insert(followers.begin(), shown.entry);
      followers.resize(std::min(followers.size(), MostFollowers));
      continue;
    }
    --left;
    if (queue_.remove(shown.entry))
      removal.push_back({shown, followers});
  }
  std::reverse(removal.begin(), removal.end());
  table_.refreshRows();
  if (next)
    table_.selectEntries({next});
  else if (model_.rowCount() > 0)
    table_.selectEntries({model_.queueRow(model_.rowCount() - 1).entry});
  if (removal.empty()) {
    Q_EMIT said(tr("What is on the strip for the last time leaves by itself"));
    return;
  }
  Q_EMIT said(removal.size() == 1 ? tr("%1 removed").arg(nameOf(removal.front().row))
                                  : tr("%1 signs removed").arg(removal.size()));
  keep(std::move(removal));
}

void QueueEditor::keep(Removal removal) {
  removals_.push_back(std::move(removal));
  std::size_t signs = 0;
  for (const Removal& kept : removals_)
    signs += kept.size();
  while (removals_.size() > 1 && (removals_.size() > MostRemovals || signs > MostRemovedSigns)) {
    signs -= removals_.front().size();
    removals_.pop_front();
  }
  Q_EMIT canUndoChanged(true);
}

void QueueEditor::undoRemoval() {
  if (removals_.empty()) {
    Q_EMIT said(tr("Nothing to bring back"));
    return;
  }
  const Removal removal = std::move(removals_.back());
  removals_.pop_back();
  table_.refreshRows();
  std::vector<Strip::Entry> entries;
  // Removals before this one find their places by the new entries.
  QHash<const void*, Strip::Entry> back;
  Removal left;
  for (const Removed& removed : removal) {
    const QueuedSign& row = removed.row;
    const Ref<ZQTickerSign> sign = row.sign ? copyOf(row.sign) : queue_.makeTextSign(row.text);
    sign->setLoopCount(row.loopsLeft < 0 ? ZQEndlessLoopCount : row.loopsLeft);
    if (const auto entry = queue_.add(sign, row.origin, firstQueued(removed.followers))) {
      entries.push_back(entry);
      back.insert(row.entry.get(), entry);
    } else {
      left.push_back(removed);
    }
  }
  for (Removal& earlier : removals_)
    for (Removed& removed : earlier)
      for (Strip::Entry& follower : removed.followers)
        follower = back.value(follower.get(), follower);
  table_.refreshRows();
  table_.selectEntries(entries);
  if (!left.empty())
    keep(std::move(left));
  Q_EMIT canUndoChanged(canUndo());
  if (entries.size() < removal.size())
    Q_EMIT said(tr("The queue takes no more"));
  else
    Q_EMIT said(removal.size() == 1 ? tr("%1 is back").arg(nameOf(removal.front().row))
                                    : tr("%1 signs are back").arg(entries.size()));
}

// Keeps the order of `entries`.
bool QueueEditor::move(const std::vector<Strip::Entry>& entries, const Strip::Entry& before) {
  bool isMoved = false;
  for (const Strip::Entry& entry : entries)
    isMoved |= queue_.move(entry, before);
  table_.refreshRows();
  return isMoved;
}

void QueueEditor::moveEntries(const std::vector<Strip::Entry>& entries, int beforeRow) {
  const QSet<const void*> moved = setOf(entries);
  while (beforeRow < model_.rowCount() &&
         (moved.contains(entryAt(beforeRow).get()) || model_.queueRow(beforeRow).isOnStrip))
    ++beforeRow;
  std::vector<Strip::Entry> waiting;
  std::copy_if(entries.begin(), entries.end(), std::back_inserter(waiting),
               [&](const Strip::Entry& entry) {
                 const int row = model_.rowOf(entry);
                 return row >= 0 && !model_.queueRow(row).isOnStrip;
               });
  const Strip::Entry before = entryAt(beforeRow);
  if (waiting.empty() || !move(waiting, before)) {
    Q_EMIT said(tr("Only what waits can be moved"));
    return;
  }
  const int row = model_.rowOf(waiting.front());
  Q_EMIT said(waiting.size() == 1
                  ? tr("%1 is now in row %2").arg(nameOf(model_.queueRow(row))).arg(row + 1)
                  : tr("%1 signs are now from row %2 on").arg(waiting.size()).arg(row + 1));
}

void QueueEditor::moveSelectedUp() {
  table_.refreshRows();
  const std::vector<Strip::Entry> entries = table_.selectedEntries();
  if (entries.empty())
    return;
  const Strip::Entry first = firstQueued(entries);
  const int row = model_.rowOf(first);
  if (first && row == model_.firstWaitingRow()) {
    Q_EMIT said(tr("The first of those that wait cannot go further up"));
    return;
  }
  moveEntries(entries, std::max(row - 1, 0));
}

void QueueEditor::moveSelectedDown() {
  table_.refreshRows();
  const std::vector<Strip::Entry> entries = table_.selectedEntries();
  if (entries.empty())
    return;
  const int row = model_.rowOf(entries.back());
  if (row == model_.rowCount() - 1) {
    Q_EMIT said(tr("The last one cannot go further down"));
    return;
  }
  moveEntries(entries, row + 2);
}

std::vector<Strip::Entry> QueueEditor::add(const std::vector<Ref<ZQTickerSign>>& signs,
                                           const Strip::Entry& before) {
  std::vector<Strip::Entry> entries;
  for (const Ref<ZQTickerSign>& sign : signs)
    if (const auto entry = queue_.add(sign, SignOrigin(), before))
      entries.push_back(entry);
  table_.refreshRows();
  table_.selectEntries(entries);
  return entries;
}

bool QueueEditor::addText(const QString& text, std::int64_t showings) {
  if (text.trimmed().isEmpty()) {
    Q_EMIT said(tr("Type the text to add"));
    return false;
  }
  const Ref<ZQTickerSign> sign = queue_.makeTextSign(text.trimmed());
  sign->setLoopCount(showings < 0 ? ZQEndlessLoopCount : showings);
  const bool isAdded = !add({sign}, nullptr).empty();
  Q_EMIT said(isAdded ? tr("“%1” added").arg(shortened(text.trimmed(), MostNamedCharacters))
                      : tr("The queue takes no more"));
  return isAdded;
}

void QueueEditor::addDrop(const QMimeData& contents, int beforeRow, std::int64_t showings) {
  const Strip::Entry before = entryAt(beforeRow);
  if (!bringsFiles(contents))
    return addDropped(readDrop(contents, queue_, showings), before);
  Q_EMIT said(tr("Reading…"));
  loader_.start(
      [this, urls = contents.urls(), room = pixelRoomFor(queue_.pictureRoom()), before, showings] {
        // The pool's thread ends before the editor does.
        std::vector<LoadedFile> files = loadFiles(urls, room, isEnding_);
        QMetaObject::invokeMethod(
            this,
            [this, files = std::move(files), before, showings] {
              addDropped(signsOfFiles(files, queue_, showings), before);
            },
            Qt::QueuedConnection);
      });
}

void QueueEditor::addDropped(const DroppedSigns& dropped, const Strip::Entry& before) {
  const std::size_t added = add(dropped.signs, before).size();
  QStringList sentences;
  if (added > 0)
    sentences.append(added == 1 ? tr("1 sign added") : tr("%1 signs added").arg(added));
  else if (!dropped.signs.empty())
    sentences.append(tr("The queue takes no more"));
  if (!dropped.problems.isEmpty())
    sentences.append(dropped.problems.first());
  if (dropped.problems.size() > 1)
    sentences.append(tr("%1 more could not be used").arg(dropped.problems.size() - 1));
  Q_EMIT said(sentences.isEmpty() ? tr("Nothing in it can be shown") : sentences.join(u"; "_s));
}

bool QueueEditor::save(const QString& path) {
  table_.refreshRows();
  std::vector<Ref<ZQTickerSign>> signs;
  for (int row = 0; row < model_.rowCount(); ++row) {
    const QueuedSign& shown = model_.queueRow(row);
    Ref<ZQTickerSign> sign = shown.sign;
    if (!sign) {
      sign = queue_.makeTextSign(shown.text);
      sign->setLoopCount(shown.loopsLeft < 0 ? ZQEndlessLoopCount : shown.loopsLeft);
    }
    signs.push_back(sign);
  }
  try {
    writeSigns(path, signs);
  } catch (const RunTimeError& error) {
    Q_EMIT said(error.message());
    return false;
  }
  Q_EMIT said(signs.size() == 1
                  ? tr("1 sign saved in %1").arg(shownName(path))
                  : tr("%1 signs saved in %2").arg(signs.size()).arg(shownName(path)));
  return true;
}

bool QueueEditor::load(const QString& path) {
  try {
    const std::vector<Ref<ZQTickerSign>> signs = readSigns(path);
    const std::size_t added = add(signs, nullptr).size();
    if (added < signs.size()) {
      Q_EMIT said(tr("%1 of %2 signs added, the queue takes no more").arg(added).arg(signs.size()));
      return false;
    }
    Q_EMIT said(added == 1 ? tr("1 sign added from %1").arg(shownName(path))
                           : tr("%1 signs added from %2").arg(added).arg(shownName(path)));
    return true;
  } catch (const RunTimeError& error) {
    Q_EMIT said(error.message());
    return false;
  }
}

} // namespace zq::app
