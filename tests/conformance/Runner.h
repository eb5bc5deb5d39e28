// Carries out conformance cases.
#pragma once

#include "tests/conformance/CaseValue.h"

#include <QtCore/QByteArray>

namespace zq::conformance {

// What came of the case in `line`: its "id", and "value", "out", "locationAfter" and
// "receiverAfter" as far as the operation has them, or "raises", or "error" for what could not be
// carried out: "unknown operation", or what is wrong with the case.
CaseValue resultOfLine(QByteArrayView line);

// Empty where the case in `line` came out as it states; else how not, in one line.
QByteArray failureOfLine(QByteArrayView line);

} // namespace zq::conformance
