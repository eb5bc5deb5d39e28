// The options of the services that run as programs of their own.
#pragma once

#include "app/commands/OptionTable.h"

namespace zq::app {

const OptionTable& feedServiceTable();
const OptionTable& watchServiceTable();
const OptionTable& tailServiceTable();

} // namespace zq::app
