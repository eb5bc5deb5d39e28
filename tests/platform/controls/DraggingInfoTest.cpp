#include "zqticker/platform/controls/DraggingInfo.h"

#include "zqticker/platform/controls/drag_operations_p.h"

#include <gtest/gtest.h>

using namespace zq::platform;

TEST(DragOperations, AreWhatTheSourceOffers) {
  EXPECT_EQ(operationsOf({}), 0U);
  EXPECT_EQ(operationsOf(Qt::CopyAction), 1U | 4U);
  EXPECT_EQ(operationsOf(Qt::LinkAction), 2U | 4U);
  EXPECT_EQ(operationsOf(Qt::MoveAction), 16U | 4U);
  EXPECT_EQ(operationsOf(Qt::CopyAction | Qt::LinkAction | Qt::MoveAction), 1U | 2U | 4U | 16U);
}

TEST(DragOperations, BecomeOneActionOfTheToolkit) {
  const Qt::DropActions all = Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;
  EXPECT_EQ(actionFor(DragOperationNone, all, Qt::CopyAction), Qt::IgnoreAction);
  EXPECT_EQ(actionFor(DragOperationCopy, all, Qt::MoveAction), Qt::CopyAction);
  EXPECT_EQ(actionFor(DragOperationLink, all, Qt::MoveAction), Qt::LinkAction);
  EXPECT_EQ(actionFor(DragOperationMove, all, Qt::CopyAction), Qt::MoveAction);
  EXPECT_EQ(actionFor(DragOperationDelete, all, Qt::CopyAction), Qt::MoveAction);
  EXPECT_EQ(actionFor(DragOperationGeneric, all, Qt::LinkAction), Qt::LinkAction);
  EXPECT_EQ(actionFor(DragOperationPrivate, all, Qt::MoveAction), Qt::MoveAction);
}

TEST(DragOperations, PreferWhatWasProposedThenCopyingThenMoving) {
  const Qt::DropActions all = Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;
  EXPECT_EQ(actionFor(DragOperationEvery, all, Qt::LinkAction), Qt::LinkAction);
  EXPECT_EQ(actionFor(DragOperationEvery, all, Qt::IgnoreAction), Qt::CopyAction);
  EXPECT_EQ(actionFor(DragOperationEvery, Qt::MoveAction | Qt::LinkAction, Qt::CopyAction),
            Qt::MoveAction);
  EXPECT_EQ(actionFor(DragOperationLink | DragOperationMove, all, Qt::CopyAction), Qt::MoveAction);
}

TEST(DragOperations, AreNoneWhereTheSourceAllowsNoneOfThem) {
  EXPECT_EQ(actionFor(DragOperationCopy, Qt::MoveAction, Qt::MoveAction), Qt::IgnoreAction);
  EXPECT_EQ(actionFor(DragOperationEvery, {}, Qt::CopyAction), Qt::IgnoreAction);
}
