#include "app/services/LineSigns.h"

#include "app/services/FileReport.h"
#include "zqticker/signs/ZQTickerSign.h"

#include <QtCore/QUuid>

using namespace Qt::StringLiterals;

namespace zq::app {

LineSigns::LineSigns(SignReceiver& receiver, LoopRule rule)
    : receiver_(receiver), rule_(rule), run_(QUuid::createUuid().toString(QUuid::WithoutBraces)) {}

void LineSigns::show(const QString& line, const QString& path) {
  const platform::Ref<ZQTickerSign> sign = receiver_.makeTextSign(line);
  sign->setIdentifier(u"line %1 %2"_s.arg(run_).arg(++lineCount_));
  setLoopRule(*sign, rule_);
  SignOrigin origin;
  origin.senderName = nameOfFile(path);
  receiver_.add(sign, origin, SignReceiver::Order::Arrival);
}

} // namespace zq::app
