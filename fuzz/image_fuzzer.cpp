// Picture data of any kind: decode, look at everything, draw, write as TIFF, decode again, equal.
#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/graphics/ImageRepresentation.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QPainter>

#include <cstdlib>

using namespace zq::platform;

namespace {

// Files larger than this add nothing but time.
constexpr std::size_t maximumSize = 1 << 18;
// Pictures of more pixels are only drawn in part: what is looked for is not in their mass.
constexpr qint64 maximumArea = 1 << 18;

void startApplication() {
  static int argc = 1;
  static char name[] = "image_fuzzer";
  static char* argv[] = {name, nullptr};
  qputenv("QT_QPA_PLATFORM", "offscreen");
  // Libraries below write about damaged files; only crashes are of interest here.
  qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
  static const QGuiApplication application(argc, argv);
}

void require(bool condition) {
  if (!condition)
    std::abort();
}

qint64 areaOf(const Image& image) {
  qint64 area = 0;
  for (const auto& representation : image.representations())
    area += qint64(representation->pixelSize().width()) * representation->pixelSize().height();
  return area;
}

void draw(const Image& image) {
  QImage target(64, 48, QImage::Format_ARGB32_Premultiplied);
  target.fill(Qt::white);
  QPainter painter(&target);
  GraphicsContext context(&painter, QSizeF(64, 48));
  image.dissolveToPoint(QPointF(3.5, 2), 0.75);
  image.drawInRect(QRectF(0, 0, 40, 40));
  image.drawInRect(QRectF(10, 10, 30, 8), QRectF(QPointF(), image.size() / 2),
                   CompositingOperation::SourceAtop, 0.5);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > maximumSize)
    return 0;
  startApplication();
  const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
  const Ref<Image> image = Image::initWithData(bytes);
  if (!image)
    return 0;
  require(!image->representations().empty() && !image->size().isEmpty());
  for (const auto& representation : image->representations())
    require(qint64(representation->pixelSize().width()) * representation->pixelSize().height() <=
            Image::MaximumPixels);
  if (areaOf(*image) > maximumArea)
    return 0;
  draw(*image);
  const auto tiff = image->TIFFRepresentation();
  require(tiff.has_value());
  const Ref<Image> again = Image::initWithData(*tiff);
  require(again != nullptr);
  require(again->representations().size() == image->representations().size());
  for (std::size_t i = 0; i < again->representations().size(); ++i) {
    const ImageRepresentation& before = *image->representations()[i];
    const ImageRepresentation& after = *again->representations()[i];
    require(before.pixelSize() == after.pixelSize());
    const auto pixels = [](const ImageRepresentation& r) {
      return r.bitmap().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    };
    require(pixels(before) == pixels(after));
  }
  require(again->TIFFRepresentation() == tiff);
  return 0;
}
