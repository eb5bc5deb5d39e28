// The interface of the ticker on the bus, described for those who ask.
#pragma once

#include <QtCore/QString>

namespace zq::app {

// The <interface> element of the description that is shipped.
QString tickerInterface();

} // namespace zq::app
