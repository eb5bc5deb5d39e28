// Where a redirect leads.
#pragma once

#include "zqticker/platform/system/URLResponse.h"

namespace zq::platform {

// The address that follows `response`, which answered a request for `base`; nothing where it is no
// redirect (another status than 301, 302, 303, 307, 308, or no Location). May be invalid.
//
// Relative addresses are resolved, and the fragment of `base` stays where the new address has none.
// User name and password are those of `base` where scheme, host and port are the same, and none
// elsewhere, whatever the Location says.
std::optional<QUrl> addressAfterRedirect(const URLResponse& response, const QUrl& base);

// `url` for an error text: without user name and password, on one line, cut after 200 characters.
QString shownAddress(const QUrl& url);

} // namespace zq::platform
