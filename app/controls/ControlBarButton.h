// A button of the control bar.
#pragma once

#include "app/controls/control_glyphs.h"
#include "zqticker/rollover/ZQRollOverButton.h"

namespace zq::app {

// A rollover button that shows a glyph where others show a title, in the colour and with the shadow
// of the title. All of them share the look "ControlBarButton.button".
//
// Thread: main.
class ControlBarButton : public ZQRollOverButton {
  Q_OBJECT

 public:
  ControlBarButton(ControlGlyph glyph, QWidget* parent);
  ~ControlBarButton() override;

  ControlGlyph glyph() const { return glyph_; }
  void setGlyph(ControlGlyph glyph);

  // What the button does, as its tool tip and for assistive technology.
  void setPurpose(const QString& purpose);

  // The button pops its menu up.
  Q_SIGNAL void menuOpening();
  void menuDidOpen(platform::Menu& menu) override;

  // Whether the program has brought the look along; without it the buttons have no colours. The
  // first call reads it, and raises ArchiveException or InvalidArgumentException for a file that is
  // none.
  static bool hasLook();

 protected:
  void drawRect(const QRectF& dirtyRect) override;

 private:
  ControlGlyph glyph_;
};

} // namespace zq::app
