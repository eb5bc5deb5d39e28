#include "app/interaction/SignOpener.h"

#include "app/commands/failures.h"
#include "app/display/SignAction.h"
#include "app/display/SignItem.h"
#include "app/interaction/sign_locations.h"
#include "zqticker/signs/ZQTickerSign.h"

#include <QtCore/QLoggingCategory>
#include <QtGui/QDesktopServices>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
Q_LOGGING_CATEGORY(actionLog, "zqticker.action")

void tell(const QString& line) {
  qCWarning(actionLog).noquote() << line;
}
} // namespace

ActionRequest actionOf(const ZQTickerSign& sign, const QVariant& data) {
  return {sign.actionType(), sign.actionString().value_or(QString()), data};
}

ActionRequest actionOf(const SignItem& item) {
  return item.sign() ? actionOf(*item.sign(), item.origin().actionData) : ActionRequest();
}

SignOpener::SignOpener()
    : SignOpener([](const QUrl& url, const QVariant&) { return QDesktopServices::openUrl(url); }) {}

SignOpener::SignOpener(Open open) : open_(std::move(open)) {}

bool SignOpener::opensSomething(const ActionRequest& request) {
  return request.type == OpenLocation && locationOf(request.string).isOpenable();
}

bool SignOpener::perform(const ActionRequest& request) const {
  if (request.type == NoAction)
    return false;
  if (request.type != OpenLocation) {
    tell(u"a sign asks for an action of the unknown type %1: nothing is done"_s.arg(request.type));
    return false;
  }
  const SignLocation location = locationOf(request.string);
  if (!location.isOpenable()) {
    tell(u"a sign's location is not opened, %1: \"%2\""_s.arg(location.refusal,
                                                              quotedForMessage(request.string)));
    return false;
  }
  if (open_(location.url, request.data))
    return true;
  tell(u"there is nothing to open a sign's location with: \"%1\""_s.arg(
      quotedForMessage(location.url.toDisplayString())));
  return false;
}

} // namespace zq::app
