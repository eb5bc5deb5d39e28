#include "zqticker/platform/graphics/SystemColors.h"

#include "zqticker/platform/graphics/Color.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QPalette>

#include <gtest/gtest.h>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {

// The application's palette for the running test.
class SystemColorsTest : public ::testing::Test {
 protected:
  ~SystemColorsTest() override {
    QGuiApplication::setPalette(before_);
    SystemColors::setTable(nullptr);
  }
  static void usePalette(QPalette::ColorRole role, const QColor& color,
                         QPalette::ColorGroup group = QPalette::All) {
    QPalette palette = QGuiApplication::palette();
    palette.setColor(group, role, color);
    QGuiApplication::setPalette(palette);
  }

 private:
  QPalette before_ = QGuiApplication::palette();
};

QColor shown(const QString& name) {
  const Ref<Color> color = SystemColors::colorNamed(name);
  return color ? color->qColor() : QColor();
}

} // namespace

TEST_F(SystemColorsTest, KnowsItsNamesInOrder) {
  const QStringList names = SystemColors::knownNames();
  EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
  for (const QString& name : names) {
    const Ref<Color> color = SystemColors::colorNamed(name);
    ASSERT_NE(color, nullptr) << name.toStdString();
    EXPECT_EQ(color->space(), Color::Space::Catalog);
    EXPECT_EQ(color->catalogName(), u"System"_s);
    EXPECT_EQ(color->colorName(), name);
  }
}

TEST_F(SystemColorsTest, LacksOtherNames) {
  for (const QString& name : {u""_s, u"controlcolor"_s, u"zebraColor"_s, u"Control"_s})
    EXPECT_EQ(SystemColors::colorNamed(name), nullptr) << name.toStdString();
}

TEST_F(SystemColorsTest, ShowsTheRolesOfThePalette) {
  const std::vector<std::pair<QString, QPalette::ColorRole>> rows{
      {u"controlColor"_s, QPalette::Button},
      {u"controlTextColor"_s, QPalette::ButtonText},
      {u"controlBackgroundColor"_s, QPalette::Base},
      {u"controlHighlightColor"_s, QPalette::Midlight},
      {u"controlLightHighlightColor"_s, QPalette::Light},
      {u"controlShadowColor"_s, QPalette::Dark},
      {u"controlDarkShadowColor"_s, QPalette::Shadow},
      {u"selectedControlColor"_s, QPalette::Highlight},
      {u"selectedControlTextColor"_s, QPalette::HighlightedText},
      {u"textColor"_s, QPalette::Text},
      {u"toolTipColor"_s, QPalette::ToolTipBase},
      {u"toolTipTextColor"_s, QPalette::ToolTipText},
      {u"windowBackgroundColor"_s, QPalette::Window},
  };
  int step = 0;
  for (const auto& [name, role] : rows) {
    ++step;
    const QColor color(10 + 7 * step, 200, step);
    usePalette(role, color);
    EXPECT_EQ(shown(name).rgba(), color.rgba()) << name.toStdString();
  }
}

TEST_F(SystemColorsTest, ADarkDesktopReachesTheNextQuestion) {
  usePalette(QPalette::Window, Qt::white);
  const Ref<Color> light = SystemColors::colorNamed(u"windowBackgroundColor"_s);
  usePalette(QPalette::Window, QColor(0x20, 0x20, 0x20));
  EXPECT_EQ(shown(u"windowBackgroundColor"_s).rgba(), qRgb(0x20, 0x20, 0x20));
  // A colour that was asked for before stays as it was.
  EXPECT_EQ(light->redComponent(), 1);
}

TEST_F(SystemColorsTest, TakesTheColorsOfTheirGroups) {
  usePalette(QPalette::ButtonText, Qt::green, QPalette::Active);
  usePalette(QPalette::ButtonText, Qt::gray, QPalette::Disabled);
  EXPECT_EQ(shown(u"controlTextColor"_s), QColor(Qt::green));
  EXPECT_EQ(shown(u"disabledControlTextColor"_s).rgba(), QColor(Qt::gray).rgba());
  usePalette(QPalette::ToolTipBase, Qt::blue, QPalette::Inactive);
  usePalette(QPalette::ToolTipBase, Qt::red, QPalette::Active);
  EXPECT_EQ(shown(u"toolTipColor"_s), QColor(Qt::blue));
}

TEST_F(SystemColorsTest, AnotherTableMayLackAnyName) {
  SystemColors::setTable([](const QString& name) {
    return name == "controlColor"_L1 ? Color::deviceRGB(1, 0, 0) : Ref<Color>();
  });
  EXPECT_EQ(shown(u"controlColor"_s), QColor(Qt::red));
  EXPECT_EQ(SystemColors::colorNamed(u"toolTipColor"_s), nullptr);
  SystemColors::setTable(nullptr);
  EXPECT_NE(SystemColors::colorNamed(u"toolTipColor"_s), nullptr);
}

TEST_F(SystemColorsTest, TheTintIsTheColorOfChosenThings) {
  usePalette(QPalette::Highlight, QColor(200, 30, 30));
  EXPECT_EQ(SystemColors::currentControlTint(), ControlTint::Blue);
  for (const ControlTint tint : {ControlTint::Default, ControlTint::Blue, ControlTint(99)})
    EXPECT_EQ(SystemColors::colorForControlTint(tint)->qColor().rgba(), qRgb(200, 30, 30));
}

TEST_F(SystemColorsTest, AGrayDesktopHasTheGraphiteTint) {
  usePalette(QPalette::Highlight, QColor(120, 118, 121));
  EXPECT_EQ(SystemColors::currentControlTint(), ControlTint::Graphite);
  const Ref<Color> tint = SystemColors::colorForControlTint(ControlTint::Default);
  EXPECT_TRUE(tint->isEqual(*SystemColors::colorForControlTint(ControlTint::Graphite)));
  EXPECT_LT(tint->saturationComponent(), 0.2);
  // Blue stays blue there.
  const Ref<Color> blue = SystemColors::colorForControlTint(ControlTint::Blue);
  EXPECT_NEAR(blue->hueComponent(), 0.6, 0.02);
  EXPECT_GT(blue->saturationComponent(), 0.5);
}

TEST_F(SystemColorsTest, TheClearTintIsTheColorOfControls) {
  usePalette(QPalette::Button, QColor(1, 2, 3));
  EXPECT_EQ(SystemColors::colorForControlTint(ControlTint::Clear)->qColor().rgba(), qRgb(1, 2, 3));
}

TEST_F(SystemColorsTest, EveryTintHasAColorWhereTheTableIsEmpty) {
  SystemColors::setTable([](const QString&) { return Ref<Color>(); });
  EXPECT_EQ(SystemColors::currentControlTint(), ControlTint::Blue);
  for (const ControlTint tint :
       {ControlTint::Default, ControlTint::Blue, ControlTint::Graphite, ControlTint::Clear})
    EXPECT_NE(SystemColors::colorForControlTint(tint), nullptr);
}
