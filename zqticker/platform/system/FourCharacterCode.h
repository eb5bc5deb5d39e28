// Codes of four characters, under which platforms know kinds of things.
#pragma once

#include <QtCore/QtGlobal>

namespace zq::platform {

// "desk" as the number 0x6465736B; characters are bytes.
constexpr quint32 fourCharacterCode(const char (&text)[5]) {
  quint32 code = 0;
  for (int i = 0; i < 4; ++i)
    code = code << 8 | static_cast<unsigned char>(text[i]);
  return code;
}

} // namespace zq::platform
