// A sign that shows a picture.
#pragma once

#include "zqticker/signs/ZQTickerSign.h"

namespace zq::platform {
class Image;
} // namespace zq::platform

// Shows a picture in its own size. Scrolls horizontally unless told otherwise.
class ZQTICKER_EXPORT ZQImageTickerSign : public ZQTickerSign {
  Q_GADGET
  ZQ_OBJECT

 public:
  // A sign without a picture, of zero size, with scroll direction 1.
  // Operation: init
  ZQImageTickerSign();
  explicit ZQImageTickerSign(zq::platform::Ref<zq::platform::Image> image);
  ~ZQImageTickerSign() override;

  // Operation: initWithImage:
  static zq::platform::Ref<ZQImageTickerSign>
  make(zq::platform::Ref<zq::platform::Image> image = nullptr) {
    return std::make_shared<ZQImageTickerSign>(std::move(image));
  }

  // The picture, shared with whoever set it; null for none.
  const zq::platform::Ref<zq::platform::Image>& image() const {
    if (imageIsDue_)
      makeDueImage();
    return image_;
  }
  void setImage(zq::platform::Ref<zq::platform::Image> image) {
    imageIsDue_ = false;
    image_ = std::move(image);
  }

  // What the picture says, in words; nothing by default.
  const std::optional<QString>& textRepresentation() const { return textRepresentation_; }
  void setTextRepresentation(std::optional<QString> text) { textRepresentation_ = std::move(text); }

  // The picture's size, zero without one. The size of the base is not consulted.
  QSizeF size() const override;
  // Draws the picture fully opaque with its lower-left corner at `point`.
  void drawAtPoint(QPointF point) override;

  // textRepresentation where it is set, else the default description.
  QString description() const override;

  // The copy holds the picture and the text representation that this sign held until now; this
  // sign goes on with private copies of them.
  // Operation: copyWithZone:
  zq::platform::Ref<zq::platform::Object> copy() override;

  // Adds the picture as TIFF data and the text representation. Undecodable data leaves the sign
  // without a picture.
  void encodeWithCoder(zq::platform::Coder& coder) override;
  zq::platform::Ref<zq::platform::Object> initWithCoder(zq::platform::Coder& coder) override;

 protected:
  ZQImageTickerSign(const ZQImageTickerSign&);
  zq::platform::Ref<ZQTickerSign> memberwiseCopy() const override;

  // Lets the picture be what makeImage gives when it is first asked for.
  void letImageBeDue();
  // A picture for letImageBeDue; none by default.
  virtual zq::platform::Ref<zq::platform::Image> makeImage() const;

 private:
  void makeDueImage() const;

  mutable zq::platform::Ref<zq::platform::Image> image_;
  mutable bool imageIsDue_ = false;
  std::optional<QString> textRepresentation_;
};
