// A color to choose.
#pragma once

#include <QtGui/QColor>
#include <QtWidgets/QPushButton>

namespace zq::app {

// Shows a color as a swatch with its name, and lets another be chosen in a dialog.
//
// Thread: main.
class ColorButton : public QPushButton {
  Q_OBJECT

 public:
  // `purpose` names the color in the dialog and for screen readers: "Text color".
  explicit ColorButton(const QString& purpose, QWidget* parent = nullptr);
  ~ColorButton() override;

  const QColor& color() const { return color_; }
  void setColor(const QColor& color);
  // The user has chosen another one.
  Q_SIGNAL void chosen(const QColor& color);

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void openDialog();
  void drawSwatch();

  QString purpose_;
  QColor color_;
};

} // namespace zq::app
