#include "zqticker/platform/graphics/Shadow.h"

#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/archiving/Coder.h"
#include "zqticker/platform/archiving/number_text.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/GraphicsContext.h"

using namespace Qt::StringLiterals;

namespace zq::platform {

ZQ_REGISTER_VALUE_CLASS(Shadow);

static constexpr QLatin1StringView HorizontalKey{"NSShadowHoriz"};
static constexpr QLatin1StringView VerticalKey{"NSShadowVert"};
static constexpr QLatin1StringView BlurRadiusKey{"NSShadowBlurRadius"};
static constexpr QLatin1StringView ColorKey{"NSShadowColor"};

Shadow::Shadow() : color_(defaultColor()) {}
Shadow::Shadow(QSizeF offset, double blurRadius, Ref<Color> color)
    : offset_(offset), color_(std::move(color)) {
  setShadowBlurRadius(blurRadius);
}
Shadow::~Shadow() = default;

void Shadow::setShadowBlurRadius(double radius) {
  blurRadius_ = radius > 0 ? radius : 0;
}

void Shadow::set() const {
  if (GraphicsContext* context = GraphicsContext::currentContext())
    context->setShadow(this);
}

Ref<Color> Shadow::defaultColor() {
  return Color::calibratedWhite(0, 1.0 / 3);
}

QString Shadow::description() const {
  return "Shadow "_L1 + textOfSize(offset_) + " blur "_L1 + textOfNumber(blurRadius_) +
         " color "_L1 + describe(color_);
}

bool Shadow::isEqual(const Object& other) const {
  const auto* shadow = dynamic_cast<const Shadow*>(&other);
  // Exact, where QSizeF would compare roughly.
  return shadow && shadow->offset_.width() == offset_.width() &&
         shadow->offset_.height() == offset_.height() && shadow->blurRadius_ == blurRadius_ &&
         isEqualValue(any(shadow->color_), any(color_));
}

Ref<Object> Shadow::copy() {
  return std::make_shared<Shadow>(*this);
}

void Shadow::encodeWithCoder(Coder& coder) {
  coder.encodeDouble(offset_.width(), HorizontalKey);
  coder.encodeDouble(offset_.height(), VerticalKey);
  coder.encodeDouble(blurRadius_, BlurRadiusKey);
  coder.encodeObject(color_, ColorKey);
}

Ref<Object> Shadow::initWithCoder(Coder& coder) {
  offset_ = {coder.decodeDoubleForKey(HorizontalKey), coder.decodeDoubleForKey(VerticalKey)};
  setShadowBlurRadius(coder.decodeDoubleForKey(BlurRadiusKey));
  // A missing colour is the default one, a colour of nothing is none.
  color_ = coder.containsValueForKey(ColorKey) ? coder.decodeObjectOfClass<Color>(ColorKey)
                                               : defaultColor();
  return shared_from_this();
}

} // namespace zq::platform
