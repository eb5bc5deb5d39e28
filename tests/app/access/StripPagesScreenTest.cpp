// The program page by page and in high contrast, as a desktop's portal wishes.
#include "app/display/StripTiles.h"
#include "tests/app/Program.h"
#include "tests/app/XServer.h"
#include "tests/app/access/FakePortal.h"
#include "tests/app/bus/PrivateBus.h"

#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <optional>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;

namespace {
constexpr int Width = 640;
constexpr int Height = 400;
constexpr int StripHeight = 24;
constexpr int PictureWidth = Width - 100;
const QString Appearance = u"org.freedesktop.appearance"_s;

class StripPagesScreen : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!XServer::isInstalled() || !PrivateBus::isInstalled())
      GTEST_SKIP() << "Xvfb or dbus-daemon is not installed";
    server_.emplace(Width, Height);
    ASSERT_FALSE(server_->display().isEmpty()) << "Xvfb does not start";
    bus_.emplace();
    ASSERT_TRUE(bus_->isRunning());
    portal_.emplace(bus_->address());
  }

  void run(const QStringList& more = {}) {
    QProcessEnvironment environment = bus_->environment(server_->environment());
    environment.insert(u"XDG_CONFIG_HOME"_s, folder_.path());
    program_.emplace(QStringList{u"run"_s, u"--image"_s, picture(Qt::red), u"--image"_s,
                                 picture(Qt::blue), u"--speed"_s, u"200"_s, u"--no-control-bar"_s} +
                         more,
                     environment);
  }
  // As long as most of the strip: each begins a page.
  QString picture(QColor color) {
    QImage image(PictureWidth, StripHeight, QImage::Format_RGB32);
    image.fill(color);
    const QString file = folder_.filePath(color.name() + u".png"_s);
    EXPECT_TRUE(image.save(file));
    return file;
  }
  QImage strip() { return server_->screenshot().copy(0, Height - StripHeight, Width, StripHeight); }
  static QRgb colorAt(const QImage& strip, int x) {
    return strip.pixel(x, StripHeight / 2) & 0xffffff;
  }
  QRgb colorAt(int x) { return colorAt(strip(), x); }
  static QRgb rgb(QColor color) { return color.rgb() & 0xffffff; }

  QTemporaryDir folder_;
  std::optional<XServer> server_;
  std::optional<PrivateBus> bus_;
  std::optional<FakePortal> portal_;
  std::optional<RunningProgram> program_;
};
} // namespace

TEST_F(StripPagesScreen, ChangesPageByPageAsThePortalWishes) {
  portal_->set(Appearance, u"reduced-motion"_s, 1u);
  portal_->show();
  run({u"--background"_s, u"#123456"_s});
  for (const QColor color : {Qt::red, Qt::blue, Qt::red})
    EXPECT_TRUE(waitUntil([&] {
      const QImage seen = strip();
      const QRgb first = colorAt(seen, 0);
      if (first != rgb(Qt::red) && first != rgb(Qt::blue))
        return false;
      int end = 1;
      while (end < Width && colorAt(seen, end) == first)
        ++end;
      // Nothing slides: on every look the picture ends where the first one of a page does, or its
      // first tile, while the server has not drawn the second one yet.
      EXPECT_TRUE(end == PictureWidth || end == StripTiles::TileLength) << end;
      return first == rgb(color);
    })) << color.name().toStdString();
}

// Begins at the edge at which signs leave, and is not faded there.
TEST_F(StripPagesScreen, ShowsPagesUnfadedInTheOtherDirections) {
  struct Way {
    QString name;
    QPoint start; // a pixel at the edge at which signs leave
    QSize sign;
  };
  const Way ways[] = {{u"right"_s, {Width - 1, Height - StripHeight / 2}, {500, StripHeight}},
                      {u"up"_s, {Width - 50, 0}, {100, 300}},
                      {u"down"_s, {Width - 50, Height - 1}, {100, 300}}};
  for (const auto& [name, start, sign] : ways) {
    QStringList arguments{u"run"_s, u"--speed"_s, u"200"_s, u"--no-control-bar"_s, u"--direction"_s,
                          name,     u"--fade"_s,  u"100"_s, u"--reduced-motion"_s, u"on"_s};
    if (sign.width() == 100)
      arguments += {u"--width"_s, u"100"_s};
    for (const QColor color : {QColor(Qt::red), QColor(Qt::blue)}) {
      QImage image(sign, QImage::Format_RGB32);
      image.fill(color);
      const QString file = folder_.filePath(name + color.name() + u".png"_s);
      ASSERT_TRUE(image.save(file));
      arguments += {u"--image"_s, file};
    }
    QProcessEnvironment environment = bus_->environment(server_->environment());
    environment.insert(u"XDG_CONFIG_HOME"_s, folder_.path());
    program_.emplace(arguments, environment);
    const auto colorAtStart = [&, start = start] {
      return server_->screenshot().pixel(start) & 0xffffff;
    };
    for (const QColor color : {Qt::red, Qt::blue})
      EXPECT_TRUE(waitUntil([&] { return colorAtStart() == rgb(color); }))
          << name.toStdString() << " " << color.name().toStdString();
    program_.reset();
    EXPECT_TRUE(waitUntil([&] { return colorAtStart() == 0; })) << "its window has gone";
  }
}

TEST_F(StripPagesScreen, ScrollsAgainWhenTheWishHasGone) {
  portal_->set(Appearance, u"reduced-motion"_s, 1u);
  portal_->show();
  run();
  ASSERT_TRUE(waitUntil([&] { return colorAt(0) == rgb(Qt::red); }));
  portal_->set(Appearance, u"reduced-motion"_s, 0u);
  EXPECT_TRUE(waitUntil([&] {
    const QImage seen = strip();
    return colorAt(seen, 0) == rgb(Qt::red) && colorAt(seen, PictureWidth - 100) != rgb(Qt::red);
  })) << "the picture has moved on";
}

TEST_F(StripPagesScreen, DoesWhatTheCommandLineSaysWhateverThePortalWishes) {
  portal_->set(Appearance, u"reduced-motion"_s, 1u);
  portal_->show();
  run({u"--reduced-motion"_s, u"off"_s});
  EXPECT_TRUE(waitUntil([&] { return colorAt(Width - 1) == rgb(Qt::red); })) << "it slides in";
}

TEST_F(StripPagesScreen, TakesMoreContrastWhenItIsWishedFor) {
  portal_->show();
  run({u"--text"_s, u"Black on nearly black, and white when it is wished for"_s, u"--background"_s,
       u"#123456"_s, u"--continuous"_s});
  // Of the background and of the text.
  const auto shows = [&](QRgb color) {
    const QImage seen = strip();
    bool isGroundSeen = false;
    bool isTextSeen = false;
    for (int y = 0; y < seen.height(); ++y)
      for (int x = 0; x < seen.width(); ++x) {
        const QRgb pixel = seen.pixel(x, y) & 0xffffff;
        isGroundSeen |= pixel == 0x123456u;
        isTextSeen |= pixel == color;
      }
    return isGroundSeen && isTextSeen;
  };
  ASSERT_TRUE(waitUntil([&] { return shows(rgb(Qt::black)); }));
  EXPECT_FALSE(shows(rgb(Qt::white)));
  portal_->set(Appearance, u"contrast"_s, 1u);
  EXPECT_TRUE(waitUntil([&] { return shows(rgb(Qt::white)); })) << "the background was chosen";
}
