#include "app/display/StripWidget.h"

#include "app/x11/VerticalBlank.h"

#include <QtCore/QCoreApplication>
#include <QtGui/QAction>
#include <QtGui/QContextMenuEvent>
#include <QtGui/QScreen>
#include <QtGui/QWindow>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
// A window manager that insists on another place is left alone then.
constexpr int MostRequests = 3;
} // namespace

StripWidget::StripWidget(TickerDisplay& display, const QColor& background)
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                           Qt::WindowDoesNotAcceptFocus | Qt::NoDropShadowWindowHint),
      display_(display), background_(background), player_(display), sight_(*this), surface_(*this),
      menu_(this), keyboard_(*this) {
  setAttribute(Qt::WA_X11NetWmWindowTypeDock);
  setAttribute(Qt::WA_ShowWithoutActivating);
  setAttribute(Qt::WA_OpaquePaintEvent);
  setAttribute(Qt::WA_NoSystemBackground);
  if (background.alpha() < 255)
    setAttribute(Qt::WA_TranslucentBackground);
  setFocusPolicy(Qt::NoFocus);
  setWindowTitle(u"zqticker"_s);
  setAccessibleName(tr("Ticker"));
  connect(&player_, &StripPlayer::finished, this, &StripWidget::finished);
  connect(&player_, &StripPlayer::frameDue, this, [this] {
    ++frameCount_;
    fitScale();
    surface_.show(display_.frame(), background_);
    display_.prepareAhead();
  });
  connect(&sight_, &StripSight::changed, this, [this](bool isInSight) {
    if (isInSight)
      fitDisplay();
    player_.setInSight(isInSight);
  });
  connect(&menu_.back(), &QAction::triggered, this, [this] {
    display_.stepBack(time());
    displayChanged();
  });
  connect(&menu_.forward(), &QAction::triggered, this, [this] {
    display_.stepForward(time());
    displayChanged();
  });
  connect(&menu_.pause(), &QAction::toggled, this,
          [this](bool paused) { player_.setPaused(StripPlayer::Pause::Asked, paused); });
  connect(&menu_.quit(), &QAction::triggered, qApp, &QCoreApplication::quit);
}

StripWidget::~StripWidget() = default;

void StripWidget::place(const QRect& geometry, Kind kind) {
  const bool isDock = kind == Kind::Dock;
  // Window managers look at a window's kind and place when it is mapped.
  const bool isMappedAnew = isDock != testAttribute(Qt::WA_X11NetWmWindowTypeDock) && isVisible();
  if (isMappedAnew)
    hide();
  setAttribute(Qt::WA_X11NetWmWindowTypeDock, isDock);
  setAttribute(Qt::WA_X11NetWmWindowTypeUtility, !isDock);
  place_ = geometry;
  requestsLeft_ = isDock ? MostRequests : 0;
  setGeometry(geometry);
  if (isMappedAnew)
    show();
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
  setGeometry(geometry);
  if (wasShown)
    show();
}

void StripWidget::fitDisplay() {
  display_.setScale(devicePixelRatioF());
  display_.setSize(QSizeF(size()), time());
  followScreen(screen());
}

// Takes the rate of the screen, also of one that is switched to another mode.
void StripWidget::followScreen(QScreen* shownOn) {
  if (!shownOn)
    return;
  if (shownOn != screen_) {
    disconnect(rateChange_);
    rateChange_ = connect(shownOn, &QScreen::refreshRateChanged, this,
                          [this](qreal rate) { player_.clock().setRate(rate); });
    screen_ = shownOn;
  }
  player_.clock().setRate(shownOn->refreshRate());
}

// The window may have come to another scale without being told.
void StripWidget::fitScale() {
  if (display_.scale() == devicePixelRatioF())
    return;
  fitDisplay();
  display_.advanceTo(time());
}

void StripWidget::paintEvent(QPaintEvent* event) {
  fitScale();
  surface_.paint(*event, display_.frame(), background_);
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

void StripWidget::closeEvent(QCloseEvent*) {
  QCoreApplication::quit();
}

void StripWidget::contextMenuEvent(QContextMenuEvent* event) {
  menu_.popup(event->globalPos());
}

bool StripWidget::event(QEvent* event) {
  if (event->type() == QEvent::WinIdChange)
    player_.clock().setSource(VerticalBlank::make(internalWinId()));
  if (event->type() == QEvent::ScreenChangeInternal) {
    fitDisplay();
    displayChanged();
  }
  return QWidget::event(event);
}

} // namespace zq::app
