#include "app/settings/run_settings.h"

#include "app/commands/failures.h"
#include "app/commands/sign_loading.h"
#include "app/settings/ChosenScreen.h"

#include <QtCore/QLoggingCategory>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
Q_LOGGING_CATEGORY(settingsLog, "zqticker.settings")
} // namespace

void adoptSettings(RunOptions& options, const Settings& settings) {
  StripOptions& strip = options.strip;
  const auto isFree = [&](const QString& name) { return !options.given.contains(name); };
  if (isFree(u"direction"_s))
    strip.direction = settings.direction;
  if (isFree(u"speed"_s))
    strip.speed = settings.speed;
  if (isFree(u"font"_s))
    strip.font = settings.font;
  if (isFree(u"color"_s))
    strip.color = settings.color;
  if (isFree(u"background"_s))
    strip.background = settings.background;
  if (isFree(u"position"_s))
    options.edge = settings.position;
  if (isFree(u"screen"_s))
    options.screen = settings.screen;
  if (isFree(u"height"_s))
    strip.height = settings.height;
  if (isFree(u"width"_s))
    strip.width = settings.width;
  if (isFree(u"autoscale"_s) && isFree(u"no-autoscale"_s))
    strip.autoscale = settings.autoscale;
  if (isFree(u"fade"_s))
    strip.fade = settings.fade;
  if (isFree(u"control-bar"_s) && isFree(u"no-control-bar"_s))
    options.showsControlBar = settings.showsControlBar;
  if (isFree(u"pause-on-hover"_s))
    options.pausesOnHover = settings.pausesOnHover;
  if (isFree(u"reduced-motion"_s))
    options.reducesMotion = settings.reducesMotion;
  if (!options.showsOwn())
    strip.feeds.feeds = settings.feeds.feeds;
  if (isFree(u"feed-items"_s))
    strip.feeds.itemsPerFeed = settings.feeds.itemsPerFeed;
  if (isFree(u"feed-interval"_s))
    strip.feeds.intervalMinutes = settings.feeds.intervalMinutes;
  if (isFree(u"position"_s) && !fitsDirection(options.edge, strip.isHorizontal()))
    options.edge = Edge::Automatic;
}

void leaveOutUnknownFont(RunOptions& options) {
  if (!options.strip.font || options.given.contains(u"font"_s))
    return;
  try {
    // Any size will do.
    findFont(*options.strip.font, 1);
  } catch (const CommandFailure& failure) {
    qCWarning(settingsLog).noquote()
        << QString(u"settings: "_s + failure.message() + u"; left out"_s);
    options.strip.font = std::nullopt;
  }
}

void requireScreen(const RunOptions& options) {
  const QStringList names = screenNames();
  if (options.given.contains(u"screen"_s) && !options.screen.isEmpty() &&
      !names.contains(options.screen))
    throw RunTimeError(u"--screen "_s + quotedForMessage(options.screen) +
                       u": no such screen (there is "_s + names.join(u", ") + u')');
}

} // namespace zq::app
