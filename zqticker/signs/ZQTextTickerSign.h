// A sign that shows a line of text.
#pragma once

#include "zqticker/signs/ZQImageTickerSign.h"

namespace zq::platform {
class AttributedString;
class ImageRepresentation;
} // namespace zq::platform

// Shows styled text on one line. The inherited image is the text's rendering, its buffer, made
// whenever the text is set; callers do not set it.
class ZQTICKER_EXPORT ZQTextTickerSign : public ZQImageTickerSign {
  Q_GADGET
  ZQ_OBJECT

 public:
  // A sign without a text, of zero size, with scroll direction 1.
  ZQTextTickerSign();
  explicit ZQTextTickerSign(zq::platform::Ref<zq::platform::AttributedString> text);
  // Shows `string` without attributes.
  explicit ZQTextTickerSign(const QString& string);
  ~ZQTextTickerSign() override;

  // Operation: initWithAttributedString:
  static zq::platform::Ref<ZQTextTickerSign>
  make(zq::platform::Ref<zq::platform::AttributedString> text) {
    return std::make_shared<ZQTextTickerSign>(std::move(text));
  }
  // Operation: initWithString:
  static zq::platform::Ref<ZQTextTickerSign> make(const QString& string) {
    return std::make_shared<ZQTextTickerSign>(string);
  }

  // The text, shared with whoever set it. Setting another object renders the buffer; setting the
  // very object that is held does nothing. Raises in a process without a GUI application.
  const zq::platform::Ref<zq::platform::AttributedString>& text() const { return text_; }
  void setText(zq::platform::Ref<zq::platform::AttributedString> text);

  // Renders the text into a fresh image of the text's width plus its height by its height: the
  // height in width is the gap after every text. The text stands at the display's textOffset of
  // this moment, 0 without a display; a display that is set later does not render it again.
  void updateBuffer();
  // Lets the buffer go where `image` would make the same again: for a text that will not be shown
  // for a while.
  void releaseBuffer();

  bool measureUntil(const QDeadlineTimer& deadline) const override;

  // The text's characters; empty without a text.
  QString description() const override;

  // The copy has a copy of the text and a buffer of its own.
  // Operation: copyWithZone:
  zq::platform::Ref<zq::platform::Object> copy() override;

  // Adds the text. Reading renders the buffer again, in place of the archived picture.
  void encodeWithCoder(zq::platform::Coder& coder) override;
  zq::platform::Ref<zq::platform::Object> initWithCoder(zq::platform::Coder& coder) override;

 protected:
  ZQTextTickerSign(const ZQTextTickerSign&);
  zq::platform::Ref<ZQTickerSign> memberwiseCopy() const override;
  zq::platform::Ref<zq::platform::Image> makeImage() const override;

 private:
  zq::platform::Ref<zq::platform::AttributedString> text_;
  qreal bufferOffset_ = 0; // the text offset at which the buffer shows the text
  // What makeImage drew, where it would draw the same again.
  mutable std::weak_ptr<const zq::platform::ImageRepresentation> rendering_;
};
