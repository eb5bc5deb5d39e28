// The visual order of bidirectional text.
#pragma once

#include <QtCore/QString>

#include <optional>
#include <vector>

namespace zq::platform {

// A stretch of text in one direction.
struct DirectionRun {
  qsizetype start = 0;
  qsizetype length = 0;
  bool rightToLeft = false;
};

// The stretches of `text`, one paragraph, from left to right as they show. Its direction is
// `rightToLeft` where given, else that of the first strong character, else left to right.
std::vector<DirectionRun> directionRuns(const QString& text,
                                        std::optional<bool> rightToLeft = std::nullopt);

// Whether `c` is a character that only directs the bidirectional order (embedding, override,
// isolate), and whether it starts an override.
bool isDirectionControl(char16_t c);
bool isDirectionOverride(char16_t c);

} // namespace zq::platform
