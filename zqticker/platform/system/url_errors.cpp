#include "zqticker/platform/system/url_errors.h"

using namespace Qt::StringLiterals;

namespace zq::platform {

const QString URLErrorDomain = u"NSURLErrorDomain"_s;

} // namespace zq::platform
