// What the sign tests share: a display with settable answers, a font manager that records and
// fits as told, and archive round trips.
#pragma once

#include "zqticker/platform/archiving/KeyedArchiver.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"
#include "zqticker/platform/archiving/SequentialArchiver.h"
#include "zqticker/platform/archiving/SequentialUnarchiver.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/FontManager.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/platform/text/text_attributes.h"
#include "zqticker/signs/ZQTickerSign.h"

#include <gtest/gtest.h>

#include <QtGui/QImage>

namespace zq::testing {

class TestDisplay : public ZQTickerDisplayProtocol {
 public:
  QSizeF size() const override { return theSize; }
  int scrollDirection() const override { return theDirection; }
  qreal textOffset() const override { return theTextOffset; }
  platform::Ref<platform::Font> defaultFont() const override { return theFont; }
  platform::Ref<platform::Color> defaultTextColor() const override { return theColor; }
  bool shouldAutoscale() const override { return autoscales; }

  QSizeF theSize{400, 20};
  int theDirection = 1;
  qreal theTextOffset = 0;
  platform::Ref<platform::Font> theFont = platform::Font::fontWithName("DejaVu Sans", 12);
  platform::Ref<platform::Color> theColor = platform::Color::deviceRGB(0, 0, 0);
  bool autoscales = false;
};

// Puts itself in force for its lifetime. Fits every font to `fittedSize`.
class FixedFitFontManager : public platform::FontManager {
 public:
  explicit FixedFitFontManager(double size)
      : fittedSize(size), before_(setSharedFontManager(this)) {}
  ~FixedFitFontManager() override { setSharedFontManager(before_); }

  platform::Ref<platform::Font> convertFontToFitHeight(const platform::Ref<platform::Font>& font,
                                                       double height, double* offset) override {
    askedHeights.append(height);
    if (offset)
      *offset = 0;
    return platform::Font::fontWithName(font->fontName(), fittedSize);
  }

  double fittedSize;
  QList<double> askedHeights;

 private:
  platform::FontManager* before_;
};

// A picture of one colour whose pixels are points.
inline platform::Ref<platform::Image> solidImage(int width, int height, QRgb color = 0xffff0000) {
  QImage pixels(width, height, QImage::Format_ARGB32_Premultiplied);
  pixels.fill(color);
  return platform::Image::fromQImage(pixels);
}

// `sign` written to a keyed archive and read back.
template <class Sign>
platform::Ref<Sign> archived(const platform::Ref<Sign>& sign) {
  const QByteArray data = platform::KeyedArchiver::archivedDataWithRootObject(platform::any(sign));
  return platform::objectOf<Sign>(platform::KeyedUnarchiver::unarchiveObjectWithData(data));
}

// Expects that `action` raises the assertion `message`.
template <class Action>
void expectAssertion(Action action, const QString& message) {
  try {
    action();
    ADD_FAILURE() << "no assertion failed";
  } catch (const platform::InternalInconsistencyException& exception) {
    EXPECT_EQ(exception.message().toStdString(), message.toStdString());
    EXPECT_FALSE(exception.file().isEmpty());
    EXPECT_GT(exception.line(), 0);
  }
}

} // namespace zq::testing
