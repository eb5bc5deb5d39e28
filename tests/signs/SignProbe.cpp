// Makes a text sign in a process without a GUI application; exits 0 when that raises and when
// signs that need no text can be made all the same.
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/signs/ZQImageTickerSign.h"
#include "zqticker/signs/ZQTextTickerSign.h"

int main() {
  if (ZQImageTickerSign::make()->scrollDirection() != 1)
    return 1;
  try {
    ZQTextTickerSign::make(QStringLiteral("text"));
  } catch (const zq::platform::InternalInconsistencyException&) {
    return 0;
  }
  return 2;
}
