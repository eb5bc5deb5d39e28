// The look of a rollover button in its three states.
#pragma once

#include "zqticker/platform/objects/AtomicProperty.h"
#include "zqticker/platform/objects/Object.h"
#include "zqticker/rollover/appearance_attributes.h"
#include "zqticker/zqticker_export.h"

#include <QtCore/QByteArray>

// How the bezel is filled. Without a shading colour, and for every other value, it is filled flat.
enum ZQShadingMode : std::uint64_t {
  // With the state's control colour.
  ZQShadingModeFlat = 0,
  // From the state's shading colour to its control colour, in a flipped view the other way.
  ZQShadingModeLinear = 1,
  // With the shading colour as the outer and the control colour as the inner colour of a bilinear
  // gradient, which puts the shading colour into the middle.
  ZQShadingModeBilinear = 2,
};

// Every colour, shadow and style that decides how a rollover button looks while it is left alone,
// while the mouse is over it and while it is pressed. A value object: it stores its attributes, no
// more; setters redraw nothing.
//
// A new appearance has no colours and shadows, both enumerations 0, both flags false and no delay.
// Setters keep the very object that they are given. All attributes are listed in
// appearance_attributes.h.
//
// Thread: any attribute may be read on one thread while another writes it; several attributes are
// not read as of one moment.
class ZQTICKER_EXPORT ZQRollOverButtonAppearance : public zq::platform::Object {
  Q_GADGET
  ZQ_OBJECT

 public:
  ZQRollOverButtonAppearance();
  // Releases colours and shadows in the order of the list.
  ~ZQRollOverButtonAppearance() override;

#define ZQ_DECLARE_ACCESSORS(Type, property, getter, setter)                                       \
  Type getter() const {                                                                            \
    return property##_.load();                                                                     \
  }                                                                                                \
  void setter(Type property) {                                                                     \
    property##_.store(std::move(property));                                                        \
  }
  ZQ_APPEARANCE_ATTRIBUTES(ZQ_DECLARE_ACCESSORS)
#undef ZQ_DECLARE_ACCESSORS

  // The keyed archive of `appearance` as its root; null archives as nothing.
  static QByteArray
  dataRepresentationFromAppearance(const std::shared_ptr<ZQRollOverButtonAppearance>& appearance);

  // The appearance that is the root of the keyed archive `data`; null where the root is nothing or
  // missing. ArchiveException for what is no archive, cannot be decoded, or has anything else as
  // its root.
  static std::shared_ptr<ZQRollOverButtonAppearance>
  appearanceWithDataRepresentation(const QByteArray& data);

  // A new appearance of exactly this class, also for a subclass, with copies of all colours and
  // shadows.
  // Operation: copyWithZone:
  zq::platform::Ref<zq::platform::Object> copy() override;

  // Needs a keyed coder, and does not ask whether it has one.
  void encodeWithCoder(zq::platform::Coder& coder) override;

  // Returns a new appearance of exactly this class, also for a subclass, and leaves this one as it
  // is. A missing key gives null, 0 or false; a value of another class raises ArchiveException.
  zq::platform::Ref<zq::platform::Object> initWithCoder(zq::platform::Coder& coder) override;

 private:
#define ZQ_DECLARE_STORAGE(Type, property, getter, setter)                                         \
  zq::platform::AtomicProperty<Type> property##_;
  ZQ_APPEARANCE_ATTRIBUTES(ZQ_DECLARE_STORAGE)
#undef ZQ_DECLARE_STORAGE
};
