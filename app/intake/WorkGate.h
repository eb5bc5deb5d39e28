// What a message costs before it can be shown.
#pragma once

#include <QtCore/qglobal.h>

#include <functional>

namespace zq::app {

// Asked before pictures of so many pixels are decoded, or as much other work is done; raises to
// refuse it. A small file may hold a large picture.
using WorkGate = std::function<void(qint64 pixels)>;

// A character that is laid out takes as long as so many pixels that are decoded.
inline constexpr qint64 PixelsPerCharacter = 8;

inline void admitWork(const WorkGate& gate, qint64 pixels) {
  if (gate && pixels > 0)
    gate(pixels);
}

} // namespace zq::app
