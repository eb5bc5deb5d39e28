// Colours as values of a colour space.
#pragma once

#include "zqticker/platform/objects/Object.h"

#include <QtGui/QColor>

#include <vector>

namespace zq::platform {

class Image;

// An immutable colour: its space and its components there, or a named or a pattern colour.
//
// Components lie between 0 and 1; the constructing functions limit them to that, and take what is
// no number as 0. Calibrated and device spaces are shown alike, without a profile in between.
//
// Thread: any; the objects are immutable.
class ZQTICKER_EXPORT Color : public Object {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSColor")

 public:
  // The number of the space in an archive; the last three are custom spaces, which an archive
  // describes by a record of its own.
  enum class Space {
    CalibratedRGB = 1,
    DeviceRGB = 2,
    CalibratedWhite = 3,
    DeviceWhite = 4,
    DeviceCMYK = 5,
    Catalog = 6,
    Pattern = 10,
    SRGB = 107,
    GenericGray = 102,
    GenericGamma22Gray = 109,
  };

  // Opaque black; what a decoder starts from.
  Color();
  ~Color() override;

  static Ref<Color> deviceRGB(double red, double green, double blue, double alpha = 1);
  static Ref<Color> calibratedRGB(double red, double green, double blue, double alpha = 1);
  static Ref<Color> sRGB(double red, double green, double blue, double alpha = 1);
  static Ref<Color> deviceWhite(double white, double alpha = 1);
  static Ref<Color> calibratedWhite(double white, double alpha = 1);
  static Ref<Color> deviceCMYK(double cyan, double magenta, double yellow, double black,
                               double alpha = 1);
  // By hue (0 and 1 are red), saturation and brightness, each limited to 0 to 1 before it is
  // converted.
  static Ref<Color> calibratedHSB(double hue, double saturation, double brightness,
                                  double alpha = 1);
  // A named colour of a catalogue. It shows as `fallback`; without one as opaque black.
  static Ref<Color> catalog(const QString& catalogName, const QString& colorName,
                            const Ref<Color>& fallback);
  // A colour that paints by repeating a copy of `image`, whose lower left corner stands at the
  // origin.
  static Ref<Color> pattern(const Ref<Image>& image);

  // The device RGB colour of `color`; null where it is invalid.
  static Ref<Color> fromQColor(const QColor& color);
  // A device RGB colour by its CSS name ("navy", "transparent") or as "#rgb", "#rrggbb",
  // "#aarrggbb". Null for any other text.
  static Ref<Color> fromName(const QString& name);

  Space space() const { return space_; }
  // The components in the colour's own space, alpha last. Empty for named and pattern colours.
  const std::vector<double>& components() const { return components_; }

  // The colour as RGB, whatever its space; 0 to 1. A pattern answers opaque black.
  double redComponent() const;
  double greenComponent() const;
  double blueComponent() const;
  double alphaComponent() const;
  // The same as hue, saturation and brightness; 0 to 1. Greys have the hue 0, black the saturation
  // 0 too.
  double hueComponent() const;
  double saturationComponent() const;
  double brightnessComponent() const;
  QColor qColor() const;

  // A colour of the same space and components with another alpha; of a named colour what it shows.
  // A pattern, which has no alpha, gives an equal pattern.
  Ref<Color> colorWithAlphaComponent(double alpha) const;

  // Of a named colour; empty, empty and null otherwise.
  const QString& catalogName() const { return catalogName_; }
  const QString& colorName() const { return colorName_; }
  const Ref<Color>& fallback() const { return fallback_; }
  // Of a pattern colour; null otherwise.
  const Ref<Image>& patternImage() const { return patternImage_; }

  // Makes this the colour of fills and strokes of the current context; without one nothing happens.
  void set() const;

  // "DeviceRGB 0.25 0.5 0.75 1".
  QString description() const override;
  // Whether `other` is a colour of the same space with the same components, names and pattern.
  bool isEqual(const Object& other) const override;
  Ref<Object> copy() override;

  void encodeWithCoder(Coder& coder) override;
  // Raises ArchiveException for an unknown space, and for components that are no numbers or too
  // few.
  Ref<Object> initWithCoder(Coder& coder) override;

 private:
  static Ref<Color> make(Space space, std::vector<double> components);
  void decodeComponents(Coder& coder, int space);

  Space space_ = Space::CalibratedWhite;
  std::vector<double> components_{0, 1};
  QString catalogName_;
  QString colorName_;
  Ref<Color> fallback_;
  Ref<Image> patternImage_;
};

} // namespace zq::platform
