// Conversions between fonts.
#pragma once

#include "zqticker/platform/graphics/Font.h"

namespace zq::platform {

// Makes fonts out of fonts. A host or a test may replace the shared one.
//
// Thread: main.
class ZQTICKER_EXPORT FontManager {
 public:
  virtual ~FontManager();

  // The same font at `size` points. Null gives null.
  virtual Ref<Font> convertFontToSize(const Ref<Font>& font, double size);

  // The same font at the largest size, in steps of 1/64 point, whose line height does not exceed
  // `height` points: the line height fits, and 1/64 point more would not. The smallest size is
  // 1/64 point, also for a height that is not above 0, so that a ratio of sizes always has a
  // finite, positive value. `offsetFromBottom`, where given, receives the distance from the bottom
  // of the line to its baseline. Null gives null and an offset of 0.
  virtual Ref<Font> convertFontToFitHeight(const Ref<Font>& font, double height,
                                           double* offsetFromBottom = nullptr);

  // The manager in force.
  static FontManager& sharedFontManager();
  // Puts `manager` (not owned; null for the default) in force and returns the one before, null
  // where that was the default.
  static FontManager* setSharedFontManager(FontManager* manager);
};

} // namespace zq::platform
