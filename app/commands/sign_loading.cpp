#include "app/commands/sign_loading.h"

#include "app/commands/failures.h"
#include "app/intake/SilencedStandardError.h"
#include "app/services/ClockText.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/graphics/ImageRepresentation.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/signs/ZQComboTickerSign.h"
#include "zqticker/signs/ZQTextTickerSign.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zq::app {

using namespace platform;

const QString ClockIdentifier = u"clock"_s;

namespace {
constexpr double LargestFontSize = 10'000;

// What --loop, --delay and --continuous say. A sign that the command line itself describes is
// shown for ever where nothing is said; one from an archive keeps what it was archived with.
void applyLoops(ZQTickerSign& sign, const StripOptions& options, bool isArchived) {
  if (options.loopCount)
    sign.setLoopCount(*options.loopCount);
  else if (!isArchived)
    sign.setLoopCount(ZQEndlessLoopCount);
  if (options.loopDelay)
    sign.setLoopDelay(*options.loopDelay);
  if (options.continuous)
    sign.setContinuousScrolling(true);
}

Ref<ZQTickerSign> makeSign(const SignSource& source, const StripOptions& options,
                           const Attributes& style) {
  switch (source.kind) {
  case SignSource::Kind::Text:
    return ZQTextTickerSign::make(AttributedString::make(source.text, style));
  case SignSource::Kind::Image:
    return ZQImageTickerSign::make(loadImage(source.argument, source.file));
  case SignSource::Kind::Combo: {
    const Ref<Image> image = loadImage(source.argument, source.file);
    if (options.font || options.color)
      return ZQComboTickerSign::make(any(AttributedString::make(source.text, style)), image);
    return ZQComboTickerSign::make(source.text, image);
  }
  case SignSource::Kind::Sign:
    return loadSign(source.argument, source.file);
  case SignSource::Kind::Clock: {
    const QString text = ClockText::make(source.text).value().textAt(Date::date());
    const Ref<ZQTickerSign> sign = ZQTextTickerSign::make(AttributedString::make(text, style));
    sign->setIdentifier(ClockIdentifier);
    return sign;
  }
  }
  return nullptr;
}

// The picture in `bytes` with all its pixels; null where any are missing.
Ref<Image> decode(const QByteArray& bytes) {
  const SilencedStandardError silence;
  const Ref<Image> image = Image::initWithData(bytes);
  if (!image)
    return nullptr;
  const Image::Representations& found = image->representations();
  const bool isWhole = std::all_of(found.begin(), found.end(), [](const auto& representation) {
    return !representation->isBitmap() || !representation->bitmap().isNull();
  });
  return isWhole ? image : nullptr;
}

QString nameOfRoot(const Any& root) {
  if (const Ref<Object> object = objectOf(root))
    return u"an object of class "_s + object->className();
  return root.isValid() ? u"a value that is no sign"_s : u"nothing"_s;
}
} // namespace

QByteArray readFile(const QString& argument, const QString& path) {
  QFile file(path);
  if (QFileInfo(path).isDir())
    throw RunTimeError(argument + u": cannot read: Is a directory"_s);
  if (!file.open(QIODevice::ReadOnly))
    throw RunTimeError(argument + u": cannot read: "_s + file.errorString());
  QByteArray bytes = file.read(LargestFile + 1);
  // A device says only when read that it cannot be.
  if (file.error() != QFileDevice::NoError)
    throw RunTimeError(argument + u": cannot read: "_s + file.errorString());
  if (bytes.size() > LargestFile)
    throw RunTimeError(argument + u": larger than %1 MiB"_s.arg(LargestFile >> 20));
  return bytes;
}

Ref<Image> loadImage(const QString& argument, const QString& path) {
  const QByteArray bytes = readFile(argument, path);
  if (bytes.isEmpty())
    throw RunTimeError(argument + u": the file is empty"_s);
  const Ref<Image> image = decode(bytes);
  if (!image)
    throw RunTimeError(argument + u": not a picture that can be read, or too large a one"_s);
  if (image->size().isEmpty())
    throw RunTimeError(argument + u": the picture has no size"_s);
  return image;
}

Ref<ZQTickerSign> loadSign(const QString& argument, const QString& path) {
  const QByteArray bytes = readFile(argument, path);
  try {
    const SilencedStandardError silence;
    const Any root = KeyedUnarchiver::unarchiveObjectWithData(bytes);
    if (const Ref<ZQTickerSign> sign = objectOf<ZQTickerSign>(root);
        std::dynamic_pointer_cast<ZQImageTickerSign>(sign) ||
        std::dynamic_pointer_cast<ZQComboTickerSign>(sign))
      return sign;
    throw RunTimeError(argument + u": holds "_s + nameOfRoot(root) +
                       u", not a sign that can be shown"_s);
  } catch (const Exception& exception) {
    throw RunTimeError(argument + u": "_s + exception.reason());
  }
}

FoundFont findFont(const FontRequest& request, double usualSize) {
  // A name may end in a number itself.
  if (Font::isNameKnown(request.text))
    return {Font::fontWithName(request.text, usualSize), false};
  const qsizetype space = request.text.lastIndexOf(u' ');
  bool isNumber = false;
  const double size =
      space < 0 ? 0 : QStringView(request.text).sliced(space + 1).toDouble(&isNumber);
  const QString name = isNumber ? request.text.left(space) : request.text;
  if (!Font::isNameKnown(name))
    throw RunTimeError(request.option + u' ' + quotedForMessage(request.text) +
                       u": unknown font"_s);
  if (!(size > 0 && size <= LargestFontSize))
    throw UsageError(request.option + u' ' + quotedForMessage(request.text) +
                     u": the size must be above 0 and at most %1"_s.arg(LargestFontSize));
  return {Font::fontWithName(name, size), true};
}

std::vector<Ref<ZQTickerSign>> loadSigns(const StripOptions& options, const Ref<Font>& font,
                                         const Ref<Color>& color) {
  const Attributes style{{FontAttributeName, any(font)},
                         {ForegroundColorAttributeName, any(color)}};
  std::vector<Ref<ZQTickerSign>> signs;
  for (const SignSource& source : options.sources) {
    const Ref<ZQTickerSign> sign = makeSign(source, options, style);
    applyLoops(*sign, options, source.kind == SignSource::Kind::Sign);
    signs.push_back(sign);
  }
  return signs;
}

} // namespace zq::app
