// Fonts by name and size.
#pragma once

#include "zqticker/platform/objects/Object.h"

#include <memory>
#include <optional>

namespace zq::platform {

class FontFace;
enum class ControlSize : int;

// An immutable font: a name and a size in points, where one point is one unit of user space.
//
// The name is kept as it was given. Where the desktop has no such font, another is drawn in its
// place; the name, and with it the archive, stays the same. All metrics are points and linear in
// the size, fractions included: at 24 points each is twice that at 12.
//
// Metrics need a GUI application (QGuiApplication); without one they raise
// InternalInconsistencyException. Name and size do not.
//
// Thread: name and size any, metrics and drawing the main thread.
class ZQTICKER_EXPORT Font : public Object {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSFont")

 public:
  // Helvetica at 12 points; what a decoder starts from, and the font of text that states none.
  Font();
  ~Font() override;

  // The font called `name`: a family ("DejaVu Sans"), a family and a style ("DejaVu Sans Bold"),
  // or the compact form ("Helvetica-BoldOblique", "DejaVuSans"). No name gives null. A size that
  // is not above 0 means 12.
  static Ref<Font> fontWithName(const std::optional<QString>& name, double size);
  // The desktop's general font; size 0 means its regular size, 13. Raises without a GUI
  // application.
  static Ref<Font> systemFontOfSize(double size);
  // Its bold style, in the same sizes.
  static Ref<Font> boldSystemFontOfSize(double size);
  // The size of the system font in controls of one size: 13 regular, 11 small, 9 mini, and 13 for
  // others.
  static double systemFontSizeForControlSize(ControlSize controlSize);
  // Whether the desktop has the font called `name` itself, so that nothing stands in for it.
  static bool isNameKnown(const QString& name);

  const QString& fontName() const { return name_; }
  double pointSize() const { return pointSize_; }

  // The family and the style that are drawn; the stand-in's where the desktop lacks the font.
  QString drawnFamily() const;

  // Top of the tall letters above the baseline.
  double ascender() const;
  // Bottom of the hanging letters relative to the baseline: negative below it.
  double descender() const;
  // The gap between lines that the font asks for; stands below the descender.
  double leading() const;
  // The height of one line of text: ascender − descender + leading.
  double lineHeight() const;
  // Height of the lower-case x and of the capitals.
  double xHeight() const;
  double capHeight() const;

  // "DejaVuSans 12".
  QString description() const override;
  // Whether `other` is a font of the same name and size.
  bool isEqual(const Object& other) const override;
  Ref<Object> copy() override;

  void encodeWithCoder(Coder& coder) override;
  Ref<Object> initWithCoder(Coder& coder) override;

 private:
  friend class FontFace;
  const FontFace& face() const;

  QString name_;
  double pointSize_;
  mutable std::shared_ptr<const FontFace> face_;
};

} // namespace zq::platform
