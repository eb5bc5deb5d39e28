// The operations that cases name, each group in a source of its own.
#pragma once

#include "tests/conformance/Case.h"

#include <QtCore/QHash>

#include <functional>

namespace zq::conformance {

using Operation = std::function<Outcome(const Case&)>;
// By the operation's own selector text.
using Operations = QHash<QString, Operation>;

void addStringOperations(Operations& operations);
void addMutableStringOperations(Operations& operations);
void addScannerOperations(Operations& operations);
void addCalendarDateOperations(Operations& operations);
void addGregorianOperations(Operations& operations);
void addDateOperations(Operations& operations);
void addTimePatternOperations(Operations& operations);
void addFileSizeOperations(Operations& operations);
void addTransformerOperations(Operations& operations);
void addRectangleOperations(Operations& operations);
void addFileNameOperations(Operations& operations);

// All of them.
const Operations& allOperations();

} // namespace zq::conformance
