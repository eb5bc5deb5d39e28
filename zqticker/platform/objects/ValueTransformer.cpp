#include "zqticker/platform/objects/ValueTransformer.h"

namespace zq::platform {

ValueTransformer::~ValueTransformer() = default;

} // namespace zq::platform
