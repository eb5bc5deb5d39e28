// Scanners at a place of a string.
#pragma once

#include "zqticker/platform/text/Scanner.h"

namespace zq::testing {

inline platform::Scanner scannerOf(const QString& string, qsizetype location = 0) {
  platform::Scanner scanner(string);
  scanner.setScanLocation(location);
  return scanner;
}

// To which every character counts.
inline platform::Scanner unskipping(const QString& string, qsizetype location = 0) {
  platform::Scanner scanner = scannerOf(string, location);
  scanner.setCharactersToBeSkipped(std::nullopt);
  return scanner;
}

} // namespace zq::testing
