#include "zqticker/platform/archiving/ClassRegistry.h"

#include <QtCore/QHash>
#include <QtCore/QMetaClassInfo>
#include <QtCore/QMetaObject>

using namespace Qt::StringLiterals;

namespace zq::platform {

static QHash<QString, ClassRegistry::Registration>& registrations() {
  static QHash<QString, ClassRegistry::Registration> all;
  return all;
}

void ClassRegistry::registerClass(const QString& archiveName, ObjectFactory factory,
                                  Cycles cycles) {
  registrations().insert(archiveName, {factory, cycles});
}

ClassRegistry::Registration ClassRegistry::registration(const QString& archiveName) {
  return registrations().value(archiveName);
}

QString ClassRegistry::archiveNameOf(const QMetaObject& metaObject) {
  for (int i = metaObject.classInfoOffset(); i < metaObject.classInfoCount(); ++i)
    if (metaObject.classInfo(i).name() == "ArchiveName"_L1)
      return QString::fromLatin1(metaObject.classInfo(i).value());
  const auto qualified = QLatin1StringView(metaObject.className());
  const qsizetype colons = qualified.lastIndexOf("::"_L1);
  return qualified.mid(colons < 0 ? 0 : colons + 2);
}

QStringList ClassRegistry::archiveClassesOf(const QMetaObject& metaObject) {
  QStringList names;
  for (const QMetaObject* type = &metaObject; type; type = type->superClass())
    if (const QString name = archiveNameOf(*type); !name.isEmpty())
      names.append(name);
  return names;
}

} // namespace zq::platform
