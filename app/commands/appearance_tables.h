// The options of the command `appearance`.
#pragma once

#include "app/commands/OptionTable.h"

namespace zq::app {

const OptionTable& appearanceShowTable();
const OptionTable& appearanceMakeTable();
const OptionTable& appearancePreviewTable();

} // namespace zq::app
