#include "tests/conformance/Operations.h"

namespace zq::conformance {

const Operations& allOperations() {
  static const Operations all = [] {
    Operations operations;
    addStringOperations(operations);
    addMutableStringOperations(operations);
    addScannerOperations(operations);
    addCalendarDateOperations(operations);
    addGregorianOperations(operations);
    addDateOperations(operations);
    addTimePatternOperations(operations);
    addFileSizeOperations(operations);
    addTransformerOperations(operations);
    addRectangleOperations(operations);
    addFileNameOperations(operations);
    return operations;
  }();
  return all;
}

} // namespace zq::conformance
