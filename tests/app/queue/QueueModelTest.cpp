#include "app/queue/QueueModel.h"

#include "tests/app/queue/FakeQueue.h"
#include "zqticker/platform/text/AttributedString.h"

#include <gtest/gtest.h>

#include <QtCore/QPersistentModelIndex>
#include <QtCore/QRandomGenerator>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;
using namespace zq::platform;

namespace {
// Keeps a list of the entries by what the model tells, as a view does.
class Follower : public QObject {
 public:
  explicit Follower(QueueModel& model) {
    connect(&model, &QAbstractItemModel::rowsInserted, this,
            [this, &model](const QModelIndex&, int first, int last) {
              for (int row = first; row <= last; ++row)
                entries.insert(entries.begin() + row, model.queueRow(row).entry);
            });
    connect(&model, &QAbstractItemModel::rowsRemoved, this,
            [this](const QModelIndex&, int first, int last) {
              entries.erase(entries.begin() + first, entries.begin() + last + 1);
            });
    const auto takeOver = [this, &model] {
      entries.clear();
      for (int row = 0; row < model.rowCount(); ++row)
        entries.push_back(model.queueRow(row).entry);
    };
    connect(&model, &QAbstractItemModel::layoutChanged, this, takeOver);
    connect(&model, &QAbstractItemModel::modelReset, this, takeOver);
    connect(&model, &QAbstractItemModel::modelReset, this, [this] { ++resets; });
    connect(&model, &QAbstractItemModel::dataChanged, this,
            [this](const QModelIndex& first, const QModelIndex& last) {
              changes.emplace_back(first.row(), last.row());
            });
    connect(&model, &QueueModel::editRefused, this, [this] { ++refusals; });
  }

  std::vector<Strip::Entry> entries;
  std::vector<std::pair<int, int>> changes;
  int resets = 0;
  int refusals = 0;
};

SignOrigin origin(const QString& identifier, const QString& name = {}) {
  SignOrigin made;
  made.senderIdentifier = identifier;
  made.senderName = name;
  return made;
}

class QueueModelRows : public ::testing::Test {
 protected:
  QString text(int row, int column = QueueModel::TextColumn, int role = Qt::DisplayRole) const {
    return model.index(row, column).data(role).toString();
  }
  QStringList texts() const {
    QStringList result;
    for (int row = 0; row < model.rowCount(); ++row)
      result.append(text(row));
    return result;
  }
  void fill(int count) {
    for (int i = 0; i < count; ++i)
      queue.addText(QString(QChar(u'a' + i)));
    model.refresh();
  }

  FakeQueue queue;
  QueueModel model{queue};
  Follower follower{model};
};
} // namespace

TEST_F(QueueModelRows, AreThoseOfTheQueueAfterARefresh) {
  queue.addText(u"first"_s, 3);
  EXPECT_EQ(model.rowCount(), 0);
  EXPECT_TRUE(model.refresh());
  EXPECT_EQ(texts(), QStringList{u"first"_s});
  EXPECT_EQ(text(0, QueueModel::LoopsColumn), u"3"_s);
}

TEST_F(QueueModelRows, AreNotReadAgainWithoutAChange) {
  fill(2);
  EXPECT_EQ(queue.readings, 1);
  EXPECT_FALSE(model.refresh());
  EXPECT_EQ(queue.readings, 1);
}

TEST_F(QueueModelRows, KeepTheirIndexesWhereverTheyMove) {
  fill(5);
  const QPersistentModelIndex c = model.index(2, QueueModel::LoopsColumn);
  const QPersistentModelIndex a = model.index(0, 0);
  std::reverse(queue.list.begin(), queue.list.end());
  queue.list.erase(queue.list.begin()); // e
  queue.addText(u"new"_s);
  std::rotate(queue.list.begin(), queue.list.end() - 1, queue.list.end());
  model.refresh();
  EXPECT_EQ(texts(), (QStringList{u"new"_s, u"d"_s, u"c"_s, u"b"_s, u"a"_s}));
  EXPECT_EQ(c.row(), 2);
  EXPECT_EQ(c.column(), int(QueueModel::LoopsColumn));
  EXPECT_EQ(a.row(), 4);
  queue.list.erase(queue.list.begin() + 2);
  queue.changed();
  model.refresh();
  EXPECT_FALSE(c.isValid());
  EXPECT_EQ(a.row(), 3);
}

// Whatever happens to the queue, the model tells it in a way that views can follow.
TEST_F(QueueModelRows, FollowAnyChange) {
  QRandomGenerator random(7);
  std::vector<std::pair<QPersistentModelIndex, Strip::Entry>> kept;
  for (int step = 0; step < 300; ++step) {
    const int changes = random.bounded(1, step % 10 == 0 ? 200 : 5);
    for (int i = 0; i < changes; ++i) {
      const int size = static_cast<int>(queue.list.size());
      const int kind = random.bounded(4);
      if (size == 0 || kind == 0) {
        queue.addLines(random.bounded(1, 4));
        std::rotate(queue.list.begin() + random.bounded(size + 1), queue.list.end() - 1,
                    queue.list.end());
      } else if (kind == 1) {
        queue.list.erase(queue.list.begin() + random.bounded(size));
      } else if (kind == 2) {
        std::swap(queue.list[random.bounded(size)], queue.list[random.bounded(size)]);
      } else {
        ++queue.list[random.bounded(size)].loopsLeft;
      }
    }
    queue.changed();
    model.refresh();
    ASSERT_EQ(model.rowCount(), static_cast<int>(queue.list.size()));
    ASSERT_EQ(follower.entries.size(), queue.list.size());
    for (int row = 0; row < model.rowCount(); ++row) {
      const QueuedSign& queued = queue.list[static_cast<std::size_t>(row)];
      ASSERT_EQ(model.queueRow(row).entry, queued.entry);
      ASSERT_EQ(follower.entries[static_cast<std::size_t>(row)], queued.entry);
      ASSERT_EQ(model.queueRow(row).loopsLeft, queued.loopsLeft);
      ASSERT_EQ(model.rowOf(queued.entry), row);
    }
    for (const auto& [index, entry] : kept)
      if (index.isValid()) {
        ASSERT_EQ(model.rowOf(entry), index.row()) << step;
      }
    kept.clear();
    for (int i = 0; i < 20 && model.rowCount() > 0; ++i) {
      const int row = random.bounded(model.rowCount());
      kept.emplace_back(model.index(row, 1), model.queueRow(row).entry);
    }
  }
}

TEST_F(QueueModelRows, TellOnlyWhatLooksOther) {
  fill(6);
  queue.changed();
  model.refresh();
  EXPECT_EQ(follower.changes.size(), 0u);
  queue.list[2].loopsLeft = 9;
  queue.list[3].isOnStrip = true;
  queue.list[5].origin.senderName = u"mail"_s;
  queue.changed();
  model.refresh();
  const std::vector<std::pair<int, int>> changes{{2, 3}, {5, 5}};
  EXPECT_EQ(follower.changes, changes);
  EXPECT_EQ(follower.resets, 0);
}

TEST_F(QueueModelRows, StartAnewOnlyWhereMuchHasChanged) {
  queue.addLines(1000);
  model.refresh();
  queue.list.erase(queue.list.begin(), queue.list.begin() + 500);
  queue.changed();
  model.refresh();
  EXPECT_EQ(follower.resets, 0);
  std::vector<QueuedSign> even;
  for (std::size_t i = 0; i < queue.list.size(); i += 2)
    even.push_back(queue.list[i]);
  queue.list = even;
  queue.changed();
  model.refresh();
  EXPECT_EQ(follower.resets, 1);
  EXPECT_EQ(model.rowCount(), 250);
}

TEST_F(QueueModelRows, DoNotStartAnewWhereIndexesAreToBeKept) {
  queue.addLines(300);
  model.refresh();
  const QPersistentModelIndex kept = model.index(1, QueueModel::TextColumn);
  std::vector<QueuedSign> odd;
  for (std::size_t i = 1; i < queue.list.size(); i += 2)
    odd.push_back(queue.list[i]);
  queue.list = odd;
  queue.changed();
  EXPECT_FALSE(model.refresh(QueueModel::Refresh::KeepsIndexes));
  EXPECT_EQ(follower.resets, 0);
  EXPECT_EQ(model.rowCount(), 300);
  EXPECT_TRUE(model.setData(kept, u"edited"_s, Qt::EditRole));
  EXPECT_EQ(queue.texts().first(), u"edited"_s);
  EXPECT_TRUE(kept.isValid());
  EXPECT_TRUE(model.refresh());
  EXPECT_EQ(follower.resets, 1);
  EXPECT_EQ(texts(), queue.texts());
}

TEST_F(QueueModelRows, SayThemselvesToAssistiveTechnology) {
  const auto sign = ZQComboTickerSign::make(u"mail"_s, plainPicture({40, 20}, Qt::red));
  sign->setLoopCount(ZQEndlessLoopCount);
  queue.add(sign, origin(u"org.mail"_s, u"Mail"_s), nullptr);
  queue.add(ZQImageTickerSign::make(plainPicture({8, 9}, Qt::red)), origin(u"org.x"_s), nullptr);
  queue.addText(u"plain"_s, 0);
  queue.run(1);
  model.refresh();
  const auto said = [&](int row, int column) { return text(row, column, Qt::AccessibleTextRole); };
  EXPECT_EQ(said(0, QueueModel::StateColumn), u"On the strip"_s);
  EXPECT_EQ(said(1, QueueModel::StateColumn), u"Waiting"_s);
  EXPECT_EQ(said(0, QueueModel::PictureColumn), u"Picture, 40 by 20 points: mail"_s);
  EXPECT_EQ(said(1, QueueModel::PictureColumn), u"Picture, 8 by 9 points"_s);
  EXPECT_EQ(said(2, QueueModel::PictureColumn), u"No picture"_s);
  EXPECT_EQ(said(1, QueueModel::TextColumn), u"No text"_s);
  EXPECT_EQ(said(0, QueueModel::SenderColumn), u"Mail"_s);
  EXPECT_EQ(said(1, QueueModel::SenderColumn), u"org.x"_s);
  EXPECT_EQ(said(2, QueueModel::SenderColumn), u"This program"_s);
  EXPECT_EQ(said(0, QueueModel::LoopsColumn), u"Shown without end"_s);
  EXPECT_EQ(text(0, QueueModel::LoopsColumn), u"∞"_s);
  EXPECT_EQ(said(2, QueueModel::LoopsColumn), u"Shown for the last time"_s);
  for (int column = 0; column < QueueModel::ColumnCount; ++column)
    EXPECT_FALSE(
        model.headerData(column, Qt::Horizontal, Qt::AccessibleTextRole).toString().isEmpty());
}

TEST_F(QueueModelRows, ShowHostileTextsAsTheyAre) {
  queue.addText(QString(1'000'000, u'x'));
  queue.addText(u"<b>bold</b>\nnext"_s);
  model.refresh();
  EXPECT_EQ(text(0).size(), QueueModel::MostShownCharacters);
  EXPECT_FALSE(model.index(0, QueueModel::TextColumn).flags() & Qt::ItemIsEditable);
  EXPECT_EQ(text(1), u"<b>bold</b> next"_s);
  EXPECT_TRUE(text(1, QueueModel::TextColumn, Qt::ToolTipRole).contains(u"&lt;b&gt;"));
  EXPECT_EQ(text(1, QueueModel::TextColumn, Qt::EditRole), u"<b>bold</b>\nnext"_s);
}

TEST_F(QueueModelRows, EditTheTextAndKeepItsAttributes) {
  const Attributes green{{u"Test"_s, u"green"_s}};
  const Attributes red{{u"Test"_s, u"red"_s}};
  const auto styled = MutableAttributedString::make(u"one "_s, green);
  styled->appendAttributedString(*AttributedString::make(u"two"_s, red));
  const auto sign = ZQTextTickerSign::make(styled);
  sign->setIdentifier(u"id"_s);
  sign->setLoopCount(7);
  queue.add(sign, origin(u"s"_s, u"Sender"_s), nullptr);
  model.refresh();
  ASSERT_TRUE(
      model.setData(model.index(0, QueueModel::TextColumn), u"one hundred two"_s, Qt::EditRole));
  EXPECT_EQ(texts(), QStringList{u"one hundred two"_s});
  const auto edited = std::dynamic_pointer_cast<ZQTextTickerSign>(queue.list[0].sign);
  ASSERT_TRUE(edited);
  EXPECT_NE(edited, sign) << "what is on the strip keeps its text";
  EXPECT_EQ(sign->text()->string(), u"one two"_s);
  EXPECT_EQ(edited->identifier(), u"id"_s);
  EXPECT_EQ(edited->loopCount(), 7);
  EXPECT_EQ(edited->text()->attributeAtIndex(u"Test"_s, 0).toString(), u"green"_s);
  EXPECT_EQ(edited->text()->attributeAtIndex(u"Test"_s, 14).toString(), u"red"_s);
  EXPECT_EQ(queue.list[0].origin.senderName, u"Sender"_s);
}

TEST_F(QueueModelRows, EditTheTextOfAPictureAndOfALine) {
  queue.add(ZQComboTickerSign::make(u"old"_s, plainPicture({4, 4}, Qt::red)), {}, nullptr);
  queue.add(ZQImageTickerSign::make(plainPicture({4, 4}, Qt::red)), {}, nullptr);
  queue.addLines(1);
  queue.list[2].loopsLeft = 5;
  model.refresh();
  for (int row = 0; row < 3; ++row)
    EXPECT_TRUE(model.setData(model.index(row, QueueModel::TextColumn), u"new"_s, Qt::EditRole));
  EXPECT_EQ(texts(), (QStringList{u"new"_s, u"new"_s, u"new"_s}));
  EXPECT_EQ(queue.list[2].loopsLeft, 5);
  EXPECT_TRUE(model.setData(model.index(0, QueueModel::TextColumn), QString(), Qt::EditRole))
      << "the picture is still there";
}

TEST_F(QueueModelRows, RefuseEditsThatAreNotPossible) {
  fill(2);
  EXPECT_FALSE(model.setData(model.index(0, QueueModel::TextColumn), u"  "_s, Qt::EditRole));
  EXPECT_EQ(follower.refusals, 1);
  queue.list.erase(queue.list.begin());
  EXPECT_FALSE(model.setData(model.index(0, QueueModel::TextColumn), u"x"_s, Qt::EditRole));
  EXPECT_FALSE(model.setData(model.index(0, QueueModel::LoopsColumn), 4, Qt::EditRole));
  EXPECT_EQ(follower.refusals, 3);
  EXPECT_EQ(queue.texts(), QStringList{u"b"_s});
}

TEST_F(QueueModelRows, EditHowOftenASignIsStillShown) {
  fill(1);
  const QModelIndex loops = model.index(0, QueueModel::LoopsColumn);
  EXPECT_TRUE(loops.flags() & Qt::ItemIsEditable);
  EXPECT_TRUE(model.setData(loops, 12, Qt::EditRole));
  EXPECT_EQ(queue.list[0].loopsLeft, 12);
  EXPECT_TRUE(model.setData(model.index(0, QueueModel::LoopsColumn), -1, Qt::EditRole));
  EXPECT_EQ(queue.list[0].loopsLeft, -1);
}

TEST_F(QueueModelRows, AreNotEditedOnceTheyWaitNoMore) {
  fill(1);
  queue.run(1);
  queue.list[0].isWaiting = false;
  model.refresh();
  for (const int column : {QueueModel::TextColumn, QueueModel::LoopsColumn})
    EXPECT_FALSE(model.index(0, column).flags() & Qt::ItemIsEditable);
}
