#include "zqticker/rollover/ZQRollOverButtonAppearance.h"

#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/archiving/KeyedArchiver.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Shadow.h"
#include "zqticker/rollover/attribute_coding_p.h"

using namespace zq::platform;

ZQ_REGISTER_VALUE_CLASS(ZQRollOverButtonAppearance);

ZQRollOverButtonAppearance::ZQRollOverButtonAppearance() = default;

ZQRollOverButtonAppearance::~ZQRollOverButtonAppearance() {
#define ZQ_RELEASE(Type, property, getter, setter) setter(nullptr);
  ZQ_APPEARANCE_OBJECTS(ZQ_RELEASE)
#undef ZQ_RELEASE
}

QByteArray ZQRollOverButtonAppearance::dataRepresentationFromAppearance(
    const Ref<ZQRollOverButtonAppearance>& appearance) {
  return KeyedArchiver::archivedDataWithRootObject(appearance);
}

Ref<ZQRollOverButtonAppearance>
ZQRollOverButtonAppearance::appearanceWithDataRepresentation(const QByteArray& data) {
  return KeyedUnarchiver(data).decodeObjectOfClass<ZQRollOverButtonAppearance>("root");
}

Ref<Object> ZQRollOverButtonAppearance::copy() {
  const auto duplicate = std::make_shared<ZQRollOverButtonAppearance>();
#define ZQ_COPY_OBJECT(Type, property, getter, setter) duplicate->setter(copyOf(getter()));
  ZQ_APPEARANCE_OBJECTS(ZQ_COPY_OBJECT)
#undef ZQ_COPY_OBJECT
#define ZQ_COPY_VALUE(Type, property, getter, setter) duplicate->setter(getter());
  ZQ_APPEARANCE_VALUES(ZQ_COPY_VALUE)
#undef ZQ_COPY_VALUE
  return duplicate;
}

void ZQRollOverButtonAppearance::encodeWithCoder(Coder& coder) {
#define ZQ_ENCODE(Type, property, getter, setter)                                                  \
  zq::encodeAttribute(coder, getter(), zq::appearance_keys::property);
  ZQ_APPEARANCE_ATTRIBUTES(ZQ_ENCODE)
#undef ZQ_ENCODE
}

Ref<Object> ZQRollOverButtonAppearance::initWithCoder(Coder& coder) {
  // A new object takes the place of this one, so that archives of subclasses decode as this class.
  const auto appearance = std::make_shared<ZQRollOverButtonAppearance>();
#define ZQ_DECODE(Type, property, getter, setter)                                                  \
  appearance->setter(zq::decodedAttribute<Type>(coder, zq::appearance_keys::property));
  ZQ_APPEARANCE_ATTRIBUTES(ZQ_DECODE)
#undef ZQ_DECODE
  return appearance;
}
