// Cells that show text on as many lines as it needs.
#pragma once

#include "zqticker/platform/controls/ActionCell.h"

namespace zq::platform {

class AttributedString;

// A cell that shows plain or attributed text, broken into lines as wide as the cell. Text without a
// colour has that of the desktop. Not archived.
//
// Thread: main.
class ZQTICKER_EXPORT TextFieldCell : public ActionCell {
  Q_GADGET
  ZQ_OBJECT

 public:
  // Points between the edges at the left and right and the text, and the width of the border.
  static constexpr double Padding = 2;
  static constexpr double BorderWidth = 1;

  TextFieldCell();
  ~TextFieldCell() override;

  // What is shown, with the cell's font where a plain text is shown; empty for what is no text.
  Ref<AttributedString> attributedStringValue() const;

  // Each line of the text in full.
  QSizeF cellSize() const override;
  // The size that the text needs when broken at the width of `bounds`, no more than `bounds` has.
  // Nothing but what shows there is measured, however long the text.
  QSizeF cellSizeForBounds(const QRectF& bounds) const override;
  // `bounds` without border and padding.
  QRectF drawingRectForBounds(const QRectF& bounds) const override;
  // From the top; what has no room below is cut off.
  void drawInteriorWithFrame(const QRectF& frame, ControlView* inView) override;

  Ref<Object> copy() override;
  // Raise UnrecognizedSelectorException.
  void encodeWithCoder(Coder& coder) override;
  Ref<Object> initWithCoder(Coder& coder) override;

 private:
  TextFieldCell(const TextFieldCell&) = default;

  // What border and padding add to the text.
  QSizeF margins() const;
};

} // namespace zq::platform
