#include "app/ticker/StripPlace.h"

#include "app/display/StripWidget.h"
#include "app/settings/ChosenScreen.h"
#include "app/ticker/window_place.h"

#include <QtCore/QSettings>
#include <QtCore/QStandardPaths>
#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>

#include <chrono>
#include <cmath>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
// A window that is dragged tells of every step.
constexpr std::chrono::milliseconds MovingTime(400);

const QString ScreenKey = u"strip/screen"_s;
const QString ChosenKey = u"strip/chosenScreen"_s;
const QString OffsetKey = u"strip/offset"_s;

// Positions on the screen begin at the same number in points and in pixels.
QRect nativeOf(const QRect& rect, const QScreen& screen) {
  const QPoint origin = screen.geometry().topLeft();
  const qreal scale = screen.devicePixelRatio();
  return QRect((rect.topLeft() - origin) * scale + origin, rect.size() * scale);
}

// The part of a screen in points that is `part` in pixels, rounded inwards.
QRect pointsOf(const QRect& part, const QScreen& screen) {
  const QRect native = nativeOf(screen.geometry(), screen);
  const auto points = [&](int pixels) {
    return static_cast<int>(std::ceil(pixels / screen.devicePixelRatio()));
  };
  return screen.geometry().adjusted(
      points(part.left() - native.left()), points(part.top() - native.top()),
      -points(native.right() - part.right()), -points(native.bottom() - part.bottom()));
}

QScreen* screenNamed(const QString& name) {
  for (QScreen* screen : QGuiApplication::screens())
    if (screen->name() == name)
      return screen;
  return nullptr;
}

// Whether the screen ends where the X screen does.
bool endsAt(Qt::Edge edge, const QRect& screen, QSize whole) {
  constexpr int Roundings = 2; // of points
  switch (edge) {
  case Qt::TopEdge:
    return screen.top() <= Roundings;
  case Qt::LeftEdge:
    return screen.left() <= Roundings;
  case Qt::RightEdge:
    return screen.right() + 1 >= whole.width() - Roundings;
  case Qt::BottomEdge:
    break;
  }
  return screen.bottom() + 1 >= whole.height() - Roundings;
}
} // namespace

StripPlace::StripPlace(StripWidget& widget, const ChosenScreen& screen, const QString& stateFile)
    : widget_(widget), screen_(screen), stateFile_(stateFile), reservation_(widget),
      position_(widget), move_(widget) {
  const QSettings state(stateFile_, QSettings::IniFormat);
  if (state.contains(OffsetKey))
    memory_ = Memory{state.value(ScreenKey).toString(), state.value(ChosenKey).toString(),
                     state.value(OffsetKey).toPoint()};
  moved_.setSingleShot(true);
  moved_.setInterval(MovingTime);
  connect(&moved_, &QTimer::timeout, this, &StripPlace::remember);
  connect(&screen_, &ChosenScreen::changed, this, &StripPlace::changed);
  connect(&others_, &OtherReservations::changed, this, &StripPlace::changed);
  widget.installEventFilter(this);
}

StripPlace::~StripPlace() = default;

QString StripPlace::defaultStateFile() {
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
         u"/zqticker/windows.ini"_s;
}

const QScreen* StripPlace::screenOf() const {
  return screen_.screen();
}

QRect StripPlace::roomOn(const QScreen* screen) const {
  if (!screen)
    return QRect();
  if (!others_.isAvailable())
    return screen->availableGeometry();
  const QRect room = freeRoom(nativeOf(screen->geometry(), *screen),
                              others_.beside(static_cast<xcb_window_t>(widget_.internalWinId())),
                              reservation_.reserved(), others_.whole());
  return pointsOf(room, *screen);
}

void StripPlace::take(const RunOptions& options, const StripLook& look) {
  const std::optional<Qt::Edge> edge = dockingEdge(options);
  place_ = windowPlace(options, look, room());
  isFloating_ = !edge;
  if (isFloating_)
    place_ = floatingPlace(place_);
  moved_.stop();
  move_.setEnabled(isFloating_);
  reserve(edge, place_);
  reservation_.setDock(!isFloating_);
  widget_.place(place_, isFloating_ ? StripWidget::Kind::Floating : StripWidget::Kind::Dock);
}

// On the screen where it was left, while that is there and nobody has chosen another one since.
QRect StripPlace::floatingPlace(const QRect& usual) const {
  if (!memory_)
    return usual;
  const QScreen* screen = screenNamed(memory_->screen);
  if (!screen || memory_->chosen != screen_.name())
    screen = screenOf();
  if (!screen)
    return usual;
  return broughtInside(QRect(screen->geometry().topLeft() + memory_->offset, usual.size()),
                       roomOn(screen));
}

void StripPlace::reserve(const std::optional<Qt::Edge>& edge, const QRect& place) {
  const QScreen* screen = screenOf();
  if (!edge || !screen || !others_.isAvailable()) {
    reservation_.reserve(std::nullopt, false);
    return;
  }
  std::vector<QRect> otherScreens;
  for (const QScreen* other : QGuiApplication::screens())
    if (other != screen)
      otherScreens.push_back(nativeOf(other->geometry(), *other));
  const QRect native = nativeOf(screen->geometry(), *screen);
  reservation_.reserve(
      reservationFor(nativeOf(place, *screen), *edge, native, otherScreens, others_.whole()),
      endsAt(*edge, native, others_.whole()));
}

bool StripPlace::eventFilter(QObject*, QEvent* event) {
  if (event->type() == QEvent::Move && isFloating_ && widget_.isVisible()) {
    if (widget_.pos() == place_.topLeft())
      moved_.stop();
    else
      moved_.start();
  }
  return false;
}

void StripPlace::remember() {
  const QScreen* screen = widget_.screen();
  if (const QScreen* under = QGuiApplication::screenAt(widget_.geometry().center()))
    screen = under;
  if (!screen)
    return;
  place_.moveTopLeft(widget_.pos());
  memory_ = Memory{screen->name(), screen_.name(), place_.topLeft() - screen->geometry().topLeft()};
  QSettings state(stateFile_, QSettings::IniFormat);
  state.setValue(ScreenKey, memory_->screen);
  state.setValue(ChosenKey, memory_->chosen);
  state.setValue(OffsetKey, memory_->offset);
}

} // namespace zq::app
