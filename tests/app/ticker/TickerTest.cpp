#include "app/ticker/Ticker.h"

#include "app/commands/failures.h"
#include "app/queue/QueueWindow.h"
#include "app/settings/SettingsStore.h"
#include "tests/app/XServer.h"
#include "tests/support/LogWatch.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/platform/text/text_attributes.h"
#include "zqticker/signs/ZQTextTickerSign.h"

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtGui/QAction>
#include <QtWidgets/QApplication>

#include <gtest/gtest.h>

#include <memory>

#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::platform;
using zq::app::testing::waitUntil;

namespace {
class RunningTicker : public ::testing::Test {
 protected:
  RunningTicker() {
    // The platform without a screen says so of every window that stays on top.
    zq::testing::allowLog(u"does not support raise()"_s);
    zq::testing::allowLog(u"does not support propagateSizeHints()"_s);
    QObject::connect(&ticker, &Ticker::finished, &ticker, [this] { ++finishedCount; });
    QObject::connect(&ticker, &Ticker::changed, &ticker, [this] { ++changeCount; });
  }

  static RunOptions options() {
    RunOptions options;
    options.showsControlBar = false;
    options.strip.speed = 10'000;
    return options;
  }
  // A text that is shown `loopCount` times.
  static Ref<ZQTickerSign> text(const QString& text, std::int64_t loopCount = 1) {
    const auto sign = ZQTextTickerSign::make(text);
    sign->setLoopCount(loopCount);
    return sign;
  }
  static QueueWindow* queueWindow() {
    for (QWidget* widget : QApplication::topLevelWidgets())
      if (auto* window = qobject_cast<QueueWindow*>(widget))
        return window;
    return nullptr;
  }
  static bool isQueueShown() { return queueWindow() && queueWindow()->isVisible(); }
  std::size_t waiting() { return ticker.display().waitingCount(); }

  QTemporaryDir settingsFolder;
  SettingsStore settings{settingsFolder.filePath(u"settings.json"_s),
                         settingsFolder.filePath(u"autostart"_s)};
  Ticker ticker{options()};
  int finishedCount = 0;
  int changeCount = 0;
};
} // namespace

TEST_F(RunningTicker, IsHiddenUntilThereIsSomethingToShow) {
  EXPECT_FALSE(ticker.widget().isVisible());
  ticker.show(text(u"Hello"_s, ZQEndlessLoopCount));
  EXPECT_TRUE(waitUntil([&] { return ticker.widget().isVisible(); }));
}

TEST_F(RunningTicker, FinishesWhenAllHasBeenShown) {
  ticker.show(text(u"Hello"_s));
  EXPECT_TRUE(waitUntil([&] { return finishedCount > 0; }));
}

TEST_F(RunningTicker, HidesAndGoesOnWhileItWaitsForMessages) {
  ticker.follow(settings);
  bool wasShown = false;
  QObject::connect(&ticker, &Ticker::changed, &ticker,
                   [&] { wasShown = wasShown || ticker.widget().isVisible(); });
  ticker.show(text(u"Hello"_s));
  EXPECT_TRUE(waitUntil([&] { return wasShown; }));
  EXPECT_TRUE(waitUntil([&] { return !ticker.widget().isVisible(); }));
  EXPECT_EQ(finishedCount, 0);
  ticker.show(text(u"again"_s, ZQEndlessLoopCount));
  EXPECT_TRUE(waitUntil([&] { return ticker.widget().isVisible(); }));
}

TEST_F(RunningTicker, GivesASignWithoutAnIdentifierOneOfItsOwn) {
  const QString first = ticker.show(text(u"one"_s, ZQEndlessLoopCount));
  const QString second = ticker.show(text(u"two"_s, ZQEndlessLoopCount));
  EXPECT_FALSE(first.isEmpty());
  EXPECT_NE(first, second);
  EXPECT_EQ(waiting(), 2u);
  EXPECT_TRUE(ticker.remove(first));
  EXPECT_EQ(waiting(), 1u);
}

TEST_F(RunningTicker, LetsASignTakeOverFromTheOneWithItsIdentifier) {
  for (const QString& words : {u"one"_s, u"two"_s}) {
    const Ref<ZQTickerSign> sign = text(words, ZQEndlessLoopCount);
    sign->setIdentifier(u"news"_s);
    EXPECT_EQ(ticker.show(sign), u"news"_s);
  }
  EXPECT_EQ(waiting(), 1u);
}

TEST_F(RunningTicker, DoesNotRemoveWhatItDoesNotKnow) {
  EXPECT_FALSE(ticker.remove(u"nothing"_s));
}

TEST_F(RunningTicker, TellsSeveralChangesOfATurnOnce) {
  ticker.show(text(u"one"_s, ZQEndlessLoopCount));
  ticker.show(text(u"two"_s, ZQEndlessLoopCount));
  EXPECT_EQ(changeCount, 0);
  EXPECT_TRUE(waitUntil([&] { return changeCount > 0; }));
  EXPECT_EQ(changeCount, 1);
}

TEST_F(RunningTicker, AddsTheSourcesOfAFurtherCommandLine) {
  ticker.run({u"--text"_s, u"one"_s, u"--text"_s, u"two"_s}, u"/"_s);
  EXPECT_EQ(waiting(), 2u);
}

TEST_F(RunningTicker, FindsFilesOfAFurtherCommandLineInItsFolder) {
  QTemporaryDir folder;
  QFile file(folder.filePath(u"lines.txt"_s));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write("last\n");
  file.close();
  ticker.run({u"--tail"_s, u"lines.txt"_s}, folder.path());
  EXPECT_EQ(ticker.display().waitingLineCount(), 1u);
}

TEST_F(RunningTicker, AddsNothingOfACommandLineThatCannotBeDone) {
  EXPECT_THROW(ticker.run({u"--text"_s, u"one"_s, u"--image"_s, u"missing.png"_s}, u"/"_s),
               RunTimeError);
  EXPECT_THROW(ticker.run({u"--text"_s, u"one"_s, u"--watch"_s, u"missing.txt"_s}, u"/"_s),
               RunTimeError);
  EXPECT_THROW(ticker.run({u"--dance"_s}, u"/"_s), UsageError);
  EXPECT_EQ(waiting(), 0u);
}

TEST_F(RunningTicker, ReadsTheLinesOfSeveralCommandLines) {
  int ends[2][2];
  for (auto& pipe : ends) {
    ASSERT_EQ(::pipe(pipe), 0);
    const QDBusUnixFileDescriptor input(pipe[0]);
    ::close(pipe[0]);
    ticker.run({u"--stdin"_s, u"--loop"_s, u"forever"_s}, u"/"_s, input);
  }
  for (const auto& pipe : ends)
    ASSERT_EQ(::write(pipe[1], "line\n", 5), 5);
  EXPECT_TRUE(waitUntil([&] { return ticker.display().waitingLineCount() == 2; }));
  for (const auto& pipe : ends)
    ::close(pipe[1]);
}

TEST_F(RunningTicker, ShowsLinesInTheLookOfTheirOwnCommandLine) {
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  const QDBusUnixFileDescriptor input(ends[0]);
  ::close(ends[0]);
  ticker.run({u"--stdin"_s, u"--color"_s, u"red"_s, u"--loop"_s, u"forever"_s}, u"/"_s, input);
  ASSERT_EQ(::write(ends[1], "line\n", 5), 5);
  ::close(ends[1]);
  Ref<ZQTextTickerSign> sign;
  const auto isOnStrip = [&] {
    for (const QueuedSign& queued : ticker.display().queuedSigns(ticker.time()))
      sign = std::dynamic_pointer_cast<ZQTextTickerSign>(queued.sign);
    return sign != nullptr;
  };
  ASSERT_TRUE(waitUntil(isOnStrip));
  const Any color = sign->text()->attributeAtIndex(ForegroundColorAttributeName, 0);
  EXPECT_EQ(objectOf<Color>(color)->qColor(), QColor(Qt::red));
  const Any font = sign->text()->attributeAtIndex(FontAttributeName, 0);
  EXPECT_EQ(objectOf<Font>(font), ticker.display().defaultFont());
}

TEST_F(RunningTicker, SaysOfLinesWhereTheyComeFrom) {
  QTemporaryDir folder;
  QFile file(folder.filePath(u"lines.txt"_s));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write("last\n");
  file.close();
  ticker.run({u"--tail"_s, u"lines.txt"_s}, folder.path());
  const std::vector<QueuedSign> queued = ticker.display().queuedSigns(ticker.time());
  ASSERT_EQ(queued.size(), 1u);
  EXPECT_EQ(queued.front().origin.senderName, u"lines.txt"_s);
}

TEST_F(RunningTicker, HasOneClock) {
  ticker.run({u"--clock"_s, u"%H"_s}, u"/"_s);
  ticker.run({u"--clock"_s, u"%H:%M"_s}, u"/"_s);
  EXPECT_EQ(waiting(), 1u);
}

TEST_F(RunningTicker, StylesTextsOfAFurtherCommandLineByItsOwnOptions) {
  EXPECT_EQ(ticker.lookFor({}).font, ticker.display().defaultFont());
  StripOptions sources;
  sources.font = FontRequest{u"DejaVu Sans 30"_s};
  sources.color = Qt::red;
  EXPECT_EQ(ticker.lookFor(sources).font->pointSize(), 30);
  EXPECT_EQ(ticker.lookFor(sources).size, ticker.display().size());
}

TEST_F(RunningTicker, OpensTheQueueForAFurtherCommandLineWithoutAnythingToShow) {
  ticker.run({}, u"/"_s);
  EXPECT_TRUE(isQueueShown());
}

TEST_F(RunningTicker, OpensNoWindowWhereItIsAskedNotTo) {
  ticker.run({u"--no-window"_s}, u"/"_s);
  ticker.run({u"--text"_s, u"one"_s}, u"/"_s);
  EXPECT_FALSE(isQueueShown());
}

TEST_F(RunningTicker, OpensTheQueueFromTheMenu) {
  ticker.widget().menu().queue().trigger();
  EXPECT_TRUE(isQueueShown());
}

TEST_F(RunningTicker, EndsWhileASignIsBeingEdited) {
  auto other = std::make_unique<Ticker>(options());
  other->show(text(u"one"_s, ZQEndlessLoopCount));
  other->show(text(u"two"_s, ZQEndlessLoopCount));
  other->showQueue();
  QueueWindow* window = queueWindow();
  ASSERT_TRUE(window);
  QueueTable& table = window->table();
  table.refreshRows();
  table.setCurrentIndex(window->model().index(1, QueueModel::TextColumn));
  table.editCurrent(QueueModel::TextColumn);
  ASSERT_TRUE(table.indexWidget(table.currentIndex()));
  other.reset();
  EXPECT_FALSE(queueWindow());
}

TEST_F(RunningTicker, DoesNotFinishWhileAWindowIsOpen) {
  ticker.showQueue();
  ticker.displayChanged();
  bool hasPassed = false;
  QMetaObject::invokeMethod(
      &ticker, [&] { hasPassed = true; }, Qt::QueuedConnection);
  EXPECT_TRUE(waitUntil([&] { return hasPassed; }));
  EXPECT_EQ(finishedCount, 0);
  queueWindow()->close();
  EXPECT_TRUE(waitUntil([&] { return finishedCount == 1; }));
}
