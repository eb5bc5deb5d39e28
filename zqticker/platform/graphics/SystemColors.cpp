#include "zqticker/platform/graphics/SystemColors.h"

#include "zqticker/platform/graphics/Color.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QPalette>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {

struct Entry {
  QLatin1StringView name;
  QPalette::ColorRole role;
  QPalette::ColorGroup group = QPalette::Active;
};

// Sorted by name.
constexpr std::array entries{
    Entry{"alternateSelectedControlColor"_L1, QPalette::Highlight},
    Entry{"alternateSelectedControlTextColor"_L1, QPalette::HighlightedText},
    Entry{"controlBackgroundColor"_L1, QPalette::Base},
    Entry{"controlColor"_L1, QPalette::Button},
    Entry{"controlDarkShadowColor"_L1, QPalette::Shadow},
    Entry{"controlHighlightColor"_L1, QPalette::Midlight},
    Entry{"controlLightHighlightColor"_L1, QPalette::Light},
    Entry{"controlShadowColor"_L1, QPalette::Dark},
    Entry{"controlTextColor"_L1, QPalette::ButtonText},
    Entry{"disabledControlTextColor"_L1, QPalette::ButtonText, QPalette::Disabled},
    Entry{"gridColor"_L1, QPalette::Mid},
    Entry{"highlightColor"_L1, QPalette::Light},
    Entry{"keyboardFocusIndicatorColor"_L1, QPalette::Highlight},
    Entry{"secondarySelectedControlColor"_L1, QPalette::Highlight, QPalette::Inactive},
    Entry{"selectedControlColor"_L1, QPalette::Highlight},
    Entry{"selectedControlTextColor"_L1, QPalette::HighlightedText},
    Entry{"selectedTextBackgroundColor"_L1, QPalette::Highlight},
    Entry{"selectedTextColor"_L1, QPalette::HighlightedText},
    Entry{"shadowColor"_L1, QPalette::Shadow},
    Entry{"textBackgroundColor"_L1, QPalette::Base},
    Entry{"textColor"_L1, QPalette::Text},
    // Tool tips stand in windows that are never active.
    Entry{"toolTipColor"_L1, QPalette::ToolTipBase, QPalette::Inactive},
    Entry{"toolTipTextColor"_L1, QPalette::ToolTipText, QPalette::Inactive},
    Entry{"windowBackgroundColor"_L1, QPalette::Window},
    Entry{"windowFrameTextColor"_L1, QPalette::WindowText},
};

SystemColors::Table& replacement() {
  static SystemColors::Table table;
  return table;
}

bool precedes(const Entry& entry, const QString& name) {
  return entry.name < name;
}

Ref<Color> paletteColor(const QString& name) {
  const auto* entry = std::lower_bound(entries.begin(), entries.end(), name, precedes);
  // A program without windows has no palette.
  const bool hasPalette = qobject_cast<QGuiApplication*>(QCoreApplication::instance());
  if (entry == entries.end() || entry->name != name || !hasPalette)
    return nullptr;
  const QColor color = QGuiApplication::palette().color(entry->group, entry->role);
  return Color::catalog(u"System"_s, name, Color::fromQColor(color));
}

} // namespace

Ref<Color> SystemColors::colorNamed(const QString& name) {
  return replacement() ? replacement()(name) : paletteColor(name);
}

QStringList SystemColors::knownNames() {
  QStringList names;
  for (const Entry& entry : entries)
    names.append(entry.name);
  return names;
}

ControlTint SystemColors::currentControlTint() {
  const Ref<Color> chosen = colorNamed(u"selectedControlColor"_s);
  // Below this a colour counts as grey: its hue is no more than a rounding of the theme's numbers.
  constexpr double leastSaturation = 0.1;
  return chosen && chosen->saturationComponent() < leastSaturation ? ControlTint::Graphite
                                                                   : ControlTint::Blue;
}

Ref<Color> SystemColors::colorForControlTint(ControlTint tint) {
  if (tint == ControlTint::Clear)
    if (Ref<Color> color = colorNamed(u"controlColor"_s))
      return color;
  const ControlTint current = currentControlTint();
  if (tint != ControlTint::Blue && tint != ControlTint::Graphite)
    tint = current;
  if (tint == ControlTint::Graphite)
    return Color::deviceRGB(0.47, 0.52, 0.57);
  const Ref<Color> chosen =
      current == ControlTint::Blue ? colorNamed(u"selectedControlColor"_s) : nullptr;
  return chosen ? chosen : Color::deviceRGB(0.22, 0.46, 0.84);
}

void SystemColors::setTable(Table table) {
  replacement() = std::move(table);
}

} // namespace zq::platform
