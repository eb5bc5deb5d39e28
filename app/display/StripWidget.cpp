#include "app/display/StripWidget.h"

#include <QtCore/QCoreApplication>
#include <QtGui/QContextMenuEvent>
#include <QtGui/QPainter>
#include <QtGui/QScreen>
#include <QtGui/QWindow>
#include <QtWidgets/QMenu>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
// A longer gap between two ticks is time in which the process was stopped.
constexpr double LongestGap = 1;
constexpr double LongestWakeSeconds = 86'400;
} // namespace

StripWidget::StripWidget(TickerDisplay& display, const QColor& background)
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                           Qt::WindowDoesNotAcceptFocus | Qt::NoDropShadowWindowHint),
      display_(display), background_(background) {
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
}

StripWidget::~StripWidget() = default;

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
  auto* menu = new QMenu(this);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  menu->addAction(tr("Quit"), qApp, &QCoreApplication::quit);
  menu->popup(event->globalPos());
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
