#include "zqticker/platform/graphics/FontName_p.h"

#include <QtCore/QStringList>
#include <QtGui/QFontDatabase>

#include <optional>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {

// Names are compared without spaces and case: "DejaVuSans" is "DejaVu Sans". The foundry, which
// the desktop adds where two of them have a family of that name, does not belong to it.
QString compact(QStringView name) {
  const qsizetype foundry = name.indexOf(u'[');
  QString result = name.left(foundry < 0 ? name.size() : foundry).toString().toLower();
  result.remove(u' ');
  return result;
}

// The installed family of that compact name, or a null string.
QString installedFamily(QStringView name) {
  const QString wanted = compact(name);
  const QStringList families = QFontDatabase::families();
  for (const QString& family : families)
    if (compact(family) == wanted)
      return family;
  return {};
}

struct StyleWord {
  QLatin1StringView word;
  std::optional<QFont::Weight> weight;
  bool italic = false;
  int stretch = 0;
};

// Longer words stand before those that they contain.
const StyleWord styleWords[] = {
    {"ultralight"_L1, QFont::ExtraLight},
    {"extralight"_L1, QFont::ExtraLight},
    {"semibold"_L1, QFont::DemiBold},
    {"demibold"_L1, QFont::DemiBold},
    {"extrabold"_L1, QFont::ExtraBold},
    {"ultrabold"_L1, QFont::ExtraBold},
    {"condensed"_L1, {}, false, 75},
    {"narrow"_L1, {}, false, 75},
    {"expanded"_L1, {}, false, 125},
    {"oblique"_L1, {}, true},
    {"italic"_L1, {}, true},
    {"regular"_L1, QFont::Normal},
    {"normal"_L1, QFont::Normal},
    {"medium"_L1, QFont::Medium},
    {"roman"_L1, QFont::Normal},
    {"light"_L1, QFont::Light},
    {"heavy"_L1, QFont::ExtraBold},
    {"black"_L1, QFont::Black},
    {"thin"_L1, QFont::Thin},
    {"book"_L1, QFont::Normal},
    {"bold"_L1, QFont::Bold},
    {"demi"_L1, QFont::DemiBold},
    {"obl"_L1, {}, true},
    {"ital"_L1, {}, true},
    // Marks of the font format and of the vendor, which say nothing about the style.
    {"psmt"_L1, {}},
    {"mt"_L1, {}},
    {"ps"_L1, {}},
};

// Reads a style out of words run together; false where something else is in it.
bool applyStyle(QStringView style, FontName& name) {
  const QString text = compact(style);
  QStringView rest = text;
  while (!rest.isEmpty()) {
    const StyleWord* found = nullptr;
    for (const StyleWord& candidate : styleWords)
      if (rest.startsWith(candidate.word)) {
        found = &candidate;
        break;
      }
    if (!found)
      return false;
    if (found->weight)
      name.weight = *found->weight;
    name.italic |= found->italic;
    if (found->stretch)
      name.stretch = found->stretch;
    rest = rest.mid(found->word.size());
  }
  return true;
}

// `family` with a style after it, where the desktop has that family.
std::optional<FontName> installed(QStringView family, QStringView style) {
  FontName name;
  name.family = installedFamily(family);
  if (name.family.isEmpty() || !applyStyle(style, name))
    return std::nullopt;
  name.isInstalled = true;
  return name;
}

} // namespace

FontName FontName::parse(const QString& text) {
  if (auto name = installed(text, {}))
    return *name;
  const qsizetype dash = text.lastIndexOf(u'-');
  if (dash > 0) {
    const QStringView family = QStringView(text).left(dash);
    const QStringView style = QStringView(text).mid(dash + 1);
    if (auto name = installed(family, style))
      return *name;
    FontName name;
    if (applyStyle(style, name)) {
      name.family = family.toString();
      return name;
    }
  }
  for (qsizetype space = text.lastIndexOf(u' '); space > 0;
       space = text.lastIndexOf(u' ', space - 1))
    if (auto name = installed(QStringView(text).left(space), QStringView(text).mid(space)))
      return *name;
  for (const QLatin1StringView mark : {"PSMT"_L1, "MT"_L1, "PS"_L1})
    if (text.endsWith(mark))
      if (auto name = installed(QStringView(text).chopped(mark.size()), {}))
        return *name;
  FontName name;
  name.family = text;
  return name;
}

} // namespace zq::platform
