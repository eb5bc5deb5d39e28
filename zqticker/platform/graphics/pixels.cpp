#include "zqticker/platform/graphics/pixels_p.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace zq::platform {

namespace {

// What one pixel of the result takes from a row or column of the source.
struct Taps {
  int first = 0;
  std::vector<float> weights;
};

std::vector<Taps> tapsOf(int sourceLength, int length, int from, int count) {
  const double step = double(sourceLength) / length;
  const double radius = std::max(1.0, step);
  std::vector<Taps> result(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    const double centre = (from + i + 0.5) * step;
    const int first = std::max(0, int(std::ceil(centre - radius - 0.5)));
    const int last = std::min(sourceLength - 1, int(std::floor(centre + radius - 0.5)));
    Taps& taps = result[std::size_t(i)];
    taps.first = first;
    double sum = 0;
    for (int s = first; s <= last; ++s) {
      const double weight = std::max(0.0, 1 - std::abs(s + 0.5 - centre) / radius);
      taps.weights.push_back(float(weight));
      sum += weight;
    }
    for (float& weight : taps.weights)
      weight = float(weight / sum);
  }
  return result;
}

// One row of four channels, not yet rounded.
using Row = std::vector<float>;

Row scaledRow(const QRgb* source, bool opaque, const std::vector<Taps>& columns) {
  Row row(columns.size() * 4);
  float* out = row.data();
  for (const Taps& taps : columns) {
    float sum[4] = {};
    const QRgb* pixel = source + taps.first;
    for (const float weight : taps.weights) {
      const QRgb value = opaque ? *pixel | 0xff000000 : *pixel;
      ++pixel;
      sum[0] += weight * float(qBlue(value));
      sum[1] += weight * float(qGreen(value));
      sum[2] += weight * float(qRed(value));
      sum[3] += weight * float(qAlpha(value));
    }
    out = std::copy(sum, sum + 4, out);
  }
  return row;
}

} // namespace

int wholePixels(double length) {
  constexpr double maximum = 1 << 30;
  return length > 0 ? int(std::min(length, maximum)) : 0;
}

// Whether no pixel of `image`, in Format_ARGB32_Premultiplied, lets anything through.
static bool isOpaque(const QImage& image) {
  for (int y = 0; y < image.height(); ++y) {
    const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
    if (std::any_of(row, row + image.width(), [](QRgb pixel) { return qAlpha(pixel) != 255; }))
      return false;
  }
  return true;
}

QImage inWorkingFormat(const QImage& image) {
  QImage result = image.convertToFormat(
      image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
  result.setDevicePixelRatio(1);
  if (result.hasAlphaChannel() && isOpaque(result))
    result.reinterpretAsFormat(QImage::Format_RGB32);
  return result;
}

QImage resampled(const QImage& source, QSize pixels, const QRect& part) {
  const bool opaque = source.format() == QImage::Format_RGB32;
  if (source.size() == pixels)
    return source.copy(part).convertToFormat(QImage::Format_ARGB32_Premultiplied);
  const auto columns = tapsOf(source.width(), pixels.width(), part.x(), part.width());
  const auto rows = tapsOf(source.height(), pixels.height(), part.y(), part.height());
  QImage result(part.size(), QImage::Format_ARGB32_Premultiplied);
  // Rows of the source, scaled to the result's width; those above the present one are dropped.
  std::vector<Row> scaled(std::size_t(source.height()));
  int dropped = 0;
  Row sums(columns.size() * 4);
  for (int y = 0; y < part.height(); ++y) {
    const Taps& taps = rows[std::size_t(y)];
    for (; dropped < taps.first; ++dropped)
      Row().swap(scaled[std::size_t(dropped)]);
    std::fill(sums.begin(), sums.end(), 0.0F);
    for (std::size_t i = 0; i < taps.weights.size(); ++i) {
      const int sourceY = taps.first + int(i);
      Row& row = scaled[std::size_t(sourceY)];
      if (row.empty())
        row = scaledRow(reinterpret_cast<const QRgb*>(source.constScanLine(sourceY)), opaque,
                        columns);
      for (std::size_t x = 0; x < sums.size(); ++x)
        sums[x] += taps.weights[i] * row[x];
    }
    auto* out = result.scanLine(y);
    for (const float sum : sums)
      *out++ = uchar(std::clamp(sum + 0.5F, 0.0F, 255.0F));
  }
  return result;
}

} // namespace zq::platform
