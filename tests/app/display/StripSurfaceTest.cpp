// The two ways of a frame to the screen, side by side on a real X server.
#include "tests/app/XServer.h"

#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <optional>

using namespace Qt::StringLiterals;
using namespace zq::app::testing;

namespace {
constexpr int ScreenWidth = 1300;
// The pointer, which is part of the picture, rests below the windows.
constexpr int ScreenHeight = 600;
constexpr int WindowDistance = 100; // points between the upper window and the lower one

// The most by which two pictures differ in a channel; 256 for pictures of other sizes.
int difference(const QImage& a, const QImage& b) {
  if (a.size() != b.size() || a.isNull())
    return 256;
  int most = 0;
  for (int y = 0; y < a.height(); ++y)
    for (int x = 0; x < a.width(); ++x) {
      const QRgb first = a.pixel(x, y);
      const QRgb second = b.pixel(x, y);
      most = std::max({most, std::abs(qRed(first) - qRed(second)),
                       std::abs(qGreen(first) - qGreen(second)),
                       std::abs(qBlue(first) - qBlue(second))});
    }
  return most;
}

// How many pixels are not that of the upper left corner.
int ink(const QImage& image) {
  int count = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      count += image.pixel(x, y) != image.pixel(0, 0) ? 1 : 0;
  return count;
}

class BothWays : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!XServer::isInstalled())
      GTEST_SKIP() << "Xvfb is not installed";
    server_.emplace(ScreenWidth, ScreenHeight);
    ASSERT_FALSE(server_->display().isEmpty()) << "Xvfb does not start";
  }
  void TearDown() override { stop(); }

  void start(QSize size, double scale = 1) {
    stop();
    size_ = size;
    scale_ = scale;
    QProcessEnvironment environment = server_->environment();
    environment.insert(u"QT_SCALE_FACTOR"_s, QString::number(scale));
    probe_.emplace();
    probe_->setProcessEnvironment(environment);
    probe_->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    probe_->start(QStringLiteral(ZQTICKER_SURFACE_PROBE),
                  {QString::number(size.width()), QString::number(size.height())});
    // Shown natively only once the window is on the screen.
    ASSERT_TRUE(waitUntil([&] {
      tell(u"scene texts 1"_s);
      return nativeCount_ > 0;
    }));
  }
  void stop() {
    if (!probe_)
      return;
    probe_->closeWriteChannel();
    probe_->waitForFinished();
    probe_.reset();
  }

  // Gives a command and waits until it is done; the words after "done" and the count.
  QStringList tell(const QString& command) {
    probe_->write(command.toUtf8() + '\n');
    EXPECT_TRUE(waitUntil([&] { return probe_->canReadLine(); })) << qPrintable(command);
    const QStringList words = QString::fromUtf8(probe_->readLine()).simplified().split(u' ');
    EXPECT_EQ(words.value(0), u"done"_s);
    nativeCount_ = words.value(1).toInt();
    return words.mid(2);
  }
  // The same, and whether a frame was shown natively by it.
  bool tellNatively(const QString& command) {
    const int before = nativeCount_;
    tell(command);
    return nativeCount_ > before;
  }

  QRect area(int top) const {
    return QRect(0, static_cast<int>(std::lround(top * scale_)),
                 static_cast<int>(std::lround(size_.width() * scale_)),
                 static_cast<int>(std::lround(size_.height() * scale_)));
  }
  QImage upper() const { return server_->screenshot().copy(area(0)); }
  QImage lower() const { return server_->screenshot().copy(area(WindowDistance)); }
  // Whether both windows come to show the same, with signs, within `most` levels of a channel.
  bool bothShowTheSame(int most = 0) {
    return waitUntil([&] {
      const QImage painted = upper();
      return ink(painted) > 100 && difference(painted, lower()) <= most;
    });
  }

  QTemporaryDir folder_;
  std::optional<XServer> server_;
  std::optional<QProcess> probe_;
  QSize size_;
  double scale_ = 1;
  int nativeCount_ = 0;
};
} // namespace

TEST_F(BothWays, ShowTheSamePixels) {
  start(QSize(600, 24));
  for (const QString& scene : {u"texts"_s, u"dark"_s, u"shaded"_s, u"vertical"_s})
    for (const double time : {1.0, 2.0, 5.3, 9.0, 14.7}) {
      ASSERT_TRUE(tellNatively(u"scene %1 %2"_s.arg(scene).arg(time)));
      EXPECT_TRUE(bothShowTheSame()) << qPrintable(scene) << " at " << time;
    }
}

TEST_F(BothWays, LayPicturesOverEachOtherAlikeButForRounding) {
  start(QSize(600, 24));
  for (const QString& scene : {u"fading"_s, u"touching"_s, u"ends"_s, u"verticalends"_s})
    for (const double time : {1.0, 1.3, 2.0, 5.3, 9.7}) {
      ASSERT_TRUE(tellNatively(u"scene %1 %2"_s.arg(scene).arg(time)));
      EXPECT_TRUE(bothShowTheSame(1)) << qPrintable(scene) << " at " << time;
    }
}

TEST_F(BothWays, ShowTheSameAfterAnotherWindowStoodAboveThem) {
  start(QSize(600, 24));
  // What the window keeps of itself is of before.
  ASSERT_TRUE(tellNatively(u"scene texts 4"_s));
  ASSERT_TRUE(tellNatively(u"scene dark 6"_s));
  const QImage alone = lower();
  tell(u"cover"_s);
  ASSERT_TRUE(waitUntil([&] { return lower() != alone; }));
  tell(u"uncover"_s);
  EXPECT_TRUE(waitUntil([&] { return lower() == alone; }));
  EXPECT_TRUE(bothShowTheSame());
  ASSERT_TRUE(tellNatively(u"scene dark 7"_s));
  EXPECT_TRUE(bothShowTheSame());
}

TEST_F(BothWays, TakeTurnsWithPartsOfTheWindow) {
  start(QSize(600, 24));
  ASSERT_TRUE(tellNatively(u"scene texts 4"_s));
  tell(u"child"_s);
  EXPECT_TRUE(bothShowTheSame());
  EXPECT_FALSE(tellNatively(u"scene dark 5"_s)) << "it would cover the part";
  EXPECT_TRUE(bothShowTheSame());
  const QImage withPart = lower();
  tell(u"childless"_s);
  EXPECT_TRUE(waitUntil([&] { return lower() != withPart; }));
  EXPECT_TRUE(bothShowTheSame());
  EXPECT_TRUE(tellNatively(u"scene dark 6"_s));
  EXPECT_TRUE(bothShowTheSame());
}

TEST_F(BothWays, ShowTheSameInAWindowThatWasMadeAnew) {
  start(QSize(600, 24));
  ASSERT_TRUE(tellNatively(u"scene texts 4"_s));
  tell(u"again"_s);
  ASSERT_TRUE(waitUntil([&] { return tellNatively(u"scene dark 5"_s); }));
  EXPECT_TRUE(bothShowTheSame());
}

TEST_F(BothWays, ShowTheSameWhenTheConnectionIsLost) {
  start(QSize(600, 24));
  ASSERT_TRUE(tellNatively(u"scene texts 4"_s));
  tell(u"lose"_s);
  ASSERT_TRUE(waitUntil([&] { return !tellNatively(u"scene texts 5"_s); }));
  EXPECT_FALSE(tellNatively(u"scene dark 6"_s)) << "for good";
  EXPECT_TRUE(bothShowTheSame());
}

TEST_F(BothWays, AreSharpAtEveryScale) {
  for (const double scale : {1.0, 1.25, 1.5, 2.0})
    // Sides that are not whole numbers of pixels, too.
    for (const QSize& size : {QSize(600, 24), QSize(501, 25)}) {
      start(size, scale);
      const QString file = folder_.filePath(u"reference.png"_s);
      ASSERT_TRUE(tellNatively(u"scene texts 2"_s));
      EXPECT_TRUE(bothShowTheSame()) << scale << ", " << size.height();
      tell(u"reference "_s + file);
      // Up to where the next sign begins.
      const QImage reference(file);
      ASSERT_EQ(reference.size(), area(0).size());
      const QRect first(0, 0, reference.width(), reference.height());
      EXPECT_EQ(difference(reference.copy(first), lower().copy(first)), 0)
          << scale << ", " << size.height();
    }
}

TEST_F(BothWays, KeepFewPicturesInTheServer) {
  start(QSize(600, 24));
  for (int i = 0; i < 50; ++i) {
    ASSERT_TRUE(tellNatively(u"scene texts %1"_s.arg(1 + 0.7 * i)));
    const QStringList pixmaps = tell(u"pixmaps"_s);
    ASSERT_GT(pixmaps.value(0).toInt(), 0);
    ASSERT_LT(pixmaps.value(0).toInt(), 30);
  }
}
