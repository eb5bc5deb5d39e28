#include "app/settings/page_controls.h"

#include "app/commands/strip_values.h"
#include "app/settings/setting_table.h"

#include <QtCore/QCoreApplication>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QLabel>

using namespace Qt::StringLiterals;

namespace zq::app {

QDoubleSpinBox* makeSideBox() {
  auto* box = new QDoubleSpinBox;
  // 0 is shown as a word.
  box->setRange(0, LongestSide);
  box->setDecimals(0);
  box->setSpecialValueText(QCoreApplication::translate("SettingsPage", "Automatic"));
  box->setSuffix(QCoreApplication::translate("SettingsPage", " points"));
  box->setKeyboardTracking(false);
  return box;
}

QString sideText(const QDoubleSpinBox& box) {
  return box.value() < ShortestSide ? u"automatic"_s : textOfNumber(box.value());
}

QString switchText(bool isOn) {
  return isOn ? u"on"_s : u"off"_s;
}

void addRow(QFormLayout& form, const QString& label, QLayout* controls, QWidget& buddy) {
  auto* text = new QLabel(label);
  text->setBuddy(&buddy);
  form.addRow(text, controls);
}

} // namespace zq::app
