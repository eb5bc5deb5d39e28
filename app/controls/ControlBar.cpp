#include "app/controls/ControlBar.h"

#include "app/controls/ControlBarButton.h"
#include "app/display/StripMenu.h"
#include "zqticker/platform/controls/ButtonCell.h"
#include "zqticker/platform/controls/Menu.h"
#include "zqticker/platform/graphics/Color.h"

#include <QtCore/QEvent>
#include <QtGui/QAction>
#include <QtGui/QPainter>
#include <QtGui/QScreen>

#include <algorithm>
#include <array>
#include <cmath>

namespace zq::app {

using namespace platform;

namespace {
// Points. A button that is less high can neither be hit nor read.
constexpr int LeastButtonHeight = 12;
// A higher strip has no use for larger buttons.
constexpr int MostButtonHeight = 40;
constexpr int EndMargin = 3;
// In parts of the height; the menu's button has an arrow besides.
constexpr double ButtonAspect = 1.25;
constexpr double MenuButtonAspect = 1.75;
// In a vertical strip.
constexpr int UsualButtonHeight = 24;
constexpr int Buttons = 4;

// Even numbers of points lie between device pixels at a scale of 1.5 too.
int even(double points) {
  return 2 * static_cast<int>(std::lround(points / 2));
}

QColor halfway(const QColor& a, const QColor& b) {
  return QColor((a.red() + b.red()) / 2, (a.green() + b.green()) / 2, (a.blue() + b.blue()) / 2);
}

QColor colorOf(const Ref<Color>& color, const QColor& otherwise) {
  return color ? color->qColor() : otherwise;
}
} // namespace

ControlBar::ControlBar(QWidget* strip, ScrollDirection direction, StripMenu& menu)
    : QWidget(strip), strip_(strip), direction_(direction), menu_(menu), pointer_(strip),
      back_(new ControlBarButton(ControlGlyph::Back, this)),
      pause_(new ControlBarButton(ControlGlyph::Pause, this)),
      forward_(new ControlBarButton(ControlGlyph::Forward, this)),
      menuButton_(new ControlBarButton(ControlGlyph::Menu, this)) {
  hide();
  setAttribute(Qt::WA_OpaquePaintEvent);
  setAttribute(Qt::WA_NoSystemBackground);
  setFocusPolicy(Qt::NoFocus);
  setAccessibleName(tr("Controls"));
  // The strip's window never becomes active.
  strip->window()->setAttribute(Qt::WA_AlwaysShowToolTips);
  // Between the frames and the bodies of the buttons, so that these stand out.
  edge_ = colorOf(back_->frameColor(), palette().color(QPalette::Shadow));
  ground_ = halfway(edge_, colorOf(back_->controlColor(), palette().color(QPalette::Button)));
  connectButtons();
  showPaused(menu.pause().isChecked());
  strip->installEventFilter(this);
  connect(&pointer_, &RestingPointer::restingChanged, this, &ControlBar::showWhereItFits);
}

ControlBar::~ControlBar() = default;

void ControlBar::setDirection(ScrollDirection direction) {
  if (direction == direction_)
    return;
  direction_ = direction;
  showWhereItFits(pointer_.isResting());
  update();
}

void ControlBar::connectButtons() {
  back_->setPurpose(tr("Back by one sign"));
  forward_->setPurpose(tr("Forward by one sign"));
  menuButton_->setPurpose(tr("Menu"));
  pause_->setPurpose(tr("Pause"));
  pause_->setButtonType(ButtonType::OnOff);
  menuButton_->cell()->setMenu(Menu::make(&menu_));
  connect(back_, &QAbstractButton::clicked, &menu_.back(), &QAction::trigger);
  connect(forward_, &QAbstractButton::clicked, &menu_.forward(), &QAction::trigger);
  connect(pause_, &QAbstractButton::toggled, &menu_.pause(), &QAction::setChecked);
  connect(&menu_.pause(), &QAction::toggled, this, &ControlBar::showPaused);
  connect(menuButton_, &QAbstractButton::clicked, menuButton_, &Button::showMenu);
  connect(menuButton_, &ControlBarButton::menuOpening, this, [this] { isMenuOfButton_ = true; });
  for (ControlBarButton* button : {back_, pause_, forward_, menuButton_}) {
    pointer_.watchPresses(button);
    connect(button, &QAbstractButton::pressed, this, [this] { hold(1); });
    connect(button, &QAbstractButton::released, this, [this] { hold(-1); });
  }
  connect(&menu_, &QMenu::aboutToShow, this, [this] { hold(1); });
  connect(&menu_, &QMenu::aboutToHide, this, [this] { isMenuOfButton_ = false; });
  menu_.installEventFilter(this);
  // The menu has the pointer until it has gone.
  connect(
      &menu_, &QMenu::aboutToHide, this, [this] { hold(-1); }, Qt::QueuedConnection);
}

void ControlBar::hold(int change) {
  holds_ += change;
  pointer_.setHeld(holds_ > 0);
}

void ControlBar::showPaused(bool paused) {
  pause_->setState(paused ? CellState::On : CellState::Off);
  pause_->setGlyph(paused ? ControlGlyph::Play : ControlGlyph::Pause);
  // Its name for assistive technology stays: that tells the state besides.
  pause_->setToolTip(paused ? tr("Resume") : tr("Pause"));
}

void ControlBar::showWhereItFits(bool shows) {
  if (shows)
    place();
  const bool fits = gridOnStrip().columns > 0;
  setVisible(shows && fits);
  if (isVisible())
    raise();
}

bool ControlBar::eventFilter(QObject* receiver, QEvent* event) {
  if (receiver == strip_ && event->type() == QEvent::Resize)
    showWhereItFits(pointer_.isResting());
  else if (receiver == &menu_ && event->type() == QEvent::Show && isMenuOfButton_)
    uncoverBar();
  return false;
}

// Buttons side by side, or in as many rows as a vertical strip needs. No columns where there is no
// room.
ControlBar::Grid ControlBar::gridOnStrip() const {
  const bool horizontal = isHorizontal(direction_);
  const int height = horizontal ? std::min(strip_->height(), MostButtonHeight)
                                : std::min(strip_->width(), UsualButtonHeight);
  if (height < LeastButtonHeight)
    return {};
  const int width = even(height * ButtonAspect);
  Grid grid{Buttons, 1, QSize(width, height), even(height * MenuButtonAspect)};
  const int room = strip_->width() - 2 * EndMargin;
  const int row = (Buttons - 1) * width + grid.menuWidth;
  if (horizontal)
    return row <= room ? grid : Grid();
  if (row > room) {
    grid.columns = room >= width + grid.menuWidth ? 2 : 1;
    grid.rows = Buttons / grid.columns;
  }
  const bool fits =
      (grid.columns > 1 || grid.menuWidth <= room) && grid.rows * height <= strip_->height();
  return fits ? grid : Grid();
}

void ControlBar::place() {
  const Grid grid = gridOnStrip();
  if (grid.columns == 0)
    return;
  const int inRow = (grid.columns - 1) * grid.button.width() + grid.menuWidth;
  const bool horizontal = isHorizontal(direction_);
  const bool isAtStart = isReversed(direction_);
  const int length = inRow + 2 * EndMargin + 1;
  const int rowsHeight = grid.rows * grid.button.height();
  QRect area = strip_->rect();
  if (horizontal && isAtStart)
    area.setWidth(even(length + 1));
  else if (horizontal)
    area.setLeft(even(strip_->width() - length));
  else if (isAtStart)
    area.setHeight(rowsHeight + 2);
  else
    area.setTop(even(strip_->height() - rowsHeight - 2));
  setGeometry(area);
  const int left = horizontal ? EndMargin + 1 : even((width() - inRow) / 2.0);
  const int farTop = isAtStart ? 0 : height() - rowsHeight;
  const int top = horizontal ? (height() - grid.button.height()) / 2 : farTop;
  const std::array buttons{back_, pause_, forward_, menuButton_};
  for (int i = 0; i < Buttons; ++i) {
    const int column = i % grid.columns;
    const bool isLast = column == grid.columns - 1;
    buttons[static_cast<std::size_t>(i)]->setGeometry(
        left + column * grid.button.width(), top + i / grid.columns * grid.button.height(),
        isLast ? grid.menuWidth : grid.button.width(), grid.button.height());
  }
}

// Where a menu pops up it may cover the buttons, and at the lower edge of a screen it does.
void ControlBar::uncoverBar() {
  const QRect bar(mapToGlobal(QPoint()), size());
  const QRect room = screen()->availableGeometry();
  const bool fitsBelow = bar.bottom() + menu_.height() <= room.bottom();
  menu_.move(menu_.x(), fitsBelow ? bar.bottom() + 1 : bar.top() - menu_.height());
}

void ControlBar::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), ground_);
  const bool isAtStart = isReversed(direction_);
  if (isHorizontal(direction_))
    painter.fillRect(isAtStart ? width() - 1 : 0, 0, 1, height(), edge_);
  else
    painter.fillRect(0, isAtStart ? height() - 1 : 0, width(), 1, edge_);
}

} // namespace zq::app
