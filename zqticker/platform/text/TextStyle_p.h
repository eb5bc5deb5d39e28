// Attributes as one line of text needs them.
#pragma once

#include "zqticker/platform/text/text_attributes.h"

#include <QtGui/QFont>
#include <QtGui/QTextFormat>

#include <memory>

namespace zq::platform {

class FontFace;
class Image;

// How a run of text looks.
struct TextStyle {
  std::shared_ptr<const FontFace> face;
  // Whether the characters U+FFFC of the run stand for a picture, and which: a copy, null for one
  // that takes no place.
  bool isPicture = false;
  std::shared_ptr<const Image> picture;
  // Whether the run shows in the desktop's font for colour pictures, where there is one.
  bool isEmoji = false;
  double pointSize = 12;
  // Points added after each character, and by which the baseline is raised.
  double kern = 0;
  double baselineOffset = 0;
  // Colours and lines, which do not move anything.
  QTextCharFormat format;

  // Raises InternalInconsistencyException without a GUI application.
  static TextStyle from(const Attributes& attributes);

  // Points of a pixel of the layout.
  double scale() const;
  // The kern, within limits that bear arithmetic.
  double kernInEms() const;
  // The font of the layout, with the kern.
  QFont layoutFont() const;
  // Whether text of both styles can be laid out together; never with pictures.
  bool measuresLike(const TextStyle& other) const;
};

} // namespace zq::platform
