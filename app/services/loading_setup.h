// How this program loads addresses.
#pragma once

namespace zq::app {

// Limits what is loaded, and lets answers be kept in the user's cache folder, as far as their
// servers allow. For the process; before the first load.
void prepareLoading();

} // namespace zq::app
