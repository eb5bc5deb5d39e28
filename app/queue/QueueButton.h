// A button of the queue window.
#pragma once

#include "zqticker/rollover/ZQRollOverButton.h"

namespace zq::platform {
class GraphicsContext;
} // namespace zq::platform

namespace zq::app {

// A rollover button that the keyboard reaches: Tab gives it the focus, which it shows by a frame,
// and Space and Enter click it.
//
// Its look is "QueueButton.button" where the program has one, else the shipped light or dark look,
// as suits the palette; without these one made of the palette's colours.
//
// Thread: main.
class QueueButton : public ZQRollOverButton {
  Q_OBJECT

 public:
  explicit QueueButton(const QString& title, QWidget* parent = nullptr);
  ~QueueButton() override;

  // The letter of the title that is underlined, for a shortcut that the window has; the first one
  // of either case. None at first.
  void setMnemonic(QChar letter);

  // Gives all buttons the look that suits the application's palette as it is now, and redraws
  // none.
  static void followPalette();
  static QUrl appearanceDataURL(const QString& className);

 protected:
  void drawRect(const QRectF& dirtyRect) override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  void underlineMnemonic(platform::GraphicsContext& context) const;

  QChar mnemonic_;
};

} // namespace zq::app
