// The main function of every test program: an environment that does not depend on the machine,
// then a GUI application, then the tests. A run in another locale or time zone asks for it by
// $ZQTICKER_TEST_LOCALE or $ZQTICKER_TEST_TIME_ZONE.
#include "tests/support/LogWatch.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>
#include <QtCore/QLocale>
#include <QtCore/QTemporaryDir>
#include <QtWidgets/QApplication>

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  const QByteArray locale = qgetenv("ZQTICKER_TEST_LOCALE");
  const QByteArray timeZone = qgetenv("ZQTICKER_TEST_TIME_ZONE");
  qputenv("LC_ALL", locale.isEmpty() ? QByteArray("C.UTF-8") : locale);
  qputenv("TZ", timeZone.isEmpty() ? QByteArray("UTC") : timeZone);
  qputenv("QT_SCALE_FACTOR", "1");
  qunsetenv("QT_SCREEN_SCALE_FACTORS");
  qunsetenv("QT_QPA_PLATFORMTHEME");
  for (const char* variable : {"http_proxy", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY",
                               "no_proxy", "NO_PROXY", "SSL_CERT_FILE"})
    qunsetenv(variable);
  // Nothing of a test is to be seen on a bus but on one that the test starts.
  qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
  // The settings of whoever runs the tests are not theirs.
  const QTemporaryDir settings;
  qputenv("XDG_CONFIG_HOME", QFile::encodeName(settings.path()));
  // Programs that a test starts on a window system of its own get another platform from it.
  qputenv("QT_QPA_PLATFORM", "offscreen");
  if (locale.isEmpty())
    QLocale::setDefault(QLocale::c());
  QApplication application(argc, argv);
  zq::testing::installLogWatch();
  return RUN_ALL_TESTS();
}
