#include "app/ticker/Ticker.h"

#include "app/access/DesktopWishes.h"
#include "app/access/StripVoice.h"
#include "app/access/high_contrast.h"
#include "app/commands/failures.h"
#include "app/commands/sign_loading.h"
#include "app/commands/strip_values.h"
#include "app/controls/ControlBar.h"
#include "app/controls/ControlBarButton.h"
#include "app/interaction/StripInteraction.h"
#include "app/queue/QueueWindow.h"
#include "app/queue/TickerQueue.h"
#include "app/services/ClockService.h"
#include "app/settings/SettingsStore.h"
#include "app/settings/SettingsWindow.h"
#include "app/settings/run_settings.h"
#include "app/settings/setting_table.h"
#include "app/ticker/SourceSet.h"
#include "app/ticker/StripPlace.h"
#include "app/ticker/window_place.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/signs/ZQTickerSign.h"

#include <QtCore/QDir>
#include <QtCore/QUuid>
#include <QtGui/QAction>
#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>

#include <exception>

using namespace Qt::StringLiterals;

namespace zq::app {

using namespace platform;

namespace {
// The control bar on the strip. A strip without one can be used all the same.
std::unique_ptr<ControlBar> makeControlBar(StripWidget& widget, ScrollDirection direction) {
  try {
    if (ControlBarButton::hasLook())
      return std::make_unique<ControlBar>(&widget, direction, widget.menu());
    printError(u"no control bar: its look, ControlBarButton.button, is missing"_s);
  } catch (const std::exception& exception) {
    printError(u"no control bar: its look, ControlBarButton.button, cannot be read: "_s +
               QString::fromUtf8(exception.what()));
  }
  return nullptr;
}

// Paths that begin in `folder` instead of this program's own.
void setFolder(StripOptions& options, const QString& folder) {
  const QDir start(folder);
  for (SignSource& source : options.sources)
    if (!source.file.isEmpty())
      source.file = start.absoluteFilePath(source.file);
  for (QStringList* paths : {&options.files.watched, &options.files.tailed})
    for (QString& path : *paths)
      path = start.absoluteFilePath(path);
}
} // namespace

Ticker::Ticker(const RunOptions& options)
    : options_(options), wasHorizontal_(options.strip.isHorizontal()), screen_(options.screen),
      display_(FrameClock::now()), updating_([this] { update(); }) {
  if (!screen_.screen())
    throw RunTimeError(u"the display has no screen"_s);
  widget_ = std::make_unique<StripWidget>(display_, options.strip.background);
  interaction_ = std::make_unique<StripInteraction>(*widget_, display_);
  place_ = std::make_unique<StripPlace>(*widget_, screen_);
  new StripVoice(*widget_, display_, interaction_->opener());
  updateLook();
  connect(place_.get(), &StripPlace::changed, this, &Ticker::updateLook);
  connect(widget_.get(), &StripWidget::finished, this, &Ticker::finishWhenDone,
          Qt::QueuedConnection);
  connectMenu();
}

Ticker::~Ticker() {
  // While all of it is still there: windows that close may change something.
  settingsWindow_.reset();
  queueWindow_.reset();
}

void Ticker::connectMenu() {
  StripMenu& menu = widget_->menu();
  StripCommands& commands = interaction_->commands();
  commands.setUsualSpeed(options_.strip.speed);
  connect(&commands, &StripCommands::speedChosen, this, &Ticker::chooseSpeed);
  connect(&commands, &StripCommands::signRemoved, this, &Ticker::displayChanged);
  connect(&menu, &StripMenu::directionChosen, this, &Ticker::chooseDirection);
  connect(&menu.hideStrip(), &QAction::triggered, this, &Ticker::hideStrip);
  menu.queue().setVisible(true);
  connect(&menu.queue(), &QAction::triggered, this, &Ticker::showQueue);
}

void Ticker::chooseSpeed(double pointsPerSecond) {
  options_.strip.speed = pointsPerSecond;
  updateLook();
  keepInSettings(u"speed"_s, textOfNumber(pointsPerSecond));
}

void Ticker::chooseDirection(ScrollDirection direction) {
  options_.strip.direction = direction;
  updateLook();
  keepInSettings(u"direction"_s, wordOf(direction));
}

// Where they cannot be written, it stays as the user has chosen for this run.
void Ticker::keepInSettings(const QString& name, const QString& value) {
  if (!settings_ || options_.given.contains(name))
    return;
  try {
    settings_->change({{name, {value}}});
  } catch (const CommandFailure& failure) {
    printError(failure.message());
  }
}

void Ticker::run(const QStringList& arguments, const QString& folder,
                 const QDBusUnixFileDescriptor& standardInput) {
  RunOptions options = readRunOptions(arguments);
  if (options.showsOwn()) {
    setFolder(options.strip, folder);
    add(options.strip, standardInput);
  } else if (options.opensWindow) {
    showQueue();
  }
}

void Ticker::add(const StripOptions& sources, const QDBusUnixFileDescriptor& standardInput) {
  auto added = std::make_unique<SourceSet>(*this, sources, standardInput);
  connect(added.get(), &SourceSet::ended, this, &Ticker::finishWhenDone, Qt::QueuedConnection);
  sources_.push_back(std::move(added));
  runClockOf(sources);
  displayChanged();
}

void Ticker::runClockOf(const StripOptions& options) {
  const std::optional<ClockText> text = clockTextOf(options);
  if (!text)
    return;
  clock_ = std::make_unique<ClockService>(*text, [this](const QString& now) {
    const bool isShown = display_.changeText(ClockIdentifier, now, time());
    displayChanged();
    return isShown;
  });
  clock_->start();
}

void Ticker::follow(SettingsStore& settings) {
  settings_ = &settings;
  adopt(settings.settings());
  connect(&settings, &SettingsStore::changed, this, [this] { adopt(settings_->settings()); });
  settings.watch();
  QAction& action = widget_->menu().settings();
  action.setVisible(true);
  connect(&action, &QAction::triggered, this, &Ticker::showSettings);
}

void Ticker::heed(const DesktopWishes& wishes) {
  wishes_ = &wishes;
  connect(&wishes, &DesktopWishes::changed, this, &Ticker::updateLook);
  updateLook();
}

void Ticker::showQueue() {
  if (!queueWindow_) {
    queue_ = std::make_unique<TickerQueue>(*this);
    queueWindow_ = std::make_unique<QueueWindow>(*queue_);
    connect(queueWindow_.get(), &QueueWindow::closed, this, &Ticker::finishWhenDone,
            Qt::QueuedConnection);
  }
  queueWindow_->present();
}

void Ticker::showSettings() {
  if (!settings_)
    return;
  if (!settingsWindow_) {
    settingsWindow_ = std::make_unique<SettingsWindow>(*settings_);
    connect(settingsWindow_.get(), &SettingsWindow::finished, this, &Ticker::finishWhenDone,
            Qt::QueuedConnection);
  }
  settingsWindow_->showInFront();
}

void Ticker::setPaused(bool paused) {
  widget_->menu().pause().setChecked(paused);
}

void Ticker::hideStrip() {
  isStripHidden_ = true;
  widget_->keyboard().giveBack();
  widget_->hide();
}

void Ticker::showStrip() {
  if (!isStripHidden_)
    return;
  isStripHidden_ = false;
  // Screens may have changed meanwhile.
  updateLook();
  update();
}

bool Ticker::focusStrip() {
  showStrip();
  // What was added a moment ago has not brought it up yet.
  updating_.catchUp();
  if (!widget_->isVisible())
    return false;
  widget_->keyboard().take();
  return true;
}

bool Ticker::hasWindowOpen() const {
  return (queueWindow_ && queueWindow_->isVisible()) ||
         (settingsWindow_ && settingsWindow_->isVisible());
}

void Ticker::adopt(const Settings& settings) {
  const FeedOptions before = options_.strip.feeds;
  const double speed = options_.strip.speed;
  adoptSettings(options_, settings);
  // What the menu has chosen is here already.
  if (options_.strip.speed != speed)
    interaction_->commands().setUsualSpeed(options_.strip.speed);
  leaveOutUnknownFont(options_);
  screen_.setName(options_.screen);
  updateLook();
  if (!options_.showsOwn() && (!feedsOfSettings_ || options_.strip.feeds != before))
    showFeedsOfSettings();
}

void Ticker::showFeedsOfSettings() {
  if (feedsOfSettings_) {
    feedsOfSettings_->withdrawFeeds();
    std::erase_if(sources_, [this](const auto& set) { return set.get() == feedsOfSettings_; });
    feedsOfSettings_ = nullptr;
  }
  if (!options_.strip.feeds.feeds.empty()) {
    add(options_.strip);
    feedsOfSettings_ = sources_.back().get();
  }
  displayChanged();
}

// The options with the sizes and colours that are shown. Those that the command line gave were for
// the strip as it lay then.
RunOptions Ticker::shownOptions() const {
  RunOptions options = options_;
  if (options.strip.isHorizontal() != wasHorizontal_) {
    if (options.given.contains(u"width"_s))
      options.strip.width.reset();
    if (options.given.contains(u"height"_s))
      options.strip.height.reset();
  }
  if (!wishes_ || !wishes_->raisesContrast())
    return options;
  StripOptions& strip = options.strip;
  const bool isBackgroundChosen =
      options_.given.contains(u"background"_s) || strip.background != StripOptions().background;
  const StripColors colors = contrastingColors(QGuiApplication::palette(),
                                               isBackgroundChosen ? strip.background : QColor(),
                                               strip.color.value_or(QColor()));
  strip.background = colors.background;
  strip.color = colors.text;
  return options;
}

void Ticker::updateLook() {
  const QRect room = place_->room();
  // A screen will come back.
  if (room.isNull())
    return;
  const RunOptions options = shownOptions();
  const StripLook look = lookIn(room, options);
  setUpDisplay(display_, options.strip, look, time());
  display_.setPaged(options_.reducesMotion.value_or(wishes_ && wishes_->reducesMotion()), time());
  widget_->setBackground(options.strip.background);
  place_->take(options, look);
  interaction_->pointer().setPausesAtRest(options_.pausesOnHover);
  widget_->menu().setDirection(options_.strip.direction);
  updateControlBar();
  displayChanged();
}

void Ticker::updateControlBar() {
  if (controlBar_)
    controlBar_->setDirection(options_.strip.direction);
  // What could not be made is not tried, and told, again and again.
  if (options_.showsControlBar == triedControlBar_)
    return;
  triedControlBar_ = options_.showsControlBar;
  controlBar_ = triedControlBar_ ? makeControlBar(*widget_, options_.strip.direction) : nullptr;
}

QString Ticker::show(const Ref<ZQTickerSign>& sign, const SignOrigin& origin, bool arranged) {
  if (!sign->identifier())
    sign->setIdentifier(QUuid::createUuid().toString(QUuid::WithoutBraces));
  const double now = time();
  if (!display_.replaceSign(sign, now, origin)) {
    if (arranged)
      display_.addArrangedSign(sign, now, origin);
    else
      display_.addSign(sign, now, origin);
  }
  displayChanged();
  return *sign->identifier();
}

bool Ticker::remove(const QString& identifier) {
  const bool wasThere = display_.removeSign(identifier, time());
  displayChanged();
  return wasThere;
}

void Ticker::arrange(const QStringList& identifiers) {
  display_.arrangeSigns(identifiers, time());
  displayChanged();
}

bool Ticker::isFullOfLines() const {
  return display_.waitingLineCount() >= TickerDisplay::MostLines;
}

StripLook Ticker::lookFor(const StripOptions& sources) const {
  StripLook look{display_.size(), display_.defaultFont(), display_.defaultTextColor()};
  if (sources.font && sources.font != options_.strip.font)
    look.font = findFont(*sources.font, look.font->pointSize()).font;
  if (sources.color && sources.color != options_.strip.color)
    look.color = Color::fromQColor(*sources.color);
  return look;
}

QSize Ticker::pictureRoom() const {
  const QScreen* screen = screen_.screen();
  return pictureRoomOf(options_.strip, {display_.size(), nullptr, nullptr},
                       screen ? screen->devicePixelRatio() : 1);
}

void Ticker::update() {
  if (!isStripHidden_ && (!display_.isFinished() || !sources_.empty()))
    widget_->show();
  widget_->displayChanged();
  Q_EMIT changed();
  finishWhenDone();
}

void Ticker::finishWhenDone() {
  std::erase_if(sources_, [](const auto& sources) { return sources->hasEnded(); });
  if (!display_.isFinished() || !sources_.empty())
    return;
  // New feeds may come by the settings.
  if (hasWindowOpen() || (settings_ && !options_.showsOwn()))
    widget_->hide();
  else
    Q_EMIT finished();
}

} // namespace zq::app
