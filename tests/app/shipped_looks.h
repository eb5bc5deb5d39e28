// The looks that come with the program.
#pragma once

#include "app/commands/appearance_json.h"
#include "zqticker/rollover/ZQRollOverButtonAppearance.h"

#include <QtCore/QFile>

#include <gtest/gtest.h>

namespace zq::app::testing {

inline constexpr const char* ShippedLooks[] = {"ControlBarButton", "dark", "light"};

inline QByteArray contentsOfFile(const QString& path) {
  QFile file(path);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
  return file.readAll();
}

// The JSON of which a look is made, and the file that is made of it.
inline QByteArray descriptionOfLook(const char* name) {
  return contentsOfFile(
      QStringLiteral(ZQTICKER_SOURCE_DIR "/app/resources/%1.json").arg(QLatin1StringView(name)));
}
inline QString fileOfLook(const char* name) {
  return QStringLiteral(ZQTICKER_BINARY_DIR "/share/zqticker/%1.button")
      .arg(QLatin1StringView(name));
}

inline platform::Ref<ZQRollOverButtonAppearance> shippedLook(const char* name) {
  return appearanceOfJson(descriptionOfLook(name));
}

} // namespace zq::app::testing
