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
  const ZQTickerDisplayProtocol* shownOn = text_ ? display() : nullptr;
  bufferOffset_ = shownOn ? shownOn->textOffset() : 0;
  rendering_.reset();
  letImageBeDue();
  // A text that may change is rendered as it is now; any other when the buffer is first asked for,
  // so that a sign in a long queue takes no layout.
  if (!text_ || !text_->isSettled())
    image();
}

Ref<Image> ZQTextTickerSign::makeImage() const {
  const QSizeF measured = text_ ? text_->size() : QSizeF(0, 0);
  // The extra width of one line's height is the gap between this text and the next sign.
  const Ref<Image> buffer =
      Image::make(QSizeF(measured.width() + measured.height(), measured.height()));
  if (!text_)
    return buffer;
  {
    const ImageFocus focus(*buffer);
    text_->drawAtPoint(QPointF(0, bufferOffset_));
  }
  if (text_->isSettled() && !buffer->representations().empty())
    rendering_ = buffer->representations().front();
  return buffer;
}

void ZQTextTickerSign::releaseBuffer() {
  const auto rendering = rendering_.lock();
  if (!rendering || !image() || image()->representations() != Image::Representations{rendering})
    return;
  rendering_.reset();
  letImageBeDue();
}

bool ZQTextTickerSign::measureUntil(const QDeadlineTimer& deadline) const {
  return !text_ || text_->measureUntil(deadline);
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
