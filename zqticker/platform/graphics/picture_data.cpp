#include "zqticker/platform/graphics/picture_data_p.h"

#include "zqticker/platform/graphics/ImageRepresentation.h"

#include <QtCore/QBuffer>
#include <QtCore/QtEndian>
#include <QtGui/QImageReader>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {

// What Qt's readers may be asked for. Formats that are programs of their own (SVG, PDF) stay out.
constexpr QLatin1StringView formats[] = {
    "png"_L1,  "jpeg"_L1, "jpg"_L1, "gif"_L1, "bmp"_L1, "ico"_L1,
    "webp"_L1, "pbm"_L1,  "pgm"_L1, "ppm"_L1, "xbm"_L1, "xpm"_L1,
};

// Below Qt's own limit of 128 MiB for one image, which it reports in the log.
constexpr qint64 maximumPixels = (qint64(128) << 20) / 4 - 1;

bool isTiff(const QByteArray& data) {
  return data.startsWith(QByteArrayView("II*\0", 4)) ||
         data.startsWith(QByteArrayView("MM\0*", 4)) ||
         data.startsWith(QByteArrayView("II+\0", 4)) || data.startsWith(QByteArrayView("MM\0+", 4));
}

// Whether the chunks of PNG data follow each other up to the last one. libpng writes about a file
// that ends too early to standard error, whoever asks.
bool isWholePng(QByteArrayView data) {
  constexpr qsizetype signatureLength = 8;
  // Length and name before the contents, a checksum after them.
  constexpr qsizetype headLength = 8;
  constexpr qsizetype tailLength = 4;
  for (qsizetype at = signatureLength; data.size() - at >= headLength + tailLength;) {
    const qint64 length = qFromBigEndian<quint32>(data.data() + at);
    if (length > data.size() - at - headLength - tailLength)
      return false;
    if (data.sliced(at + 4, 4) == QByteArrayView("IEND"))
      return true;
    at += headLength + length + tailLength;
  }
  return false;
}

// Pixels a point. Qt gives the screen's resolution to a file that states none, so that only the
// one of a picture made for two pixels a point (144 dots an inch) means anything.
double pixelsPerPoint(const QImage& image) {
  constexpr double metresPerInch = 0.0254;
  const double dotsPerInch = image.dotsPerMeterX() * metresPerInch;
  return std::abs(dotsPerInch - 144) < 0.5 ? 2 : 1;
}

} // namespace

Image::Representations representationsFromData(const QByteArray& data) {
  if (isTiff(data))
    return representationsFromTiff(data);
  QBuffer buffer;
  buffer.setData(data);
  buffer.open(QIODevice::ReadOnly);
  QImageReader reader(&buffer);
  reader.setAutoTransform(true);
  reader.setDecideFormatFromContent(true);
  const QByteArray format = reader.format();
  if (std::none_of(std::begin(formats), std::end(formats),
                   [&](QLatin1StringView known) { return known == QLatin1StringView(format); }))
    return {};
  if (format == "png" && !isWholePng(data))
    return {};
  const QSize pixels = reader.size();
  if (pixels.isValid() && qint64(pixels.width()) * pixels.height() > maximumPixels)
    return {};
  const QImage image = reader.read();
  if (image.isNull())
    return {};
  return {ImageRepresentation::make(image, QSizeF(image.size()) / pixelsPerPoint(image))};
}

} // namespace zq::platform
