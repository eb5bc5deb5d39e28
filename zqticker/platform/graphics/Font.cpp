#include "zqticker/platform/graphics/Font.h"

#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/archiving/Coder.h"
#include "zqticker/platform/controls/control_types.h"
#include "zqticker/platform/graphics/FontFace_p.h"
#include "zqticker/platform/objects/Exception.h"

#include <QtGui/QFontDatabase>

#include <cmath>

using namespace Qt::StringLiterals;

namespace zq::platform {

ZQ_REGISTER_VALUE_CLASS(Font);

// The size of a font that states none, and the regular size of the system font.
static constexpr double DefaultSize = 12;
static constexpr double SystemSize = 13;

// What an archive says of a font made by name and size.
static constexpr int FlagsByNameAndSize = 16;

static constexpr QLatin1StringView NameKey{"NSName"};
static constexpr QLatin1StringView SizeKey{"NSSize"};
static constexpr QLatin1StringView FlagsKey{"NSfFlags"};

static double validSize(double size, double otherwise) {
  return std::isfinite(size) && size > 0 ? size : otherwise;
}

Font::Font() : name_(u"Helvetica"_s), pointSize_(DefaultSize) {}
Font::~Font() = default;

Ref<Font> Font::fontWithName(const std::optional<QString>& name, double size) {
  if (!name)
    return nullptr;
  auto font = std::make_shared<Font>();
  font->name_ = *name;
  font->pointSize_ = validSize(size, DefaultSize);
  return font;
}

Ref<Font> Font::systemFontOfSize(double size) {
  FontFace::requireApplication();
  return fontWithName(QFontDatabase::systemFont(QFontDatabase::GeneralFont).family(),
                      validSize(size, SystemSize));
}

Ref<Font> Font::boldSystemFontOfSize(double size) {
  FontFace::requireApplication();
  const QString family = QFontDatabase::systemFont(QFontDatabase::GeneralFont).family();
  return fontWithName(QString(family + " Bold"_L1), validSize(size, SystemSize));
}

double Font::systemFontSizeForControlSize(ControlSize controlSize) {
  switch (controlSize) {
  case ControlSize::Small:
    return 11;
  case ControlSize::Mini:
    return 9;
  default:
    return SystemSize;
  }
}

bool Font::isNameKnown(const QString& name) {
  return FontFace::isInstalled(name);
}

const FontFace& Font::face() const {
  if (!face_)
    face_ = FontFace::named(name_);
  return *face_;
}

QString Font::drawnFamily() const {
  return face().family();
}

double Font::ascender() const {
  return face().ascent() * pointSize_;
}
double Font::descender() const {
  return -face().descent() * pointSize_;
}
double Font::leading() const {
  return face().leading() * pointSize_;
}
double Font::lineHeight() const {
  return face().lineHeight() * pointSize_;
}
double Font::xHeight() const {
  return face().xHeight() * pointSize_;
}
double Font::capHeight() const {
  return face().capHeight() * pointSize_;
}

QString Font::description() const {
  return name_ + u' ' + QString::number(pointSize_);
}

bool Font::isEqual(const Object& other) const {
  const auto* font = dynamic_cast<const Font*>(&other);
  return font && font->name_ == name_ && font->pointSize_ == pointSize_;
}

Ref<Object> Font::copy() {
  return std::make_shared<Font>(*this);
}

void Font::encodeWithCoder(Coder& coder) {
  coder.encodeObject(Any(name_), NameKey);
  coder.encodeDouble(pointSize_, SizeKey);
  coder.encodeInt(FlagsByNameAndSize, FlagsKey);
}

Ref<Object> Font::initWithCoder(Coder& coder) {
  const std::optional<QString> name = coder.decodeStringForKey(NameKey);
  if (!name)
    throw ArchiveException(u"a font needs a name"_s, coder.keyPath(NameKey));
  name_ = *name;
  pointSize_ = validSize(coder.decodeDoubleForKey(SizeKey), DefaultSize);
  face_.reset();
  return shared_from_this();
}

} // namespace zq::platform
