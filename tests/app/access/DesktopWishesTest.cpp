#include "app/access/DesktopWishes.h"

#include "tests/app/XServer.h"
#include "tests/app/access/FakePortal.h"
#include "tests/app/bus/PrivateBus.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <optional>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;

namespace {
const QString Appearance = u"org.freedesktop.appearance"_s;
const QString Interface = u"org.gnome.desktop.interface"_s;

class Wishes : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!PrivateBus::isInstalled())
      GTEST_SKIP() << "dbus-daemon is not installed";
    bus_.emplace();
    ASSERT_TRUE(bus_->isRunning());
    portal_.emplace(bus_->address());
  }
  void make() {
    wishes_.emplace(bus_->address(), folder_.path());
    QObject::connect(&*wishes_, &DesktopWishes::changed, &*wishes_, [this] { ++changes_; });
  }
  bool motionBecomes(bool reduced) {
    return waitUntil([&] { return wishes_->reducesMotion() == reduced; });
  }
  bool contrastBecomes(bool raised) {
    return waitUntil([&] { return wishes_->raisesContrast() == raised; });
  }

  QTemporaryDir folder_;
  std::optional<PrivateBus> bus_;
  std::optional<FakePortal> portal_;
  std::optional<DesktopWishes> wishes_;
  int changes_ = 0;
};

// The wishes of files alone.
class WishesOfFiles : public ::testing::Test {
 protected:
  void write(const QString& name, const QByteArray& text) {
    ASSERT_TRUE(QDir(folder_.path()).mkpath(QFileInfo(name).path()));
    QFile file(folder_.filePath(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
  }

  QTemporaryDir folder_;
};
} // namespace

TEST_F(Wishes, AreThoseOfThePortal) {
  portal_->set(Appearance, u"reduced-motion"_s, 1u);
  portal_->set(Appearance, u"contrast"_s, 1u);
  portal_->show();
  make();
  EXPECT_TRUE(motionBecomes(true));
  EXPECT_TRUE(contrastBecomes(true));
}

TEST_F(Wishes, FollowChangesAtOnce) {
  portal_->set(Appearance, u"reduced-motion"_s, 0u);
  portal_->show();
  make();
  portal_->set(Appearance, u"reduced-motion"_s, 1u);
  EXPECT_TRUE(motionBecomes(true));
  EXPECT_EQ(changes_, 1);
  portal_->set(u"org.example.other"_s, u"reduced-motion"_s, 0u);
  portal_->set(Appearance, u"contrast"_s, 1u);
  EXPECT_TRUE(contrastBecomes(true));
  EXPECT_TRUE(wishes_->reducesMotion());
  portal_->set(Appearance, u"reduced-motion"_s, 0u);
  EXPECT_TRUE(motionBecomes(false));
}

TEST_F(Wishes, AreThePortalsOwnAndNobodyElses) {
  portal_->show();
  make();
  portal_->set(Appearance, u"contrast"_s, 1u);
  ASSERT_TRUE(contrastBecomes(true));
  const FakePortal other(bus_->address());
  other.tellAll(Appearance, u"reduced-motion"_s, 1u);
  portal_->set(Appearance, u"contrast"_s, 0u);
  ASSERT_TRUE(contrastBecomes(false));
  EXPECT_FALSE(wishes_->reducesMotion());
  EXPECT_EQ(changes_, 2);
}

TEST_F(Wishes, HoldWhenThePortalGoes) {
  portal_->set(Appearance, u"reduced-motion"_s, 1u);
  portal_->show();
  make();
  ASSERT_TRUE(motionBecomes(true));
  portal_.emplace(bus_->address());
  portal_->set(Appearance, u"contrast"_s, 1u);
  portal_->show();
  EXPECT_TRUE(contrastBecomes(true)) << "the next one is asked";
  EXPECT_TRUE(wishes_->reducesMotion());
}

TEST_F(Wishes, AreReadAgainAfterTheBusHasRestarted) {
  portal_->show();
  make();
  portal_->set(Appearance, u"contrast"_s, 1u);
  ASSERT_TRUE(contrastBecomes(true));
  portal_.reset();
  bus_->stop();
  bus_->start();
  portal_.emplace(bus_->address());
  portal_->set(Appearance, u"reduced-motion"_s, 1u);
  portal_->show();
  EXPECT_TRUE(motionBecomes(true));
}

TEST_F(Wishes, AreReadFromAPortalThatComesLater) {
  make();
  EXPECT_FALSE(wishes_->reducesMotion());
  portal_->set(Appearance, u"reduced-motion"_s, 1u);
  portal_->show();
  EXPECT_TRUE(motionBecomes(true));
}

TEST_F(Wishes, AreReadFromAnOlderPortal) {
  portal_.emplace(bus_->address(), FakePortal::Age::Old);
  portal_->set(Appearance, u"reduced-motion"_s, 1u);
  portal_->show();
  make();
  EXPECT_TRUE(motionBecomes(true));
}

TEST_F(Wishes, GoByTheSwitchForAnimationsWhereThePortalKnowsNoOther) {
  portal_->set(Interface, u"enable-animations"_s, false);
  portal_->set(u"org.gnome.desktop.a11y.interface"_s, u"high-contrast"_s, true);
  portal_->show();
  make();
  EXPECT_TRUE(motionBecomes(true));
  EXPECT_TRUE(contrastBecomes(true));
  portal_->set(Appearance, u"reduced-motion"_s, 0u);
  EXPECT_TRUE(motionBecomes(false)) << "the wish itself decides";
}

TEST_F(Wishes, GoByTheDurationOfAnimations) {
  portal_->set(u"org.kde.kdeglobals.KDE"_s, u"AnimationDurationFactor"_s, u"0"_s);
  portal_->show();
  make();
  EXPECT_TRUE(motionBecomes(true));
  portal_->set(u"org.kde.kdeglobals.KDE"_s, u"AnimationDurationFactor"_s, u"0.5"_s);
  EXPECT_TRUE(motionBecomes(false));
}

TEST_F(WishesOfFiles, AreNoneWhereThereIsNothing) {
  const DesktopWishes wishes(std::nullopt, folder_.path());
  EXPECT_FALSE(wishes.reducesMotion());
  EXPECT_FALSE(wishes.raisesContrast());
}

TEST_F(WishesOfFiles, AreThoseOfOneDesktop) {
  write(u"gtk-3.0/settings.ini"_s,
        "[Settings]\ngtk-enable-animations=false\ngtk-theme-name=HighContrastInverse\n");
  const DesktopWishes wishes(std::nullopt, folder_.path());
  EXPECT_TRUE(wishes.reducesMotion());
  EXPECT_TRUE(wishes.raisesContrast());
}

TEST_F(WishesOfFiles, AreThoseOfTheOther) {
  write(u"kdeglobals"_s, "[KDE]\nAnimationDurationFactor=0\n");
  const DesktopWishes wishes(std::nullopt, folder_.path());
  EXPECT_TRUE(wishes.reducesMotion());
  EXPECT_FALSE(wishes.raisesContrast());
}
