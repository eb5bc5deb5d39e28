// What turns a value into a text for people, and such a text back into the value.
#pragma once

#include "zqticker/platform/objects/Object.h"

namespace zq::platform {

class ZQTICKER_EXPORT Formatter : public Object {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSFormatter")

 public:
  ~Formatter() override;

  // The text for `object`, or nothing where it is of a kind that this formatter does not show.
  virtual std::optional<QString> stringForObjectValue(const Any& object) const = 0;

  // Reads `string` into `object`, unless that is null, and returns whether it could. Where it could
  // not, `errorDescription`, unless that is null, says why.
  // Operation: getObjectValue:forString:errorDescription:
  virtual bool getObjectValue(Any* object, const std::optional<QString>& string,
                              QString* errorDescription) const = 0;
};

} // namespace zq::platform
