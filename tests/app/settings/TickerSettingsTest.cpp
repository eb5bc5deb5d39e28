// A running ticker that follows its settings.
#include "app/settings/SettingsStore.h"
#include "app/settings/run_settings.h"
#include "app/ticker/Ticker.h"

#include "app/commands/failures.h"
#include "app/commands/sign_loading.h"
#include "tests/app/XServer.h"
#include "tests/support/LogWatch.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/signs/ZQTextTickerSign.h"

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::platform;
using zq::app::testing::waitUntil;

namespace {
class TickerWithSettings : public ::testing::Test {
 protected:
  TickerWithSettings() { zq::testing::allowLog(u"does not support raise()"_s); }

  Ticker& start(const QStringList& arguments) {
    const RunOptions options =
        readRunOptionsOver(store.settings(), arguments + QStringList{u"--no-control-bar"_s});
    ticker = std::make_unique<Ticker>(options);
    if (options.showsOwn())
      ticker->add(options.strip);
    ticker->follow(store);
    return *ticker;
  }
  void set(const QString& name, const QStringList& values) { store.change({{name, values}}); }
  QUrl feed(const QString& name, const QStringList& titles) {
    QFile file(folder.filePath(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    QString items;
    for (const QString& title : titles)
      items += u"<item><title>"_s + title + u"</title></item>"_s;
    file.write((u"<rss version=\"2.0\"><channel>"_s + items + u"</channel></rss>"_s).toUtf8());
    return QUrl::fromLocalFile(file.fileName());
  }
  QRect room() const { return QGuiApplication::primaryScreen()->availableGeometry(); }

  QTemporaryDir folder;
  SettingsStore store{folder.filePath(u"settings.json"_s), folder.filePath(u"autostart"_s)};
  std::unique_ptr<Ticker> ticker;
};
} // namespace

TEST_F(TickerWithSettings, LooksAsTheySay) {
  store.change({{u"speed"_s, {u"90"_s}},
                {u"font"_s, {u"DejaVu Sans 30"_s}},
                {u"color"_s, {u"#ff0000"_s}},
                {u"height"_s, {u"50"_s}},
                {u"position"_s, {u"top"_s}}});
  const TickerDisplay& display = start({u"--text"_s, u"a"_s}).display();
  EXPECT_EQ(display.speed(), 90);
  EXPECT_EQ(display.defaultFont()->pointSize(), 30);
  EXPECT_TRUE(display.defaultTextColor()->isEqual(*Color::fromQColor(Qt::red)));
  EXPECT_EQ(display.size().height(), 50);
  EXPECT_EQ(ticker->widget().geometry().topLeft(), room().topLeft());
}

TEST_F(TickerWithSettings, ChangesAtOnce) {
  const TickerDisplay& display = start({u"--text"_s, u"a"_s}).display();
  set(u"speed"_s, {u"10"_s});
  EXPECT_EQ(display.speed(), 10);
  set(u"height"_s, {u"40"_s});
  EXPECT_EQ(display.size().height(), 40);
  EXPECT_EQ(ticker->widget().height(), 40);
  EXPECT_EQ(ticker->widget().geometry().bottom(), room().bottom());
  set(u"direction"_s, {u"vertical"_s});
  EXPECT_FALSE(display.isHorizontal());
  EXPECT_EQ(ticker->widget().geometry().right(), room().right());
  set(u"position"_s, {u"left"_s});
  EXPECT_EQ(ticker->widget().geometry().left(), room().left());
  set(u"width"_s, {u"77"_s});
  EXPECT_EQ(display.size().width(), 77);
  store.reset();
  EXPECT_TRUE(display.isHorizontal());
  EXPECT_EQ(display.speed(), 60);
  EXPECT_EQ(ticker->widget().geometry().size(), QSize(room().width(), 24));
}

TEST_F(TickerWithSettings, ChangesWhenAnotherProgramChangesThem) {
  const TickerDisplay& display = start({u"--text"_s, u"a"_s}).display();
  SettingsStore(store.path(), folder.filePath(u"autostart"_s)).change({{u"speed"_s, {u"33"_s}}});
  EXPECT_TRUE(waitUntil([&] { return display.speed() == 33; }));
}

TEST_F(TickerWithSettings, KeepsWhatTheCommandLineSays) {
  const TickerDisplay& display =
      start({u"--text"_s, u"a"_s, u"--speed"_s, u"20"_s, u"--position"_s, u"top"_s}).display();
  store.change({{u"speed"_s, {u"90"_s}}, {u"position"_s, {u"bottom"_s}}});
  EXPECT_EQ(display.speed(), 20);
  EXPECT_EQ(ticker->widget().geometry().top(), room().top());
  // Where the position does not fit any more, the strip still finds its place.
  set(u"direction"_s, {u"vertical"_s});
  EXPECT_EQ(ticker->widget().geometry().right(), room().right());
}

TEST_F(TickerWithSettings, MovesNothingWithSpeedAndColors) {
  start({u"--text"_s, u"a long line of text that stays where it is"_s, u"--speed"_s, u"1000"_s,
         u"--loop"_s, u"forever"_s});
  TickerDisplay& display = ticker->display();
  const Strip& strip = display.strip();
  ASSERT_TRUE(waitUntil([&] { return !strip.runs().empty(); }));
  display.setPaused(true, ticker->time());
  const double travel = strip.travel();
  const double length = strip.runs().front().length;
  const auto number = strip.runs().front().number;
  store.change(
      {{u"speed"_s, {u"10"_s}}, {u"color"_s, {u"#ff0000"_s}}, {u"background"_s, {u"#000000"_s}}});
  ASSERT_FALSE(strip.runs().empty());
  EXPECT_EQ(strip.travel(), travel);
  EXPECT_EQ(strip.runs().front().length, length);
  EXPECT_EQ(strip.runs().front().number, number);
  EXPECT_TRUE(display.isPaused()) << "another speed is for later";
}

TEST_F(TickerWithSettings, PaintsTheirBackground) {
  start({u"--stdin"_s});
  ticker->widget().show();
  const auto ground = [&] { return ticker->widget().grab().toImage().pixelColor(5, 5); };
  EXPECT_TRUE(waitUntil([&] { return ground() == QColor(Qt::white); }));
  set(u"background"_s, {u"#123456"_s});
  EXPECT_EQ(ground(), QColor(0x12, 0x34, 0x56));
  set(u"background"_s, {u"#80123456"_s});
  EXPECT_TRUE(ticker->widget().testAttribute(Qt::WA_TranslucentBackground));
  EXPECT_TRUE(ticker->widget().isVisible());
  set(u"background"_s, {u"#000000"_s});
  EXPECT_FALSE(ticker->widget().testAttribute(Qt::WA_TranslucentBackground));
  EXPECT_EQ(ground(), QColor(Qt::black));
}

TEST_F(TickerWithSettings, LeavesOutAFontThatIsNotThere) {
  start({u"--text"_s, u"a"_s});
  const QString before = ticker->display().defaultFont()->fontName();
  zq::testing::expectLog(u"settings: font No Such Font 30: unknown font; left out"_s);
  set(u"font"_s, {u"No Such Font 30"_s});
  EXPECT_EQ(ticker->display().defaultFont()->fontName(), before);
}

TEST_F(TickerWithSettings, ShowsTheirFeedsWhereNothingElseIsToBeShown) {
  const QUrl first = feed(u"a.xml"_s, {u"one"_s, u"two"_s});
  const QUrl second = feed(u"b.xml"_s, {u"three"_s});
  set(u"feeds"_s, {first.toString()});
  start({});
  TickerDisplay& display = ticker->display();
  ASSERT_TRUE(waitUntil([&] { return display.queuedSigns(ticker->time()).size() == 2; }));
  set(u"feeds"_s, {second.toString()});
  ASSERT_TRUE(waitUntil([&] {
    const auto signs = display.queuedSigns(ticker->time());
    return signs.size() == 1 && signs.front().text == u"three"_s;
  }));
  set(u"feeds"_s, {});
  ASSERT_TRUE(waitUntil([&] { return display.queuedSigns(ticker->time()).empty(); }));
  bool hasFinished = false;
  QObject::connect(ticker.get(), &Ticker::finished, ticker.get(), [&] { hasFinished = true; });
  set(u"feeds"_s, {first.toString()});
  EXPECT_TRUE(waitUntil([&] { return display.queuedSigns(ticker->time()).size() == 2; }));
  EXPECT_FALSE(hasFinished) << "new feeds may come";
}

TEST_F(TickerWithSettings, ShowsNoFeedsBesideWhatTheCommandLineNames) {
  set(u"feeds"_s, {feed(u"a.xml"_s, {u"one"_s}).toString()});
  start({u"--text"_s, u"a"_s, u"--loop"_s, u"forever"_s});
  set(u"feeds"_s, {feed(u"b.xml"_s, {u"two"_s}).toString()});
  EXPECT_EQ(ticker->display().queuedSigns(ticker->time()).size(), 1u);
}

TEST(ScreenOption, NamesTheScreensThatThereAre) {
  RunOptions options =
      readRunOptionsOver(Settings(), {u"--text"_s, u"a"_s, u"--screen"_s, u"NONE-1"_s});
  try {
    requireScreen(options);
    FAIL();
  } catch (const RunTimeError& error) {
    EXPECT_EQ(error.message(), u"--screen NONE-1: no such screen (there is "_s +
                                   QGuiApplication::primaryScreen()->name() + u')');
  }
  options.screen = QGuiApplication::primaryScreen()->name();
  requireScreen(options);
  options.screen.clear();
  requireScreen(options);
  // Of the settings one may be missing.
  Settings missing;
  missing.screen = u"NONE-1"_s;
  options = readRunOptionsOver(missing, {u"--text"_s, u"a"_s});
  requireScreen(options);
}
