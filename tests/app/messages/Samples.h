// Messages, pictures and archives for tests.
#pragma once

#include "app/intake/DisplayMessage.h"
#include "app/intake/sign_archives.h"
#include "zqticker/platform/archiving/KeyedArchiver.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/signs/ZQComboTickerSign.h"
#include "zqticker/signs/ZQTextTickerSign.h"

#include <QtCore/QBuffer>
#include <QtGui/QColor>
#include <QtGui/QImage>

#include <gtest/gtest.h>

namespace zq::app::testing {

inline QByteArray encoded(const QImage& image, const char* format) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  EXPECT_TRUE(image.save(&buffer, format)) << format;
  return bytes;
}

inline QImage solid(int width, int height) {
  QImage image(width, height, QImage::Format_RGB32);
  image.fill(QColor(200, 40, 20));
  return image;
}

inline QByteArray png(int width = 16, int height = 12) {
  return encoded(solid(width, height), "png");
}

inline QByteArray tiff(int width = 16, int height = 12) {
  return *platform::Image::fromQImage(solid(width, height))->TIFFRepresentation();
}

inline MessageStyle style() {
  return {platform::Font::fontWithName(QStringLiteral("DejaVu Sans"), 14),
          platform::Color::calibratedRGB(0, 0, 1, 1)};
}

inline QByteArray archived(const platform::Any& root) {
  return platform::KeyedArchiver::archivedDataWithRootObject(root);
}

template <class T>
QByteArray archived(const platform::Ref<T>& root) {
  return archived(platform::any(root));
}

// The message of the error that `act` raises; empty where it raises none.
template <class Error, class Act>
QString errorOf(Act act) {
  try {
    act();
  } catch (const Error& error) {
    return error.message();
  }
  return QString();
}

} // namespace zq::app::testing
