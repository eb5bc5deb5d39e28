#include "zqticker/platform/system/path_components.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {
// The length of the path without slashes at its end; the root keeps its own.
qsizetype lengthWithoutSlashes(QStringView path) {
  qsizetype length = path.size();
  while (length > 1 && path[length - 1] == u'/')
    --length;
  return length;
}

// Where the point of the extension stands, or -1.
qsizetype extensionPoint(const QString& component) {
  const qsizetype point = component.lastIndexOf(u'.');
  const auto isPoint = [](QChar c) { return c == u'.'; };
  if (point < 0 || std::all_of(component.begin(), component.begin() + point, isPoint))
    return -1;
  return point;
}
} // namespace

QString lastPathComponent(const QString& path) {
  const QString trimmed = path.first(lengthWithoutSlashes(path));
  return trimmed == "/"_L1 ? trimmed : trimmed.mid(trimmed.lastIndexOf(u'/') + 1);
}

QString deletingLastPathComponent(const QString& path) {
  const QStringView trimmed = QStringView(path).first(lengthWithoutSlashes(path));
  const qsizetype slash = trimmed.lastIndexOf(u'/');
  if (slash < 0)
    return {};
  const QStringView directory = trimmed.first(slash + 1);
  return directory.first(lengthWithoutSlashes(directory)).toString();
}

QString appendingPathComponent(const QString& directory, const QString& component) {
  if (directory.isEmpty() || component.isEmpty())
    return directory + component;
  return directory.endsWith(u'/') ? QString(directory + component)
                                  : QString(directory + u'/' + component);
}

QString pathExtension(const QString& component) {
  const qsizetype point = extensionPoint(component);
  return point < 0 ? QString() : component.mid(point + 1);
}

QString deletingPathExtension(const QString& component) {
  const qsizetype point = extensionPoint(component);
  return point < 0 ? component : component.first(point);
}

QString appendingPathExtension(const QString& component, const QString& extension) {
  return extension.isEmpty() ? component : QString(component + u'.' + extension);
}

} // namespace zq::platform
