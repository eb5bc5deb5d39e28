// What fuzzers need that decode pictures, fonts and texts: an application without a window system,
// and silence.
#include <QtCore/QtGlobal>
#include <QtGui/QGuiApplication>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  // Lives as long as the process.
  new QGuiApplication(*argc, *argv);
  qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
  return 0;
}
