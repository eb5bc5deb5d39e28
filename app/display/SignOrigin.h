// Where a sign on the strip came from, and what its sender asked for besides.
#pragma once

#include <QtCore/QString>
#include <QtCore/QVariant>

namespace zq::app {

// What a sign does not know about itself. A sign of this program's own has an empty origin.
struct SignOrigin {
  QString senderIdentifier; // the sending program, for limits; empty where it did not say
  QString senderName;       // for people; empty where it did not say
  double priority = 0;      // of two signs that have not been shown yet the higher one goes first
  bool fades = false;       // whether the sign fades in as it enters and out as it leaves
  QVariant actionData;      // handed to the sign's action as it came; invalid for none
};

} // namespace zq::app
