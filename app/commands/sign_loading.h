// Signs from what the command line names. Every failure is a RunTimeError that names the argument.
#pragma once

#include "app/commands/StripOptions.h"
#include "zqticker/platform/objects/Object.h"

#include <QtCore/QByteArray>

class ZQTickerSign;

namespace zq::platform {
class Color;
class Font;
class Image;
} // namespace zq::platform

namespace zq::app {

// The identifier of a clock's sign.
extern const QString ClockIdentifier;

// The most bytes of a picture or an archive.
inline constexpr qint64 LargestFile = qint64(256) << 20;

// The bytes of a file or a pipe. `argument` stands in the message.
QByteArray readFile(const QString& argument, const QString& path);

// The picture in a file, decoded wholly.
platform::Ref<platform::Image> loadImage(const QString& argument, const QString& path);

// The sign in an archive. A sign without a look of its own, and anything that is no sign, fails.
platform::Ref<ZQTickerSign> loadSign(const QString& argument, const QString& path);

// The font asked for. Without a size in the request it has `usualSize` points.
struct FoundFont {
  platform::Ref<platform::Font> font;
  bool hasSize = false;
};
FoundFont findFont(const FontRequest& request, double usualSize);

// The sources' signs in their order. Texts take `font` and `color` as attributes; a combo's text
// does so only where the user asked for a font or a color, else it follows the display.
std::vector<platform::Ref<ZQTickerSign>> loadSigns(const StripOptions& options,
                                                   const platform::Ref<platform::Font>& font,
                                                   const platform::Ref<platform::Color>& color);

} // namespace zq::app
