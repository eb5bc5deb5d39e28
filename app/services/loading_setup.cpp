#include "app/services/loading_setup.h"

#include "zqticker/platform/system/URLConnection.h"

#include <QtCore/QStandardPaths>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
constexpr qint64 LargestBody = 64 << 20;
constexpr qint64 LargestCache = 64 << 20;
} // namespace

void prepareLoading() {
  platform::URLConnection::setMaximumBodyLength(LargestBody);
}

} // namespace zq::app
