#include "zqticker/platform/controls/ScrollView.h"

#include "tests/platform/controls/DraggingProbe.h"
#include "tests/support/LogWatch.h"
#include "zqticker/platform/objects/Exception.h"

#include <gtest/gtest.h>

#include <memory>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using zq::testing::DraggingProbe;
using zq::testing::DragSender;
using zq::testing::expectLog;

namespace {

using Probe = DraggingProbe<DraggingDestination>;

class ScrollViewDrags : public ::testing::Test {
 protected:
  ScrollViewDrags() : view(std::make_unique<ScrollView>()), drag(*view) {
    view->setAcceptDrops(true);
    view->resize(200, 100);
    view->setDraggingDestination(&probe);
  }

  std::unique_ptr<ScrollView> view;
  DragSender drag;
  Probe probe;
};

} // namespace

TEST_F(ScrollViewDrags, GoThroughTheStepsOfADrop) {
  probe.answerAll(DragOperationCopy);
  EXPECT_TRUE(drag.enter().isAccepted);
  EXPECT_TRUE(drag.move().isAccepted);
  EXPECT_TRUE(drag.move().isAccepted);
  const auto answer = drag.drop();
  EXPECT_TRUE(answer.isAccepted);
  EXPECT_EQ(answer.action, Qt::CopyAction);
  EXPECT_EQ(probe.log, (QStringList{u"entered"_s, u"updated"_s, u"updated"_s, u"prepare"_s,
                                    u"perform"_s, u"conclude"_s, u"ended"_s}));
}

TEST_F(ScrollViewDrags, ExitWhenTheyLeave) {
  probe.answerAll(DragOperationCopy);
  drag.enter();
  drag.leave();
  EXPECT_EQ(probe.log, (QStringList{u"entered"_s, u"exited"_s}));
}

TEST_F(ScrollViewDrags, AreOneObjectFromTheEntryToTheEnd) {
  probe.answerAll(DragOperationCopy);
  int number = 0;
  probe.whenTold = [&](const QString&, const DraggingInfo& sender) {
    if (number == 0)
      number = sender.draggingSequenceNumber();
    EXPECT_EQ(sender.draggingSequenceNumber(), number);
  };
  drag.enter();
  drag.move();
  drag.drop();
  ASSERT_EQ(probe.senders.size(), 6);
  EXPECT_EQ(probe.senders.count(probe.senders.first()), 6);
  const int first = std::exchange(number, 0);
  drag.enter();
  EXPECT_NE(number, first);
}

TEST_F(ScrollViewDrags, ShowTheToolkitsOwnEvent) {
  QWidget window;
  window.resize(300, 250);
  view->setParent(&window);
  view->setGeometry(20, 30, 200, 100);
  probe.answerAll(DragOperationCopy);
  int looks = 0;
  probe.whenTold = [&](const QString& step, const DraggingInfo& sender) {
    ++looks;
    EXPECT_EQ(sender.event(), drag.lastEvent) << step.toStdString();
    EXPECT_EQ(sender.draggingPasteboard(), &drag.mime);
    EXPECT_EQ(sender.draggingSource(), nullptr);
    EXPECT_EQ(sender.draggingSourceOperationMask(),
              unsigned(DragOperationCopy | DragOperationMove | DragOperationGeneric));
    // 20 + 7 from the left, 250 - 30 - 11 from the lower edge.
    EXPECT_EQ(sender.draggingLocation(), QPointF(27, 209));
  };
  drag.enter({7, 11});
  drag.move({7, 11});
  drag.drop({7, 11});
  EXPECT_EQ(looks, 6);
  view->setParent(nullptr);
}

TEST_F(ScrollViewDrags, HaveNothingMoreToShowWhenTheyLeave) {
  drag.enter({7, 11});
  bool isExited = false;
  probe.whenTold = [&](const QString&, const DraggingInfo& sender) {
    isExited = true;
    EXPECT_EQ(sender.event(), nullptr);
    EXPECT_EQ(sender.draggingPasteboard(), nullptr);
    EXPECT_EQ(sender.draggingSource(), nullptr);
    EXPECT_EQ(sender.draggingLocation(), QPointF(7, 89)) << "where they were last";
  };
  drag.leave();
  EXPECT_TRUE(isExited);
}

TEST_F(ScrollViewDrags, ThatAreNotPreparedAreNotPerformed) {
  probe.answerAll(DragOperationCopy);
  probe.prepareAnswer = false;
  drag.enter();
  EXPECT_FALSE(drag.drop().isAccepted);
  EXPECT_EQ(probe.log, (QStringList{u"entered"_s, u"prepare"_s, u"ended"_s}));
}

TEST_F(ScrollViewDrags, ThatAreNotPerformedDoNotConclude) {
  probe.answerAll(DragOperationCopy);
  probe.performAnswer = false;
  drag.enter();
  const auto answer = drag.drop();
  EXPECT_FALSE(answer.isAccepted);
  EXPECT_EQ(answer.action, Qt::IgnoreAction);
  EXPECT_EQ(probe.log, (QStringList{u"entered"_s, u"prepare"_s, u"perform"_s, u"ended"_s}));
}

TEST_F(ScrollViewDrags, KeepMovingAfterARefusal) {
  probe.enteredAnswer = DragOperationNone;
  probe.updatedAnswer = DragOperationNone;
  const auto entry = drag.enter();
  EXPECT_TRUE(entry.isAccepted) << "or no moves would come";
  EXPECT_EQ(entry.action, Qt::IgnoreAction);
  EXPECT_FALSE(drag.move().isAccepted);
  probe.updatedAnswer = DragOperationMove;
  const auto move = drag.move();
  EXPECT_TRUE(move.isAccepted);
  EXPECT_EQ(move.action, Qt::MoveAction);
  EXPECT_EQ(probe.log, (QStringList{u"entered"_s, u"updated"_s, u"updated"_s}));
}

TEST_F(ScrollViewDrags, ThatWereRefusedLastExitWhenDropped) {
  probe.answerAll(DragOperationCopy);
  drag.enter();
  probe.updatedAnswer = DragOperationNone;
  drag.move();
  EXPECT_FALSE(drag.drop().isAccepted);
  EXPECT_EQ(probe.log, (QStringList{u"entered"_s, u"updated"_s, u"exited"_s}));
}

TEST_F(ScrollViewDrags, ThatAskForWhatTheSourceDoesNotAllowAreRefused) {
  probe.answerAll(DragOperationLink);
  drag.enter();
  EXPECT_FALSE(drag.move().isAccepted);
}

TEST_F(ScrollViewDrags, AreRefusedWithoutADestination) {
  view->setDraggingDestination(nullptr);
  EXPECT_EQ(drag.enter().action, Qt::IgnoreAction);
  EXPECT_FALSE(drag.move().isAccepted);
  EXPECT_FALSE(drag.drop().isAccepted);
  {
    Probe passing;
    passing.answerAll(DragOperationCopy);
    view->setDraggingDestination(&passing);
    EXPECT_EQ(drag.enter().action, Qt::CopyAction);
  }
  EXPECT_EQ(view->draggingDestination(), nullptr);
  EXPECT_FALSE(drag.move().isAccepted);
}

TEST_F(ScrollViewDrags, AreNotAnsweredByAScrollViewOfItsOwn) {
  view->setDraggingDestination(nullptr);
  const QDropEvent event({0, 0}, drag.actions, &drag.mime, Qt::LeftButton, Qt::NoModifier);
  const DraggingInfo info(*view, event);
  EXPECT_EQ(view->draggingEntered(info), std::nullopt);
  EXPECT_EQ(view->draggingUpdated(info), std::nullopt);
  EXPECT_FALSE(view->draggingExited(info));
  EXPECT_EQ(view->prepareForDragOperation(info), std::nullopt);
  EXPECT_EQ(view->performDragOperation(info), std::nullopt);
  EXPECT_FALSE(view->concludeDragOperation(info));
  EXPECT_FALSE(view->draggingEnded(info));
}

TEST_F(ScrollViewDrags, AreAnsweredByTheDestinationOperationByOperation) {
  const QDropEvent event({0, 0}, drag.actions, &drag.mime, Qt::LeftButton, Qt::NoModifier);
  const DraggingInfo info(*view, event);
  EXPECT_EQ(view->draggingEntered(info), std::nullopt) << "hears of it but does not answer";
  probe.answerAll(DragOperationLink);
  EXPECT_EQ(view->draggingEntered(info), DragOperationMask(DragOperationLink));
  EXPECT_EQ(view->draggingUpdated(info), DragOperationMask(DragOperationLink));
  EXPECT_TRUE(view->draggingExited(info));
  EXPECT_EQ(view->prepareForDragOperation(info), true);
  EXPECT_EQ(view->performDragOperation(info), true);
  EXPECT_TRUE(view->concludeDragOperation(info));
  EXPECT_TRUE(view->draggingEnded(info));
  EXPECT_EQ(probe.log.size(), 8);
}

TEST_F(ScrollViewDrags, GoOnAfterAnException) {
  probe.answerAll(DragOperationCopy);
  for (const QString& failing : {u"entered"_s, u"updated"_s, u"prepare"_s, u"perform"_s,
                                 u"conclude"_s, u"ended"_s, u"exited"_s}) {
    probe.log.clear();
    probe.whenTold = [&](const QString& step, const DraggingInfo&) {
      if (step == failing)
        throw RangeException(u"in "_s + step);
    };
    expectLog(u"Error in the callback of a view: in "_s + failing);
    EXPECT_TRUE(drag.enter().isAccepted);
    EXPECT_EQ(drag.move().isAccepted, failing != u"updated"_s);
    if (failing == u"exited"_s) {
      drag.leave();
      continue;
    }
    if (failing == u"updated"_s) {
      probe.whenTold = nullptr;
      drag.move();
    }
    EXPECT_EQ(drag.drop().isAccepted, failing != u"prepare"_s && failing != u"perform"_s);
    EXPECT_EQ(probe.log.last(), u"ended"_s) << failing.toStdString();
  }
}

TEST_F(ScrollViewDrags, MayEndTheViewInEveryStep) {
  for (const QString& last : {u"entered"_s, u"updated"_s, u"prepare"_s, u"perform"_s, u"conclude"_s,
                              u"ended"_s, u"exited"_s}) {
    auto dying = std::make_unique<ScrollView>();
    dying->setAcceptDrops(true);
    Probe witness;
    witness.answerAll(DragOperationCopy);
    dying->setDraggingDestination(&witness);
    witness.whenTold = [&](const QString& step, const DraggingInfo&) {
      if (step == last)
        dying.reset();
    };
    DragSender sender(*dying);
    sender.enter();
    if (dying)
      sender.move();
    if (dying && last == u"exited"_s)
      sender.leave();
    else if (dying)
      sender.drop();
    EXPECT_EQ(witness.log.last(), last);
  }
}

TEST_F(ScrollViewDrags, KnowTheirEventAgainAfterOneWithinAStep) {
  probe.answerAll(DragOperationCopy);
  drag.enter();
  bool isWithin = false;
  probe.whenTold = [&](const QString&, const DraggingInfo& sender) {
    if (std::exchange(isWithin, true))
      return;
    const QDropEvent* outer = sender.event();
    EXPECT_EQ(sender.draggingLocation(), QPointF(1, 99));
    drag.move({2, 2});
    EXPECT_EQ(sender.event(), outer);
    EXPECT_EQ(sender.draggingLocation(), QPointF(1, 99));
  };
  drag.move({1, 1});
  EXPECT_EQ(probe.log.size(), 3);
}

TEST_F(ScrollViewDrags, ThatGotLostExitBeforeTheNextEnters) {
  drag.enter();
  drag.enter();
  EXPECT_EQ(probe.log, (QStringList{u"entered"_s, u"exited"_s, u"entered"_s}));
}

TEST_F(ScrollViewDrags, AreNobodysBeforeTheyEnter) {
  probe.answerAll(DragOperationCopy);
  QDropEvent event({0, 0}, drag.actions, &drag.mime, Qt::LeftButton, Qt::NoModifier);
  class Open : public ScrollView {
   public:
    using ScrollView::dropEvent;
  } open;
  open.setDraggingDestination(&probe);
  open.dropEvent(&event);
  EXPECT_FALSE(event.isAccepted());
  EXPECT_TRUE(probe.log.isEmpty());
}

TEST(ScrollView, IsTheTargetOfDragsOverAllOfIt) {
  ScrollView view;
  EXPECT_FALSE(view.acceptDrops());
  view.setAcceptDrops(true);
  EXPECT_TRUE(view.acceptDrops());
  EXPECT_FALSE(view.viewport()->acceptDrops());
  auto* other = new QWidget;
  other->setAcceptDrops(true);
  view.setViewport(other);
  EXPECT_FALSE(other->acceptDrops());
}
