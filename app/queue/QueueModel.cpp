#include "app/queue/QueueModel.h"

#include "app/queue/queue_text.h"
#include "app/queue/sign_changes.h"
#include "zqticker/signs/ZQTickerSign.h"

#include <algorithm>
#include <iterator>
#include <utility>

using namespace Qt::StringLiterals;

namespace zq::app {

using namespace platform;

namespace {
// So many rows that are not next to each other come or go one by one; with more, the table starts
// anew.
constexpr int MostSteps = 64;
// So many entries are looked for one by one; for more, a table of all of them is made.
constexpr int MostSearches = 8;

using Places = QHash<const void*, int>;

bool looksSame(const QueuedSign& a, const QueuedSign& b) {
  return a.sign == b.sign && a.text == b.text && a.loopsLeft == b.loopsLeft &&
         a.isOnStrip == b.isOnStrip && a.isWaiting == b.isWaiting &&
         a.origin.senderName == b.origin.senderName &&
         a.origin.senderIdentifier == b.origin.senderIdentifier;
}

} // namespace

QueueModel::QueueModel(QueueSource& source, QObject* parent)
    : QAbstractTableModel(parent), source_(source) {}
QueueModel::~QueueModel() = default;

bool QueueModel::refresh(Refresh refresh) {
  const std::uint64_t revision = source_.revision();
  if (revision_ == revision || !takeOver(source_.rows(), refresh))
    return false;
  revision_ = revision;
  return true;
}

// The rows from `first` on, without the last `behind`: those between what has stayed as it was at
// both ends.
struct QueueModel::Middle {
  int first = 0;
  int behind = 0;

  int endIn(const std::vector<QueuedSign>& rows) const {
    return static_cast<int>(rows.size()) - behind;
  }
  Places placesIn(const std::vector<QueuedSign>& rows) const {
    Places places;
    const int end = endIn(rows);
    places.reserve(end - first);
    for (int row = first; row < end; ++row)
      places.insert(rows[static_cast<std::size_t>(row)].entry.get(), row);
    return places;
  }
  // How many stretches of `rows` have entries that `places` lacks.
  int missingStretches(const std::vector<QueuedSign>& rows, const Places& places) const {
    int stretches = 0;
    bool wasMissing = false;
    for (int row = first; row < endIn(rows); ++row) {
      const bool isMissing = !places.contains(rows[static_cast<std::size_t>(row)].entry.get());
      stretches += isMissing && !wasMissing;
      wasMissing = isMissing;
    }
    return stretches;
  }
};

bool QueueModel::takeOver(std::vector<QueuedSign> rows, Refresh refresh) {
  const auto isSame = [](const QueuedSign& a, const QueuedSign& b) { return a.entry == b.entry; };
  Middle middle;
  const auto atStart = std::mismatch(rows_.begin(), rows_.end(), rows.begin(), rows.end(), isSame);
  middle.first = static_cast<int>(atStart.first - rows_.begin());
  const auto atEnd =
      std::mismatch(rows_.rbegin(), std::make_reverse_iterator(atStart.first), rows.rbegin(),
                    std::make_reverse_iterator(atStart.second), isSame);
  middle.behind = static_cast<int>(atEnd.first - rows_.rbegin());
  if (takeOverStepwise(rows, middle)) {
    tellChanges(rows);
    return true;
  }
  if (refresh == Refresh::KeepsIndexes)
    return false;
  beginResetModel();
  rows_ = std::move(rows);
  placesChanged();
  endResetModel();
  return true;
}

// Leaves rows_ with the entries of `rows` in their order. False, and nothing is done, where that
// takes too many steps.
bool QueueModel::takeOverStepwise(const std::vector<QueuedSign>& rows, const Middle& middle) {
  const Places places = middle.placesIn(rows);
  if (middle.missingStretches(rows_, places) +
          middle.missingStretches(rows, middle.placesIn(rows_)) >
      MostSteps)
    return false;
  removeGone(places, middle);
  reorder(places, middle);
  const Places kept = middle.placesIn(rows_);
  const int end = middle.endIn(rows);
  for (int row = middle.first; row < end; ++row) {
    const int first = row;
    while (row < end && !kept.contains(rows[static_cast<std::size_t>(row)].entry.get()))
      ++row;
    if (row == first)
      continue;
    beginInsertRows(QModelIndex(), first, row - 1);
    rows_.insert(rows_.begin() + first, rows.begin() + first, rows.begin() + row);
    placesChanged();
    endInsertRows();
  }
  return true;
}

void QueueModel::removeGone(const Places& places, const Middle& middle) {
  int end = middle.endIn(rows_);
  while (end > middle.first) {
    int first = end;
    while (first > middle.first && !places.contains(queueRow(first - 1).entry.get()))
      --first;
    if (first < end) {
      beginRemoveRows(QModelIndex(), first, end - 1);
      rows_.erase(rows_.begin() + first, rows_.begin() + end);
      placesChanged();
      endRemoveRows();
    }
    end = first < end ? first : end - 1;
  }
}

void QueueModel::reorder(const Places& places, const Middle& middle) {
  const auto isBefore = [&](const QueuedSign& a, const QueuedSign& b) {
    return places.value(a.entry.get()) < places.value(b.entry.get());
  };
  const auto first = rows_.begin() + middle.first;
  const auto end = rows_.begin() + middle.endIn(rows_);
  if (std::is_sorted(first, end, isBefore))
    return;
  Q_EMIT layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
  const QModelIndexList before = persistentIndexList();
  std::vector<const void*> entries;
  for (const QModelIndex& index : before)
    entries.push_back(queueRow(index.row()).entry.get());
  std::sort(first, end, isBefore);
  placesChanged();
  const Places now = middle.placesIn(rows_);
  QModelIndexList after;
  for (qsizetype i = 0; i < before.size(); ++i)
    after.append(index(now.value(entries[static_cast<std::size_t>(i)], before[i].row()),
                       before[i].column()));
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

void QueueModel::placesChanged() {
  places_.clear();
  searches_ = 0;
}

int QueueModel::rowOf(const Strip::Entry& entry) const {
  if (!entry)
    return -1;
  if (places_.isEmpty() && ++searches_ <= MostSearches) {
    const auto found = std::find_if(rows_.begin(), rows_.end(),
                                    [&](const QueuedSign& row) { return row.entry == entry; });
    return found == rows_.end() ? -1 : static_cast<int>(found - rows_.begin());
  }
  if (places_.isEmpty())
    places_ = Middle().placesIn(rows_);
  return places_.value(entry.get(), -1);
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
  edited.entry = replaced;
  placesChanged();
  refresh(Refresh::KeepsIndexes);
  return true;
}

} // namespace zq::app
