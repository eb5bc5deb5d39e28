// Shadows of what is drawn.
#pragma once

#include "zqticker/platform/objects/Object.h"

#include <QtCore/QSizeF>

namespace zq::platform {

class Color;

// How a shadow lies and looks. A new shadow has no offset, no blur and the default colour, black of
// alpha 1/3.
//
// Thread: any, one at a time.
class ZQTICKER_EXPORT Shadow : public Object {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSShadow")

 public:
  Shadow();
  Shadow(QSizeF offset, double blurRadius, Ref<Color> color);
  ~Shadow() override;

  // The way from what is drawn to its shadow, in points: width to the right, height upwards,
  // however the user space is turned.
  QSizeF shadowOffset() const { return offset_; }
  void setShadowOffset(QSizeF offset) { offset_ = offset; }

  // The radius of the blur in points; 0 is a sharp shadow. A negative radius, and what is no
  // number, counts as 0.
  double shadowBlurRadius() const { return blurRadius_; }
  void setShadowBlurRadius(double radius);

  // Null means that no shadow is drawn.
  const Ref<Color>& shadowColor() const { return color_; }
  void setShadowColor(Ref<Color> color) { color_ = std::move(color); }

  // The colour of a shadow that states none.
  static Ref<Color> defaultColor();

  // Makes the shadow, as it is now, that of the current context; without one nothing happens. See
  // GraphicsContext::setShadow.
  void set() const;

  // "Shadow {1, -2} blur 3 color CalibratedWhite 0 0.5".
  QString description() const override;
  // Whether `other` is a shadow of the same offset, blur and an equal colour.
  bool isEqual(const Object& other) const override;
  Ref<Object> copy() override;
  void encodeWithCoder(Coder& coder) override;
  Ref<Object> initWithCoder(Coder& coder) override;

 private:
  QSizeF offset_{0, 0};
  double blurRadius_ = 0;
  Ref<Color> color_;
};

} // namespace zq::platform
