// Colour components as archives write them: decimal numbers separated by one space.
#pragma once

#include <QtCore/QByteArray>

#include <optional>
#include <vector>

namespace zq::platform {

// The shortest decimal text of each number that reads back to the same double, in any locale.
QByteArray componentText(const std::vector<double>& components);

// The numbers in `text`, up to its end or its first NUL. Nothing where a part is no number, or
// where there are more than any colour has.
std::optional<std::vector<double>> parsedComponents(const QByteArray& text);

} // namespace zq::platform
