#include "zqticker/foundation_additions/random_string_p.h"

#include <random>

namespace zq {

QString randomString(qsizetype length, const QString& characters, std::uint32_t seed) {
  std::mt19937 generator(seed);
  const auto count = std::uint64_t(characters.size());
  QString string(length, Qt::Uninitialized);
  for (QChar& c : string)
    c = characters[qsizetype(generator() % count)];
  return string;
}

} // namespace zq
