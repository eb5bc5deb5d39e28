// Controls that the pages of the settings window share.
#pragma once

#include <QtCore/QString>

class QDoubleSpinBox;
class QFormLayout;
class QLayout;
class QWidget;

namespace zq::app {

// A side of the strip in points, or "automatic", which is 0.
QDoubleSpinBox* makeSideBox();
// Its value as the setting takes it.
QString sideText(const QDoubleSpinBox& box);

// A switch as the settings take it.
QString switchText(bool isOn);

// A row of several controls; the label's key goes to `buddy`.
void addRow(QFormLayout& form, const QString& label, QLayout* controls, QWidget& buddy);

} // namespace zq::app
