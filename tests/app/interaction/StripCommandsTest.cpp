#include "app/interaction/StripCommands.h"

#include "app/display/SignItem.h"
#include "tests/app/interaction/HandledStrip.h"
#include "zqticker/signs/ZQTextTickerSign.h"

#include <QtGui/QAction>
#include <QtGui/QClipboard>
#include <QtGui/QContextMenuEvent>
#include <QtGui/QGuiApplication>

#include <optional>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;

namespace {
const QString Page = u"https://example.org/page"_s;

class StripUnderCommands : public HandledStrip {
 protected:
  StripUnderCommands() {
    zq::testing::allowLog(u"does not support grabbing"_s);
    commands.emplace(strip, display, opener);
    QObject::connect(&*commands, &StripCommands::speedChosen, &strip,
                     [this](double speed) { speeds.push_back(speed); });
    QObject::connect(&*commands, &StripCommands::signRemoved, &strip, [this] { ++removals; });
  }

  StripMenu& menu() { return strip.menu(); }
  SignMark& outline() const { return *strip.findChild<SignMark*>(); }
  static zq::platform::Ref<ZQTickerSign> text(const QString& text) {
    const auto sign = ZQTextTickerSign::make(text);
    sign->setLoopCount(ZQEndlessLoopCount);
    return sign;
  }
  // The menu under the right button.
  void openMenuAt(QPoint place) {
    QContextMenuEvent event(QContextMenuEvent::Mouse, place, strip.mapToGlobal(place));
    QApplication::sendEvent(&strip, &event);
  }
  // Chooses from the menu while it is open, as it does: it closes first.
  void choose(QAction& action) {
    menu().close();
    action.trigger();
    QCoreApplication::processEvents();
  }
  // Gives the strip the keyboard.
  void focus() {
    strip.keyboard().take();
    ASSERT_TRUE(waitUntil([&] { return strip.keyboard().isTaken(); }));
  }
  Strip::Entry meant() {
    const auto sign = commands->meantSign().sign();
    return sign ? sign->entry : nullptr;
  }

  std::optional<StripCommands> commands;
  std::vector<double> speeds;
  int removals = 0;
};
} // namespace

TEST(StripSpeeds, GrowAndFallByAQuarterWithinBounds) {
  EXPECT_EQ(StripCommands::fasterThan(60), 75);
  EXPECT_EQ(StripCommands::slowerThan(60), 48);
  EXPECT_EQ(StripCommands::slowerThan(StripCommands::fasterThan(60)), 60);
  EXPECT_EQ(StripCommands::slowerThan(5.5), StripCommands::LeastSpeed);
  EXPECT_EQ(StripCommands::fasterThan(1999), StripCommands::MostSpeed);
}

TEST(StripSpeeds, BeyondTheBoundsAreLeftOnlyInwards) {
  EXPECT_EQ(StripCommands::slowerThan(StripCommands::LeastSpeed), StripCommands::LeastSpeed);
  EXPECT_EQ(StripCommands::slowerThan(1), 1);
  EXPECT_EQ(StripCommands::fasterThan(1), StripCommands::LeastSpeed);
  EXPECT_EQ(StripCommands::fasterThan(0), StripCommands::LeastSpeed);
  EXPECT_EQ(StripCommands::fasterThan(100'000), 100'000);
  EXPECT_EQ(StripCommands::slowerThan(100'000), 80'000);
}

TEST_F(StripUnderCommands, TellOfTheSpeedThatIsChosen) {
  add(picture(5000));
  show();
  menu().faster().trigger();
  menu().slower().trigger();
  commands->setUsualSpeed(90);
  menu().usualSpeed().trigger();
  EXPECT_EQ(speeds, (std::vector<double>{25, 16, 90}));
}

TEST_F(StripUnderCommands, OfferNoSpeedBeyondTheBoundsInTheMenu) {
  display.setSpeed(StripCommands::MostSpeed, strip.time());
  openMenuAt({20, 12});
  EXPECT_FALSE(menu().faster().isEnabled());
  EXPECT_TRUE(menu().slower().isEnabled());
  menu().close();
  EXPECT_TRUE(waitUntil([&] { return menu().faster().isEnabled(); })) << "for its key";
}

TEST_F(StripUnderCommands, CheckTheDirection) {
  EXPECT_TRUE(menu().directionAction(ScrollDirection::Left).isChecked());
  display.setDirection(ScrollDirection::Down, strip.time());
  openMenuAt({20, 12});
  EXPECT_TRUE(menu().directionAction(ScrollDirection::Down).isChecked());
  EXPECT_FALSE(menu().directionAction(ScrollDirection::Left).isChecked());
  menu().close();
}

TEST_F(StripUnderCommands, HaveTheArrowsAlongTheStrip) {
  const auto keys = [&](ScrollDirection direction) {
    menu().setDirection(direction);
    return std::pair(menu().back().shortcut(), menu().forward().shortcut());
  };
  using Keys = std::pair<QKeySequence, QKeySequence>;
  EXPECT_EQ(keys(ScrollDirection::Left), Keys(Qt::Key_Left, Qt::Key_Right));
  EXPECT_EQ(keys(ScrollDirection::Right), Keys(Qt::Key_Right, Qt::Key_Left));
  EXPECT_EQ(keys(ScrollDirection::Up), Keys(Qt::Key_Up, Qt::Key_Down));
  EXPECT_EQ(keys(ScrollDirection::Down), Keys(Qt::Key_Down, Qt::Key_Up));
}

TEST_F(StripUnderCommands, AreAboutTheSignUnderTheMenu) {
  add(picture(100));
  add(picture(5000, Page));
  show();
  openMenuAt({20, 12});
  EXPECT_FALSE(menu().openSign().isEnabled());
  EXPECT_FALSE(menu().copyText().isEnabled()) << "a picture";
  EXPECT_TRUE(menu().removeSign().isEnabled());
  menu().close();
  QCoreApplication::processEvents();
  openMenuAt({150, 12});
  EXPECT_TRUE(menu().openSign().isEnabled());
  EXPECT_TRUE(outline().isVisible());
  choose(menu().openSign());
  EXPECT_EQ(opened, std::vector<QUrl>{QUrl(Page)});
  EXPECT_FALSE(outline().isVisible());
}

TEST_F(StripUnderCommands, AreAboutNothingBesideSigns) {
  add(picture(100));
  add(picture(5000, Page));
  show();
  openMenuAt({106, 12});
  for (const QAction* action : {&menu().openSign(), &menu().copyText(), &menu().removeSign()})
    EXPECT_FALSE(action->isEnabled()) << action->text().toStdString();
  EXPECT_FALSE(outline().isVisible());
  choose(menu().removeSign());
  EXPECT_EQ(removals, 0);
}

TEST_F(StripUnderCommands, AreAboutNothingOnAnEmptyStrip) {
  strip.show();
  openMenuAt({20, 12});
  EXPECT_FALSE(menu().removeSign().isEnabled());
  EXPECT_TRUE(menu().faster().isEnabled());
  menu().close();
  focus();
  for (QAction* action : {&menu().openSign(), &menu().copyText(), &menu().removeSign()})
    action->trigger();
  commands->meantSign().choose(1);
  EXPECT_FALSE(meant());
  EXPECT_EQ(removals, 0);
  EXPECT_TRUE(opened.empty());
}

TEST_F(StripUnderCommands, AreAboutNothingWhereAControlOpensTheMenu) {
  add(picture(5000, Page));
  show();
  focus();
  menu().popup(QPoint(300, 300));
  EXPECT_FALSE(menu().removeSign().isEnabled());
  menu().close();
}

TEST_F(StripUnderCommands, CopyTheTextOfASign) {
  QGuiApplication::clipboard()->setText(u"before"_s);
  add(text(u"Grüße <b>"_s));
  show();
  openMenuAt({5, 12});
  choose(menu().copyText());
  EXPECT_EQ(QGuiApplication::clipboard()->text(), u"Grüße <b>"_s);
}

TEST_F(StripUnderCommands, CopyALine) {
  display.addLine(u"a line"_s, strip.time());
  show();
  openMenuAt({5, 12});
  EXPECT_FALSE(menu().openSign().isEnabled());
  choose(menu().copyText());
  EXPECT_EQ(QGuiApplication::clipboard()->text(), u"a line"_s);
}

TEST_F(StripUnderCommands, CopyNothingOfAPicture) {
  QGuiApplication::clipboard()->setText(u"before"_s);
  add(picture(5000));
  show();
  focus();
  ASSERT_TRUE(meant());
  menu().copyText().trigger();
  EXPECT_EQ(QGuiApplication::clipboard()->text(), u"before"_s);
}

TEST_F(StripUnderCommands, AreAboutTheSignOfTheMenuWhenThatHasLeft) {
  const auto sign = text(u"gone"_s);
  sign->setLoopCount(1);
  add(sign);
  add(picture(5000, Page));
  show();
  openMenuAt({5, 12});
  display.moveBy(200, strip.time());
  strip.displayChanged();
  ASSERT_FALSE(signAt(display, {5, 12})->entry == meant());
  EXPECT_FALSE(outline().isVisible());
  choose(menu().copyText());
  EXPECT_EQ(QGuiApplication::clipboard()->text(), u"gone"_s);
}

TEST_F(StripUnderCommands, MeanNoSignWithoutKeyboardOrMenu) {
  add(picture(5000, Page));
  show();
  // Here every window gets the keyboard.
  QWidget other;
  other.show();
  other.activateWindow();
  ASSERT_TRUE(waitUntil([&] { return !strip.keyboard().isTaken(); }));
  EXPECT_FALSE(meant());
  EXPECT_FALSE(outline().isVisible());
  menu().removeSign().trigger();
  EXPECT_EQ(removals, 0);
}

TEST_F(StripUnderCommands, MeanTheFirstSignWhoseStartIsThere) {
  display.setSpeed(0, strip.time());
  const auto first = add(picture(100));
  const auto second = add(picture(5000, Page));
  show();
  focus();
  EXPECT_EQ(meant(), first) << "it stands at the edge";
  EXPECT_TRUE(waitUntil([&] { return outline().isVisible(); }));
  EXPECT_EQ(outline().geometry().topLeft(), QPoint(0, 0));
  EXPECT_EQ(outline().height(), strip.height()) << "the sign keeps its room";
  EXPECT_NEAR(outline().width(), 103, 1) << "beside the sign";
  display.moveBy(30, strip.time());
  strip.displayChanged();
  EXPECT_EQ(meant(), second) << "the other one is leaving";
  display.moveBy(200, strip.time());
  strip.displayChanged();
  EXPECT_EQ(meant(), second) << "there is no other one";
  strip.keyboard().giveBack();
  strip.hide();
  EXPECT_TRUE(waitUntil([&] { return !meant(); }));
}

TEST_F(StripUnderCommands, OutlineATextOnlyAsFarAsTheNextSign) {
  display.setSpeed(0, strip.time());
  add(text(u"one"_s));
  const auto second = add(text(u"two"_s));
  const auto third = add(text(u"six"_s));
  show();
  focus();
  ASSERT_TRUE(waitUntil([&] { return signsInSight(display).size() >= 3; }));
  commands->meantSign().choose(1);
  ASSERT_EQ(meant(), second);
  const auto startOfThird = [&] {
    for (const SignSpot& spot : signsInSight(display))
      if (spot.entry == third)
        return spot.area.left();
    return 0.0;
  };
  EXPECT_LE(outline().geometry().right(), startOfThird());
  EXPECT_GE(outline().geometry().right(), startOfThird() - 2);
  // Signs keep their places where the strip turns.
  display.setDirection(ScrollDirection::Right, strip.time());
  commands->meantSign().choose(0);
  ASSERT_EQ(meant(), second);
  EXPECT_LE(outline().geometry().right(), startOfThird());
  EXPECT_GE(outline().geometry().right(), startOfThird() - 2);
}

TEST_F(StripUnderCommands, ChooseByTabAmongWhatIsInSight) {
  display.setSpeed(0, strip.time());
  const auto first = add(picture(50));
  const auto second = add(picture(50));
  const auto third = add(picture(50));
  show();
  focus();
  ASSERT_TRUE(waitUntil([&] { return signsInSight(display).size() >= 3; }));
  MeantSign& sign = commands->meantSign();
  EXPECT_EQ(meant(), first);
  sign.choose(1);
  EXPECT_EQ(meant(), second);
  EXPECT_NEAR(outline().x(), 59, 1);
  EXPECT_NEAR(outline().width(), 56, 1);
  sign.choose(1);
  EXPECT_EQ(meant(), third);
  sign.choose(-2);
  EXPECT_EQ(meant(), first);
  sign.choose(-1);
  EXPECT_EQ(meant(), signsInSight(display).back().entry) << "round";
  sign.choose(1);
  EXPECT_EQ(meant(), first);
  sign.choose(1);
  display.moveBy(62 + 55, strip.time());
  strip.displayChanged();
  EXPECT_EQ(meant(), third) << "the chosen one has left";
}

TEST_F(StripUnderCommands, RemoveASignWithoutMovingAnother) {
  display.setSpeed(0, strip.time());
  const auto first = add(picture(50));
  const auto second = add(picture(50));
  const auto third = add(picture(50));
  show();
  focus();
  ASSERT_TRUE(waitUntil([&] { return signsInSight(display).size() >= 3; }));
  commands->meantSign().choose(1);
  const QRectF before = signsInSight(display)[2].area;
  menu().removeSign().trigger();
  EXPECT_EQ(removals, 1);
  const auto spots = signsInSight(display);
  ASSERT_GE(spots.size(), 2u);
  EXPECT_EQ(spots[0].entry, first);
  EXPECT_EQ(spots[1].entry, third);
  EXPECT_EQ(spots[1].area, before);
  EXPECT_EQ(meant(), third) << "the next one";
  EXPECT_FALSE(signAt(display, {70, 12}));
  EXPECT_FALSE(second->isWaiting());
}

TEST_F(StripUnderCommands, RemoveTheLastSign) {
  add(picture(5000, Page));
  show();
  openMenuAt({20, 12});
  choose(menu().removeSign());
  EXPECT_EQ(removals, 1);
  EXPECT_TRUE(signsInSight(display).empty());
  EXPECT_EQ(display.waitingCount(), 0u);
  openMenuAt({20, 12});
  EXPECT_FALSE(menu().removeSign().isEnabled());
  menu().close();
}
