// The settings of how texts look.
#pragma once

#include "app/settings/SettingsPage.h"

class QCheckBox;
class QDoubleSpinBox;
class QFontComboBox;

namespace zq::app {

class ColorButton;

// Font, colors and autoscaling.
class TextPage : public SettingsPage {
  Q_OBJECT

 public:
  explicit TextPage(QWidget* parent = nullptr);
  ~TextPage() override;

 protected:
  void showSettings(const Settings& settings) override;

 private:
  void chooseFont();

  QCheckBox* hasFont_;
  QFontComboBox* family_;
  QDoubleSpinBox* size_;
  ColorButton* color_;
  ColorButton* background_;
  QCheckBox* autoscale_;
};

} // namespace zq::app
