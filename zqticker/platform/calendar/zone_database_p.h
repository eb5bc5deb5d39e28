// The system's time-zone database, and which of its zones the machine is set to.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <memory>

namespace zq::platform {

class ZoneRules;

// The rules of a region, kept once they have been read; null where there is none of that name.
//
// Thread: any.
std::shared_ptr<const ZoneRules> rulesOfRegion(const QString& name);

// The region that `path` leads to within any database: what follows "zoneinfo/" in it; empty where
// that is missing.
QString regionOfPath(const QString& path);

// The rules in a file; null where it has none.
std::shared_ptr<const ZoneRules> rulesOfFile(const QString& path);

// The name of a fixed distance from UTC in seconds: "GMT+05:30".
QString fixedZoneName(int offset);

} // namespace zq::platform
