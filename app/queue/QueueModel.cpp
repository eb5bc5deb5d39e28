#include "app/queue/QueueModel.h"

#include "app/queue/queue_text.h"
#include "app/queue/sign_changes.h"
#include "zqticker/signs/ZQTickerSign.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace zq::app {

using namespace platform;

namespace {
// So many rows that are not next to each other come or go one by one; with more, the table starts
// anew.
constexpr int MostSteps = 64;

QHash<const void*, int> placesOf(const std::vector<QueuedSign>& rows) {
  QHash<const void*, int> places;
  places.reserve(static_cast<qsizetype>(rows.size()));
  int row = 0;
  for (const QueuedSign& shown : rows)
    places.insert(shown.entry.get(), row++);
  return places;
}

bool looksSame(const QueuedSign& a, const QueuedSign& b) {
  return a.sign == b.sign && a.text == b.text && a.loopsLeft == b.loopsLeft &&
         a.isOnStrip == b.isOnStrip && a.isWaiting == b.isWaiting &&
         a.origin.senderName == b.origin.senderName &&
         a.origin.senderIdentifier == b.origin.senderIdentifier;
}

// How many stretches of `rows` have entries that `places` lacks.
int missingStretches(const std::vector<QueuedSign>& rows, const QHash<const void*, int>& places) {
  int stretches = 0;
  bool wasMissing = false;
  for (const QueuedSign& row : rows) {
    const bool isMissing = !places.contains(row.entry.get());
    stretches += isMissing && !wasMissing;
    wasMissing = isMissing;
  }
  return stretches;
}
} // namespace

QueueModel::QueueModel(QueueSource& source, QObject* parent)
    : QAbstractTableModel(parent), source_(source) {}
QueueModel::~QueueModel() = default;

bool QueueModel::refresh() {
  const std::uint64_t revision = source_.revision();
  if (revision_ == revision)
    return false;
  takeOver(source_.rows());
  revision_ = revision;
  return true;
}

void QueueModel::takeOver(std::vector<QueuedSign> rows) {
  QHash<const void*, int> places = placesOf(rows);
  if (takeOverStepwise(rows, places)) {
    places_ = std::move(places);
    tellChanges(rows);
    return;
  }
  beginResetModel();
  rows_ = std::move(rows);
  places_ = std::move(places);
  endResetModel();
}

// Leaves rows_ with the entries of `rows` in their order. False, and nothing is done, where that
// takes too many steps.
bool QueueModel::takeOverStepwise(const std::vector<QueuedSign>& rows,
                                  const QHash<const void*, int>& places) {
  if (missingStretches(rows_, places) + missingStretches(rows, places_) > MostSteps)
    return false;
  removeGone(places);
  reorder(places);
  const QHash<const void*, int> kept = placesOf(rows_);
  for (std::size_t first = 0; first < rows.size(); ++first) {
    std::size_t end = first;
    while (end < rows.size() && !kept.contains(rows[end].entry.get()))
      ++end;
    if (end == first)
      continue;
    beginInsertRows(QModelIndex(), static_cast<int>(first), static_cast<int>(end) - 1);
    rows_.insert(rows_.begin() + static_cast<std::ptrdiff_t>(first),
                 rows.begin() + static_cast<std::ptrdiff_t>(first),
                 rows.begin() + static_cast<std::ptrdiff_t>(end));
    places_.clear();
    endInsertRows();
    first = end;
  }
  return true;
}

void QueueModel::removeGone(const QHash<const void*, int>& places) {
  int end = static_cast<int>(rows_.size());
  while (end > 0) {
    int first = end;
    while (first > 0 && !places.contains(queueRow(first - 1).entry.get()))
      --first;
    if (first < end) {
      beginRemoveRows(QModelIndex(), first, end - 1);
      rows_.erase(rows_.begin() + first, rows_.begin() + end);
      places_.clear();
      endRemoveRows();
    }
    end = first < end ? first : end - 1;
  }
}

void QueueModel::reorder(const QHash<const void*, int>& places) {
  const auto isBefore = [&](const QueuedSign& a, const QueuedSign& b) {
    return places.value(a.entry.get()) < places.value(b.entry.get());
  };
  if (std::is_sorted(rows_.begin(), rows_.end(), isBefore))
    return;
  Q_EMIT layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
  const QModelIndexList before = persistentIndexList();
  std::vector<const void*> entries;
  for (const QModelIndex& index : before)
    entries.push_back(queueRow(index.row()).entry.get());
  std::sort(rows_.begin(), rows_.end(), isBefore);
  const QHash<const void*, int> now = placesOf(rows_);
  QModelIndexList after;
  for (qsizetype i = 0; i < before.size(); ++i)
    after.append(index(now.value(entries[static_cast<std::size_t>(i)]), before[i].column()));
  changePersistentIndexList(before, after);
  Q_EMIT layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

// Both have the same entries by now.
void QueueModel::tellChanges(std::vector<QueuedSign>& rows) {
  std::swap(rows_, rows);
  int first = -1;
  for (int row = 0; row <= rowCount(); ++row) {
    const auto place = static_cast<std::size_t>(row);
    const bool isOther = row < rowCount() && !looksSame(rows_[place], rows[place]);
    if (isOther && first < 0)
      first = row;
    if (isOther || first < 0)
      continue;
    Q_EMIT dataChanged(index(first, 0), index(row - 1, ColumnCount - 1));
    first = -1;
  }
}

int QueueModel::rowOf(const Strip::Entry& entry) const {
  return entry ? places_.value(entry.get(), -1) : -1;
}

int QueueModel::firstWaitingRow() const {
  const auto first = std::find_if(rows_.begin(), rows_.end(),
                                  [](const QueuedSign& row) { return !row.isOnStrip; });
  return static_cast<int>(first - rows_.begin());
}

int QueueModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int QueueModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : ColumnCount;
}

QVariant QueueModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid())
    return QVariant();
  const QueuedSign& row = queueRow(index.row());
  if (role == OnStripRole)
    return row.isOnStrip;
  switch (index.column()) {
  case StateColumn:
    if (role == Qt::AccessibleTextRole || role == Qt::ToolTipRole)
      return stateText(row);
    break;
  case PictureColumn:
    if (role == Qt::AccessibleTextRole)
      return pictureText(row);
    break;
  case TextColumn:
    if (role == Qt::DisplayRole)
      return shortened(row.text, MostShownCharacters);
    if (role == Qt::EditRole)
      return row.text;
    if (role == Qt::ToolTipRole && !row.text.isEmpty())
      return plainToolTip(shortened(row.text, MostShownCharacters));
    if (role == Qt::AccessibleTextRole)
      return row.text.isEmpty() ? tr("No text") : shortened(row.text, MostShownCharacters);
    break;
  case SenderColumn:
    if (role == Qt::DisplayRole)
      return shortened(senderText(row), MostShownCharacters);
    if (role == Qt::ToolTipRole && !senderText(row).isEmpty())
      return plainToolTip(shortened(senderText(row), MostShownCharacters));
    if (role == Qt::AccessibleTextRole)
      return row.origin.senderName.isEmpty() && row.origin.senderIdentifier.isEmpty()
                 ? tr("This program")
                 : shortened(senderText(row), MostShownCharacters);
    break;
  case LoopsColumn:
    if (role == Qt::DisplayRole)
      return loopsText(row.loopsLeft);
    if (role == Qt::EditRole)
      return QVariant::fromValue<qlonglong>(row.loopsLeft);
    if (role == Qt::AccessibleTextRole || role == Qt::ToolTipRole)
      return loopsSentence(row.loopsLeft);
    if (role == Qt::TextAlignmentRole)
      return int(Qt::AlignRight | Qt::AlignVCenter);
    break;
  default:
    break;
  }
  return QVariant();
}

QVariant QueueModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation == Qt::Vertical)
    return role == Qt::DisplayRole ? QVariant(section + 1) : QVariant();
  if (section == StateColumn && role == Qt::DisplayRole)
    return QString();
  if (section == LoopsColumn && role == Qt::TextAlignmentRole)
    return int(Qt::AlignRight | Qt::AlignVCenter);
  if (role != Qt::DisplayRole && role != Qt::AccessibleTextRole && role != Qt::ToolTipRole)
    return QVariant();
  switch (section) {
  case StateColumn:
    return tr("State");
  case PictureColumn:
    return tr("Picture");
  case TextColumn:
    return tr("Text");
  case SenderColumn:
    return tr("From");
  case LoopsColumn:
    return role == Qt::DisplayRole ? tr("Left") : tr("Showings left");
  default:
    return QVariant();
  }
}

Qt::ItemFlags QueueModel::flags(const QModelIndex& index) const {
  if (!index.isValid())
    return Qt::NoItemFlags;
  Qt::ItemFlags flags =
      Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled | Qt::ItemNeverHasChildren;
  const QueuedSign& row = queueRow(index.row());
  if (row.isWaiting && (index.column() == LoopsColumn ||
                        (index.column() == TextColumn && row.text.size() <= MostEditedCharacters)))
    flags |= Qt::ItemIsEditable;
  return flags;
}

bool QueueModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (role != Qt::EditRole || !index.isValid())
    return false;
  if (index.column() == TextColumn)
    return setText(index.row(), value.toString());
  return index.column() == LoopsColumn && setLoopsLeft(index.row(), value.toLongLong());
}

bool QueueModel::setText(int row, const QString& text) {
  const QueuedSign edited = queueRow(row);
  if (text == edited.text)
    return true;
  if (text.trimmed().isEmpty() && !showsPicture(edited.sign)) {
    Q_EMIT editRefused(tr("A sign without a picture needs a text"));
    return false;
  }
  const Ref<ZQTickerSign> sign =
      edited.sign ? signWithText(edited.sign, text) : source_.makeTextSign(text);
  const auto left = edited.sign ? std::nullopt : std::optional(edited.loopsLeft);
  return sign && replace(row, sign, left);
}

bool QueueModel::setLoopsLeft(int row, std::int64_t loopsLeft) {
  const QueuedSign edited = queueRow(row);
  if (loopsLeft == edited.loopsLeft || (loopsLeft < 0 && edited.loopsLeft < 0))
    return true;
  if (loopsLeft == 0)
    return false;
  const Ref<ZQTickerSign> sign =
      edited.sign ? copyOf(edited.sign) : source_.makeTextSign(edited.text);
  return replace(row, sign, loopsLeft);
}

bool QueueModel::replace(int row, const Ref<ZQTickerSign>& sign,
                         std::optional<std::int64_t> loopsLeft) {
  QueuedSign& edited = rows_[static_cast<std::size_t>(row)];
  const Strip::Entry replaced = source_.replace(edited.entry, sign, loopsLeft);
  if (!replaced) {
    Q_EMIT editRefused(tr("The sign cannot be changed any more"));
    return false;
  }
  // The row goes on as that of the new sign, with its indexes and its editor.
  places_.remove(edited.entry.get());
  places_.insert(replaced.get(), row);
  edited.entry = replaced;
  refresh();
  return true;
}

} // namespace zq::app
