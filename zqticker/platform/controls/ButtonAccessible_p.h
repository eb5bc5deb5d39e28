// Buttons for assistive technology.
#pragma once

#include <QtWidgets/qaccessiblewidget.h>

namespace zq::platform {

class Button;

// Role, name and state of a button; the actions "press" and, with a menu, "show menu".
class ButtonAccessible : public QAccessibleWidget {
 public:
  // Has the toolkit describe every Button by this class.
  static void install();

  explicit ButtonAccessible(Button* button);

  QString text(QAccessible::Text text) const override;
  QAccessible::State state() const override;
  QStringList actionNames() const override;
  void doAction(const QString& actionName) override;

 private:
  Button& button() const;
};

} // namespace zq::platform
