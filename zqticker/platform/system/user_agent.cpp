#include "zqticker/platform/system/user_agent_p.h"

#include "zqticker/version.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFileInfo>

namespace zq::platform {

namespace {
// `text` as a product token: what may not stand in one becomes a hyphen.
QByteArray token(const QString& text) {
  QByteArray result = text.toUtf8();
  for (char& c : result) {
    const bool isPlain = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') ||
                         (c >= 'a' && c <= 'z') || c == '.' || c == '_' || c == '-' || c == '+';
    if (!isPlain)
      c = '-';
  }
  return result;
}
} // namespace

QByteArray userAgent() {
  static const QByteArray library = "libzqticker/" ZQTICKER_VERSION;
  if (!QCoreApplication::instance())
    return library;
  const QString name = QCoreApplication::applicationName();
  const QString version = QCoreApplication::applicationVersion();
  // Without a name of its own an application is called after its file.
  static const QString fileName = QFileInfo(QCoreApplication::applicationFilePath()).fileName();
  if (name.isEmpty() || (version.isEmpty() && name == fileName))
    return library;
  return version.isEmpty() ? token(name) : token(name) + '/' + token(version);
}

} // namespace zq::platform
