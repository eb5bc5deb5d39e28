#include "app/bus/ticker_interface.h"

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
constexpr char InterfaceFile[] =
#include "ticker_interface.inc"
    ;
} // namespace

QString tickerInterface() {
  const QString file = QString::fromUtf8(InterfaceFile);
  const QLatin1StringView end = "</interface>"_L1;
  const qsizetype first = file.indexOf("<interface "_L1);
  return file.sliced(first, file.indexOf(end) + end.size() - first) + u'\n';
}

} // namespace zq::app
