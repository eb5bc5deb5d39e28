#include "zqticker/platform/system/system_version_p.h"

#include <QtCore/QFile>

#include <algorithm>
#include <array>
#include <limits>

#include <sys/utsname.h>

namespace zq::platform {

std::optional<SystemVersion> versionInRelease(const QByteArray& release) {
  std::array<int, 3> numbers{};
  qsizetype at = 0;
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const qsizetype start = at;
    qint64 number = 0;
    for (; at < release.size() && release[at] >= '0' && release[at] <= '9'; ++at)
      number = std::min<qint64>(number * 10 + (release[at] - '0'), std::numeric_limits<int>::max());
    if (at == start && i == 0)
      return std::nullopt;
    numbers[i] = int(number);
    if (at >= release.size() || release[at] != '.')
      break;
    ++at;
  }
  return SystemVersion{numbers[0], numbers[1], numbers[2]};
}

QByteArray versionIdIn(const QByteArray& osRelease) {
  constexpr char Key[] = "VERSION_ID=";
  for (QByteArray line : osRelease.split('\n')) {
    if (!line.startsWith(Key))
      continue;
    line = line.sliced(sizeof Key - 1).trimmed();
    const bool isQuoted = line.size() >= 2 && (line.startsWith('"') || line.startsWith('\'')) &&
                          line.back() == line.front();
    return isQuoted ? line.sliced(1, line.size() - 2) : line;
  }
  return {};
}

SystemVersion systemVersion() {
  utsname names;
  if (::uname(&names) == 0)
    if (const auto version = versionInRelease(names.release))
      return *version;
  for (const char* path : {"/etc/os-release", "/usr/lib/os-release"}) {
    QFile file(QString::fromLatin1(path));
    if (file.open(QIODevice::ReadOnly))
      return versionInRelease(versionIdIn(file.readAll())).value_or(SystemVersion());
  }
  return {};
}

} // namespace zq::platform
