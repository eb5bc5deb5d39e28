#include "app/services/FileSigns.h"

#include "zqticker/signs/ZQTickerSign.h"

using namespace Qt::StringLiterals;

namespace zq::app {

void FileSigns::show(const FileReport& report) {
  const QString identifier = u"watch "_s + report.path + u": "_s + report.what;
  if (receiver_.hasWaiting(identifier))
    return;
  const platform::Ref<ZQTickerSign> sign = receiver_.makeTextSign(reportText(report));
  sign->setIdentifier(identifier);
  setLoopRule(*sign, rule_);
  SignOrigin origin;
  origin.senderName = nameOfFile(report.path);
  receiver_.add(sign, origin, SignReceiver::Order::Arrival);
}

} // namespace zq::app
