#include "app/settings/StripPage.h"

#include "app/commands/strip_values.h"
#include "app/settings/page_controls.h"
#include "app/settings/setting_table.h"

#include <QtCore/QSignalBlocker>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QSlider>

#include <algorithm>
#include <chrono>
#include <cmath>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
// The slider's ends, in points per second; its steps are even in their logarithms.
constexpr double SliderSlowest = 5;
constexpr double SliderFastest = 1000;
constexpr int SliderSteps = 100;
// A slider gives values faster than a file is to be written.
constexpr std::chrono::milliseconds SlideTime(50);

int stepOf(double speed) {
  const double part = std::log(speed / SliderSlowest) / std::log(SliderFastest / SliderSlowest);
  return static_cast<int>(std::lround(std::clamp(part, 0.0, 1.0) * SliderSteps));
}

double speedAt(int step) {
  return std::round(SliderSlowest *
                    std::pow(SliderFastest / SliderSlowest, double(step) / SliderSteps));
}
} // namespace

StripPage::StripPage(QWidget* parent)
    : SettingsPage(parent), direction_(new QComboBox), speedSlider_(new QSlider(Qt::Horizontal)),
      speed_(new QDoubleSpinBox), position_(new QComboBox), screen_(new QComboBox),
      height_(makeSideBox()), width_(makeSideBox()), fade_(makeSideBox()),
      controlBar_(new QCheckBox(tr("Show &buttons while the pointer rests on the strip"))),
      pause_(new QCheckBox(tr("Pause while the pointer &rests on the strip"))),
      motion_(new QComboBox), autostart_(new QCheckBox(tr("Start with the &session"))) {
  direction_->addItem(tr("From right to left"), wordOf(ScrollDirection::Left));
  direction_->addItem(tr("From left to right"), wordOf(ScrollDirection::Right));
  direction_->addItem(tr("From bottom to top"), wordOf(ScrollDirection::Up));
  direction_->addItem(tr("From top to bottom"), wordOf(ScrollDirection::Down));
  motion_->addItem(tr("As the desktop wishes"), u"automatic"_s);
  motion_->addItem(tr("Scrolling"), u"off"_s);
  motion_->addItem(tr("Page by page"), u"on"_s);
  speedSlider_->setRange(0, SliderSteps);
  speedSlider_->setAccessibleName(tr("Speed"));
  speed_->setRange(SlowestSpeed, FastestSpeed);
  speed_->setDecimals(1);
  speed_->setSuffix(tr(" points a second"));
  speed_->setKeyboardTracking(false);
  speed_->setStepType(QDoubleSpinBox::AdaptiveDecimalStepType);
  slid_.setSingleShot(true);
  slid_.setInterval(SlideTime);

  auto* speeds = new QHBoxLayout;
  speeds->addWidget(speedSlider_, 1);
  speeds->addWidget(speed_);
  auto* form = new QFormLayout(this);
  form->addRow(tr("&Direction:"), direction_);
  addRow(*form, tr("S&peed:"), speeds, *speed_);
  form->addRow(tr("P&osition:"), position_);
  form->addRow(tr("S&creen:"), screen_);
  form->addRow(tr("&Height:"), height_);
  form->addRow(tr("&Width:"), width_);
  fade_->setSpecialValueText(tr("Off"));
  form->addRow(tr("&Fade at the ends:"), fade_);
  form->addRow(controlBar_);
  form->addRow(pause_);
  form->addRow(tr("&Motion:"), motion_);
  form->addRow(autostart_);

  connect(direction_, &QComboBox::currentIndexChanged, this,
          [this] { choose(u"direction"_s, {direction_->currentData().toString()}); });
  connect(speed_, &QDoubleSpinBox::valueChanged, this,
          [this](double speed) { choose(u"speed"_s, {textOfNumber(speed)}); });
  connect(speedSlider_, &QSlider::valueChanged, this, [this](int step) {
    const QSignalBlocker silence(speed_);
    speed_->setValue(speedAt(step));
    slid_.start();
  });
  connect(&slid_, &QTimer::timeout, this, &StripPage::tellSlide);
  connect(position_, &QComboBox::currentIndexChanged, this,
          [this] { choose(u"position"_s, {position_->currentData().toString()}); });
  connect(screen_, &QComboBox::currentIndexChanged, this, [this] {
    const QString name = screen_->currentData().toString();
    choose(u"screen"_s, {name.isEmpty() ? u"primary"_s : name});
  });
  connect(height_, &QDoubleSpinBox::valueChanged, this,
          [this] { choose(u"height"_s, {sideText(*height_)}); });
  connect(width_, &QDoubleSpinBox::valueChanged, this,
          [this] { choose(u"width"_s, {sideText(*width_)}); });
  connect(fade_, &QDoubleSpinBox::valueChanged, this,
          [this](double points) { choose(u"fade"_s, {textOfFade(points)}); });
  connect(controlBar_, &QCheckBox::toggled, this,
          [this](bool isOn) { choose(u"control-bar"_s, {switchText(isOn)}); });
  connect(pause_, &QCheckBox::toggled, this,
          [this](bool isOn) { choose(u"pause-on-hover"_s, {switchText(isOn)}); });
  connect(motion_, &QComboBox::currentIndexChanged, this,
          [this] { choose(u"reduced-motion"_s, {motion_->currentData().toString()}); });
  connect(autostart_, &QCheckBox::toggled, this,
          [this](bool isOn) { choose(u"autostart"_s, {switchText(isOn)}); });
  connect(&screens_, &ChosenScreen::changed, this, [this] {
    const QSignalBlocker silence(screen_);
    fillScreens(chosenScreen_);
  });
}

StripPage::~StripPage() = default;

void StripPage::hideEvent(QHideEvent* event) {
  if (slid_.isActive())
    tellSlide();
  SettingsPage::hideEvent(event);
}

void StripPage::tellSlide() {
  slid_.stop();
  choose(u"speed"_s, {textOfNumber(speed_->value())});
}

void StripPage::showSettings(const Settings& settings) {
  const bool horizontal = isHorizontal(settings.direction);
  direction_->setCurrentIndex(direction_->findData(wordOf(settings.direction)));
  if (!slid_.isActive())
    showSpeed(settings.speed);
  fillPositions(horizontal);
  const bool isFirst = settings.position == Edge::Top || settings.position == Edge::Left;
  if (settings.position == Edge::Floating)
    position_->setCurrentIndex(2);
  else
    position_->setCurrentIndex(isFirst && fitsDirection(settings.position, horizontal) ? 0 : 1);
  chosenScreen_ = settings.screen;
  fillScreens(chosenScreen_);
  height_->setValue(settings.height.value_or(0));
  width_->setValue(settings.width.value_or(0));
  fade_->setValue(settings.fade);
  controlBar_->setChecked(settings.showsControlBar);
  pause_->setChecked(settings.pausesOnHover);
  motion_->setCurrentIndex(!settings.reducesMotion ? 0 : *settings.reducesMotion ? 2 : 1);
  autostart_->setChecked(settings.startsWithSession);
}

void StripPage::showSpeed(double speed) {
  speed_->setValue(speed);
  const QSignalBlocker silence(speedSlider_);
  speedSlider_->setValue(stepOf(speed));
}

// The second one is that of a strip of which nothing is said.
void StripPage::fillPositions(bool horizontal) {
  const QString first = horizontal ? u"top"_s : u"left"_s;
  if (position_->count() > 0 && position_->itemData(0).toString() == first)
    return;
  position_->clear();
  position_->addItem(horizontal ? tr("Top") : tr("Left"), first);
  position_->addItem(horizontal ? tr("Bottom") : tr("Right"),
                     horizontal ? u"bottom"_s : u"right"_s);
  position_->addItem(tr("Floating"), u"floating"_s);
}

void StripPage::fillScreens(const QString& chosen) {
  const QStringList names = screenNames();
  screen_->clear();
  screen_->addItem(tr("Primary screen"), QString());
  for (const QString& name : names)
    screen_->addItem(name, name);
  if (!chosen.isEmpty() && !names.contains(chosen))
    screen_->addItem(tr("%1 (not connected)").arg(chosen), chosen);
  screen_->setCurrentIndex(screen_->findData(chosen));
}

} // namespace zq::app
