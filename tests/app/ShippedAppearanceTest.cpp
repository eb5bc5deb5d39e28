// The looks that are shipped: that they can be read and told apart. Writes their contact sheets
// into the folder contact-sheets of the build, for people to look at.
#include "app/commands/ButtonSample.h"
#include "app/commands/ContactSheet.h"
#include "app/commands/color_contrast.h"
#include "tests/app/Program.h"
#include "tests/app/shipped_looks.h"
#include "zqticker/platform/graphics/Color.h"

#include <QtCore/QDir>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtGui/QPainter>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;
using namespace zq::platform;

namespace {

// Of the Web Content Accessibility Guidelines.
constexpr double Readable = 4.5;
constexpr double Recognisable = 3;

class ShippedAppearance : public ::testing::TestWithParam<const char*> {
 protected:
  // The middle of what the bezel shows, and how far two such colours are apart: the distance in
  // red, green and blue, 0 to 442.
  static QColor middle(const Ref<Color>& control, const Ref<Color>& shading) {
    if (!shading)
      return control->qColor();
    QColor half = shading->qColor();
    half.setAlphaF(0.5F);
    return blended(half, control->qColor());
  }
  static double distance(const QColor& a, const QColor& b) {
    return std::hypot(a.red() - b.red(), a.green() - b.green(), a.blue() - b.blue());
  }

  const Ref<ZQRollOverButtonAppearance> look = shippedLook(GetParam());
  const QColor ground = ContactSheet::usualGround(*look);
};

} // namespace

TEST_P(ShippedAppearance, StatesEveryAttribute) {
  EXPECT_EQ(QJsonDocument::fromJson(descriptionOfLook(GetParam())).object().size(), 25);
}

TEST_P(ShippedAppearance, IsWhatItsDescriptionSays) {
  const auto made = ZQRollOverButtonAppearance::appearanceWithDataRepresentation(
      contentsOfFile(fileOfLook(GetParam())));
  EXPECT_EQ(jsonOfAppearance(*made).json(), jsonOfAppearance(*look).json());
}

TEST_P(ShippedAppearance, CanBeReadInEveryState) {
  for (const SampleState state : SampleStates)
    if (state != SampleState::Disabled) {
      EXPECT_GE(titleContrast(*look, state, ground).value_or(0), Readable) << int(state);
    }
}

// A bezel that lets nothing through looks the same in every window.
TEST_P(ShippedAppearance, IsOpaque) {
  for (const auto& color :
       {look->controlColor(), look->shadingColor(), look->textColor(), look->arrowColor(),
        look->mouseoverControlColor(), look->mouseoverShadingColor(), look->mouseoverTextColor(),
        look->mouseoverArrowColor(), look->highlightedControlColor(),
        look->highlightedShadingColor(), look->highlightedTextColor(),
        look->highlightedArrowColor()})
    if (color) {
      EXPECT_EQ(color->alphaComponent(), 1);
    }
}

TEST_P(ShippedAppearance, ShowsItsArrowInEveryState) {
  const auto expect = [](const Ref<Color>& arrow, const Ref<Color>& control,
                         const Ref<Color>& shading) {
    EXPECT_GE(contrastRatio(arrow->qColor(), control->qColor()), Recognisable);
    if (shading) {
      EXPECT_GE(contrastRatio(arrow->qColor(), shading->qColor()), Recognisable);
    }
  };
  expect(look->arrowColor(), look->controlColor(), look->shadingColor());
  expect(look->mouseoverArrowColor(), look->mouseoverControlColor(), look->mouseoverShadingColor());
  expect(look->highlightedArrowColor(), look->highlightedControlColor(),
         look->highlightedShadingColor());
}

TEST_P(ShippedAppearance, IsDimmedButLegibleWhereDisabled) {
  constexpr double legible = 2.5;
  const double disabled = titleContrast(*look, SampleState::Disabled, ground).value_or(0);
  EXPECT_GE(disabled, legible);
  EXPECT_LE(disabled, titleContrast(*look, SampleState::Normal, ground).value_or(0) / 1.5);
}

// The strip behind a control bar has any color, and signs pass under it.
TEST(ControlBarLook, CanBeReadOnAnyStripAlsoWhereDisabled) {
  const auto look = shippedLook("ControlBarButton");
  for (const SampleState state : SampleStates) {
    const double onBlack = titleContrast(*look, state, Qt::black).value_or(0);
    EXPECT_GE(onBlack, 2.5) << int(state);
    for (const QColor& strip : {QColor(Qt::white), QColor(Qt::yellow), QColor(0x80, 0x80, 0x80)})
      EXPECT_DOUBLE_EQ(titleContrast(*look, state, strip).value_or(0), onBlack) << int(state);
  }
}

// What is pressed lies one point lower. The shadow of a flat body fills the gap; a gradient casts
// none, and the window would show through.
TEST_P(ShippedAppearance, LeavesNoGapWherePressed) {
  ButtonSample sample;
  sample.appearance = look;
  sample.state = SampleState::Pressed;
  for (const int scale : {1, 2}) {
    QImage image(80 * scale, 22 * scale, QImage::Format_RGB32);
    image.fill(Qt::magenta);
    image.setDevicePixelRatio(scale);
    {
      QPainter painter(&image);
      sample.draw(painter, {80, 22});
    }
    // Between the outermost rows, which lie outside of the frame.
    for (int y = 2 * scale; y < 18 * scale; ++y)
      EXPECT_LT(image.pixelColor(40 * scale, y).hsvSaturation(), 240) << scale << ": " << y;
  }
}

TEST_P(ShippedAppearance, TellsItsStatesApart) {
  constexpr double visible = 20;
  const QColor normal = middle(look->controlColor(), look->shadingColor());
  const QColor over = middle(look->mouseoverControlColor(), look->mouseoverShadingColor());
  const QColor pressed = middle(look->highlightedControlColor(), look->highlightedShadingColor());
  // A frame may do it too, being all around.
  EXPECT_GE(distance(normal, over) +
                distance(look->frameColor()->qColor(), look->mouseoverFrameColor()->qColor()),
            2 * visible);
  EXPECT_GE(distance(normal, pressed), visible);
  EXPECT_GE(distance(over, pressed), 2 * visible);
}

TEST_P(ShippedAppearance, IsPutOntoContactSheets) {
  const QDir folder(QStringLiteral(ZQTICKER_BINARY_DIR "/contact-sheets"));
  ASSERT_TRUE(folder.mkpath(u"."_s));
  const QString name = QString::fromLatin1(GetParam());
  const QString sheet = folder.filePath(name + u".png"_s);
  const QString fine = folder.filePath(name + u"@2x.png"_s);
  QFile::remove(sheet);
  QFile::remove(fine);
  const Outcome outcome =
      runZqticker({u"appearance"_s, u"preview"_s, fileOfLook(GetParam()), u"--output"_s, sheet});
  EXPECT_EQ(outcome.status, 0) << outcome.errors.constData();
  EXPECT_FALSE(QImage(sheet).isNull());
  EXPECT_EQ(QImage(fine).size(), QImage(sheet).size() * 2);
}

INSTANTIATE_TEST_SUITE_P(Looks, ShippedAppearance, ::testing::ValuesIn(ShippedLooks));
