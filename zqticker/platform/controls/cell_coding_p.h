// Flag words in archives.
#pragma once

#include <QtCore/QLatin1StringView>

#include <cstdint>

namespace zq::platform {

class Coder;

// Words stand in archives as signed numbers of 32 bits. Reading takes unsigned ones too, and
// raises ArchiveException for larger ones.
void encodeFlagWord(Coder& coder, std::uint32_t word, QLatin1StringView key);
std::uint32_t decodeFlagWord(Coder& coder, QLatin1StringView key);

} // namespace zq::platform
