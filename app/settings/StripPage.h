// The settings of where the strip stands and how it moves.
#pragma once

#include "app/settings/ChosenScreen.h"
#include "app/settings/SettingsPage.h"

#include <QtCore/QTimer>

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QSlider;

namespace zq::app {

// Direction, speed, position, screen, sizes, control bar and autostart.
class StripPage : public SettingsPage {
  Q_OBJECT

 public:
  explicit StripPage(QWidget* parent = nullptr);
  ~StripPage() override;

 protected:
  void showSettings(const Settings& settings) override;
  void hideEvent(QHideEvent* event) override;

 private:
  void fillPositions(bool horizontal);
  void fillScreens(const QString& chosen);
  void showSpeed(double speed);
  void tellSlide();

  ChosenScreen screens_;
  QComboBox* direction_;
  QSlider* speedSlider_;
  QDoubleSpinBox* speed_;
  QComboBox* position_;
  QComboBox* screen_;
  QDoubleSpinBox* height_;
  QDoubleSpinBox* width_;
  QDoubleSpinBox* fade_;
  QCheckBox* controlBar_;
  QCheckBox* pause_;
  QComboBox* motion_;
  QCheckBox* autostart_;
  QTimer slid_; // while the slider moves
  QString chosenScreen_;
};

} // namespace zq::app
