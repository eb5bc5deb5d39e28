// The look of buttons as JSON.
#include "app/commands/appearance_json.h"

#include "app/commands/JsonValue.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/graphics/Shadow.h"
#include "zqticker/rollover/ZQRollOverButtonAppearance.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::platform;

namespace {

using Appearance = ZQRollOverButtonAppearance;

QByteArray written(const Appearance& appearance) {
  return jsonOfAppearance(appearance).json().toUtf8();
}

// What is written for a look of one colour.
QJsonValue writtenColor(const Ref<Color>& color) {
  Appearance appearance;
  appearance.setFrameColor(color);
  return QJsonDocument::fromJson(written(appearance)).object()[u"frameColor"_s];
}

Ref<Color> readColor(const QByteArray& json) {
  return appearanceOfJson(R"({"frameColor": )" + json + "}")->frameColor();
}

QByteArray failureOf(const QByteArray& json) {
  try {
    appearanceOfJson(json);
    return "none";
  } catch (const JsonError& error) {
    return error.reason().toUtf8();
  }
}

// Expects that what is written of `appearance` reads as an equal one.
void expectRoundTrip(const Appearance& appearance) {
  const QByteArray json = written(appearance);
  SCOPED_TRACE(json.toStdString());
  const auto read = appearanceOfJson(json);
  EXPECT_EQ(written(*read), json);
  EXPECT_EQ(Appearance::dataRepresentationFromAppearance(read),
            Appearance::dataRepresentationFromAppearance(
                std::static_pointer_cast<Appearance>(const_cast<Appearance&>(appearance).copy())));
}

// The look in which every attribute has something to say.
Ref<Appearance> complete() {
  const auto appearance = std::make_shared<Appearance>();
  int index = 0;
  const auto value = [&index]<class Type>(Type*) -> Type {
    ++index;
    if constexpr (std::is_same_v<Type, ZQColorAttribute>)
      return Color::deviceRGB(index / 255.0, 0, 1, 0.2);
    else if constexpr (std::is_same_v<Type, ZQShadowAttribute>)
      return std::make_shared<Shadow>(QSizeF(0.5, -index), index / 3.0, Color::deviceRGB(0, 0, 0));
    else if constexpr (std::is_same_v<Type, ZQFlagAttribute>)
      return true;
    else
      return Type(index);
  };
#define ZQ_SET(Type, property, getter, setter)                                                     \
  appearance->setter(value(static_cast<Type*>(nullptr)));
  ZQ_APPEARANCE_ATTRIBUTES(ZQ_SET)
#undef ZQ_SET
  return appearance;
}

} // namespace

TEST(AppearanceJson, HasAKeyForEachAttribute) {
  const QJsonObject json = QJsonDocument::fromJson(written(Appearance())).object();
  EXPECT_EQ(json.size(), 25);
  EXPECT_TRUE(json[u"controlColor"_s].isNull());
  EXPECT_TRUE(json[u"textShadow"_s].isNull());
  EXPECT_EQ(json[u"shadingMode"_s], QJsonValue(0));
  EXPECT_EQ(json[u"bordered"_s], QJsonValue(false));
  EXPECT_EQ(json[u"popUpMenuDelay"_s], QJsonValue(0.0));
}

TEST(AppearanceJson, ReadsBackEqual) {
  expectRoundTrip(*complete());
  expectRoundTrip(Appearance());
}

TEST(AppearanceJson, LeavesAloneWhatIsLeftOut) {
  EXPECT_EQ(written(*appearanceOfJson("{}")), written(Appearance()));
  EXPECT_TRUE(appearanceOfJson(R"({"bordered": true})")->isBordered());
}

TEST(AppearanceJson, EnumerationsOfEveryNumberReadBack) {
  Appearance appearance;
  for (const std::uint64_t number :
       {std::uint64_t(7), (std::uint64_t(1) << 53) + 1,
        std::uint64_t(std::numeric_limits<std::int64_t>::max()), std::uint64_t(1) << 63,
        std::numeric_limits<std::uint64_t>::max()}) {
    appearance.setShadingMode(number);
    EXPECT_EQ(appearanceOfJson(written(appearance))->shadingMode(), number);
  }
}

TEST(AppearanceJson, WhatIsNoNumberReadsBack) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  Appearance appearance;
  appearance.setPopUpMenuDelay(std::nan(""));
  appearance.setTextShadow(
      std::make_shared<Shadow>(QSizeF(infinity, -infinity), infinity, nullptr));
  const auto read = appearanceOfJson(written(appearance));
  EXPECT_TRUE(std::isnan(read->popUpMenuDelay()));
  EXPECT_TRUE(read->textShadow()->isEqual(*appearance.textShadow()));
}

TEST(ColorJson, IsHexadecimalWhereThatLosesNothing) {
  EXPECT_EQ(writtenColor(Color::deviceRGB(1, 0x80 / 255.0, 0)), u"#ff8000"_s);
  EXPECT_EQ(writtenColor(Color::deviceRGB(1, 0x80 / 255.0, 0, 0x0a / 255.0)), u"#ff80000a"_s);
  EXPECT_TRUE(writtenColor(Color::deviceRGB(0.5, 0, 0)).isObject());
  EXPECT_TRUE(writtenColor(Color::calibratedRGB(1, 0, 0)).isObject());
}

TEST(ColorJson, ReadsHexadecimalInAnyCase) {
  EXPECT_TRUE(readColor(R"("#fF8000")")->isEqual(*Color::deviceRGB(1, 0x80 / 255.0, 0)));
  EXPECT_TRUE(readColor(R"("#00000000")")->isEqual(*Color::deviceRGB(0, 0, 0, 0)));
}

TEST(ColorJson, EverySpaceReadsBack) {
  QImage image(2, 1, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::red);
  const auto named =
      Color::catalog(u"System"_s, u"controlColor"_s, Color::calibratedWhite(2 / 3.0));
  for (const Ref<Color>& color :
       {Color::deviceRGB(0.1, 0.2, 0.3, 0.4), Color::calibratedRGB(0.1, 0.2, 0.3),
        Color::sRGB(1, 0, 1 / 3.0), Color::deviceWhite(0.7, 0.1), Color::calibratedWhite(0),
        Color::deviceCMYK(0.1, 0.2, 0.3, 0.4, 0.5), named,
        Color::catalog(u"System"_s, u"nested"_s, named), Color::catalog(u""_s, u""_s, nullptr),
        Color::pattern(Image::fromQImage(image))}) {
    Appearance appearance;
    appearance.setArrowColor(color);
    const auto read = appearanceOfJson(written(appearance))->arrowColor();
    ASSERT_NE(read, nullptr);
    EXPECT_TRUE(read->isEqual(*color)) << written(appearance).constData();
  }
}

TEST(ColorJson, AlphaMayBeLeftOut) {
  EXPECT_TRUE(readColor(R"({"space": "DeviceWhite", "components": [0.5]})")
                  ->isEqual(*Color::deviceWhite(0.5)));
  EXPECT_TRUE(readColor(R"({"space": "DeviceCMYK", "components": [1, 0, 0, 0]})")
                  ->isEqual(*Color::deviceCMYK(1, 0, 0, 0)));
}

TEST(WrongAppearanceJson, IsNamedByItsLine) {
  EXPECT_EQ(failureOf("{\n\"bordered\": true,\n\"x\"\n}"),
            "line 4: not JSON: missing name separator");
  EXPECT_TRUE(failureOf("").startsWith("line 1: not JSON: "));
  EXPECT_TRUE(failureOf("{\"frameColor\": \"\xff\"}").startsWith("line 1: not JSON: "));
  EXPECT_EQ(failureOf("[1]"),
            "expected an object with a key for each attribute, found a list of 1");
}

TEST(WrongAppearanceJson, AnUnknownKeyIsRefused) {
  const QByteArray failure = failureOf(R"({"contolColor": null})");
  EXPECT_TRUE(
      failure.startsWith(R"(unknown key "contolColor", expected controlColor, frameColor,)"))
      << failure.constData();
  EXPECT_EQ(failureOf(R"({"frameColor": {"space": "SRGB", "components": [0, 0, 0], "alpha": 1}})"),
            R"(frameColor: unknown key "alpha", expected space, components)");
  EXPECT_EQ(
      failureOf(R"({"textShadow": {"offset": [0, 0], "blur": 1, "blurRadius": 1, "color": null}})"),
      R"(textShadow: unknown key "blur", expected offset, blurRadius, color)");
}

TEST(WrongAppearanceJson, AWrongColorIsNamedWithWhatWasExpected) {
  const QByteArray expected =
      R"(frameColor: expected null, "#rrggbb", "#rrggbbaa" or {"space", "components"}, found )";
  for (const QByteArray text : {"\"red\"", "\"#ff\"", "\"#gg0000\"", "\"#+10000\"", "\"#ff00000\""})
    EXPECT_EQ(failureOf("{\"frameColor\": " + text + "}"), expected + text);
  EXPECT_EQ(failureOf(R"({"frameColor": 3.5})"), expected + "3.5");
  EXPECT_EQ(failureOf(R"({"frameColor": [1, 2]})"), expected + "a list of 2");
  EXPECT_EQ(failureOf(R"({"frameColor": true})"), expected + "true");
}

TEST(WrongAppearanceJson, AWrongSpaceIsNamedWithThoseThatThereAre) {
  EXPECT_EQ(failureOf(R"({"frameColor": {"space": "HSB", "components": [0]}})"),
            "frameColor.space: expected CalibratedRGB, DeviceRGB, SRGB, CalibratedWhite, "
            "DeviceWhite, DeviceCMYK, Catalog or Archived, found \"HSB\"");
  EXPECT_EQ(failureOf(R"({"frameColor": {}})"), R"(frameColor: the key "space" is missing)");
}

TEST(WrongAppearanceJson, WrongComponentsAreNamed) {
  const auto failure = [](const QByteArray& components) {
    return failureOf(R"({"textShadow": {"offset": [0, 0], "blurRadius": 0, "color": )"
                     R"({"space": "SRGB", "components": )" +
                     components + "}}}");
  };
  const QByteArray place = "textShadow.color.components";
  EXPECT_EQ(failure("[0, 1.5, 0]"), place + "[1]: expected a number from 0 to 1, found 1.5");
  EXPECT_EQ(failure("[-0.1, 0, 0]"), place + "[0]: expected a number from 0 to 1, found -0.1");
  EXPECT_EQ(failure(R"(["nan", 0, 0])"),
            place + "[0]: expected a number from 0 to 1, found \"nan\"");
  for (const char* count : {"2", "5"})
    EXPECT_EQ(failure(count[0] == '2' ? "[0, 0]" : "[0, 0, 0, 0, 0]"),
              place + ": expected a list of 3 components, or of 4 with alpha, found a list of " +
                  count);
  EXPECT_EQ(failure("0"), place + ": expected a list of 3 components, or of 4 with alpha, found 0");
}

TEST(WrongAppearanceJson, AWrongNamedColorIsRefused) {
  EXPECT_EQ(failureOf(R"({"frameColor": {"space": "Catalog", "catalog": "System", "name": 1}})"),
            "frameColor.name: expected a text, found 1");
  EXPECT_EQ(failureOf(R"({"frameColor": {"space": "Catalog", "catalog": "a", "name": "b"}})"),
            R"(frameColor: the key "fallback" is missing)");
}

TEST(WrongAppearanceJson, AWrongArchiveOfAColorIsRefused) {
  const auto failure = [](const QByteArray& text) {
    return failureOf(R"({"frameColor": {"space": "Archived", "archive": )" + text + "}}");
  };
  const QByteArray expected = "frameColor.archive: expected the keyed archive of a color in base64";
  EXPECT_EQ(failure(R"("no base64!")"), expected + ", found \"no base64!\"");
  EXPECT_EQ(failure("7"), expected + ", found 7");
  EXPECT_TRUE(failure(R"("AAAA")").startsWith(QByteArray(expected + " (")));
}

TEST(WrongAppearanceJson, AWrongShadowIsNamedWithWhatWasExpected) {
  EXPECT_EQ(failureOf(R"({"textShadow": 1})"),
            R"(textShadow: expected null or {"offset", "blurRadius", "color"}, found 1)");
  EXPECT_EQ(failureOf(R"({"textShadow": {"offset": [1], "blurRadius": 0, "color": null}})"),
            "textShadow.offset: expected [width, height], found a list of 1");
  EXPECT_EQ(failureOf(R"({"textShadow": {"offset": [1, null], "blurRadius": 0, "color": null}})"),
            "textShadow.offset[1]: expected a number, found null");
  EXPECT_EQ(failureOf(R"({"textShadow": {"offset": [1, 1], "blurRadius": -1, "color": null}})"),
            "textShadow.blurRadius: expected a number of 0 or more, found -1");
  EXPECT_EQ(failureOf(R"({"textShadow": {"offset": [1, 1], "blurRadius": 0}})"),
            R"(textShadow: the key "color" is missing)");
}

TEST(WrongAppearanceJson, WrongNumbersAndFlagsAreNamed) {
  const QByteArray whole = "shadingMode: expected a whole number of 0 or more, found ";
  EXPECT_EQ(failureOf(R"({"shadingMode": 1.5})"), whole + "1.5");
  EXPECT_EQ(failureOf(R"({"shadingMode": -1})"), whole + "-1");
  EXPECT_EQ(failureOf(R"({"shadingMode": "flat"})"), whole + "\"flat\"");
  EXPECT_EQ(failureOf(R"({"shadingMode": "-1"})"), whole + "\"-1\"");
  EXPECT_EQ(failureOf(R"({"bordered": 1})"), "bordered: expected true or false, found 1");
  EXPECT_EQ(failureOf(R"({"popUpMenuDelay": "soon"})"),
            "popUpMenuDelay: expected a number of seconds, found \"soon\"");
}
