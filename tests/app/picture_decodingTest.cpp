#include "app/services/picture_decoding.h"

#include <QtCore/QBuffer>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using zq::app::decodePicture;

namespace {
constexpr QSize Room(200, 50);

QByteArray encoded(const QImage& image, const char* format) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  EXPECT_TRUE(image.save(&buffer, format)) << format;
  return bytes;
}

QByteArray solid(int width, int height, const char* format = "png") {
  QImage image(width, height, QImage::Format_RGB32);
  image.fill(QColor(200, 40, 20));
  return encoded(image, format);
}
} // namespace

TEST(PictureDecoding, KeepsWhatFits) {
  for (const char* format : {"png", "jpeg", "bmp", "ico", "webp"}) {
    const QImage image = decodePicture(solid(40, 30, format), Room);
    EXPECT_EQ(image.size(), QSize(40, 30)) << format;
    EXPECT_NEAR(qRed(image.pixel(20, 15)), 200, 3) << format;
  }
}

TEST(PictureDecoding, ScalesDownWhatDoesNotFit) {
  const struct {
    QSize size;
    QSize expected;
  } cases[] = {
      {QSize(100, 100), QSize(50, 50)},   {QSize(800, 100), QSize(200, 25)},
      {QSize(1600, 800), QSize(100, 50)}, {QSize(4000, 10), QSize(200, 1)},
      {QSize(10, 4000), QSize(1, 50)},    {QSize(201, 50), QSize(200, 50)},
  };
  for (const auto& example : cases)
    for (const char* format : {"png", "jpeg"}) {
      const QImage image =
          decodePicture(solid(example.size.width(), example.size.height(), format), Room);
      EXPECT_LE(image.width(), Room.width());
      EXPECT_LE(image.height(), Room.height());
      EXPECT_NEAR(image.width(), example.expected.width(), 1) << example.size.width();
      EXPECT_NEAR(image.height(), example.expected.height(), 1) << example.size.width();
      ASSERT_FALSE(image.isNull());
      EXPECT_NEAR(qRed(image.pixel(0, 0)), 200, 3);
    }
}

TEST(PictureDecoding, KeepsTransparency) {
  QImage image(100, 100, QImage::Format_ARGB32);
  image.fill(Qt::transparent);
  EXPECT_EQ(decodePicture(encoded(image, "png"), Room).pixel(10, 10), 0u);
}

TEST(PictureDecoding, RefusesWhatIsNoPicture) {
  const QByteArray whole = solid(100, 100);
  for (const QByteArray& data :
       {QByteArray(), QByteArray("text"), QByteArray("<html><body>404</body></html>"),
        QByteArray("<svg xmlns='http://www.w3.org/2000/svg' width='20' height='20'/>"),
        whole.left(20), whole.left(whole.size() / 2)})
    EXPECT_TRUE(decodePicture(data, Room).isNull()) << data.left(20).constData();
}

TEST(PictureDecoding, RefusesCountingMarks) {
  EXPECT_TRUE(decodePicture(solid(1, 1), Room).isNull());
  EXPECT_TRUE(decodePicture(solid(100, 3), Room).isNull());
  EXPECT_FALSE(decodePicture(solid(4, 4), Room).isNull());
}

TEST(PictureDecoding, RefusesMorePixelsThanItDecodes) {
  // One bit a pixel: a small file.
  QImage image(5000, 4000, QImage::Format_Mono);
  image.fill(0);
  const QByteArray large = encoded(image, "png");
  EXPECT_LT(large.size(), 100'000);
  EXPECT_TRUE(decodePicture(large, Room).isNull());
  EXPECT_FALSE(decodePicture(encoded(image.copy(0, 0, 4000, 4000), "png"), Room).isNull());
}
