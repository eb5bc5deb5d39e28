#include "zqticker/watching/watching_log_p.h"

const QLoggingCategory& watchingLog() {
  static const auto* const category = new QLoggingCategory("zqticker.watching");
  return *category;
}
