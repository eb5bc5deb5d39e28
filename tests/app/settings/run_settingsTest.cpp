// What the command line says, over what the settings say.
#include "app/settings/run_settings.h"

#include "app/commands/failures.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::app;

namespace {
RunOptions run(const char* line, const Settings& settings) {
  return readRunOptionsOver(settings, QString::fromUtf8(line).split(u' ', Qt::SkipEmptyParts));
}

// Every setting other than its default, for an upright strip.
Settings chosen() {
  Settings settings;
  settings.direction = ScrollDirection::Down;
  settings.speed = 10;
  settings.font = FontRequest{u"Serif"_s};
  settings.color = Qt::red;
  settings.background = Qt::blue;
  settings.position = Edge::Left;
  settings.screen = u"HDMI-1"_s;
  settings.height = 300;
  settings.width = 100;
  settings.autoscale = true;
  settings.showsControlBar = false;
  settings.pausesOnHover = false;
  settings.reducesMotion = true;
  settings.feeds = {{QUrl(u"https://a/"_s)}, 7.0, 3};
  return settings;
}
} // namespace

TEST(RunSettings, AreTakenWhereTheCommandLineSaysNothing) {
  const RunOptions options = run("", chosen());
  EXPECT_EQ(options.strip.direction, ScrollDirection::Down);
  EXPECT_EQ(options.strip.speed, 10);
  EXPECT_EQ(options.strip.font->text, u"Serif"_s);
  EXPECT_EQ(options.strip.color, QColor(Qt::red));
  EXPECT_EQ(options.strip.background, QColor(Qt::blue));
  EXPECT_EQ(options.edge, Edge::Left);
  EXPECT_EQ(options.screen, u"HDMI-1"_s);
  EXPECT_EQ(options.strip.height, 300);
  EXPECT_EQ(options.strip.width, 100);
  EXPECT_TRUE(options.strip.autoscale);
  EXPECT_FALSE(options.showsControlBar);
  EXPECT_FALSE(options.pausesOnHover);
  EXPECT_EQ(options.reducesMotion, true);
  EXPECT_EQ(options.strip.feeds, chosen().feeds);
}

TEST(RunSettings, GiveWayToTheCommandLine) {
  const RunOptions options =
      run("--text a --direction horizontal --speed 20 --font Sans --color lime --background black "
          "--position top --screen DP-1 --height 24 --width 800 --no-autoscale --control-bar "
          "--pause-on-hover on --reduced-motion off",
          chosen());
  EXPECT_EQ(options.strip.direction, ScrollDirection::Left);
  EXPECT_EQ(options.strip.speed, 20);
  EXPECT_EQ(options.strip.font->text, u"Sans"_s);
  EXPECT_EQ(options.strip.color, QColor(Qt::green));
  EXPECT_EQ(options.strip.background, QColor(Qt::black));
  EXPECT_EQ(options.edge, Edge::Top);
  EXPECT_EQ(options.screen, u"DP-1"_s);
  EXPECT_EQ(options.strip.height, 24);
  EXPECT_EQ(options.strip.width, 800);
  EXPECT_FALSE(options.strip.autoscale);
  EXPECT_TRUE(options.showsControlBar);
  EXPECT_TRUE(options.pausesOnHover);
  EXPECT_EQ(options.reducesMotion, false);
  const RunOptions feeds = run("--feed https://b/ --feed-items 5 --feed-interval 9", chosen());
  EXPECT_EQ(feeds.strip.feeds, (FeedOptions{{QUrl(u"https://b/"_s)}, 9.0, 5}));
  EXPECT_EQ(run("--screen primary", chosen()).screen, QString());
}

TEST(RunSettings, BringFeedsWhereNothingElseIsToBeShown) {
  EXPECT_EQ(run("--speed 20", chosen()).strip.feeds.feeds, chosen().feeds.feeds);
  for (const char* line :
       {"--text a", "--image a", "--sign a", "--clock", "--tail a", "--stdin", "--watch a"})
    EXPECT_TRUE(run(line, chosen()).strip.feeds.feeds.empty()) << line;
  EXPECT_EQ(run("--feed-items 5", chosen()).strip.feeds.itemsPerFeed, 5u);
}

TEST(RunSettings, FollowLaterSettings) {
  RunOptions options = run("--text a --speed 20", Settings());
  adoptSettings(options, chosen());
  EXPECT_EQ(options.strip.speed, 20) << "said by the command line";
  EXPECT_EQ(options.strip.background, QColor(Qt::blue));
  EXPECT_TRUE(options.strip.feeds.feeds.empty());
  adoptSettings(options, Settings());
  EXPECT_EQ(options.strip.background, QColor(Qt::white));
  EXPECT_EQ(options.strip.font, std::nullopt);
}

TEST(RunSettings, LeaveThePositionToADirectionThatItDoesNotFit) {
  EXPECT_EQ(run("--text a --direction horizontal", chosen()).edge, Edge::Automatic);
  EXPECT_THROW(run("--text a --position top", chosen()), UsageError);
}

TEST(RunSettings, AreOverriddenOneWayOnly) {
  EXPECT_THROW(run("--text a --autoscale --no-autoscale", Settings()), UsageError);
  EXPECT_THROW(run("--text a --control-bar --no-control-bar", Settings()), UsageError);
}
