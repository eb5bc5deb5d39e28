#include "app/commands/color_json.h"

#include "zqticker/platform/archiving/KeyedArchiver.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Shadow.h"

#include <algorithm>
#include <array>
#include <cmath>

using namespace Qt::StringLiterals;

namespace zq::app {

using namespace platform;

namespace {

constexpr double Full = 255;

// The spaces whose colours are components and no more.
using Components = const std::vector<double>&;
struct PlainSpace {
  Color::Space space;
  QLatin1StringView name;
  std::size_t count; // alpha included
  Ref<Color> (*make)(Components c);
};
const std::array plainSpaces{
    PlainSpace{Color::Space::CalibratedRGB, "CalibratedRGB"_L1, 4,
               [](Components c) { return Color::calibratedRGB(c[0], c[1], c[2], c[3]); }},
    PlainSpace{Color::Space::DeviceRGB, "DeviceRGB"_L1, 4,
               [](Components c) { return Color::deviceRGB(c[0], c[1], c[2], c[3]); }},
    PlainSpace{Color::Space::SRGB, "SRGB"_L1, 4,
               [](Components c) { return Color::sRGB(c[0], c[1], c[2], c[3]); }},
    PlainSpace{Color::Space::CalibratedWhite, "CalibratedWhite"_L1, 2,
               [](Components c) { return Color::calibratedWhite(c[0], c[1]); }},
    PlainSpace{Color::Space::DeviceWhite, "DeviceWhite"_L1, 2,
               [](Components c) { return Color::deviceWhite(c[0], c[1]); }},
    PlainSpace{Color::Space::DeviceCMYK, "DeviceCMYK"_L1, 5,
               [](Components c) { return Color::deviceCMYK(c[0], c[1], c[2], c[3], c[4]); }},
};
constexpr QLatin1StringView CatalogName{"Catalog"};
// Any other space: a pattern, and greys of their own profile.
constexpr QLatin1StringView ArchivedName{"Archived"};

const QString ColorExpected = u"null, \"#rrggbb\", \"#rrggbbaa\" or {\"space\", \"components\"}"_s;

// "#rrggbb", "#rrggbbaa", or nothing where that would lose anything.
std::optional<QString> hexText(const Color& color) {
  if (color.space() != Color::Space::DeviceRGB)
    return std::nullopt;
  QString text = u"#"_s;
  for (const double component : color.components()) {
    const double step = std::round(component * Full);
    if (step / Full != component)
      return std::nullopt;
    text += u"%1"_s.arg(int(step), 2, 16, '0'_L1);
  }
  constexpr qsizetype opaqueLength = 7;
  return color.alphaComponent() == 1 ? text.first(opaqueLength) : text;
}

Ref<Color> colorOfHex(const JsonValue& json) {
  const QString text = json.value().toString();
  const bool hasAlpha = text.size() == 9;
  const auto isDigit = [](QChar c) {
    return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
  };
  if (!text.startsWith(u'#') || !(hasAlpha || text.size() == 7) ||
      !std::all_of(text.begin() + 1, text.end(), isDigit))
    json.fail(ColorExpected);
  const auto channel = [&](qsizetype i) {
    return QStringView(text).sliced(1 + 2 * i, 2).toInt(nullptr, 16) / Full;
  };
  return Color::deviceRGB(channel(0), channel(1), channel(2), hasAlpha ? channel(3) : 1);
}

Ref<Color> plainColor(const PlainSpace& space, const JsonValue& json) {
  json.requireKeysAmong({u"space"_s, u"components"_s});
  const JsonValue list = json.member(u"components"_s);
  std::vector<double> components;
  for (const JsonValue& element : list.elements()) {
    const QString expected = u"a number from 0 to 1"_s;
    const double component = element.number(expected);
    if (!(component >= 0 && component <= 1))
      element.fail(expected);
    components.push_back(component);
  }
  if (components.size() + 1 == space.count)
    components.push_back(1);
  if (components.size() != space.count)
    list.fail(
        u"a list of %1 components, or of %2 with alpha"_s.arg(space.count - 1).arg(space.count));
  return space.make(components);
}

Ref<Color> archivedColor(const JsonValue& json) {
  json.requireKeysAmong({u"space"_s, u"archive"_s});
  const JsonValue archive = json.member(u"archive"_s);
  const QString expected = u"the keyed archive of a color in base64"_s;
  const auto bytes = QByteArray::fromBase64Encoding(archive.text(expected).toUtf8(),
                                                    QByteArray::AbortOnBase64DecodingErrors);
  if (!bytes)
    archive.fail(expected);
  try {
    return KeyedUnarchiver::unarchiveObjectOfClass<Color>(*bytes);
  } catch (const ArchiveException& exception) {
    archive.fail(expected + u" ("_s + exception.reason() + u')');
  }
}

} // namespace

OutputValue jsonOfColor(const Ref<Color>& color) {
  if (!color)
    return {};
  if (const std::optional<QString> text = hexText(*color))
    return OutputValue::string(*text);
  OutputValue json = OutputValue::map();
  const auto insertText = [&json](const QString& key, const QString& text) {
    json.insert(key, OutputValue::string(text));
  };
  const auto* plain =
      std::find_if(plainSpaces.begin(), plainSpaces.end(),
                   [&](const PlainSpace& space) { return space.space == color->space(); });
  if (plain != plainSpaces.end()) {
    insertText(u"space"_s, plain->name);
    OutputValue components = OutputValue::list();
    for (const double component : color->components())
      components.append(OutputValue::real(component));
    json.insert(u"components"_s, components);
  } else if (color->space() == Color::Space::Catalog) {
    insertText(u"space"_s, CatalogName);
    insertText(u"catalog"_s, color->catalogName());
    insertText(u"name"_s, color->colorName());
    json.insert(u"fallback"_s, jsonOfColor(color->fallback()));
  } else {
    insertText(u"space"_s, ArchivedName);
    insertText(u"archive"_s,
               QString::fromLatin1(KeyedArchiver::archivedDataWithRootObject(color).toBase64()));
  }
  return json;
}

OutputValue jsonOfShadow(const Ref<Shadow>& shadow) {
  if (!shadow)
    return {};
  OutputValue offset = OutputValue::list();
  offset.append(OutputValue::real(shadow->shadowOffset().width()));
  offset.append(OutputValue::real(shadow->shadowOffset().height()));
  OutputValue json = OutputValue::map();
  json.insert(u"offset"_s, offset);
  json.insert(u"blurRadius"_s, OutputValue::real(shadow->shadowBlurRadius()));
  json.insert(u"color"_s, jsonOfColor(shadow->shadowColor()));
  return json;
}

Ref<Color> colorOfJson(const JsonValue& json) {
  if (json.value().isNull())
    return nullptr;
  if (json.value().isString())
    return colorOfHex(json);
  if (!json.value().isObject())
    json.fail(ColorExpected);
  const JsonValue space = json.member(u"space"_s);
  const QString name = space.value().toString();
  QStringList names;
  for (const PlainSpace& plain : plainSpaces) {
    if (name == plain.name)
      return plainColor(plain, json);
    names.append(plain.name);
  }
  if (name == ArchivedName)
    return archivedColor(json);
  if (name != CatalogName)
    space.fail(names.join(u", ") + u", Catalog or Archived"_s);
  json.requireKeysAmong({u"space"_s, u"catalog"_s, u"name"_s, u"fallback"_s});
  const QString catalog = json.member(u"catalog"_s).text();
  const QString color = json.member(u"name"_s).text();
  return Color::catalog(catalog, color, colorOfJson(json.member(u"fallback"_s)));
}

Ref<Shadow> shadowOfJson(const JsonValue& json) {
  if (json.value().isNull())
    return nullptr;
  if (!json.value().isObject())
    json.fail(u"null or {\"offset\", \"blurRadius\", \"color\"}"_s);
  json.requireKeysAmong({u"offset"_s, u"blurRadius"_s, u"color"_s});
  const JsonValue offset = json.member(u"offset"_s);
  const std::vector<JsonValue> sides = offset.elements();
  if (sides.size() != 2)
    offset.fail(u"[width, height]"_s);
  const double width = sides[0].number();
  const double height = sides[1].number();
  const JsonValue radius = json.member(u"blurRadius"_s);
  const QString radiusExpected = u"a number of 0 or more"_s;
  const double blur = radius.number(radiusExpected);
  if (!(blur >= 0))
    radius.fail(radiusExpected);
  const Ref<Color> color = colorOfJson(json.member(u"color"_s));
  return std::make_shared<Shadow>(QSizeF(width, height), blur, color);
}

} // namespace zq::app
