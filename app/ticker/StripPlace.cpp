#include "app/ticker/StripPlace.h"

#include "app/display/StripWidget.h"
#include "app/settings/ChosenScreen.h"
#include "app/ticker/window_place.h"

#include <QtCore/QSettings>
#include <QtCore/QStandardPaths>
#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>

#include <cmath>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
const QString ScreenKey = u"strip/screen"_s;
const QString ChosenKey = u"strip/chosenScreen"_s;
const QString OffsetKey = u"strip/offset"_s;

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

StripPlace::StripPlace(StripWidget& widget, const ChosenScreen& screen, const QString& stateFile,
                       const MovingTimes& times)
    : widget_(widget), screen_(screen), stateFile_(stateFile), reservation_(widget),
      position_(widget), move_(widget) {
  const QSettings state(stateFile_, QSettings::IniFormat);
  if (state.contains(OffsetKey))
    memory_ = Memory{state.value(ScreenKey).toString(), state.value(ChosenKey).toString(),
                     state.value(OffsetKey).toPoint()};
  moved_.setSingleShot(true);
  moved_.setInterval(times.moving);
  settling_.setSingleShot(true);
  settling_.setInterval(times.settling);
  connect(&moved_, &QTimer::timeout, this, &StripPlace::remember);
  connect(&screen_, &ChosenScreen::changed, this, &StripPlace::changed);
  connect(&screens_, &TrueScreens::changed, this, &StripPlace::changed);
  connect(&others_, &OtherReservations::changed, this, &StripPlace::changed);
  widget.installEventFilter(this);
}

StripPlace::~StripPlace() = default;

QString StripPlace::defaultStateFile() {
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
         u"/zqticker/windows.ini"_s;
}

QRect StripPlace::room() const {
  const QScreen* screen = screen_.screen();
  return screen ? roomOn(*screen) : QRect();
}

// In points, rounded inwards.
QRect StripPlace::roomOn(const QScreen& screen) const {
  if (!others_.isAvailable())
    return screen.availableGeometry();
  const QRect whole = screens_.native(screen);
  const QRect room =
      freeRoom(whole, others_.beside(static_cast<xcb_window_t>(widget_.internalWinId())),
               reservation_.reserved(), others_.whole());
  const auto points = [&](int pixels) {
    return static_cast<int>(std::ceil(pixels / screen.devicePixelRatio()));
  };
  return screens_.geometry(screen).adjusted(
      points(room.left() - whole.left()), points(room.top() - whole.top()),
      -points(whole.right() - room.right()), -points(whole.bottom() - room.bottom()));
}

// What is `rect` in points, in device pixels.
QRect StripPlace::nativeOf(const QRect& rect, const QScreen& screen) const {
  const QPoint origin = screens_.native(screen).topLeft();
  const qreal scale = screen.devicePixelRatio();
  return QRect((rect.topLeft() - origin) * scale + origin, rect.size() * scale);
}

void StripPlace::take(const RunOptions& options, const StripLook& look) {
  // The user's move is not to be undone.
  if (moved_.isActive())
    remember();
  const std::optional<Qt::Edge> edge = dockingEdge(options);
  place_ = windowPlace(options, look, room());
  isFloating_ = !edge;
  if (isFloating_)
    place_ = floatingPlace(place_);
  moved_.stop();
  settling_.start();
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
    screen = screen_.screen();
  if (!screen)
    return usual;
  return broughtInside(QRect(screens_.geometry(*screen).topLeft() + memory_->offset, usual.size()),
                       roomOn(*screen));
}

void StripPlace::reserve(const std::optional<Qt::Edge>& edge, const QRect& place) {
  const QScreen* screen = screen_.screen();
  if (!edge || !screen || !others_.isAvailable()) {
    reservation_.reserve(std::nullopt, false);
    return;
  }
  std::vector<QRect> otherScreens;
  for (const QScreen* other : QGuiApplication::screens())
    if (other != screen)
      otherScreens.push_back(screens_.native(*other));
  const QRect native = screens_.native(*screen);
  reservation_.reserve(
      reservationFor(nativeOf(place, *screen), *edge, native, otherScreens, others_.whole()),
      endsAt(*edge, native, others_.whole()));
}

bool StripPlace::eventFilter(QObject*, QEvent* event) {
  if (event->type() == QEvent::Show)
    settling_.start();
  if (event->type() == QEvent::Move && isFloating_ && widget_.isVisible()) {
    if (widget_.pos() == place_.topLeft())
      moved_.stop();
    else if (isUsersMove())
      moved_.start();
  }
  return false;
}

bool StripPlace::isUsersMove() const {
  if (!settling_.isActive() || move_.isHeld())
    return true;
  const std::shared_ptr<XConnection> connection = XConnection::shared();
  return connection && connection->isButtonPressed();
}

const QScreen* StripPlace::screenUnder(QPoint point) const {
  for (const QScreen* screen : QGuiApplication::screens())
    if (screens_.geometry(*screen).contains(point))
      return screen;
  return widget_.screen();
}

void StripPlace::remember() {
  const QScreen* screen = screenUnder(widget_.geometry().center());
  if (!screen)
    return;
  place_.moveTopLeft(widget_.pos());
  memory_ = Memory{screen->name(), screen_.name(),
                   place_.topLeft() - screens_.geometry(*screen).topLeft()};
  QSettings state(stateFile_, QSettings::IniFormat);
  state.setValue(ScreenKey, memory_->screen);
  state.setValue(ChosenKey, memory_->chosen);
  state.setValue(OffsetKey, memory_->offset);
}

} // namespace zq::app
