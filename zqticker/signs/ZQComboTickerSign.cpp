#include "zqticker/signs/ZQComboTickerSign.h"

#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/platform/text/string_drawing.h"
#include "zqticker/platform/text/text_attributes.h"
#include "zqticker/signs/combo_layout_p.h"
#include "zqticker/signs/keyed_coding_p.h"
#include "zqticker/signs/picture_archiving_p.h"

using namespace Qt::StringLiterals;
using namespace zq::platform;

ZQ_REGISTER_VALUE_CLASS(ZQComboTickerSign);

namespace {

constexpr quintptr DefaultImagePosition = 2;

bool isText(const Any& text) {
  return text.metaType() == QMetaType::fromType<QString>() || objectOf<AttributedString>(text);
}

Any copyOfText(const Any& text) {
  const Ref<AttributedString> attributed = objectOf<AttributedString>(text);
  return attributed ? any(copyOf(attributed)) : text;
}

Attributes attributesOfPlainText(const Ref<Font>& font, const Ref<Color>& color) {
  Attributes attributes;
  if (font)
    attributes.insert(FontAttributeName, any(font));
  if (color)
    attributes.insert(ForegroundColorAttributeName, any(color));
  return attributes;
}

} // namespace

ZQComboTickerSign::ZQComboTickerSign() = default;
ZQComboTickerSign::ZQComboTickerSign(const ZQComboTickerSign&) = default;
ZQComboTickerSign::~ZQComboTickerSign() = default;

Ref<ZQComboTickerSign> ZQComboTickerSign::make(const Any& text, Ref<Image> image) {
  auto sign = std::make_shared<ZQComboTickerSign>();
  sign->setImage(std::move(image));
  sign->setText(text);
  sign->setImagePosition(DefaultImagePosition);
  sign->setSize(QSizeF(0, 0));
  sign->setNeedsLayout(true);
  return sign;
}

void ZQComboTickerSign::setText(const Any& text) {
  ZQ_ASSERT(isText(text), u"text must be NSString or NSAttributedString"_s);
  if (!isSameObject(text, text_))
    text_ = copyOfText(text);
}

Ref<Font> ZQComboTickerSign::font() const {
  return font_ || !display() ? font_ : display()->defaultFont();
}

Ref<Color> ZQComboTickerSign::textColor() const {
  return textColor_ || !display() ? textColor_ : display()->defaultTextColor();
}

void ZQComboTickerSign::layoutIfNeeded() const {
  // The layout is a cache over the sign's values, so that asking for the size stays const.
  if (needsLayout() || font() != lastUsedFont())
    const_cast<ZQComboTickerSign*>(this)->calculateLayout();
}

void ZQComboTickerSign::calculateLayout() {
  const ZQTickerDisplayProtocol* shownOn = display();
  const Ref<Font> usedFont = font();
  setLastUsedFont(usedFont);

  ComboLayoutInput input;
  if (shownOn) {
    input.displaySize = shownOn->size();
    input.horizontal = shownOn->scrollDirection() == 1;
    input.displayTextOffset = shownOn->textOffset();
  } else {
    input.displaySize = QSizeF(0, 0);
  }
  if (image_)
    input.imageSize = image_->size();
  input.fontPointSize = usedFont ? usedFont->pointSize() : 0;

  if (const Ref<AttributedString> attributed = objectOf<AttributedString>(text_)) {
    if (shownOn && shownOn->shouldAutoscale()) {
      const double factor = scaleFactorToFitHeight(*attributed, input.displaySize.height());
      setText(any(textWithScaledFonts(*attributed, factor)));
    }
    input.textSize = objectOf<AttributedString>(text_)->size();
  } else {
    // In its colour, though that takes no room: the drawing then finds this layout.
    input.textSize =
        sizeWithAttributes(text_.toString(), attributesOfPlainText(usedFont, textColor()));
  }

  const ComboLayout layout = layoutCombo(input);
  imageTargetRect_ = layout.imageTargetRect;
  textOffset_ = layout.textOffset;
  setSize(layout.size);
  setNeedsLayout(false);
}

QSizeF ZQComboTickerSign::size() const {
  layoutIfNeeded();
  return ZQTickerSign::size();
}

bool ZQComboTickerSign::measureUntil(const QDeadlineTimer& deadline) const {
  const Ref<AttributedString> attributed = objectOf<AttributedString>(text_);
  if (!attributed)
    return zq::platform::measureUntil(text_.toString(), attributesOfPlainText(font(), textColor()),
                                      deadline);
  // One that is scaled is measured in other fonts.
  return (display() && display()->shouldAutoscale()) || attributed->measureUntil(deadline);
}

void ZQComboTickerSign::drawAtPoint(QPointF point) {
  layoutIfNeeded();
  if (image_)
    image_->drawInRect(imageTargetRect_.translated(point), QRectF(),
                       CompositingOperation::SourceOver, 1.0, true);
  const QPointF textPoint = point + textOffset_;
  if (const Ref<AttributedString> attributed = objectOf<AttributedString>(text_))
    attributed->drawAtPoint(textPoint);
  else
    zq::platform::drawAtPoint(text_.toString(), textPoint,
                              attributesOfPlainText(font(), textColor()));
}

QString ZQComboTickerSign::description() const {
  const Ref<AttributedString> attributed = objectOf<AttributedString>(text_);
  return defaultDescription() + u' ' + (attributed ? attributed->string() : text_.toString());
}

Ref<ZQTickerSign> ZQComboTickerSign::memberwiseCopy() const {
  return Ref<ZQTickerSign>(new ZQComboTickerSign(*this));
}

Ref<Object> ZQComboTickerSign::copy() {
  const Ref<Object> duplicate = ZQTickerSign::copy();
  // Deliberately the source gets the fresh objects and the stale layout: whoever holds the old
  // picture or text keeps the copy.
  image_ = copyOf(image_);
  text_ = copyOfText(text_);
  setNeedsLayout(true);
  return duplicate;
}

namespace {
constexpr char ImageKey[] = "ZQImage";
constexpr char TextKey[] = "ZQText";
} // namespace

void ZQComboTickerSign::encodeWithCoder(Coder& coder) {
  ZQ_REQUIRE_KEYED_CODING(coder);
  ZQTickerSign::encodeWithCoder(coder);
  encodePicture(coder, image_, ImageKey);
  coder.encodeObject(text_, TextKey);
}

Ref<Object> ZQComboTickerSign::initWithCoder(Coder& coder) {
  ZQ_REQUIRE_KEYED_CODING(coder);
  ZQTickerSign::initWithCoder(coder);
  setImage(decodePicture(coder, ImageKey));
  setText(coder.decodeObjectForKey(TextKey));
  setNeedsLayout(true);
  return shared_from_this();
}
