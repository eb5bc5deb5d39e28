// How this program loads addresses.
#pragma once

namespace zq::app {

// Lets answers be kept in the user's cache folder, up to 64 MiB, as far as their servers allow. For
// the process; before the first load.
void useCacheFolder();

// The same, and lets no body be larger than 64 MiB; for a program that loads what strangers name.
void prepareLoading();

} // namespace zq::app
