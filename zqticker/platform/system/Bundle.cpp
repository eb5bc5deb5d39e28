#include "zqticker/platform/system/Bundle.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QStandardPaths>

using namespace Qt::StringLiterals;

namespace zq::platform {

const Bundle& Bundle::mainBundle() {
  static const Bundle bundle;
  return bundle;
}

QStringList Bundle::resourceFolders() const {
  if (!QCoreApplication::instance())
    return {};
  const QString beside = QCoreApplication::applicationDirPath();
  return {beside, QDir::cleanPath(beside + u"/../share/" + QCoreApplication::applicationName()),
          QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)};
}

QUrl Bundle::URLForResource(const QString& name, const QString& withExtension) const {
  if (name.isEmpty() || name.contains(u'/') || withExtension.contains(u'/'))
    return {};
  const QString fileName = withExtension.isEmpty() ? name : QString(name + u'.' + withExtension);
  for (const QString& folder : resourceFolders()) {
    const QString path = folder + u'/' + fileName;
    if (!folder.isEmpty() && QFileInfo(path).isFile())
      return QUrl::fromLocalFile(path);
  }
  return {};
}

} // namespace zq::platform
