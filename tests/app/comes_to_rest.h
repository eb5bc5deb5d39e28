// Whether something on the screen stands still.
#pragma once

#include "tests/app/XServer.h"

#include <QtGui/QImage>

#include <functional>
#include <optional>

namespace zq::app::testing {

// What is seen once it is the same on so many looks in a row that one which moves would be another
// one between; nothing where it goes on moving.
inline std::optional<QImage> comesToRest(const std::function<QImage()>& look) {
  constexpr int Looks = 40;
  QImage before;
  int alike = 0;
  const bool rests = waitUntil([&] {
    const QImage now = look();
    alike = now == before ? alike + 1 : 0;
    before = now;
    return alike == Looks;
  });
  return rests ? std::optional(before) : std::nullopt;
}

} // namespace zq::app::testing
