#include "app/intake/message_pictures.h"

#include "app/intake/SilencedStandardError.h"
#include "app/services/picture_decoding.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/graphics/ImageRepresentation.h"

#include <QtCore/QtEndian>

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

namespace zq::app {

using namespace platform;

namespace {
constexpr qint64 Uncountable = std::numeric_limits<qint64>::max() / 4;
// As many pages as are decoded.
constexpr int MostPages = 64;

qint64 areaOf(quint64 width, quint64 height) {
  if (width == 0 || height == 0)
    return 0;
  return width > quint64(Uncountable) / height ? Uncountable : qint64(width * height);
}

bool isPng(const QByteArray& data) {
  return data.startsWith("\x89PNG\r\n\x1a\n");
}

std::optional<qint64> pngArea(const QByteArray& data) {
  // Signature, length and name of the first chunk, then both sides.
  constexpr qsizetype WidthAt = 16;
  constexpr qsizetype HeightAt = 20;
  if (data.size() < HeightAt + 4 || data.sliced(12, 4) != "IHDR")
    return std::nullopt;
  return areaOf(qFromBigEndian<quint32>(data.constData() + WidthAt),
                qFromBigEndian<quint32>(data.constData() + HeightAt));
}

// The headers of a TIFF file, classic or big.
class TiffHeaders {
 public:
  explicit TiffHeaders(const QByteArray& data) : data_(data) {}

  static bool isTiff(const QByteArray& data) {
    return data.startsWith(QByteArrayView("II*\0", 4)) ||
           data.startsWith(QByteArrayView("MM\0*", 4)) ||
           data.startsWith(QByteArrayView("II+\0", 4)) ||
           data.startsWith(QByteArrayView("MM\0+", 4));
  }

  std::optional<qint64> area() {
    isBigEndian_ = data_.at(0) == 'M';
    isBig_ = data_.at(isBigEndian_ ? 3 : 2) == '+';
    qint64 total = 0;
    std::optional<quint64> page = isBig_ ? number(8, 8) : number(4, 4);
    for (int i = 0; i < MostPages && page && *page != 0; ++i) {
      const std::optional<qint64> area = pageArea(*page);
      if (!area)
        return std::nullopt;
      total = std::min(total + *area, Uncountable);
      page = next_;
    }
    // Not even one page.
    return total > 0 ? std::optional(total) : std::nullopt;
  }

 private:
  // An unsigned number of `width` bytes.
  std::optional<quint64> number(quint64 at, int width) const {
    if (at > quint64(data_.size()) || quint64(data_.size()) - at < quint64(width))
      return std::nullopt;
    quint64 value = 0;
    for (int i = 0; i < width; ++i)
      value = value << 8 | quint8(data_.at(qsizetype(at) + (isBigEndian_ ? i : width - 1 - i)));
    return value;
  }

  static int widthOfType(quint64 type) {
    constexpr int Widths[] = {0, 1, 0, 2, 4, 0, 1, 0, 2, 4, 0, 0, 0, 4, 0, 0, 8, 8, 8};
    return type < std::size(Widths) ? Widths[type] : 0;
  }

  // The larger of the page and one of its tiles, which is decoded as a whole. Of a field that
  // stands twice the larger one counts.
  std::optional<qint64> pageArea(quint64 at) {
    const int countWidth = isBig_ ? 8 : 2;
    const int entryWidth = isBig_ ? 20 : 12;
    const std::optional<quint64> count = number(at, countWidth);
    // What readers of such files allow as well.
    constexpr quint64 MostFields = 0xFFFF;
    if (!count || *count > MostFields)
      return std::nullopt;
    quint64 sides[4] = {}; // width and height of the page, then of a tile
    for (quint64 i = 0; i < *count; ++i) {
      const quint64 entry = at + quint64(countWidth) + i * quint64(entryWidth);
      const std::optional<quint64> tag = number(entry, 2);
      const std::optional<quint64> type = number(entry + 2, 2);
      if (!tag || !type)
        return std::nullopt;
      const int index = indexOf(*tag);
      if (index < 0)
        continue;
      const std::optional<quint64> value =
          number(entry + (isBig_ ? 12 : 8), std::max(widthOfType(*type), 1));
      if (!value || widthOfType(*type) == 0)
        return std::nullopt;
      sides[index] = std::max(sides[index], *value);
    }
    next_ = number(at + quint64(countWidth) + *count * quint64(entryWidth), isBig_ ? 8 : 4);
    return std::max(areaOf(sides[0], sides[1]), areaOf(sides[2], sides[3]));
  }

  static int indexOf(quint64 tag) {
    constexpr quint64 Tags[] = {256, 257, 322, 323};
    const auto* found = std::find(std::begin(Tags), std::end(Tags), tag);
    return found == std::end(Tags) ? -1 : int(found - std::begin(Tags));
  }

  const QByteArray& data_;
  bool isBigEndian_ = false;
  bool isBig_ = false;
  std::optional<quint64> next_;
};
} // namespace

std::optional<qint64> pixelCountOf(const QByteArray& data) {
  if (isPng(data))
    return pngArea(data);
  return TiffHeaders::isTiff(data) ? TiffHeaders(data).area() : std::nullopt;
}

std::optional<qint64> admitMessagePicture(const QByteArray& data, QString& complaint,
                                          const WorkGate& gate) {
  if (data.size() > LargestMessagePicture) {
    complaint = u"larger than %1 MiB"_s.arg(LargestMessagePicture >> 20);
    return std::nullopt;
  }
  const std::optional<qint64> pixels = pixelCountOf(data);
  if (!pixels) {
    complaint = u"must be TIFF or PNG data"_s;
    return std::nullopt;
  }
  if (*pixels > MostDecodedPixels) {
    complaint = u"more than %1 million pixels"_s.arg(MostDecodedPixels / 1'000'000);
    return std::nullopt;
  }
  admitWork(gate, *pixels);
  return pixels;
}

Ref<Image> decodeAdmittedPicture(const QByteArray& data) {
  const SilencedStandardError silence;
  const Ref<Image> image = Image::initWithData(data);
  return image && !image->size().isEmpty() && isWhole(*image) ? image : nullptr;
}

Ref<Image> decodeMessagePicture(const QByteArray& data, QString& complaint, const WorkGate& gate) {
  if (!admitMessagePicture(data, complaint, gate))
    return nullptr;
  const Ref<Image> image = decodeAdmittedPicture(data);
  if (!image)
    complaint = damagedPicture();
  return image;
}

QString damagedPicture() {
  return u"the picture cannot be decoded"_s;
}

qint64 pixelCountOf(const Ref<Image>& image) {
  qint64 pixels = 0;
  if (image)
    for (const auto& representation : image->representations()) {
      const QSize size = representation->pixelSize();
      pixels += qint64(size.width()) * size.height();
    }
  return pixels;
}

bool isWhole(const Image& image) {
  const SilencedStandardError silence;
  const Image::Representations& found = image.representations();
  return std::all_of(found.begin(), found.end(), [](const auto& representation) {
    return !representation->isBitmap() || !representation->bitmap().isNull();
  });
}

} // namespace zq::app
