// The platform's text field.
#pragma once

#include "zqticker/platform/controls/ControlView.h"
#include "zqticker/platform/objects/Object.h"

#include <QtWidgets/QWidget>

#include <optional>

namespace zq::platform {

class AttributedString;
class TextFieldCell;

// A widget that shows text on lines as wide as it is. The text is not edited. Coordinates as in
// ControlView, y downwards.
//
// Thread: main.
class ZQTICKER_EXPORT TextField : public QWidget, public ControlView {
  Q_OBJECT
  Q_PROPERTY(QString stringValue READ stringValue WRITE setStringValue)

 public:
  // With a TextFieldCell.
  explicit TextField(QWidget* parent = nullptr);
  ~TextField() override;

  // Never null. After changes through the cell call setNeedsDisplay.
  const Ref<TextFieldCell>& cell() const { return cell_; }
  // Puts `cell` into the field; null raises InvalidArgumentException.
  void setCell(const Ref<TextFieldCell>& cell);

  // The text, attributes left out. Assistive technology is told it.
  QString stringValue() const;
  void setStringValue(const QString& stringValue);
  // Null is empty text.
  void setAttributedStringValue(const Ref<AttributedString>& attributedStringValue);

  // The frame in the coordinates of the superview, y upwards: the origin is the lower left corner.
  // Setting it rounds the origin to whole points and the size up, sides of no number to 0. A view
  // without superview stands with its origin at (0, 0).
  QRectF frame() const;
  void setFrame(const QRectF& frame);

  // The cell's cellSize, and the height that its cellSizeForBounds gives at a width; rounded up.
  QSize sizeHint() const override;
  bool hasHeightForWidth() const override { return true; }
  int heightForWidth(int width) const override;

  bool isFlipped() const override { return true; }
  QRectF bounds() const override;
  QPointF convertPointToWindow(QPointF point) const override;
  QPointF convertPointFromWindow(QPointF point) const override;
  void setNeedsDisplay() override;
  QWidget* widget() override { return this; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  // Null for a window.
  QWidget* superview() const { return isWindow() ? nullptr : parentWidget(); }
  void setValue(const Any& value);

  Ref<TextFieldCell> cell_;
};

} // namespace zq::platform
