#include "zqticker/platform/text/Formatter.h"

namespace zq::platform {

Formatter::~Formatter() = default;

} // namespace zq::platform
