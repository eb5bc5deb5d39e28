// A sign that shows a picture and a text, laid out against its display.
#pragma once

#include "zqticker/signs/ZQTickerSign.h"

#include <QtCore/QRectF>

namespace zq::platform {
class Color;
class Font;
class Image;
} // namespace zq::platform

// Shows a picture and a text after it (scrolling horizontally) or above it (vertically). The
// layout fits the picture to the display's height or width; it is computed on demand by `size` and
// `drawAtPoint`, and again when needsLayout is set or the effective font is another object. A
// change of the display does not show by itself: the display sets needsLayout on its signs.
//
// Thread: main, except for needsLayout and lastUsedFont, which any thread may use.
class ZQTICKER_EXPORT ZQComboTickerSign : public ZQTickerSign {
  Q_GADGET
  ZQ_OBJECT

 public:
  // For the class registry: a sign that initWithCoder has yet to fill. Use make.
  ZQComboTickerSign();
  ~ZQComboTickerSign() override;

  // A sign over `text`, which is a QString or a Ref to an AttributedString, and `image`, which may
  // be null. Its scroll direction is 0. Fails like setText.
  // Operation: initWithText:andImage:
  static zq::platform::Ref<ZQComboTickerSign> make(const zq::platform::Any& text,
                                                   zq::platform::Ref<zq::platform::Image> image);
  // Operation: initWithText:andImage:
  static zq::platform::Ref<ZQComboTickerSign> make(const QString& text,
                                                   zq::platform::Ref<zq::platform::Image> image) {
    return make(zq::platform::Any(text), std::move(image));
  }

  // The picture, shared with whoever set it; null for none. Setting it leaves the layout alone.
  const zq::platform::Ref<zq::platform::Image>& image() const { return image_; }
  void setImage(zq::platform::Ref<zq::platform::Image> image) { image_ = std::move(image); }

  // A QString or a Ref to an AttributedString; setting stores a copy and leaves the layout alone.
  // Any other value, nothing included, fails the assertion "text must be NSString or
  // NSAttributedString".
  const zq::platform::Any& text() const { return text_; }
  void setText(const zq::platform::Any& text);

  // Where the picture stands relative to the text; 2 in a new sign. Stored and copied only:
  // neither the layout nor the drawing nor the archive knows it, the picture always comes first.
  quintptr imagePosition() const { return imagePosition_; }
  void setImagePosition(quintptr position) { imagePosition_ = position; }

  // The font and the colour of a plain text: the sign's own, else the display's defaults.
  zq::platform::Ref<zq::platform::Font> font() const;
  void setFont(zq::platform::Ref<zq::platform::Font> font) { font_ = std::move(font); }
  zq::platform::Ref<zq::platform::Color> textColor() const;
  void setTextColor(zq::platform::Ref<zq::platform::Color> color) { textColor_ = std::move(color); }

  // The font with which the layout was last computed; null before that.
  zq::platform::Ref<zq::platform::Font> lastUsedFont() const { return lastUsedFont_.load(); }
  void setLastUsedFont(zq::platform::Ref<zq::platform::Font> font) {
    lastUsedFont_.store(std::move(font));
  }

  // Computes the layout if needsLayout is set or `font` is not the very object in lastUsedFont.
  void layoutIfNeeded() const;
  // Computes the layout and the size, and clears needsLayout. With a display that autoscales, an
  // attributed text is replaced by one whose fonts fit the display's height.
  void calculateLayout();

  QSizeF size() const override;
  bool measureUntil(const QDeadlineTimer& deadline) const override;
  void drawAtPoint(QPointF point) override;

  // "<ClassName: 0xaddress> characters of the text".
  QString description() const override;

  // The copy holds the picture and the text that this sign held until now, and this sign's layout;
  // this sign goes on with private copies of them and needs layout.
  // Operation: copyWithZone:
  zq::platform::Ref<zq::platform::Object> copy() override;

  // Adds the picture as TIFF data and the text. A sign that was read needs layout, has
  // imagePosition 0 and neither font nor colour of its own.
  void encodeWithCoder(zq::platform::Coder& coder) override;
  zq::platform::Ref<zq::platform::Object> initWithCoder(zq::platform::Coder& coder) override;

 protected:
  ZQComboTickerSign(const ZQComboTickerSign&);
  zq::platform::Ref<ZQTickerSign> memberwiseCopy() const override;

 private:
  zq::platform::Ref<zq::platform::Image> image_;
  zq::platform::Any text_;
  quintptr imagePosition_ = 0;
  zq::platform::Ref<zq::platform::Font> font_;
  zq::platform::Ref<zq::platform::Color> textColor_;
  QRectF imageTargetRect_;
  QPointF textOffset_;
  zq::platform::AtomicProperty<zq::platform::Ref<zq::platform::Font>> lastUsedFont_;
};
