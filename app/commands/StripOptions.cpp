#include "app/commands/StripOptions.h"

#include "app/commands/failures.h"
#include "app/commands/strip_commands.h"
#include "app/commands/strip_values.h"
#include "app/intake/LineSplitter.h"
#include "app/services/ClockText.h"
#include "app/settings/run_settings.h"
#include "zqticker/signs/ZQTickerSign.h"

#include <limits>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
const QString UsualClockPattern = u"%a %e %b %H:%M"_s;
constexpr double LongestDelay = 1e9;
constexpr int MostFrames = 1'000'000;
constexpr double LargestScale = 16;
constexpr double SmallestScale = 0.1;

// The option's value made showable. A text of nothing but white space would show nothing.
QString textOf(const ParsedOption& option, const QString& value) {
  const QString text = showableLine(value);
  if (text.trimmed().isEmpty())
    throw UsageError(option.text() + u": the text is empty"_s);
  return text;
}

QString fileOf(const ParsedOption& option, const QString& value) {
  if (value.isEmpty())
    throw UsageError(option.text() + u": the file name is empty"_s);
  return value;
}

SignSource textSource(const ParsedOption& option) {
  return {SignSource::Kind::Text, {}, textOf(option, option.values[0]), option.text()};
}

SignSource fileSource(SignSource::Kind kind, const ParsedOption& option) {
  return {kind, fileOf(option, option.values[0]), {}, option.text()};
}

SignSource clockSource(const ParsedOption& option) {
  const QString pattern = option.values.isEmpty() ? UsualClockPattern : option.values.first();
  if (!ClockText::make(pattern))
    throw UsageError(option.text() +
                     u": no time can be written by it (write it as \"%H:%M\"; an apostrophe in its "
                     u"text stands twice)"_s);
  return {SignSource::Kind::Clock, {}, pattern, option.text()};
}

// A file that is named once.
QString newFileOf(const ParsedOption& option, const QStringList& before) {
  const QString file = fileOf(option, option.values.first());
  if (before.contains(file))
    throw UsageError(option.text() + u": given twice"_s);
  return file;
}

} // namespace

void addFeed(FeedOptions& feeds, const ParsedOption& option) {
  feeds.feeds.push_back(feedOf(option, feeds.feeds));
}

void addFile(QStringList& files, const ParsedOption& option) {
  files.append(newFileOf(option, files));
}

bool readStripOption(StripOptions& options, const ParsedOption& option) {
  const QString& name = option.name;
  if (name == "text"_L1) {
    options.sources.push_back(textSource(option));
  } else if (name == "image"_L1) {
    options.sources.push_back(fileSource(SignSource::Kind::Image, option));
  } else if (name == "combo"_L1) {
    SignSource source = fileSource(SignSource::Kind::Combo, option);
    source.text = textOf(option, option.values[1]);
    options.sources.push_back(source);
  } else if (name == "sign"_L1) {
    options.sources.push_back(fileSource(SignSource::Kind::Sign, option));
  } else if (name == "clock"_L1) {
    options.sources.push_back(clockSource(option));
  } else if (name == "feed"_L1) {
    addFeed(options.feeds, option);
  } else if (name == "feed-items"_L1) {
    options.feeds.itemsPerFeed = feedItemsOf(option);
  } else if (name == "feed-interval"_L1) {
    options.feeds.intervalMinutes = feedIntervalOf(option);
  } else if (name == "tail"_L1) {
    addFile(options.files.tailed, option);
  } else if (name == "stdin"_L1) {
    options.readsStandardInput = true;
  } else if (name == "direction"_L1) {
    options.direction = directionOf(option);
  } else if (name == "speed"_L1) {
    options.speed = speedOf(option);
  } else if (name == "width"_L1) {
    options.width = sideOf(option);
  } else if (name == "height"_L1) {
    options.height = sideOf(option);
  } else if (name == "font"_L1) {
    options.font = fontOf(option);
  } else if (name == "color"_L1) {
    options.color = colorOf(option);
  } else if (name == "background"_L1) {
    options.background = colorOf(option);
  } else if (name == "autoscale"_L1) {
    options.autoscale = true;
  } else if (name == "fade"_L1) {
    options.fade = fadeOf(option);
  } else if (name == "loop"_L1) {
    options.loopCount = loopCountOf(option);
  } else if (name == "delay"_L1) {
    options.loopDelay = numberOf(option, 0, LongestDelay);
  } else if (name == "continuous"_L1) {
    options.continuous = true;
  } else {
    return false;
  }
  return true;
}

namespace {
// Settings of feeds are for feeds.
void requireFeeds(const StripOptions& options, const std::vector<ParsedOption>& given) {
  if (!options.feeds.feeds.empty())
    return;
  for (const ParsedOption& option : given)
    if (option.name == "feed-items"_L1 || option.name == "feed-interval"_L1)
      throw UsageError(option.text() + u": there is no --feed that it could be for"_s);
}

void readSize(StripOptions& options, const ParsedOption& option) {
  const QStringList sides = option.values.first().split(u'x');
  bool isWidth = false;
  bool isHeight = false;
  if (sides.size() == 2) {
    options.width = sides[0].toDouble(&isWidth);
    options.height = sides[1].toDouble(&isHeight);
  }
  if (!isWidth || !isHeight)
    throw UsageError(option.text() + u": must be WIDTHxHEIGHT in points, such as 800x24"_s);
  for (const double side : {*options.width, *options.height})
    if (!(side >= ShortestSide && side <= LongestSide))
      throw UsageError(option.text() +
                       u": sides must be between %1 and %2"_s.arg(ShortestSide).arg(LongestSide));
}
} // namespace

std::int64_t loopCountOf(const ParsedOption& option) {
  if (option.values.first() == "forever"_L1)
    return ZQEndlessLoopCount;
  bool isNumber = false;
  const qint64 count = option.values.first().toLongLong(&isNumber);
  if (!isNumber || count < 1 || count > std::numeric_limits<std::int32_t>::max())
    throw UsageError(option.text() + u": must be a whole number from 1 on, or forever"_s);
  return count;
}

void requireSomethingToShow(const StripOptions& options, const QString& command) {
  if (options.sources.empty() && options.feeds.feeds.empty() && options.files.isEmpty() &&
      !options.readsStandardInput)
    throw UsageError(
        u"nothing to show: give --text, --image, --combo, --sign, --clock, --feed, "
        u"--tail, --stdin or, with run, --watch (see zqticker %1 --help)"_s.arg(command));
}

bool fitsDirection(Edge edge, bool isHorizontal) {
  switch (edge) {
  case Edge::Top:
  case Edge::Bottom:
    return isHorizontal;
  case Edge::Left:
  case Edge::Right:
    return !isHorizontal;
  case Edge::Automatic:
  case Edge::Floating:
    break;
  }
  return true;
}

bool RunOptions::showsOwn() const {
  for (const QLatin1StringView name : {"text"_L1, "image"_L1, "combo"_L1, "sign"_L1, "clock"_L1,
                                       "feed"_L1, "tail"_L1, "stdin"_L1, "watch"_L1})
    if (given.contains(name))
      return true;
  return false;
}

RunOptions readRunOptions(const QStringList& arguments) {
  return readRunOptionsOver(Settings(), arguments);
}

RunOptions readRunOptionsOver(const Settings& settings, const QStringList& arguments) {
  RunOptions options;
  const auto given = parseOptions(runTable(), arguments);
  for (const ParsedOption& option : given) {
    options.given.insert(option.name);
    if (option.name == "position"_L1)
      options.edge = edgeOf(option);
    else if (option.name == "screen"_L1)
      options.screen = screenOf(option);
    else if (option.name == "no-autoscale"_L1)
      options.strip.autoscale = false;
    else if (option.name == "control-bar"_L1 || option.name == "no-control-bar"_L1)
      options.showsControlBar = option.name == "control-bar"_L1;
    else if (option.name == "pause-on-hover"_L1)
      options.pausesOnHover = isOnOf(option);
    else if (option.name == "reduced-motion"_L1)
      options.reducesMotion = isOnOf(option);
    else if (option.name == "no-window"_L1)
      options.opensWindow = false;
    else if (option.name == "separate"_L1)
      options.isSeparate = true;
    else if (option.name == "trace"_L1)
      options.trace = fileOf(option, option.values.first());
    else if (option.name == "watch"_L1)
      addFile(options.strip.files.watched, option);
    else
      readStripOption(options.strip, option);
  }
  adoptSettings(options, settings);
  requireFeeds(options.strip, given);
  if (!fitsDirection(options.edge, options.strip.isHorizontal()))
    throw UsageError(
        options.strip.isHorizontal()
            ? u"--position: a horizontal strip stands at the top or the bottom, or floats"_s
            : u"--position: a vertical strip stands left or right, or floats"_s);
  for (const QString& name : {u"autoscale"_s, u"control-bar"_s})
    if (options.given.contains(name) && options.given.contains(u"no-"_s + name))
      throw UsageError(u"--"_s + name + u": given together with --no-"_s + name);
  return options;
}

RenderOptions readRenderOptions(const QStringList& arguments) {
  RenderOptions options;
  const auto given = parseOptions(renderTable(), arguments);
  for (const ParsedOption& option : given) {
    if (option.name == "size"_L1)
      readSize(options.strip, option);
    else if (option.name == "frames"_L1)
      options.frames = static_cast<int>(integerOf(option, 1, MostFrames));
    else if (option.name == "fps"_L1)
      options.framesPerSecond = numberOf(option, 0.001, 1000);
    else if (option.name == "scale"_L1)
      options.scale = numberOf(option, SmallestScale, LargestScale);
    else if (option.name == "start"_L1)
      options.start = numberOf(option, 0, 1e6);
    else if (option.name == "output"_L1)
      options.output = fileOf(option, option.values.first());
    else
      readStripOption(options.strip, option);
  }
  requireSomethingToShow(options.strip, renderTable().command);
  requireFeeds(options.strip, given);
  if (options.output.isEmpty())
    throw UsageError(u"--output: missing; say where the pictures go, a folder or a file.png"_s);
  return options;
}

SignOptions readSignOptions(const QStringList& arguments) {
  SignOptions options;
  for (const ParsedOption& option : parseOptions(signTable(), arguments)) {
    const QString& value = option.values.isEmpty() ? QString() : option.values.first();
    if (option.name == "text"_L1)
      options.text = textSource(option);
    else if (option.name == "image"_L1)
      options.image = fileSource(SignSource::Kind::Image, option);
    else if (option.name == "font"_L1)
      options.font = fontOf(option);
    else if (option.name == "color"_L1)
      options.color = colorOf(option);
    else if (option.name == "loop"_L1)
      options.loopCount = loopCountOf(option);
    else if (option.name == "delay"_L1)
      options.loopDelay = numberOf(option, 0, LongestDelay);
    else if (option.name == "continuous"_L1)
      options.continuous = true;
    else if (option.name == "identifier"_L1)
      options.identifier = value;
    else if (option.name == "action"_L1)
      options.action = value;
    else
      options.output = fileOf(option, value);
  }
  if (!options.text && !options.image)
    throw UsageError(
        u"nothing to write: give --text, --image or both (see zqticker sign --help)"_s);
  if (options.output.isEmpty())
    throw UsageError(u"--output: missing; say which file to write"_s);
  if (!options.text && (options.font || options.color))
    throw UsageError(u"--%1: there is no --text that it could style"_s.arg(
        options.font ? u"font"_s : u"color"_s));
  return options;
}

} // namespace zq::app
