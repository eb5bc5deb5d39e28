// Finding a file that has left its folder.
#pragma once

#include "zqticker/platform/system/FileSnapshot_p.h"

namespace zq::platform {

// The path of `wanted` where it stands in `folder`, the folder above, or a folder within one of
// both; empty where it does not or where too much would have to be read. Reads names only, a few
// thousand at most.
QByteArray findNearby(const QByteArray& folder, const FileSnapshot& wanted);

} // namespace zq::platform
