// What turns a value of the model into one that an element of the interface can show.
#pragma once

#include "zqticker/platform/objects/Object.h"

namespace zq::platform {

// Base of the transformers. A subclass says by two functions of its own, transformedValueClass and
// allowsReverseTransformation, what comes out and whether the way back exists.
class ZQTICKER_EXPORT ValueTransformer : public Object {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSValueTransformer")

 public:
  ~ValueTransformer() override;

  // What `value` turns into; nothing is a value too.
  virtual Any transformedValue(const Any& value) const = 0;
};

} // namespace zq::platform
