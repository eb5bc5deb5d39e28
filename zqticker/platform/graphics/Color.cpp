#include "zqticker/platform/graphics/Color.h"

#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/archiving/Coder.h"
#include "zqticker/platform/graphics/ColorSpace_p.h"
#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/graphics/component_text_p.h"
#include "zqticker/platform/objects/Exception.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace zq::platform {

ZQ_REGISTER_VALUE_CLASS(Color);

namespace {

using Space = Color::Space;

// Keys of a colour's archive.
constexpr QLatin1StringView SpaceKey{"NSColorSpace"};
constexpr QLatin1StringView RGBKey{"NSRGB"};
constexpr QLatin1StringView WhiteKey{"NSWhite"};
constexpr QLatin1StringView CMYKKey{"NSCMYK"};
// One writer misspells the key; such archives read as well.
constexpr QLatin1StringView MisspeltCMYKKey{"NSCYMK"};
constexpr QLatin1StringView CatalogNameKey{"NSCatalogName"};
constexpr QLatin1StringView ColorNameKey{"NSColorName"};
constexpr QLatin1StringView FallbackKey{"NSColor"};
constexpr QLatin1StringView ImageKey{"NSImage"};
constexpr QLatin1StringView CustomSpaceKey{"NSCustomColorSpace"};
constexpr QLatin1StringView CustomComponentsKey{"NSComponents"};

double limited(double component) {
  return std::isnan(component) ? 0 : std::clamp(component, 0.0, 1.0);
}

bool isWhite(Space space) {
  return space == Space::CalibratedWhite || space == Space::DeviceWhite ||
         space == Space::GenericGray || space == Space::GenericGamma22Gray;
}

std::size_t colorantsOf(Space space) {
  return isWhite(space) ? 1 : space == Space::DeviceCMYK ? 4 : 3;
}

// The number of a custom space's record, or 0 for the plain spaces.
int customIdentifier(Space space) {
  return int(space) > 100 ? int(space) - 100 : 0;
}

QLatin1StringView nameOf(Space space) {
  switch (space) {
  case Space::CalibratedRGB:
    return "CalibratedRGB"_L1;
  case Space::DeviceRGB:
    return "DeviceRGB"_L1;
  case Space::CalibratedWhite:
    return "CalibratedWhite"_L1;
  case Space::DeviceWhite:
    return "DeviceWhite"_L1;
  case Space::DeviceCMYK:
    return "DeviceCMYK"_L1;
  case Space::Catalog:
    return "Catalog"_L1;
  case Space::Pattern:
    return "Pattern"_L1;
  case Space::SRGB:
    return "SRGB"_L1;
  case Space::GenericGray:
    return "GenericGray"_L1;
  case Space::GenericGamma22Gray:
    return "GenericGamma22Gray"_L1;
  }
  return {};
}

} // namespace

Color::Color() = default;
Color::~Color() = default;

Ref<Color> Color::make(Space space, std::vector<double> components) {
  auto color = std::make_shared<Color>();
  color->space_ = space;
  std::transform(components.begin(), components.end(), components.begin(), limited);
  color->components_ = std::move(components);
  return color;
}

Ref<Color> Color::deviceRGB(double red, double green, double blue, double alpha) {
  return make(Space::DeviceRGB, {red, green, blue, alpha});
}
Ref<Color> Color::calibratedRGB(double red, double green, double blue, double alpha) {
  return make(Space::CalibratedRGB, {red, green, blue, alpha});
}
Ref<Color> Color::sRGB(double red, double green, double blue, double alpha) {
  return make(Space::SRGB, {red, green, blue, alpha});
}
Ref<Color> Color::deviceWhite(double white, double alpha) {
  return make(Space::DeviceWhite, {white, alpha});
}
Ref<Color> Color::calibratedWhite(double white, double alpha) {
  return make(Space::CalibratedWhite, {white, alpha});
}
Ref<Color> Color::deviceCMYK(double cyan, double magenta, double yellow, double black,
                             double alpha) {
  return make(Space::DeviceCMYK, {cyan, magenta, yellow, black, alpha});
}

Ref<Color> Color::calibratedHSB(double hue, double saturation, double brightness, double alpha) {
  const double value = limited(brightness);
  const double strength = limited(saturation);
  // The colour circle has six stretches; on each, one channel runs and the other two stand still.
  constexpr int stretches = 6;
  const double place = limited(hue) * stretches;
  const double start = std::floor(place);
  const double low = value * (1 - strength);
  const double falling = value * (1 - strength * (place - start));
  const double rising = value * (1 - strength * (1 - (place - start)));
  switch (int(start) % stretches) {
  case 0:
    return calibratedRGB(value, rising, low, alpha);
  case 1:
    return calibratedRGB(falling, value, low, alpha);
  case 2:
    return calibratedRGB(low, value, rising, alpha);
  case 3:
    return calibratedRGB(low, falling, value, alpha);
  case 4:
    return calibratedRGB(rising, low, value, alpha);
  default:
    return calibratedRGB(value, low, falling, alpha);
  }
}

Ref<Color> Color::catalog(const QString& catalogName, const QString& colorName,
                          const Ref<Color>& fallback) {
  Ref<Color> color = make(Space::Catalog, {});
  color->catalogName_ = catalogName;
  color->colorName_ = colorName;
  color->fallback_ = fallback;
  return color;
}

Ref<Color> Color::pattern(const Ref<Image>& image) {
  Ref<Color> color = make(Space::Pattern, {});
  // The colour stays as it is when the image is drawn into later.
  color->patternImage_ = copyOf(image);
  return color;
}

Ref<Color> Color::fromQColor(const QColor& color) {
  if (!color.isValid())
    return nullptr;
  const QRgba64 rgba = color.toRgb().rgba64();
  // Whole 16-bit steps, so that an 8-bit component comes out as exactly n / 255.
  constexpr double full = 65535;
  return deviceRGB(rgba.red() / full, rgba.green() / full, rgba.blue() / full, rgba.alpha() / full);
}

Ref<Color> Color::fromName(const QString& name) {
  return QColor::isValidColorName(name) ? fromQColor(QColor(name)) : nullptr;
}

double Color::redComponent() const {
  if (space_ == Space::Catalog)
    return fallback_ ? fallback_->redComponent() : 0;
  if (space_ == Space::DeviceCMYK)
    return (1 - components_[0]) * (1 - components_[3]);
  return space_ == Space::Pattern ? 0 : components_[0];
}

double Color::greenComponent() const {
  if (space_ == Space::Catalog)
    return fallback_ ? fallback_->greenComponent() : 0;
  if (space_ == Space::DeviceCMYK)
    return (1 - components_[1]) * (1 - components_[3]);
  return space_ == Space::Pattern ? 0 : components_[isWhite(space_) ? 0 : 1];
}

double Color::blueComponent() const {
  if (space_ == Space::Catalog)
    return fallback_ ? fallback_->blueComponent() : 0;
  if (space_ == Space::DeviceCMYK)
    return (1 - components_[2]) * (1 - components_[3]);
  return space_ == Space::Pattern ? 0 : components_[isWhite(space_) ? 0 : 2];
}

double Color::alphaComponent() const {
  if (space_ == Space::Catalog)
    return fallback_ ? fallback_->alphaComponent() : 1;
  return space_ == Space::Pattern ? 1 : components_.back();
}

double Color::brightnessComponent() const {
  return std::max({redComponent(), greenComponent(), blueComponent()});
}

double Color::saturationComponent() const {
  const double high = brightnessComponent();
  const double low = std::min({redComponent(), greenComponent(), blueComponent()});
  return high > 0 ? (high - low) / high : 0;
}

double Color::hueComponent() const {
  const double red = redComponent();
  const double green = greenComponent();
  const double blue = blueComponent();
  const double high = std::max({red, green, blue});
  const double range = high - std::min({red, green, blue});
  if (range <= 0)
    return 0;
  constexpr double stretches = 6;
  if (high == red)
    // Purples lie before red, at the end of the circle.
    return (green - blue) / range / stretches + (green < blue ? 1 : 0);
  if (high == green)
    return ((blue - red) / range + 2) / stretches;
  return ((red - green) / range + 4) / stretches;
}

Ref<Color> Color::colorWithAlphaComponent(double alpha) const {
  if (space_ == Space::Catalog)
    return fallback_ ? fallback_->colorWithAlphaComponent(alpha) : calibratedWhite(0, alpha);
  auto color = std::make_shared<Color>(*this);
  if (space_ != Space::Pattern)
    color->components_.back() = limited(alpha);
  return color;
}

QColor Color::qColor() const {
  return QColor::fromRgbF(float(redComponent()), float(greenComponent()), float(blueComponent()),
                          float(alphaComponent()));
}

void Color::set() const {
  GraphicsContext* context = GraphicsContext::currentContext();
  if (!context)
    return;
  // Colours are immutable, so that a context may hold them without const.
  const auto color =
      std::const_pointer_cast<Color>(std::static_pointer_cast<const Color>(shared_from_this()));
  context->setFillColor(color);
  context->setStrokeColor(color);
}

QString Color::description() const {
  QString text = nameOf(space_);
  if (space_ == Space::Catalog)
    text += u' ' + catalogName_ + u' ' + colorName_;
  if (!components_.empty())
    text += u' ' + QString::fromLatin1(componentText(components_));
  return text;
}

bool Color::isEqual(const Object& other) const {
  if (this == &other)
    return true;
  const auto* color = dynamic_cast<const Color*>(&other);
  return color && color->space_ == space_ && color->components_ == components_ &&
         color->catalogName_ == catalogName_ && color->colorName_ == colorName_ &&
         isEqualValue(any(color->fallback_), any(fallback_)) &&
         isEqualValue(any(color->patternImage_), any(patternImage_));
}

Ref<Object> Color::copy() {
  return std::make_shared<Color>(*this);
}

// A component text with alpha left out where it is exactly 1, and the NUL that older readers of
// these keys expect.
static QByteArray terminatedText(std::vector<double> components) {
  if (components.back() == 1)
    components.pop_back();
  QByteArray text = componentText(components);
  text.append('\0');
  return text;
}

void Color::encodeWithCoder(Coder& coder) {
  const int identifier = customIdentifier(space_);
  const Space plain = identifier == 0   ? space_
                      : isWhite(space_) ? Space::CalibratedWhite
                                        : Space::CalibratedRGB;
  coder.encodeInt(int(plain), SpaceKey);
  if (space_ == Space::Catalog) {
    coder.encodeObject(Any(catalogName_), CatalogNameKey);
    coder.encodeObject(Any(colorName_), ColorNameKey);
    coder.encodeObject(fallback_, FallbackKey);
    return;
  }
  if (space_ == Space::Pattern) {
    coder.encodeObject(patternImage_, ImageKey);
    return;
  }
  const auto key = isWhite(space_) ? WhiteKey : space_ == Space::DeviceCMYK ? CMYKKey : RGBKey;
  coder.encodeBytes(terminatedText(components_), key);
  if (identifier != 0) {
    coder.encodeBytes(componentText(components_), CustomComponentsKey);
    coder.encodeObject(std::make_shared<ColorSpace>(identifier), CustomSpaceKey);
  }
}

// Reads the numbers under `key`, alpha added where it is missing.
static std::vector<double> decodedComponents(Coder& coder, QLatin1StringView key,
                                             std::size_t colorants) {
  std::optional<std::vector<double>> numbers = parsedComponents(coder.decodeBytesForKey(key));
  if (!numbers || numbers->size() < colorants)
    throw ArchiveException(u"a colour needs %1 components"_s.arg(colorants), coder.keyPath(key));
  numbers->resize(colorants + 1, 1.0);
  std::transform(numbers->begin(), numbers->end(), numbers->begin(), limited);
  return *std::move(numbers);
}

void Color::decodeComponents(Coder& coder, int space) {
  space_ = Space(space);
  const Ref<ColorSpace> custom = coder.decodeObjectOfClass<ColorSpace>(CustomSpaceKey);
  if (custom && coder.containsValueForKey(CustomComponentsKey)) {
    for (const Space known : {Space::SRGB, Space::GenericGray, Space::GenericGamma22Gray})
      if (custom->identifier() == customIdentifier(known)) {
        space_ = known;
        components_ = decodedComponents(coder, CustomComponentsKey, colorantsOf(known));
        return;
      }
  }
  QLatin1StringView key = isWhite(space_) ? WhiteKey : RGBKey;
  if (space_ == Space::DeviceCMYK)
    key = coder.containsValueForKey(CMYKKey) ? CMYKKey : MisspeltCMYKKey;
  components_ = decodedComponents(coder, key, colorantsOf(space_));
}

Ref<Object> Color::initWithCoder(Coder& coder) {
  const int space = coder.decodeIntForKey(SpaceKey);
  switch (Space(space)) {
  case Space::CalibratedRGB:
  case Space::DeviceRGB:
  case Space::CalibratedWhite:
  case Space::DeviceWhite:
  case Space::DeviceCMYK:
    decodeComponents(coder, space);
    break;
  case Space::Catalog:
    space_ = Space::Catalog;
    components_.clear();
    catalogName_ = coder.decodeStringForKey(CatalogNameKey).value_or(QString());
    colorName_ = coder.decodeStringForKey(ColorNameKey).value_or(QString());
    fallback_ = coder.decodeObjectOfClass<Color>(FallbackKey);
    // A colour is shown through its fallback, so that the way must not lead back to it.
    for (const Color* next = fallback_.get(); next; next = next->fallback_.get())
      if (next == this) {
        fallback_.reset();
        throw ArchiveException(u"a colour stands in for itself"_s, coder.keyPath(FallbackKey));
      }
    break;
  case Space::Pattern:
    space_ = Space::Pattern;
    components_.clear();
    patternImage_ = coder.decodeObjectOfClass<Image>(ImageKey);
    break;
  default:
    throw ArchiveException(u"unknown colour space %1"_s.arg(space), coder.keyPath(SpaceKey));
  }
  return shared_from_this();
}

} // namespace zq::platform
