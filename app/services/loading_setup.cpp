#include "app/services/loading_setup.h"

#include "zqticker/platform/system/URLCache.h"
#include "zqticker/platform/system/URLConnection.h"

#include <QtCore/QStandardPaths>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
constexpr qint64 LargestBody = 64 << 20;
constexpr qint64 LargestCache = 64 << 20;
} // namespace

void useCacheFolder() {
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::CacheLocation);
  if (!folder.isEmpty())
    platform::URLCache::sharedURLCache().setStore(folder + u"/urls"_s, LargestCache);
}

void prepareLoading() {
  platform::URLConnection::setMaximumBodyLength(LargestBody);
  useCacheFolder();
}

} // namespace zq::app
