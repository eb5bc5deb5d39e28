#include "zqticker/platform/archiving/KeyedArchiver.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/graphics/ImageRepresentation.h"
#include "zqticker/platform/objects/Exception.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace zq::testing {

class ImageRecord : public Object {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSImage")

 public:
  void encodeWithCoder(Coder& coder) override { write(coder); }
  std::function<void(Coder&)> write;
};

class BitmapRecord : public Object {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSBitmapImageRep")

 public:
  explicit BitmapRecord(Any contents) : data(std::move(contents)) {}
  void encodeWithCoder(Coder& coder) override { coder.encodeObject(data, "NSTIFFRepresentation"); }
  Any data;
};

} // namespace zq::testing

using zq::testing::BitmapRecord;

namespace {

Ref<Image> picture() {
  QImage bitmap(6, 4, QImage::Format_RGB32);
  bitmap.fill(Qt::red);
  bitmap.setPixelColor(1, 2, Qt::blue);
  return Image::fromQImage(bitmap);
}

Ref<Image> read(std::function<void(Coder&)> write) {
  const auto record = std::make_shared<zq::testing::ImageRecord>();
  record->write = std::move(write);
  return KeyedUnarchiver::unarchiveObjectOfClass<Image>(
      KeyedArchiver::archivedDataWithRootObject(record));
}

Any representationsWith(const Any& data) {
  return QVariantList{Any(QVariantList{0, any(std::make_shared<BitmapRecord>(data))})};
}

} // namespace

TEST(ImageArchive, KeepsPixelsAndSize) {
  const Ref<Image> image = picture();
  image->setSize(QSizeF(3, 2));
  const auto decoded = KeyedUnarchiver::unarchiveObjectOfClass<Image>(
      KeyedArchiver::archivedDataWithRootObject(image));
  EXPECT_EQ(decoded->size(), QSizeF(3, 2));
  ASSERT_EQ(decoded->representations().size(), 1U);
  EXPECT_EQ(decoded->representations()[0]->bitmap(), image->representations()[0]->bitmap());
}

TEST(ImageArchive, KeepsAnImageWithoutContent) {
  const auto decoded = KeyedUnarchiver::unarchiveObjectOfClass<Image>(
      KeyedArchiver::archivedDataWithRootObject(Image::make(QSizeF(8, 3))));
  EXPECT_EQ(decoded->size(), QSizeF(8, 3));
  EXPECT_TRUE(decoded->representations().empty());
}

TEST(ImageArchive, TakesTheSizeFromTheRepresentationWhereItStatesNone) {
  const QByteArray tiff = *picture()->TIFFRepresentation();
  const Ref<Image> image =
      read([&](Coder& coder) { coder.encodeObject(representationsWith(Any(tiff)), "NSReps"); });
  EXPECT_EQ(image->size(), QSizeF(6, 4));
  EXPECT_TRUE(image->isEqual(*picture()));
}

TEST(ImageArchive, LeavesOutWhatIsNoPicture) {
  for (const Any& data : {Any(), Any(QByteArray("no picture")), Any(QByteArray())}) {
    const Ref<Image> image = read([&](Coder& coder) {
      coder.encodeSize(QSizeF(5, 5), "NSSize");
      coder.encodeObject(representationsWith(data), "NSReps");
    });
    EXPECT_EQ(image->size(), QSizeF(5, 5));
    EXPECT_TRUE(image->representations().empty());
  }
}

TEST(ImageArchive, MalformedArchivesRaise) {
  EXPECT_THROW(read([](Coder& coder) { coder.encodeObject(Any(u"text"_s), "NSReps"); }),
               ArchiveException);
  EXPECT_THROW(
      read([](Coder& coder) { coder.encodeObject(representationsWith(u"text"_s), "NSReps"); }),
      ArchiveException);
}

TEST(ImageArchive, APatternColourKeepsItsImage) {
  const Ref<Color> color = Color::pattern(picture());
  const auto decoded = KeyedUnarchiver::unarchiveObjectOfClass<Color>(
      KeyedArchiver::archivedDataWithRootObject(color));
  EXPECT_TRUE(decoded->patternImage()->isEqual(*picture()));
}

#include "image_archivesTest.moc"
