#include "zqticker/platform/calendar/zone_database_p.h"

#include "zqticker/platform/calendar/ZoneRules_p.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QHash>

#include <mutex>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {
// The largest files of the database have 4 KiB.
constexpr qint64 LargestFile = 1 << 20;

// Nothing that leads out of the database, and none of its copies with other clocks.
bool isRegionName(const QString& name) {
  if (name.isEmpty() || name.startsWith(u'/') || name.startsWith("right/"_L1))
    return false;
  for (const QChar c : name)
    if (!(c.unicode() < 128 && (c.isLetterOrNumber() || u"/_+-"_s.contains(c))))
      return false;
  return true;
}
} // namespace

std::shared_ptr<const ZoneRules> rulesOfFile(const QString& path) {
  QFile file(path);
  // A pipe or a device would keep the reader waiting.
  if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
    return nullptr;
  std::optional<ZoneRules> rules = ZoneRules::read(file.read(LargestFile));
  return rules ? std::make_shared<const ZoneRules>(std::move(*rules)) : nullptr;
}

std::shared_ptr<const ZoneRules> rulesOfRegion(const QString& name) {
  static std::mutex mutex;
  static QHash<QString, std::shared_ptr<const ZoneRules>> known;
  if (!isRegionName(name))
    return nullptr;
  const std::lock_guard lock(mutex);
  if (const auto found = known.constFind(name); found != known.constEnd())
    return *found;
  const QString folder = qEnvironmentVariable("TZDIR", u"/usr/share/zoneinfo"_s);
  const auto rules = rulesOfFile(folder + u'/' + name);
  if (rules)
    known.insert(name, rules);
  return rules;
}

QString regionOfPath(const QString& path) {
  const QLatin1StringView marker("zoneinfo/");
  const qsizetype start = path.lastIndexOf(marker);
  if (start < 0)
    return {};
  const QString name = path.sliced(start + marker.size());
  return name.startsWith("posix/"_L1) ? name.sliced(6) : name;
}

QString fixedZoneName(int offset) {
  const int minutes = std::abs(offset) / 60;
  return u"GMT%1%2:%3"_s.arg(QChar(offset < 0 ? u'-' : u'+'))
      .arg(minutes / 60, 2, 10, QChar(u'0'))
      .arg(minutes % 60, 2, 10, QChar(u'0'));
}

} // namespace zq::platform
