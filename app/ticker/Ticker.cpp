#include "app/ticker/Ticker.h"

#include "app/commands/failures.h"
#include "app/commands/sign_loading.h"
#include "app/controls/ControlBar.h"
#include "app/controls/ControlBarButton.h"
#include "app/services/ClockService.h"
#include "app/ticker/SourceSet.h"
#include "app/ticker/window_place.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/signs/ZQTickerSign.h"

#include <QtCore/QDir>
#include <QtCore/QUuid>
#include <QtGui/QScreen>

#include <exception>

using namespace Qt::StringLiterals;

namespace zq::app {

using namespace platform;

namespace {
// Puts the control bar on the strip. A strip without one can be used all the same.
void addControlBar(StripWidget& widget, bool isHorizontal) {
  try {
    if (ControlBarButton::hasLook())
      new ControlBar(&widget, isHorizontal, widget.menu());
    else
      printError(u"no control bar: its look, ControlBarButton.button, is missing"_s);
  } catch (const std::exception& exception) {
    printError(u"no control bar: its look, ControlBarButton.button, cannot be read: "_s +
               QString::fromUtf8(exception.what()));
  }
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

Ticker::Ticker(const RunOptions& options, const QScreen& screen)
    : options_(options), display_(FrameClock::now()), deviceScale_(screen.devicePixelRatio()) {
  const QRect room = screen.availableGeometry();
  const StripLook look = lookOf(options.strip, room.size());
  setUpDisplay(display_, options.strip, look, FrameClock::now());
  widget_ = std::make_unique<StripWidget>(display_, options.strip.background);
  widget_->place(windowPlace(options, look, room));
  if (options.showsControlBar)
    addControlBar(*widget_, options.strip.isHorizontal);
  connect(widget_.get(), &StripWidget::finished, this, &Ticker::finishWhenDone,
          Qt::QueuedConnection);
}

Ticker::~Ticker() = default;

void Ticker::run(const QStringList& arguments, const QString& folder,
                 const QDBusUnixFileDescriptor& standardInput) {
  StripOptions sources = readRunOptions(arguments).strip;
  setFolder(sources, folder);
  add(sources, standardInput);
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
  if (sources.font)
    look.font = findFont(*sources.font, look.font->pointSize()).font;
  if (sources.color)
    look.color = Color::fromQColor(*sources.color);
  return look;
}

QSize Ticker::pictureRoom() const {
  return pictureRoomOf(options_.strip, {display_.size(), nullptr, nullptr}, deviceScale_);
}

void Ticker::displayChanged() {
  if (isUpdateDue_)
    return;
  isUpdateDue_ = true;
  QMetaObject::invokeMethod(this, &Ticker::update, Qt::QueuedConnection);
}

void Ticker::update() {
  isUpdateDue_ = false;
  if (!display_.isFinished() || !sources_.empty())
    widget_->show();
  widget_->displayChanged();
  Q_EMIT changed();
  finishWhenDone();
}

void Ticker::finishWhenDone() {
  std::erase_if(sources_, [](const auto& sources) { return sources->hasEnded(); });
  if (!display_.isFinished() || !sources_.empty())
    return;
  if (waits_)
    widget_->hide();
  else
    Q_EMIT finished();
}

} // namespace zq::app
