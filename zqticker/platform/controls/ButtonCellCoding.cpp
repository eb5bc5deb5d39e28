// Archives of button cells.
#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/archiving/Coder.h"
#include "zqticker/platform/controls/ButtonCell.h"
#include "zqticker/platform/controls/Menu.h"
#include "zqticker/platform/controls/cell_coding_p.h"
#include "zqticker/platform/controls/cell_flags_p.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/objects/Exception.h"

using namespace Qt::StringLiterals;

namespace zq::platform {

ZQ_REGISTER_CLASS(ButtonCell);
ZQ_REGISTER_VALUE_CLASS(ButtonImageSource);

static constexpr QLatin1StringView FlagsKey{"NSButtonFlags"};
static constexpr QLatin1StringView Flags2Key{"NSButtonFlags2"};
static constexpr QLatin1StringView AlternateTitleKey{"NSAlternateContents"};
static constexpr QLatin1StringView KeyEquivalentKey{"NSKeyEquivalent"};
static constexpr QLatin1StringView ImageKey{"NSNormalImage"};
static constexpr QLatin1StringView AlternateImageKey{"NSAlternateImage"};
static constexpr QLatin1StringView PeriodicDelayKey{"NSPeriodicDelay"};
static constexpr QLatin1StringView PeriodicIntervalKey{"NSPeriodicInterval"};
static constexpr QLatin1StringView TypeKey{"NSAuxButtonType"};
static constexpr QLatin1StringView BezelStyleKey{"NSBezelStyle"};
static constexpr QLatin1StringView ImageNameKey{"NSImageName"};

// The word holds the bits 0 to 2 and bit 3 of a style.
static void setStyle(std::uint32_t& word, int style) {
  button_flags2::BezelStyleLow.set(word, std::uint32_t(style));
  button_flags2::BezelStyleHigh.set(word, std::uint32_t(style) >> 3);
}
static int styleOf(std::uint32_t word) {
  return int(button_flags2::BezelStyleLow.get(word) | button_flags2::BezelStyleHigh.get(word) << 3);
}

void ButtonCell::encodeWithCoder(Coder& coder) {
  ActionCell::encodeWithCoder(coder);
  std::uint32_t flags2 = buttonFlags2_;
  setStyle(flags2, bezelStyle_);
  encodeFlagWord(coder, buttonFlags_, FlagsKey);
  encodeFlagWord(coder, flags2, Flags2Key);
  coder.encodeObject(Any(alternateTitle_), AlternateTitleKey);
  coder.encodeObject(Any(keyEquivalent_), KeyEquivalentKey);
  if (image_)
    coder.encodeObject(image_, ImageKey);
  if (alternateImage_)
    coder.encodeObject(alternateImage_, AlternateImageKey);
  coder.encodeInt(periodicDelay_, PeriodicDelayKey);
  coder.encodeInt(periodicInterval_, PeriodicIntervalKey);
  if (archivedType_)
    coder.encodeInt64(*archivedType_, TypeKey);
  // Where it was written before, and where the word has no room for it.
  if (archivesBezelStyle_ || styleOf(flags2) != bezelStyle_)
    coder.encodeInt(bezelStyle_, BezelStyleKey);
}

Ref<Object> ButtonCell::initWithCoder(Coder& coder) {
  ActionCell::initWithCoder(coder);
  buttonFlags_ = decodeFlagWord(coder, FlagsKey);
  buttonFlags2_ = decodeFlagWord(coder, Flags2Key);
  archivesBezelStyle_ = coder.containsValueForKey(BezelStyleKey);
  bezelStyle_ = archivesBezelStyle_ ? coder.decodeIntForKey(BezelStyleKey) : styleOf(buttonFlags2_);
  alternateTitle_ = coder.decodeStringForKey(AlternateTitleKey).value_or(QString());
  keyEquivalent_ = coder.decodeStringForKey(KeyEquivalentKey).value_or(QString());
  image_ = coder.decodeObjectOfClass<Image>(ImageKey);
  const Any alternate = coder.decodeObjectForKey(AlternateImageKey);
  if (alternate.isValid() && !objectOf<Image>(alternate) && !objectOf<Font>(alternate) &&
      !objectOf<ButtonImageSource>(alternate))
    throw ArchiveException(u"an image, the name of one or a font is expected"_s,
                           coder.keyPath(AlternateImageKey));
  alternateImage_ = objectOf(alternate);
  periodicDelay_ = coder.decodeIntForKey(PeriodicDelayKey);
  periodicInterval_ = coder.decodeIntForKey(PeriodicIntervalKey);
  archivedType_ = std::nullopt;
  if (coder.containsValueForKey(TypeKey))
    archivedType_ = coder.decodeInt64ForKey(TypeKey);
  return shared_from_this();
}

void ButtonImageSource::encodeWithCoder(Coder& coder) {
  coder.encodeObject(Any(imageName_), ImageNameKey);
}

Ref<Object> ButtonImageSource::initWithCoder(Coder& coder) {
  imageName_ = coder.decodeStringForKey(ImageNameKey).value_or(QString());
  return shared_from_this();
}

} // namespace zq::platform
