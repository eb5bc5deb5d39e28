// The strip's menu under a real pointer, and real keys on the strip.
#include "tests/app/interaction/StripMenuOnScreen.h"

#include "app/settings/SettingsStore.h"

#include <QtCore/QDir>

using namespace Qt::StringLiterals;
using namespace zq::app;
using zq::app::testing::waitUntil;
using zq::app::testing::XServer;

namespace {
constexpr QRgb Red = qRgb(255, 0, 0);
constexpr QRgb Blue = qRgb(0, 0, 255);
constexpr QRgb Green = qRgb(0, 255, 0);

// Points of the outline around a sign.
constexpr int Outline = 3;

class StripMenuScreen : public zq::app::testing::StripMenuOnScreen {
 protected:
  StripMenuScreen() {
    for (QAction* action : {&like.hideStrip(), &like.queue(), &like.settings()})
      action->setVisible(true);
  }

  // Pictures of 100, 80 and 600 points side by side, which stand; the first one at the far edge.
  void runPictures() {
    run({u"--image"_s, pictureFile(100, Blue, u"blue.png"_s), u"--image"_s,
         pictureFile(80, Red, u"red.png"_s), u"--image"_s, pictureFile(600, Green, u"green.png"_s),
         u"--speed"_s, u"200"_s});
    ask(u"pause"_s);
    focus();
    const auto isThere = [&] {
      const int blue = columnOf(Blue);
      return blue >= 0 && blue <= Outline && columnOf(Red) > 100 && columnOf(Green) > 180;
    };
    for (int tries = 0; tries < 6 && !isThere(); ++tries) {
      press(columnOf(Blue) > Outline ? u"Right"_s : u"Left"_s);
      ASSERT_TRUE(waitUntil([&] { return stands(); }));
    }
    press(u"Escape"_s);
    ASSERT_TRUE(waitUntil([&] { return columnOf(Blue) == 0; }));
    ASSERT_GT(columnOf(Red), 100);
    ASSERT_GT(columnOf(Green), 180);
  }
  void writeSettings(const QByteArray& json) {
    QDir().mkpath(folder_.filePath(u"zqticker"_s));
    QFile file(settingsFile());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(json);
  }
  QString settingsFile() const { return folder_.filePath(u"zqticker/settings.json"_s); }
  Settings kept() const { return SettingsStore::peek(settingsFile()); }
  // The menu of this one that has the action.
  static const QMenu& menuOf(const QAction& action) {
    return *qobject_cast<QMenu*>(action.parent());
  }
  // Opens the menu at `x` and clicks on an action of it, or of a menu within it.
  void choose(int x, const QAction& action) {
    openMenu(x);
    const QMenu& inner = menuOf(action);
    if (&inner != &like)
      clickMenu(like, inner);
    click(inner, action);
    EXPECT_TRUE(isMenuClosed());
  }
  // Of red and blue, that of the sign that is the next to come to the far edge.
  QRgb nextColor() {
    const int red = columnOf(Red);
    const int blue = columnOf(Blue);
    return red > Outline && (blue <= Outline || red < blue) ? Red : Blue;
  }
  // Whether red, the first sign, has begun to leave, so that there is something to go back to.
  bool hasPast() {
    const int blue = columnOf(Blue);
    return blue >= 0 && blue < 300;
  }
  QString clipboard() { return told(u"xsel"_s, {u"--clipboard"_s, u"--output"_s}); }
  bool hasClipboard() const { return XServer::hasProgram(u"xsel"_s); }
  StripMenu like; // the program's
};
} // namespace

TEST_F(StripMenuScreen, ChoosesSpeedAndDirectionForGood) {
  writeSettings(R"({"speed": 400})");
  run({u"--image"_s, pictureFile(300, Red, u"red.png"_s)});
  ask(u"pause"_s);
  ASSERT_TRUE(waitUntil([&] { return stands(); }));
  const QImage before = picture();
  choose(300, like.faster());
  EXPECT_TRUE(waitUntil([&] { return kept().speed == 500; }));
  choose(300, like.slower());
  EXPECT_TRUE(waitUntil([&] { return kept().speed == 400; }));
  choose(300, like.slower());
  EXPECT_TRUE(waitUntil([&] { return kept().speed == 320; }));
  choose(300, like.usualSpeed());
  EXPECT_TRUE(waitUntil([&] { return kept().speed == 400; }));
  choose(300, like.directionAction(ScrollDirection::Right));
  EXPECT_TRUE(waitUntil([&] { return kept().direction == ScrollDirection::Right; }));
  EXPECT_TRUE(waitUntil([&] { return picture() == before; })) << "nothing has jumped";
  choose(300, like.pause());
  EXPECT_TRUE(waitUntil([&] { return picture() != before; })) << "it goes on";
}

TEST_F(StripMenuScreen, StandsTheStripUpright) {
  run({u"--text"_s, u"Hello"_s, u"--color"_s, u"white"_s, u"--speed"_s, u"400"_s});
  choose(300, like.directionAction(ScrollDirection::Up));
  EXPECT_TRUE(waitUntil([&] {
    const QImage screen = server_->screenshot();
    return (screen.pixel(Width - 5, 5) & 0xffffff) == Ground &&
           (screen.pixel(5, Height - 5) & 0xffffff) != Ground;
  }));
}

TEST_F(StripMenuScreen, PausesAndSteps) {
  run({u"--image"_s, pictureFile(300, Red, u"red.png"_s), u"--image"_s,
       pictureFile(300, Blue, u"blue.png"_s), u"--speed"_s, u"400"_s});
  ASSERT_TRUE(waitUntil([&] { return hasPast(); }));
  choose(300, like.pause());
  moveTo(300, 50);
  ASSERT_TRUE(waitUntil([&] { return stands(); }));
  const QRgb next = nextColor();
  choose(300, like.forward());
  EXPECT_TRUE(waitUntil([&] { return columnOf(next) == 0; }));
  choose(300, like.back());
  EXPECT_TRUE(waitUntil([&] { return columnOf(next) > 290; })) << "the one before is first";
  moveTo(300, 50);
  choose(300, like.pause());
  EXPECT_TRUE(waitUntil([&] { return !stands(); })) << "it goes on";
}

TEST_F(StripMenuScreen, OpensAndCopiesTheSignUnderIt) {
  if (!hasClipboard())
    GTEST_SKIP() << "xsel is not installed";
  const QString text(60, u'x');
  run({u"--sign"_s, signFile(u"https://example.org/"_s, text), u"--speed"_s, u"500"_s});
  choose(100, like.openSign());
  ASSERT_TRUE(waitUntil([&] { return !addresses().isEmpty(); }));
  EXPECT_EQ(addresses(), "https://example.org/\n");
  choose(100, like.copyText());
  EXPECT_TRUE(waitUntil([&] { return clipboard() == text; }));
}

TEST_F(StripMenuScreen, RemovesTheSignUnderItWithoutMovingAnother) {
  runPictures();
  const int red = columnOf(Red);
  const int green = columnOf(Green);
  choose(red + 40, like.removeSign());
  moveTo(300, 50);
  EXPECT_TRUE(waitUntil([&] { return columnOf(Red) < 0; }));
  EXPECT_EQ(columnOf(Green), green);
  ask(u"resume"_s);
  EXPECT_TRUE(waitUntil([&] { return columnOf(Green) != green; }));
  EXPECT_TRUE(waitUntil([&] { return columnOf(Blue) > 300; })) << "the next round";
  EXPECT_LT(columnOf(Red), 0);
}

TEST_F(StripMenuScreen, OffersNothingForASignBesideOne) {
  runPictures();
  const int gap = columnOf(Red) - 6;
  const QImage before = picture();
  openMenu(gap);
  click(like, like.removeSign());
  EXPECT_EQ(windows().size(), 2) << "it is switched off, so the menu stays";
  press(u"Escape"_s);
  EXPECT_TRUE(isMenuClosed());
  moveTo(300, 50);
  EXPECT_TRUE(waitUntil([&] { return picture() == before; }));
}

TEST_F(StripMenuScreen, HidesTheStripUntilItIsAskedFor) {
  runPictures();
  const QImage before = picture();
  choose(300, like.hideStrip());
  EXPECT_TRUE(waitUntil([&] { return windows().isEmpty(); }));
  moveTo(300, 50);
  ask(u"show"_s);
  EXPECT_TRUE(waitUntil([&] { return picture() == before; }));
}

TEST_F(StripMenuScreen, OpensTheWindows) {
  runPictures();
  for (const QAction* action : {&like.queue(), &like.settings()}) {
    known_ = windows();
    const auto count = known_.size();
    openMenu(300);
    click(like, *action);
    EXPECT_TRUE(waitUntil([&] { return windows().size() > count; }))
        << action->text().toStdString();
  }
}

TEST_F(StripMenuScreen, Quits) {
  runPictures();
  openMenu(300);
  click(like, like.quit());
  EXPECT_EQ(program_->awaitStatus(), 0);
}

TEST_F(StripMenuScreen, HasKeysForMotion) {
  writeSettings(R"({"speed": 400})");
  run({u"--image"_s, pictureFile(300, Red, u"red.png"_s), u"--image"_s,
       pictureFile(300, Blue, u"blue.png"_s)});
  ASSERT_TRUE(waitUntil([&] { return hasPast(); }));
  focus();
  press(u"space"_s);
  ASSERT_TRUE(waitUntil([&] { return stands(); }));
  const QRgb next = nextColor();
  press(u"Right"_s);
  EXPECT_TRUE(waitUntil([&] { return columnOf(next) >= 0 && columnOf(next) <= Outline; }));
  press(u"Left"_s);
  EXPECT_TRUE(waitUntil([&] { return columnOf(next) > 290; })) << "the one before is first";
  press(u"plus"_s);
  EXPECT_TRUE(waitUntil([&] { return kept().speed == 500; }));
  press(u"minus"_s);
  press(u"minus"_s);
  EXPECT_TRUE(waitUntil([&] { return kept().speed == 320; }));
  press(u"0"_s);
  EXPECT_TRUE(waitUntil([&] { return kept().speed == 400; }));
  press(u"space"_s);
  EXPECT_TRUE(waitUntil([&] { return !stands(); }));
}

TEST_F(StripMenuScreen, HasKeysForTheSignThatTabChooses) {
  runPictures();
  const int red = columnOf(Red);
  const int green = columnOf(Green);
  focus();
  const auto isLined = [&](int column) {
    return (picture().pixel(column - Outline, 12) & 0xffffff) == 0xffffff;
  };
  const auto isOutlined = [&](int column) { return waitUntil([&] { return isLined(column); }); };
  press(u"Tab"_s);
  EXPECT_TRUE(isOutlined(red));
  press(u"Tab"_s);
  EXPECT_TRUE(isOutlined(green));
  EXPECT_FALSE(isLined(red));
  press(u"shift+Tab"_s);
  EXPECT_TRUE(isOutlined(red));
  press(u"Delete"_s);
  EXPECT_TRUE(waitUntil([&] { return columnOf(Red) < 0; }));
  EXPECT_TRUE(isOutlined(green)) << "the next one, where it stood";
  press(u"Escape"_s);
  EXPECT_TRUE(waitUntil([&] { return !isLined(green); })) << "no outline without the keyboard";
  EXPECT_EQ(columnOf(Green), green);
}

TEST_F(StripMenuScreen, HasKeysForOpeningAndCopying) {
  if (!hasClipboard())
    GTEST_SKIP() << "xsel is not installed";
  const QString text(60, u'x');
  run({u"--sign"_s, signFile(u"https://example.org/"_s, text), u"--speed"_s, u"500"_s});
  focus();
  press(u"Return"_s);
  ASSERT_TRUE(waitUntil([&] { return !addresses().isEmpty(); }));
  EXPECT_EQ(addresses(), "https://example.org/\n");
  press(u"ctrl+c"_s);
  EXPECT_TRUE(waitUntil([&] { return clipboard() == text; }));
}

TEST_F(StripMenuScreen, OpensByKeyAndGoesByKeys) {
  runPictures();
  const QImage before = picture();
  focus();
  for (const QString& key : {u"Menu"_s, u"shift+F10"_s}) {
    known_ = windows();
    press(key);
    EXPECT_FALSE(newWindow().isEmpty()) << key.toStdString();
    press(u"Escape"_s);
    EXPECT_TRUE(isMenuClosed());
  }
  known_ = windows();
  press(u"Menu"_s);
  ASSERT_FALSE(newWindow().isEmpty());
  // From Back on to Forward.
  for (const QString& key : {u"Down"_s, u"Down"_s, u"Return"_s})
    press(key);
  EXPECT_TRUE(isMenuClosed());
  press(u"Escape"_s);
  EXPECT_TRUE(waitUntil([&] { return stands() && picture() != before; }));
}

TEST_F(StripMenuScreen, HasKeysForHidingAndQuitting) {
  runPictures();
  focus();
  press(u"h"_s);
  EXPECT_TRUE(waitUntil([&] { return windows().isEmpty(); }));
  focus();
  press(u"ctrl+q"_s);
  EXPECT_EQ(program_->awaitStatus(), 0);
}

TEST_F(StripMenuScreen, HearsNoKeysOfOthers) {
  runPictures();
  const QImage before = picture();
  for (const QString& key : {u"Delete"_s, u"h"_s, u"Right"_s, u"ctrl+q"_s})
    press(key);
  ask(u"pause"_s);
  EXPECT_EQ(picture(), before);
}
