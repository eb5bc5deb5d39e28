#include "app/display/StripWidget.h"

#include <QtCore/QCoreApplication>
#include <QtGui/QAction>
#include <QtGui/QContextMenuEvent>
#include <QtGui/QPainter>
#include <QtGui/QScreen>
#include <QtGui/QWindow>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
// A longer gap between two ticks is time in which the process was stopped.
constexpr double LongestGap = 1;
constexpr double LongestWakeSeconds = 86'400;
// A window manager that insists on another place is left alone then.
constexpr int MostRequests = 3;
} // namespace

StripWidget::StripWidget(TickerDisplay& display, const QColor& background)
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                           Qt::WindowDoesNotAcceptFocus | Qt::NoDropShadowWindowHint),
      display_(display), background_(background), menu_(this) {
  setAttribute(Qt::WA_X11NetWmWindowTypeDock);
  setAttribute(Qt::WA_ShowWithoutActivating);
  setAttribute(Qt::WA_OpaquePaintEvent);
  setAttribute(Qt::WA_NoSystemBackground);
  if (background.alpha() < 255)
    setAttribute(Qt::WA_TranslucentBackground);
  setFocusPolicy(Qt::NoFocus);
  setWindowTitle(u"zqticker"_s);
  setAccessibleName(tr("Ticker"));
  connect(&clock_, &FrameClock::tick, this, &StripWidget::advance);
  wake_.setSingleShot(true);
  wake_.setTimerType(Qt::PreciseTimer);
  connect(&wake_, &QTimer::timeout, this, [this] { advance(FrameClock::now()); });
  connect(&menu_.back(), &QAction::triggered, this, [this] {
    display_.stepBack(time());
    displayChanged();
  });
  connect(&menu_.forward(), &QAction::triggered, this, [this] {
    display_.stepForward(time());
    displayChanged();
  });
  connect(&menu_.pause(), &QAction::toggled, this, [this](bool paused) {
    display_.setPaused(paused, time());
    displayChanged();
  });
  connect(&menu_.quit(), &QAction::triggered, qApp, &QCoreApplication::quit);
}

StripWidget::~StripWidget() = default;

void StripWidget::place(const QRect& geometry) {
  place_ = geometry;
  requestsLeft_ = MostRequests;
  setGeometry(geometry);
}

void StripWidget::setBackground(const QColor& background) {
  if (background == background_)
    return;
  background_ = background;
  const bool isTranslucent = background.alpha() < 255;
  if (isTranslucent == testAttribute(Qt::WA_TranslucentBackground)) {
    update();
    return;
  }
  // A window has its depth for good; another one takes its place.
  const bool wasShown = isVisible();
  const QRect geometry = this->geometry();
  if (testAttribute(Qt::WA_WState_Created)) {
    hide();
    destroy();
  }
  setAttribute(Qt::WA_TranslucentBackground, isTranslucent);
  setAttribute(Qt::WA_NoSystemBackground);
  place(geometry);
  if (wasShown)
    show();
}

double StripWidget::time() const {
  return FrameClock::now() - lost_;
}

void StripWidget::displayChanged() {
  if (isVisible())
    advance(FrameClock::now());
}

void StripWidget::advance(double clockTime) {
  if (clock_.isRunning() && clockTime - lastTick_ > LongestGap)
    lost_ += clockTime - lastTick_;
  lastTick_ = clockTime;
  if (display_.advanceTo(clockTime - lost_)) {
    ++frameCount_;
    repaint();
  }
  schedule();
}

// Ticks while something moves in sight, else sleeps until something is due.
void StripWidget::schedule() {
  const bool inSight = isVisible() && !isMinimized();
  if (!display_.isFinished())
    isFinished_ = false;
  if (inSight && display_.isMoving()) {
    wake_.stop();
    if (!clock_.isRunning()) {
      lastTick_ = FrameClock::now();
      clock_.start();
    }
    return;
  }
  clock_.stop();
  wake_.stop();
  if (display_.isFinished()) {
    if (!isFinished_)
      Q_EMIT finished();
    isFinished_ = true;
    return;
  }
  const double wait = display_.nextEntryTime() - time();
  if (inSight && std::isfinite(wait))
    wake_.start(static_cast<int>(std::ceil(std::clamp(wait, 0.0, LongestWakeSeconds) * 1000)));
}

void StripWidget::fitDisplay() {
  display_.setScale(devicePixelRatioF());
  display_.setSize(QSizeF(size()), time());
  if (const QScreen* shownOn = screen())
    clock_.setRate(shownOn->refreshRate());
}

void StripWidget::paintEvent(QPaintEvent*) {
  if (display_.scale() != devicePixelRatioF()) {
    fitDisplay();
    display_.advanceTo(time());
  }
  QPainter painter(this);
  painter.scale(1 / devicePixelRatioF(), 1 / devicePixelRatioF());
  paintFrame(painter, display_.frame(), background_);
}

// Some window managers put a dock where it asks to be and tell it another place, by which menus
// would then go; when screens change, some move windows by themselves, after the dock has. Asked
// once more, they do and tell what is right.
void StripWidget::moveEvent(QMoveEvent*) {
  if (!isVisible() || requestsLeft_ == 0 || pos() == place_.topLeft())
    return;
  --requestsLeft_;
  setGeometry(place_);
}

void StripWidget::resizeEvent(QResizeEvent*) {
  fitDisplay();
  displayChanged();
}

void StripWidget::showEvent(QShowEvent*) {
  fitDisplay();
  displayChanged();
}

void StripWidget::hideEvent(QHideEvent*) {
  schedule();
}

void StripWidget::closeEvent(QCloseEvent*) {
  QCoreApplication::quit();
}

void StripWidget::contextMenuEvent(QContextMenuEvent* event) {
  menu_.popup(event->globalPos());
}

bool StripWidget::event(QEvent* event) {
  if (event->type() == QEvent::ScreenChangeInternal) {
    fitDisplay();
    displayChanged();
  } else if (event->type() == QEvent::WindowStateChange) {
    schedule();
  }
  return QWidget::event(event);
}

} // namespace zq::app
