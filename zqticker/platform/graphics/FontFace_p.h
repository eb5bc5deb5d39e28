// What a font name stands for on this desktop.
#pragma once

#include <QtCore/QString>
#include <QtGui/QFont>

#include <memory>

namespace zq::platform {

class Font;

// The font engine follows the screen's DPI and rounds sizes to whole pixels, so that metrics at
// 12.6 points would be those of 13. A face is therefore laid out at one fixed size without hinting
// and drawn through a scaled painter; all figures here are fractions of the em.
class FontFace {
 public:
  // Pixels of the em at which everything is laid out.
  static constexpr int ReferenceSize = 256;

  // The face of `font`; kept for the life of the process, one for each name.
  static const FontFace& of(const Font& font);
  static std::shared_ptr<const FontFace> named(const QString& name);
  // The desktop's face of colour pictures, or null where it has none.
  static std::shared_ptr<const FontFace> emoji();
  // Whether the desktop has a font of that name itself.
  static bool isInstalled(const QString& name);
  // Raises InternalInconsistencyException without a GUI application, where fonts cannot be used.
  static void requireApplication();

  // The font at ReferenceSize.
  const QFont& layoutFont() const { return layoutFont_; }
  const QString& family() const { return family_; }

  double ascent() const { return ascent_; }
  // Positive below the baseline.
  double descent() const { return descent_; }
  double leading() const { return leading_; }
  double xHeight() const { return xHeight_; }
  double capHeight() const { return capHeight_; }
  double lineHeight() const { return ascent_ + descent_ + leading_; }

 private:
  explicit FontFace(const QString& name);

  QFont layoutFont_;
  QString family_;
  double ascent_ = 0;
  double descent_ = 0;
  double leading_ = 0;
  double xHeight_ = 0;
  double capHeight_ = 0;
};

} // namespace zq::platform
