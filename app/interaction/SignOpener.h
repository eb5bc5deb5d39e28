// What a click on a sign does.
#pragma once

#include <QtCore/QString>
#include <QtCore/QUrl>
#include <QtCore/QVariant>

#include <cstdint>
#include <functional>

class ZQTickerSign;

namespace zq::app {

class SignItem;

// A sign's action, as its sender asked for it.
struct ActionRequest {
  std::int32_t type = 0; // of SignAction
  QString string;
  QVariant data; // of the sign's origin; invalid for none
};

ActionRequest actionOf(const ZQTickerSign& sign, const QVariant& data = {});
// That of what is on a strip; none for a line of text.
ActionRequest actionOf(const SignItem& item);

// Performs the actions of signs. Signs come from other programs and from feeds: nothing but an
// address of locationOf() is opened, and nothing is ever run. What is refused is told in one line
// (category zqticker.action).
//
// Thread: main.
class SignOpener {
 public:
  // Opens an address; false where that cannot be. The data is that of the request.
  using Open = std::function<bool(const QUrl& url, const QVariant& data)>;

  // With the program that the desktop has for such an address.
  SignOpener();
  explicit SignOpener(Open open);

  // Whether performing it would open something.
  static bool opensSomething(const ActionRequest& request);

  // False where nothing was opened: there is no action, or it was refused.
  bool perform(const ActionRequest& request) const;

 private:
  Open open_;
};

} // namespace zq::app
