#include "zqticker/signs/ZQTextTickerSign.h"

#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/signs/keyed_coding_p.h"

using namespace zq::platform;

ZQ_REGISTER_VALUE_CLASS(ZQTextTickerSign);

ZQTextTickerSign::ZQTextTickerSign() = default;

ZQTextTickerSign::ZQTextTickerSign(Ref<AttributedString> text) {
  setText(std::move(text));
}

ZQTextTickerSign::ZQTextTickerSign(const QString& string)
    : ZQTextTickerSign(AttributedString::make(string)) {}

ZQTextTickerSign::ZQTextTickerSign(const ZQTextTickerSign&) = default;
ZQTextTickerSign::~ZQTextTickerSign() = default;

void ZQTextTickerSign::setText(Ref<AttributedString> text) {
  if (text == text_)
    return;
  text_ = std::move(text);
  updateBuffer();
}

void ZQTextTickerSign::updateBuffer() {
  const QSizeF measured = text_ ? text_->size() : QSizeF(0, 0);
  // The extra width of one line's height is the gap between this text and the next sign.
  const Ref<Image> buffer =
      Image::make(QSizeF(measured.width() + measured.height(), measured.height()));
  setImage(buffer);
  if (!text_)
    return;
  const ImageFocus focus(*buffer);
  const ZQTickerDisplayProtocol* shownOn = display();
  text_->drawAtPoint(QPointF(0, shownOn ? shownOn->textOffset() : 0));
}

QString ZQTextTickerSign::description() const {
  return text_ ? text_->string() : QString();
}

Ref<ZQTickerSign> ZQTextTickerSign::memberwiseCopy() const {
  return Ref<ZQTickerSign>(new ZQTextTickerSign(*this));
}

Ref<Object> ZQTextTickerSign::copy() {
  const Ref<Object> duplicate = ZQImageTickerSign::copy();
  static_cast<ZQTextTickerSign&>(*duplicate).setText(copyOf(text_));
  return duplicate;
}

namespace {
constexpr char TextKey[] = "ZQText";
} // namespace

void ZQTextTickerSign::encodeWithCoder(Coder& coder) {
  ZQ_REQUIRE_KEYED_CODING(coder);
  ZQImageTickerSign::encodeWithCoder(coder);
  coder.encodeObject(text_, TextKey);
}

Ref<Object> ZQTextTickerSign::initWithCoder(Coder& coder) {
  ZQ_REQUIRE_KEYED_CODING(coder);
  ZQImageTickerSign::initWithCoder(coder);
  setText(coder.decodeObjectOfClass<AttributedString>(TextKey));
  return shared_from_this();
}
