// Addresses that carry their body themselves: "data:text/plain;charset=utf-8;base64,SGk=".
#pragma once

#include "zqticker/platform/system/URLSource_p.h"

namespace zq::platform {

// Tells `client` the whole answer at once. Without a media type it is
// "text/plain;charset=US-ASCII". An address without a comma fails with BadURL, broken base64 with
// CannotDecodeContentData.
void tellDataAddress(const QUrl& url, URLSourceClient& client);

} // namespace zq::platform
