#include "zqticker/platform/archiving/seven_bit_groups.h"

namespace zq::platform {

void appendSevenBitGroups(QByteArray& bytes, quint64 number) {
  for (; number > 0x7F; number >>= 7)
    bytes.append(char(0x80 | (number & 0x7F)));
  bytes.append(char(number));
}

std::optional<qint64> takeSevenBitGroups(QByteArrayView bytes, qsizetype& position) {
  quint64 number = 0;
  for (int shift = 0; position < bytes.size(); shift += 7) {
    const auto group = quint64(uchar(bytes[position++]));
    const quint64 bits = group & 0x7F;
    // Groups of zeros may follow; nothing else fits above 63 bits.
    if (bits != 0 && shift >= 63)
      return std::nullopt;
    if (bits != 0)
      number |= bits << shift;
    if ((group & 0x80) == 0)
      return qint64(number);
  }
  return std::nullopt;
}

} // namespace zq::platform
