#include "app/services/FileSigns.h"

#include "app/display/TickerDisplay.h"
#include "zqticker/signs/ZQTickerSign.h"

using namespace Qt::StringLiterals;

namespace zq::app {

void FileSigns::show(const FileReport& report, double time) {
  const QString identifier = u"watch "_s + report.path + u": "_s + report.what;
  if (display_.hasWaitingSign(identifier, time))
    return;
  const platform::Ref<ZQTickerSign> sign = display_.makeTextSign(reportText(report));
  sign->setIdentifier(identifier);
  sign->setLoopCount(rule_.count);
  sign->setLoopDelay(rule_.delay);
  sign->setContinuousScrolling(rule_.continuous);
  display_.addSign(sign, time);
}

} // namespace zq::app
