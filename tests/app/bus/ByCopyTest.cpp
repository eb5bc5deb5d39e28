// Signs that other processes make and send.
#include "app/bus/bus_names.h"
#include "app/commands/StripOptions.h"
#include "app/commands/strip_setup.h"
#include "app/display/TickerDisplay.h"
#include "app/intake/MessageIntake.h"
#include "tests/app/DisplayFrames.h"
#include "tests/app/bus/BusTicker.h"
#include "zqticker/signs/ZQComboTickerSign.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;

namespace {
// Shows signs on a display whose frames the test looks at.
class DisplayReceiver : public FakeReceiver {
 public:
  explicit DisplayReceiver(TickerDisplay& display)
      : intake_({[&] { return MessageStyle::of(display); },
                 [&](const zq::platform::Ref<ZQTickerSign>& sign, const SignOrigin& origin,
                     MessageIntake::Order) {
                   isCombo = dynamic_cast<ZQComboTickerSign*>(sign.get()) != nullptr;
                   display.addSign(sign, 0, origin);
                   return sign->identifier().value_or(u"made"_s);
                 },
                 [] { return 0.0; }}) {}

  ArrivingSign displaySign(const QByteArray& archive, const QVariantMap& origin,
                           const BusSender& sender) override {
    return intake_.takeSign(archive, origin, sender.name);
  }

  bool isCombo = false;

 private:
  MessageIntake intake_;
};

QImage readPicture(const QString& file) {
  return QImage(file).convertToFormat(QImage::Format_RGB32);
}

// The value of an array of bytes, as gdbus reads it.
QString byteArrayText(const QByteArray& bytes) {
  QStringList numbers;
  for (const char byte : bytes)
    numbers.append(u"0x"_s + QString::number(static_cast<uchar>(byte), 16));
  return u"[byte "_s + numbers.join(u',') + u']';
}
} // namespace

TEST_F(BusTicker, ShowsASignOfAnotherProcessPixelForPixel) {
  if (!XServer::hasProgram(u"gdbus"_s))
    GTEST_SKIP() << "gdbus is not installed";
  QTemporaryDir folder;
  const QString archive = folder.filePath(u"combo.sign"_s);
  QImage image(30, 20, QImage::Format_RGB32);
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      image.setPixel(x, y, qRgb(8 * x, 12 * y, (x + y) % 2 ? 255 : 0));
  ASSERT_TRUE(image.save(folder.filePath(u"picture.png"_s)));
  const Outcome made =
      runZqticker({u"sign"_s, u"--image"_s, folder.filePath(u"picture.png"_s), u"--text"_s,
                   u"Grüße, Ångström"_s, u"--font"_s, u"DejaVu Sans 11"_s, u"--color"_s, u"navy"_s,
                   u"--identifier"_s, u"far"_s, u"--output"_s, archive});
  ASSERT_EQ(made.status, 0) << made.errors.toStdString();

  // The sender's frames, made in its process from its sign.
  const QStringList look{u"--sign"_s, archive, u"--size"_s, u"400x24"_s};
  constexpr int Frames = 3;
  const QString frames = folder.filePath(u"frames"_s);
  const Outcome rendered =
      runZqticker(QStringList{u"render"_s} + look +
                  QStringList{u"--start"_s, u"2"_s, u"--fps"_s, u"1"_s, u"--frames"_s,
                              QString::number(Frames), u"--output"_s, frames});
  ASSERT_EQ(rendered.status, 0) << rendered.errors.toStdString();

  // The receiver's, from what came over the bus.
  TickerDisplay display(0);
  const RenderOptions options =
      readRenderOptions(look + QStringList{u"--output"_s, u"unused.png"_s});
  setUpDisplay(display, options.strip, lookOf(options.strip, QSizeF(400, 24)), 0);
  DisplayReceiver receiver(display);
  service_->setReceiver(&receiver);
  QFile file(archive);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  const Outcome sent =
      runTool(u"gdbus"_s, {u"call"_s, u"--session"_s, u"--dest"_s, TickerBusName,
                           u"--object-path"_s, TickerObjectPath, u"--method"_s,
                           u"org.zqticker.Ticker1.DisplaySign"_s, byteArrayText(file.readAll())});
  service_->setReceiver(nullptr);
  ASSERT_EQ(sent.status, 0) << sent.errors.toStdString();
  EXPECT_EQ(sent.output, "('far',)\n");
  EXPECT_TRUE(receiver.isCombo);
  const QDir pictures(frames);
  const QStringList names = pictures.entryList(QDir::Files, QDir::Name);
  ASSERT_EQ(names.size(), Frames);
  for (int i = 0; i < Frames; ++i) {
    const QImage theirs = readPicture(pictures.absoluteFilePath(names.at(i)));
    const QImage ours = shown(display, 2 + i);
    ASSERT_EQ(ours.size(), QSize(400, 24));
    EXPECT_GT(inkAlong(ours, true).second - inkAlong(ours, true).first, 50) << "something is seen";
    EXPECT_EQ(ours, theirs) << "frame " << i;
  }
}
