#include "app/commands/StripOptions.h"

#include "app/commands/failures.h"
#include "app/commands/strip_commands.h"
#include "app/settings/Settings.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::app;

namespace {
QStringList words(const char* line) {
  return QString::fromUtf8(line).split(u' ', Qt::SkipEmptyParts);
}

StripOptions strip(const char* line) {
  return readRunOptions(words(line)).strip;
}

template <class Read>
std::string failure(Read read, const QStringList& arguments) {
  try {
    read(arguments);
  } catch (const UsageError& error) {
    return error.message().toStdString();
  }
  return "none";
}

std::string runFailure(const char* line) {
  return failure(readRunOptions, words(line));
}
} // namespace

TEST(StripOptions, KeepSourcesInTheirOrder) {
  const StripOptions options =
      strip("--text one --image a.png --combo b.png two --sign c.sign --text three");
  ASSERT_EQ(options.sources.size(), 5u);
  EXPECT_EQ(options.sources[0].kind, SignSource::Kind::Text);
  EXPECT_EQ(options.sources[0].text, u"one"_s);
  EXPECT_EQ(options.sources[1].kind, SignSource::Kind::Image);
  EXPECT_EQ(options.sources[1].file, u"a.png"_s);
  EXPECT_EQ(options.sources[2].kind, SignSource::Kind::Combo);
  EXPECT_EQ(options.sources[2].file, u"b.png"_s);
  EXPECT_EQ(options.sources[2].text, u"two"_s);
  EXPECT_EQ(options.sources[2].argument, u"--combo b.png two"_s);
  EXPECT_EQ(options.sources[3].kind, SignSource::Kind::Sign);
  EXPECT_EQ(options.sources[3].file, u"c.sign"_s);
  EXPECT_EQ(options.sources[4].text, u"three"_s);
}

TEST(StripOptions, HaveDefaults) {
  const StripOptions options = strip("--text one");
  EXPECT_FALSE(options.readsStandardInput);
  EXPECT_EQ(options.direction, ScrollDirection::Left);
  EXPECT_EQ(options.speed, 60);
  EXPECT_FALSE(options.width || options.height || options.font || options.color);
  EXPECT_EQ(options.background, QColor(Qt::white));
  EXPECT_FALSE(options.autoscale || options.continuous);
  EXPECT_FALSE(options.loopCount || options.loopDelay);
}

TEST(StripOptions, KnowFourDirections) {
  const std::vector<std::pair<const char*, ScrollDirection>> directions{
      {"left", ScrollDirection::Left},       {"right", ScrollDirection::Right},
      {"up", ScrollDirection::Up},           {"down", ScrollDirection::Down},
      {"horizontal", ScrollDirection::Left}, {"vertical", ScrollDirection::Up}};
  for (const auto& [word, direction] : directions) {
    const StripOptions options = strip((std::string("--text a --direction ") + word).c_str());
    EXPECT_EQ(options.direction, direction) << word;
    EXPECT_EQ(options.isHorizontal(), std::string(word) == "left" || std::string(word) == "right" ||
                                          std::string(word) == "horizontal");
  }
}

TEST(StripOptions, ReadEveryOption) {
  const StripOptions options =
      strip("--stdin --direction vertical --speed 12.5 --height 300 --width 200 --color navy "
            "--background #80ffffff --autoscale --loop 3 --delay 1.5 --continuous --font=Sans");
  EXPECT_TRUE(options.readsStandardInput);
  EXPECT_EQ(options.direction, ScrollDirection::Up);
  EXPECT_EQ(options.speed, 12.5);
  EXPECT_EQ(options.height, 300);
  EXPECT_EQ(options.width, 200);
  EXPECT_EQ(options.color, QColor(0, 0, 128));
  EXPECT_EQ(options.background, QColor(255, 255, 255, 128));
  EXPECT_TRUE(options.autoscale);
  EXPECT_EQ(options.loopCount, 3);
  EXPECT_EQ(options.loopDelay, 1.5);
  EXPECT_TRUE(options.continuous);
  EXPECT_EQ(options.font->text, u"Sans"_s);
  EXPECT_EQ(strip("--stdin --loop forever").loopCount, -1);
}

TEST(StripOptions, NameFilesOnceEach) {
  const StripOptions options = strip("--tail a --watch b --tail b --watch a");
  EXPECT_EQ(options.files.tailed, (QStringList{u"a"_s, u"b"_s}));
  EXPECT_EQ(options.files.watched, (QStringList{u"b"_s, u"a"_s}));
  EXPECT_EQ(runFailure("--tail a --tail a"), "--tail a: given twice");
  EXPECT_EQ(runFailure("--watch a --watch a"), "--watch a: given twice");
  EXPECT_EQ(failure(readRunOptions, {u"--tail"_s, u""_s}), "--tail : the file name is empty");
  EXPECT_EQ(failure(readRunOptions, {u"--watch"_s, u""_s}), "--watch : the file name is empty");
}

TEST(StripOptions, PutTextOnOneLine) {
  EXPECT_EQ(readRunOptions({u"--text"_s, u"a\nb\x1b[1m"_s}).strip.sources[0].text, u"a b"_s);
}

TEST(StripOptions, RefuseWrongValues) {
  EXPECT_EQ(runFailure("--text a --speed fast"), "--speed fast: not a number");
  EXPECT_EQ(runFailure("--text a --speed 0"), "--speed 0: must be between 0.1 and 100000");
  EXPECT_EQ(runFailure("--text a --speed -5"), "--speed -5: must be between 0.1 and 100000");
  EXPECT_EQ(runFailure("--text a --speed nan"), "--speed nan: not a number");
  EXPECT_EQ(runFailure("--text a --height 0"), "--height 0: must be between 1 and 16384");
  EXPECT_EQ(runFailure("--text a --direction upwards"),
            "--direction upwards: must be left or right or up or down or horizontal or vertical");
  EXPECT_EQ(runFailure("--text a --color nocolor"),
            "--color nocolor: not a color (write a name such as navy, or #rrggbb, or #aarrggbb)");
  EXPECT_EQ(runFailure("--text a --background #12345"),
            "--background #12345: not a color (write a name such as navy, or #rrggbb, or "
            "#aarrggbb)");
  EXPECT_EQ(runFailure("--text a --loop 0"),
            "--loop 0: must be a whole number from 1 on, or forever");
  EXPECT_EQ(runFailure("--text a --loop 5000000000"),
            "--loop 5000000000: must be a whole number from 1 on, or forever");
  EXPECT_EQ(runFailure("--text a --delay -1"), "--delay -1: must be between 0 and 1000000000");
  EXPECT_EQ(runFailure("--text a --position middle"),
            "--position middle: must be top or bottom or left or right or floating");
  EXPECT_EQ(runFailure("--text a --position left"),
            "--position: a horizontal strip stands at the top or the bottom, or floats");
  EXPECT_EQ(runFailure("--text a --direction vertical --position top"),
            "--position: a vertical strip stands left or right, or floats");
}

TEST(StripOptions, RefuseEmptyNamesAndTexts) {
  EXPECT_EQ(failure(readRunOptions, {u"--text"_s, u""_s}), "--text : the text is empty");
  EXPECT_EQ(failure(readRunOptions, {u"--text"_s, u" \t"_s}), "--text  ?: the text is empty");
  EXPECT_EQ(failure(readRunOptions, {u"--combo"_s, u"a.png"_s, u""_s}),
            "--combo a.png : the text is empty");
  EXPECT_EQ(failure(readRunOptions, {u"--image"_s, u""_s}), "--image : the file name is empty");
  EXPECT_EQ(failure(readRunOptions, {u"--text"_s, u"a"_s, u"--font"_s, u" "_s}),
            "--font  : the font name is empty");
}

TEST(StripOptions, TellWhetherThereIsSomethingToShow) {
  const auto nothingToShow = [](const char* arguments) {
    try {
      requireSomethingToShow(readRunOptions(words(arguments)).strip, u"run"_s);
      return std::string();
    } catch (const UsageError& error) {
      return error.message().toStdString();
    }
  };
  EXPECT_EQ(nothingToShow("--stdin"), "");
  EXPECT_EQ(nothingToShow(""),
            "nothing to show: give --text, --image, --combo, --sign, --clock, --feed, "
            "--tail, --stdin or, with run, --watch "
            "(see zqticker run --help)");
  EXPECT_EQ(nothingToShow("--speed 50"), nothingToShow(""));
}

TEST(RunOptions, ReadThePosition) {
  EXPECT_EQ(readRunOptions(words("--text a")).edge, Edge::Automatic);
  EXPECT_EQ(readRunOptions(words("--text a --position top")).edge, Edge::Top);
  EXPECT_EQ(readRunOptions(words("--text a --position bottom")).edge, Edge::Bottom);
  EXPECT_TRUE(readRunOptions(words("--text a")).showsControlBar);
  EXPECT_FALSE(readRunOptions(words("--text a --no-control-bar")).showsControlBar);
  EXPECT_TRUE(readRunOptions(words("--text a")).pausesOnHover);
  EXPECT_FALSE(readRunOptions(words("--text a --pause-on-hover off")).pausesOnHover);
  EXPECT_THROW(readRunOptions(words("--text a --pause-on-hover maybe")), UsageError);
  EXPECT_EQ(readRunOptions(words("--text a")).reducesMotion, std::nullopt);
  EXPECT_EQ(readRunOptions(words("--text a --reduced-motion on")).reducesMotion, true);
  EXPECT_THROW(readRunOptions(words("--text a --reduced-motion maybe")), UsageError);
  EXPECT_EQ(readRunOptions(words("--text a --direction vertical --position left")).edge,
            Edge::Left);
  EXPECT_EQ(readRunOptions(words("--text a --direction vertical --position right")).edge,
            Edge::Right);
}

TEST(RenderOptions, ReadEveryOption) {
  const RenderOptions options = readRenderOptions(
      words("--text a --size 400x24.5 --frames 90 --fps 29.97 --scale 1.5 --start 2 --output out"));
  EXPECT_EQ(options.strip.width, 400);
  EXPECT_EQ(options.strip.height, 24.5);
  EXPECT_EQ(options.frames, 90);
  EXPECT_EQ(options.framesPerSecond, 29.97);
  EXPECT_EQ(options.scale, 1.5);
  EXPECT_EQ(options.start, 2);
  EXPECT_EQ(options.output, u"out"_s);
  EXPECT_EQ(readRenderOptions(words("--text a --output out")).frames, 1);
}

TEST(RenderOptions, RefuseWrongValues) {
  const auto wrong = [](const char* line) {
    return failure(readRenderOptions, words("--text a --output out") + words(line));
  };
  for (const char* size : {"400", "400x", "x24", "axb", "400x24x3", ""})
    EXPECT_EQ(wrong((std::string("--size=") + size).c_str()),
              std::string("--size ") + size + ": must be WIDTHxHEIGHT in points, such as 800x24");
  EXPECT_EQ(wrong("--size 0x24"), "--size 0x24: sides must be between 1 and 16384");
  EXPECT_EQ(wrong("--size 400xnan"), "--size 400xnan: sides must be between 1 and 16384");
  EXPECT_EQ(wrong("--frames 0"), "--frames 0: must be between 1 and 1000000");
  EXPECT_EQ(wrong("--frames 1.5"), "--frames 1.5: not a whole number");
  EXPECT_EQ(wrong("--fps 0"), "--fps 0: must be between 0.001 and 1000");
  EXPECT_EQ(wrong("--scale 100"), "--scale 100: must be between 0.1 and 16");
  EXPECT_EQ(wrong("--position top"), "--position: unknown option (see zqticker render --help)");
  EXPECT_EQ(failure(readRenderOptions, words("--text a")),
            "--output: missing; say where the pictures go, a folder or a file.png");
  EXPECT_EQ(failure(readRenderOptions, words("--output out")),
            "nothing to show: give --text, --image, --combo, --sign, --clock, --feed, --tail, "
            "--stdin or, "
            "with run, --watch (see zqticker "
            "render --help)");
}

TEST(SignOptions, ReadEveryOption) {
  const SignOptions options =
      readSignOptions(words("--text a --image b.png --font Sans --color red --loop 2 --delay 3 "
                            "--continuous --identifier id --action http://a/ --output c.sign"));
  EXPECT_EQ(options.text->text, u"a"_s);
  EXPECT_EQ(options.image->file, u"b.png"_s);
  EXPECT_EQ(options.font->text, u"Sans"_s);
  EXPECT_EQ(options.color, QColor(Qt::red));
  EXPECT_EQ(options.loopCount, 2);
  EXPECT_EQ(options.loopDelay, 3);
  EXPECT_TRUE(options.continuous);
  EXPECT_EQ(options.identifier, u"id"_s);
  EXPECT_EQ(options.action, u"http://a/"_s);
  EXPECT_EQ(options.output, u"c.sign"_s);
}

TEST(SignOptions, RefuseWhatIsMissing) {
  EXPECT_EQ(failure(readSignOptions, words("--output a")),
            "nothing to write: give --text, --image or both (see zqticker sign --help)");
  EXPECT_EQ(failure(readSignOptions, words("--text a")),
            "--output: missing; say which file to write");
  EXPECT_EQ(failure(readSignOptions, words("--image a --font Sans --output b")),
            "--font: there is no --text that it could style");
  EXPECT_EQ(failure(readSignOptions, words("--text a --text b --output c")), "--text: given twice");
}

TEST(StripOptions, ReadFeeds) {
  const StripOptions options =
      strip("--feed https://example.org/a --feed file:///tmp/b.xml --feed-items 3 "
            "--feed-interval 0.5");
  ASSERT_EQ(options.feeds.feeds.size(), 2u);
  EXPECT_EQ(options.feeds.feeds[0], QUrl(u"https://example.org/a"_s));
  EXPECT_EQ(options.feeds.feeds[1], QUrl(u"file:///tmp/b.xml"_s));
  EXPECT_EQ(options.feeds.itemsPerFeed, 3u);
  EXPECT_EQ(options.feeds.intervalMinutes, 0.5);
  EXPECT_EQ(strip("--feed https://example.org/a").feeds.itemsPerFeed, 10u);
  EXPECT_EQ(strip("--feed https://example.org/a").feeds.intervalMinutes, std::nullopt);
}

TEST(StripOptions, RefuseSettingsOfFeedsWithoutAFeed) {
  EXPECT_EQ(runFailure("--text a --feed-items 3"),
            "--feed-items 3: there is no --feed that it could be for");
  EXPECT_EQ(runFailure("--feed-interval 5 --text a"),
            "--feed-interval 5: there is no --feed that it could be for");
}

TEST(StripOptions, RefuseWhatIsNoFeed) {
  for (const char* address : {"example.org/feed", "feed.xml", "/tmp/feed.xml", "ftp://example.org/",
                              "javascript:1", "https://", "http:///feed", "https://[x/", "-"}) {
    const std::string argument = std::string("--feed ") + address;
    EXPECT_EQ(runFailure(argument.c_str()),
              argument + ": not an address (write https://..., http://... or file:///...)");
  }
  EXPECT_EQ(failure(readRunOptions, {u"--feed"_s, u""_s}),
            "--feed : not an address (write https://..., http://... or file:///...)");
  EXPECT_EQ(runFailure("--feed http://a/ --feed http://a/"), "--feed http://a/: given twice");
  EXPECT_EQ(runFailure("--feed http://a/ --feed-items 0"),
            "--feed-items 0: must be between 1 and 1000");
  EXPECT_EQ(runFailure("--feed http://a/ --feed-interval 0"),
            "--feed-interval 0: must be between 0.001 and 10080");
}

TEST(StripOptions, TakeAClockAmongTheSources) {
  const StripOptions options = strip("--text one --clock %H:%M --text two");
  ASSERT_EQ(options.sources.size(), 3u);
  EXPECT_EQ(options.sources[1].kind, SignSource::Kind::Clock);
  EXPECT_EQ(options.sources[1].text, u"%H:%M"_s);
  EXPECT_EQ(strip("--clock --stdin").sources[0].text, u"%a %e %b %H:%M"_s);
}

TEST(StripOptions, RefuseClocksThatShowNoTime) {
  EXPECT_EQ(runFailure("--clock=%q"), "--clock %q: no time can be written by it (write it as "
                                      "\"%H:%M\"; an apostrophe in its text stands twice)");
  EXPECT_EQ(runFailure("--clock %H --clock %M"), "--clock: given twice");
}

TEST(StripOptions, LetTheEndsFadeOverSoManyPoints) {
  EXPECT_EQ(readRunOptions(words("--text a")).strip.fade, 0);
  EXPECT_EQ(readRunOptions(words("--text a --fade 25")).strip.fade, 25);
  EXPECT_EQ(readRunOptions(words("--text a --fade")).strip.fade, 40);
  EXPECT_EQ(readRunOptions(words("--fade --text a")).strip.fade, 40);
  EXPECT_EQ(readRenderOptions(words("--text a --fade 12.5 --output a.png")).strip.fade, 12.5);
  EXPECT_EQ(runFailure("--text a --fade wide"), "--fade wide: must be a number of points, or off");
  EXPECT_EQ(runFailure("--text a --fade 0.5"), "--fade 0.5: must be between 1 and 16384");
  Settings settings;
  settings.fade = 30;
  EXPECT_EQ(readRunOptionsOver(settings, words("--text a")).strip.fade, 30);
  EXPECT_EQ(readRunOptionsOver(settings, words("--text a --fade off")).strip.fade, 0);
}
