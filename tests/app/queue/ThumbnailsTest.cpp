#include "app/queue/Thumbnails.h"

#include "tests/app/queue/FakeQueue.h"

#include <gtest/gtest.h>

using namespace zq::app;
using namespace zq::app::testing;
using namespace zq::platform;

namespace {
constexpr QSizeF Room(72, 30);
} // namespace

TEST(Thumbnails, FitTheRoomAndAreNeverLargerThanThePicture) {
  Thumbnails thumbnails;
  const QImage wide = thumbnails.thumbnail(plainPicture({720, 100}, Qt::red), Room, 1);
  EXPECT_EQ(wide.size(), QSize(72, 10));
  EXPECT_EQ(wide.pixelColor(36, 5), QColor(Qt::red));
  EXPECT_EQ(thumbnails.thumbnail(plainPicture({300, 300}, Qt::red), Room, 2).size(), QSize(60, 60));
  EXPECT_EQ(thumbnails.thumbnail(plainPicture({7, 9}, Qt::red), Room, 1).size(), QSize(7, 9));
  // A line stays a line.
  EXPECT_EQ(thumbnails.thumbnail(plainPicture({10'000, 2}, Qt::red), Room, 1).size(), QSize(72, 1));
}

TEST(Thumbnails, AreDrawnOnceUntilSomethingIsOther) {
  Thumbnails thumbnails;
  const auto image = plainPicture({100, 100}, Qt::red);
  for (int i = 0; i < 3; ++i)
    thumbnails.thumbnail(image, Room, 1);
  EXPECT_EQ(thumbnails.drawnCount(), 1);
  thumbnails.thumbnail(image, Room, 2);
  EXPECT_EQ(thumbnails.drawnCount(), 2);
  image->setSize(QSizeF(50, 10));
  EXPECT_EQ(thumbnails.thumbnail(image, Room, 2).deviceIndependentSize(), QSizeF(50, 10));
  EXPECT_EQ(thumbnails.drawnCount(), 3);
}

TEST(Thumbnails, TakeBoundedMemory) {
  Thumbnails thumbnails;
  for (int i = 0; i < 2000; ++i)
    thumbnails.thumbnail(plainPicture({72, 30}, Qt::red), Room, 1);
  EXPECT_EQ(thumbnails.drawnCount(), 2000);
  EXPECT_LE(thumbnails.byteCount(), Thumbnails::MostBytes);
  EXPECT_GT(thumbnails.byteCount(), Thumbnails::MostBytes / 2);
}

TEST(Thumbnails, AreNullForWhatCannotBeDrawn) {
  Thumbnails thumbnails;
  EXPECT_TRUE(thumbnails.thumbnail(nullptr, Room, 1).isNull());
  EXPECT_TRUE(thumbnails.thumbnail(Image::make(QSizeF(0, 5)), Room, 1).isNull());
}
