#include "zqticker/signs/ZQImageTickerSign.h"

#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/signs/keyed_coding_p.h"
#include "zqticker/signs/picture_archiving_p.h"

using namespace Qt::StringLiterals;
using namespace zq::platform;

ZQ_REGISTER_VALUE_CLASS(ZQImageTickerSign);

ZQImageTickerSign::ZQImageTickerSign() : ZQImageTickerSign(nullptr) {}

ZQImageTickerSign::ZQImageTickerSign(Ref<Image> image) {
  setScrollDirection(1);
  setImage(std::move(image));
}

ZQImageTickerSign::ZQImageTickerSign(const ZQImageTickerSign&) = default;
ZQImageTickerSign::~ZQImageTickerSign() = default;

void ZQImageTickerSign::letImageBeDue() {
  image_ = nullptr;
  imageIsDue_ = true;
}

Ref<Image> ZQImageTickerSign::makeImage() const {
  return nullptr;
}

void ZQImageTickerSign::makeDueImage() const {
  // Where that raises it stays due.
  image_ = makeImage();
  imageIsDue_ = false;
}

QSizeF ZQImageTickerSign::size() const {
  return image() ? image()->size() : QSizeF(0, 0);
}

void ZQImageTickerSign::drawAtPoint(QPointF point) {
  if (image())
    image()->dissolveToPoint(point, 1.0);
}

QString ZQImageTickerSign::description() const {
  return textRepresentation_ ? *textRepresentation_ : defaultDescription();
}

Ref<ZQTickerSign> ZQImageTickerSign::memberwiseCopy() const {
  return Ref<ZQTickerSign>(new ZQImageTickerSign(*this));
}

Ref<Object> ZQImageTickerSign::copy() {
  const Ref<Image> shared = image();
  const Ref<Object> duplicate = ZQTickerSign::copy();
  // Deliberately the source gets the fresh picture: whoever holds the old one keeps the copy.
  setImage(copyOf(shared));
  return duplicate;
}

namespace {
constexpr char ImageKey[] = "ZQImage";
constexpr char TextRepresentationKey[] = "ZQTextRepresentation";
} // namespace

void ZQImageTickerSign::encodeWithCoder(Coder& coder) {
  ZQ_REQUIRE_KEYED_CODING(coder);
  ZQTickerSign::encodeWithCoder(coder);
  encodePicture(coder, image(), ImageKey);
  coder.encodeObject(textRepresentation_, TextRepresentationKey);
}

Ref<Object> ZQImageTickerSign::initWithCoder(Coder& coder) {
  ZQ_REQUIRE_KEYED_CODING(coder);
  ZQTickerSign::initWithCoder(coder);
  setImage(decodePicture(coder, ImageKey));
  setTextRepresentation(coder.decodeStringForKey(TextRepresentationKey));
  return shared_from_this();
}
