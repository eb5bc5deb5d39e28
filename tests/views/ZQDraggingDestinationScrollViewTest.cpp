#include "zqticker/views/ZQDraggingDestinationScrollView.h"

#include "tests/platform/controls/DraggingProbe.h"
#include "tests/support/LogWatch.h"
#include "zqticker/platform/objects/Exception.h"

#include <gtest/gtest.h>

#include <memory>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using zq::testing::DraggingProbe;
using zq::testing::DragSender;

namespace {

using BaseProbe = DraggingProbe<DraggingDestination>;

// Answers nothing unless it is told to.
class Delegate : public DraggingProbe<ZQDraggingDestinationScrollViewDelegate> {
 public:
  void highlightDraggingTarget(bool flag) override {
    highlights.append(flag);
    if (const auto perform = whenHighlighted)
      perform(flag);
  }

  QList<bool> highlights;
  std::function<void(bool)> whenHighlighted;
};

constexpr auto None = DragOperationMask(DragOperationNone);
constexpr auto Copy = DragOperationMask(DragOperationCopy);

class DraggingDestinationScrollView : public ::testing::Test {
 protected:
  DraggingDestinationScrollView()
      : view(std::make_unique<ZQDraggingDestinationScrollView>()),
        event({5, 5}, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier), info(*view, event) {
    view->setDelegate(&delegate);
  }

  // Gives the base class the operations.
  void letBaseClassAnswer(DragOperationMask operation) {
    base.answerAll(operation);
    view->setDraggingDestination(&base);
  }
  // By the drag of an entry that the delegate answers with a copy.
  void turnHighlightOn() {
    const auto answer = std::exchange(delegate.enteredAnswer, Copy);
    view->draggingEntered(info);
    delegate.enteredAnswer = answer;
    ASSERT_EQ(delegate.highlights, QList<bool>{true});
    delegate.highlights.clear();
    delegate.log.clear();
    delegate.senders.clear();
    base.log.clear();
  }

  std::unique_ptr<ZQDraggingDestinationScrollView> view;
  QMimeData mime;
  QDropEvent event;
  DraggingInfo info;
  BaseProbe base;
  Delegate delegate;
};

// The two operations that answer with what a drop would do.
class DraggingAnswers : public DraggingDestinationScrollView,
                        public ::testing::WithParamInterface<bool> {
 protected:
  std::optional<DragOperationMask> send() {
    return GetParam() ? view->draggingEntered(info) : view->draggingUpdated(info);
  }
  std::optional<DragOperationMask>& answerOf(BaseProbe& probe) {
    return GetParam() ? probe.enteredAnswer : probe.updatedAnswer;
  }
  std::optional<DragOperationMask>& answerOf(Delegate& probe) {
    return GetParam() ? probe.enteredAnswer : probe.updatedAnswer;
  }
};
INSTANTIATE_TEST_SUITE_P(EnteredAndUpdated, DraggingAnswers, ::testing::Values(true, false),
                         [](const auto& each) { return each.param ? "Entered" : "Updated"; });

} // namespace

// Entered and updated.

TEST_P(DraggingAnswers, AreTheDelegatesWhereItAnswers) {
  letBaseClassAnswer(DragOperationLink);
  answerOf(delegate) = Copy;
  EXPECT_EQ(send(), Copy);
  EXPECT_EQ(delegate.highlights, QList<bool>{true});
  EXPECT_TRUE(base.log.isEmpty()) << "the base class is not asked";
}

TEST_P(DraggingAnswers, AreTheDelegatesThoughItRefuses) {
  letBaseClassAnswer(DragOperationLink);
  turnHighlightOn();
  answerOf(delegate) = None;
  EXPECT_EQ(send(), None);
  EXPECT_EQ(delegate.highlights, QList<bool>{false});
  EXPECT_TRUE(base.log.isEmpty());
}

TEST_P(DraggingAnswers, AreTheBaseClassesWhereTheDelegateDoesNotAnswer) {
  letBaseClassAnswer(DragOperationLink);
  EXPECT_EQ(send(), DragOperationMask(DragOperationLink));
  EXPECT_EQ(delegate.highlights, QList<bool>{true});
  EXPECT_EQ(base.log.size(), 1);
}

TEST_P(DraggingAnswers, OfTheBaseClassTurnTheHighlightOffToo) {
  letBaseClassAnswer(DragOperationNone);
  turnHighlightOn();
  EXPECT_EQ(send(), None);
  EXPECT_EQ(delegate.highlights, QList<bool>{false});
}

TEST_P(DraggingAnswers, AreNoneWhereNobodyAnswers) {
  turnHighlightOn();
  EXPECT_EQ(send(), None);
  EXPECT_EQ(delegate.highlights, QList<bool>{false});
}

TEST_P(DraggingAnswers, AreNoneWhereABaseClassHasOtherOperationsOnly) {
  letBaseClassAnswer(DragOperationCopy);
  answerOf(base) = std::nullopt;
  turnHighlightOn();
  EXPECT_EQ(send(), None);
  EXPECT_EQ(delegate.highlights, QList<bool>{false});
}

TEST_P(DraggingAnswers, OfEveryOperationButNoneTurnTheHighlightOn) {
  for (const DragOperationMask operation :
       {DragOperationMask(DragOperationLink), DragOperationMask(DragOperationDelete),
        DragOperationMask(DragOperationEvery), 1U << 20}) {
    answerOf(delegate) = operation;
    EXPECT_EQ(send(), operation);
    EXPECT_EQ(delegate.highlights, QList<bool>{true});
    answerOf(delegate) = None;
    send();
    delegate.highlights.clear();
  }
}

TEST_P(DraggingAnswers, AreReportedOnlyWhereTheyChangeTheHighlight) {
  answerOf(delegate) = Copy;
  send();
  EXPECT_EQ(send(), Copy);
  EXPECT_EQ(delegate.highlights, QList<bool>{true}) << "once for two copies";
  answerOf(delegate) = None;
  send();
  send();
  EXPECT_EQ(delegate.highlights, (QList<bool>{true, false}));
}

TEST_P(DraggingAnswers, PassTheDragOnUnchanged) {
  send();
  EXPECT_EQ(delegate.senders, QList<const DraggingInfo*>{&info});
  letBaseClassAnswer(DragOperationCopy);
  send();
  EXPECT_EQ(base.senders, QList<const DraggingInfo*>{&info});
}

TEST_P(DraggingAnswers, AreNoneForExceptions) {
  turnHighlightOn();
  delegate.whenTold = [](const QString&, const DraggingInfo&) { throw RangeException(u"no"_s); };
  EXPECT_THROW(send(), RangeException);
  EXPECT_EQ(delegate.highlights, QList<bool>{false});
}

TEST_P(DraggingAnswers, OfADelegateMayEndTheView) {
  letBaseClassAnswer(DragOperationCopy);
  delegate.whenTold = [this](const QString&, const DraggingInfo&) { view.reset(); };
  EXPECT_EQ(send(), None);
  EXPECT_TRUE(base.log.isEmpty());
  EXPECT_TRUE(delegate.highlights.isEmpty());
}

TEST_F(DraggingDestinationScrollView, WithoutDelegateAndBaseClassRefusesDrops) {
  view->setDelegate(nullptr);
  EXPECT_EQ(view->draggingEntered(info), None);
  EXPECT_EQ(view->draggingUpdated(info), None);
  // Had it turned the highlight on, this would turn it off and tell.
  view->setDelegate(&delegate);
  view->changeDraggingHighlight(false);
  EXPECT_TRUE(delegate.highlights.isEmpty());
}

TEST_F(DraggingDestinationScrollView, KeepsTrackWithoutADelegate) {
  letBaseClassAnswer(DragOperationCopy);
  view->setDelegate(nullptr);
  EXPECT_EQ(view->draggingEntered(info), Copy);
  view->setDelegate(&delegate);
  view->draggingUpdated(info);
  EXPECT_TRUE(delegate.highlights.isEmpty()) << "it is on already";
  view->draggingExited(info);
  EXPECT_EQ(delegate.highlights, QList<bool>{false});
}

// The highlight.

TEST_F(DraggingDestinationScrollView, TellsEachChangeOfTheHighlightOnce) {
  view->changeDraggingHighlight(false);
  EXPECT_TRUE(delegate.highlights.isEmpty()) << "off at first";
  view->changeDraggingHighlight(true);
  view->changeDraggingHighlight(true);
  view->changeDraggingHighlight(false);
  view->changeDraggingHighlight(false);
  EXPECT_EQ(delegate.highlights, (QList<bool>{true, false}));
}

TEST_F(DraggingDestinationScrollView, HasChangedTheHighlightWhenItTells) {
  // The same state again, out of the report, is none.
  delegate.whenHighlighted = [this](bool flag) { view->changeDraggingHighlight(flag); };
  view->changeDraggingHighlight(true);
  EXPECT_EQ(delegate.highlights, QList<bool>{true});
}

TEST_F(DraggingDestinationScrollView, DrawsNoHighlightItself) {
  view->resize(100, 80);
  const QImage before = view->grab().toImage();
  view->changeDraggingHighlight(true);
  EXPECT_EQ(view->grab().toImage(), before);
}

// Exited, concluded, ended.

TEST_F(DraggingDestinationScrollView, ForwardsTheExitThenTurnsTheHighlightOff) {
  for (const bool isExit : {true, false}) {
    const auto send = [&] {
      return isExit ? view->draggingExited(info) : view->concludeDragOperation(info);
    };
    const QStringList step{isExit ? u"exited"_s : u"conclude"_s};
    letBaseClassAnswer(DragOperationCopy);
    turnHighlightOn();
    delegate.answersTellings = true;
    delegate.whenTold = [this](const QString&, const DraggingInfo&) {
      EXPECT_TRUE(delegate.highlights.isEmpty()) << "not yet";
    };
    EXPECT_TRUE(send());
    EXPECT_EQ(delegate.log, step);
    EXPECT_EQ(delegate.senders, QList<const DraggingInfo*>{&info});
    EXPECT_TRUE(base.log.isEmpty()) << "the delegate has answered";
    EXPECT_EQ(delegate.highlights, QList<bool>{false});

    delegate.whenTold = nullptr;
    delegate.highlights.clear();
    delegate.answersTellings = false;
    turnHighlightOn();
    base.senders.clear();
    EXPECT_TRUE(send());
    EXPECT_EQ(base.log, step) << "the delegate has not answered";
    EXPECT_EQ(base.senders, QList<const DraggingInfo*>{&info});
    EXPECT_EQ(delegate.highlights, QList<bool>{false});

    view->setDraggingDestination(nullptr);
    delegate.highlights.clear();
    turnHighlightOn();
    EXPECT_TRUE(send());
    EXPECT_EQ(delegate.highlights, QList<bool>{false}) << "though nobody has answered";
    delegate.highlights.clear();
    EXPECT_TRUE(send());
    EXPECT_TRUE(delegate.highlights.isEmpty()) << "off already";
  }
}

TEST_F(DraggingDestinationScrollView, ForwardsTheEndToTheDelegateOnly) {
  letBaseClassAnswer(DragOperationCopy);
  turnHighlightOn();
  EXPECT_TRUE(view->draggingEnded(info));
  EXPECT_EQ(delegate.log, QStringList{u"ended"_s});
  EXPECT_EQ(delegate.senders, QList<const DraggingInfo*>{&info});
  EXPECT_TRUE(base.log.isEmpty()) << "although the delegate has not answered";
  EXPECT_EQ(delegate.highlights, QList<bool>{false});
}

TEST_F(DraggingDestinationScrollView, TurnsTheHighlightOffForAnEndThatNobodyAnswers) {
  turnHighlightOn();
  EXPECT_TRUE(view->draggingEnded(info));
  EXPECT_EQ(delegate.highlights, QList<bool>{false});
  EXPECT_TRUE(view->draggingEnded(info));
  EXPECT_EQ(delegate.highlights, QList<bool>{false}) << "reported only if it was on";
}

TEST_F(DraggingDestinationScrollView, TurnsTheHighlightOffForExceptions) {
  for (const auto& send : std::initializer_list<std::function<void()>>{
           [this] { view->draggingExited(info); }, [this] { view->concludeDragOperation(info); },
           [this] { view->draggingEnded(info); }}) {
    delegate.whenTold = nullptr;
    delegate.highlights.clear();
    turnHighlightOn();
    delegate.whenTold = [](const QString&, const DraggingInfo&) { throw RangeException(u"no"_s); };
    EXPECT_THROW(send(), RangeException);
    EXPECT_EQ(delegate.highlights, QList<bool>{false});
  }
}

// Prepare and perform.

TEST_F(DraggingDestinationScrollView, AsksTheDelegateThenTheBaseClassToPrepareAndPerform) {
  for (const bool isPrepare : {true, false}) {
    const auto send = [&] {
      return isPrepare ? view->prepareForDragOperation(info) : view->performDragOperation(info);
    };
    view->setDraggingDestination(nullptr);
    EXPECT_EQ(send(), false) << "nobody answers";

    letBaseClassAnswer(DragOperationCopy);
    base.senders.clear();
    EXPECT_EQ(send(), true);
    EXPECT_EQ(base.senders, QList<const DraggingInfo*>{&info});
    (isPrepare ? base.prepareAnswer : base.performAnswer) = false;
    EXPECT_EQ(send(), false);
    (isPrepare ? base.prepareAnswer : base.performAnswer) = true;

    auto& answer = isPrepare ? delegate.prepareAnswer : delegate.performAnswer;
    delegate.senders.clear();
    base.log.clear();
    answer = false;
    EXPECT_EQ(send(), false);
    EXPECT_TRUE(base.log.isEmpty()) << "the delegate has answered";
    EXPECT_EQ(delegate.senders, QList<const DraggingInfo*>{&info});
    view->setDraggingDestination(nullptr);
    answer = true;
    EXPECT_EQ(send(), true);
  }
}

TEST_F(DraggingDestinationScrollView, LeavesTheHighlightAloneWhilePreparingAndPerforming) {
  turnHighlightOn();
  view->prepareForDragOperation(info);
  view->performDragOperation(info);
  delegate.prepareAnswer = delegate.performAnswer = true;
  view->prepareForDragOperation(info);
  view->performDragOperation(info);
  EXPECT_TRUE(delegate.highlights.isEmpty());
}

// Whom it knows.

TEST_F(DraggingDestinationScrollView, ForgetsADelegateThatHasGone) {
  {
    Delegate passing;
    passing.answerAll(DragOperationCopy);
    view->setDelegate(&passing);
    EXPECT_EQ(view->delegate(), &passing);
    EXPECT_EQ(view->draggingEntered(info), Copy);
  }
  EXPECT_EQ(view->delegate(), nullptr);
  EXPECT_EQ(view->draggingUpdated(info), None);
}

TEST_F(DraggingDestinationScrollView, BearsADelegateThatGoesWhileItIsAsked) {
  auto passing = std::make_unique<Delegate>();
  passing->whenTold = [&](const QString&, const DraggingInfo&) { view->setDelegate(nullptr); };
  view->setDelegate(passing.get());
  letBaseClassAnswer(DragOperationCopy);
  EXPECT_EQ(view->draggingEntered(info), Copy) << "from the base class";
  EXPECT_TRUE(passing->highlights.isEmpty());
}

// With the toolkit's events.

TEST_F(DraggingDestinationScrollView, AcceptsDropsFromTheStart) {
  EXPECT_TRUE(view->acceptDrops());
}

TEST_F(DraggingDestinationScrollView, HighlightsADragUntilItIsDropped) {
  delegate.answerAll(DragOperationCopy);
  DragSender drag(*view);
  drag.enter();
  drag.move();
  EXPECT_EQ(delegate.highlights, QList<bool>{true});
  EXPECT_TRUE(drag.drop().isAccepted);
  EXPECT_EQ(delegate.highlights, (QList<bool>{true, false}));
  EXPECT_EQ(delegate.log, (QStringList{u"entered"_s, u"updated"_s, u"prepare"_s, u"perform"_s,
                                       u"conclude"_s, u"ended"_s}));
}

TEST_F(DraggingDestinationScrollView, HighlightsADragUntilItLeaves) {
  delegate.answerAll(DragOperationCopy);
  DragSender drag(*view);
  drag.enter();
  drag.leave();
  EXPECT_EQ(delegate.highlights, (QList<bool>{true, false}));
}

TEST_F(DraggingDestinationScrollView, LogsWhatTheDelegateRaises) {
  delegate.answerAll(DragOperationCopy);
  delegate.whenHighlighted = [](bool flag) {
    if (flag)
      throw RangeException(u"while highlighting"_s);
  };
  DragSender drag(*view);
  zq::testing::expectLog(u"while highlighting"_s);
  drag.enter();
  EXPECT_TRUE(drag.move().isAccepted);
  EXPECT_TRUE(drag.drop().isAccepted);
  EXPECT_EQ(delegate.highlights, (QList<bool>{true, false}));
}
