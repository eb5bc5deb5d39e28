// Names of files that do not exist yet.
#include "tests/conformance/Operations.h"

#include "zqticker/foundation_additions/file_workspace.h"
#include "zqticker/platform/system/FileManager.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

using namespace Qt::StringLiterals;

namespace zq::conformance {

namespace {
void fill(const QDir& folder, const CaseValue& environment) {
  if (const CaseValue* folders = environment.find(u"folders"))
    for (const CaseValue& name : folders->as<CaseValue::List>())
      if (!folder.mkpath(stringOf(name)))
        throw CaseError("a folder cannot be made: " + name.json().toStdString());
  if (const CaseValue* files = environment.find(u"files"))
    for (const CaseValue& name : files->as<CaseValue::List>())
      if (!QFile(folder.filePath(stringOf(name))).open(QIODevice::WriteOnly))
        throw CaseError("a file cannot be made: " + name.json().toStdString());
}

Outcome unique(const Case& each) {
  const QTemporaryDir folder;
  if (!folder.isValid())
    throw CaseError("no temporary folder");
  fill(QDir(folder.path()), each.environment);
  const QString prefix = folder.path() + u'/';
  const QString path = prefix + stringOf(each.argument(0));
  const auto& manager = platform::FileManager::defaultManager();
  const QString name = each.operation.endsWith("delimiter:"_L1)
                           ? uniqueFileNameAtPath(manager, path, stringOf(each.argument(1)))
                           : uniqueFileNameAtPath(manager, path);
  return {.value = name.startsWith(prefix) ? name.sliced(prefix.size()) : name};
}
} // namespace

void addFileNameOperations(Operations& operations) {
  operations[u"uniqueFileNameAtPath:"_s] = unique;
  operations[u"uniqueFileNameAtPath:delimiter:"_s] = unique;
}

} // namespace zq::conformance
