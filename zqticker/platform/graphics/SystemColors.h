// The colours of the desktop's theme, by the platform's names for them.
#pragma once

#include "zqticker/platform/objects/Object.h"
#include "zqticker/zqticker_export.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <cstdint>
#include <functional>

namespace zq::platform {

class Color;

// The hue in which the desktop tints what is on, chosen or the default. Other numbers are possible.
enum class ControlTint : std::uint64_t {
  Default = 0,
  Blue = 1,
  Graphite = 6,
  Clear = 7,
};

// The theme table. It is asked each time a colour is needed, and answers from the application's
// palette as it is then, so that a change of the palette (a dark desktop) reaches whoever asks
// again. The colours are named ones of the catalogue "System" that show what the palette said.
//
// Thread: main.
class ZQTICKER_EXPORT SystemColors {
 public:
  // The colour called `name` ("controlColor"); null where the table lacks it. Without a
  // QGuiApplication it lacks all.
  static Ref<Color> colorNamed(const QString& name);

  // The names that the table of the application's palette knows, sorted.
  static QStringList knownNames();

  // The tint of the desktop: Blue, whatever its hue, where chosen things are coloured, Graphite
  // where they are grey.
  static ControlTint currentControlTint();

  // The colour of `tint`. That of the desktop's own tint, and of every number without a name, is
  // the colour of chosen things (Blue) or a grey with a touch of blue (Graphite); Clear is the
  // colour of controls. Never null.
  static Ref<Color> colorForControlTint(ControlTint tint);

  // Gives the colours in the place of the application's palette, which a null function restores.
  // It answers null for the names that it lacks.
  using Table = std::function<Ref<Color>(const QString& name)>;
  static void setTable(Table table);
};

} // namespace zq::platform
