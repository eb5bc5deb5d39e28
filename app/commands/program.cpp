#include "app/commands/program.h"

#include "app/commands/Command.h"
#include "app/commands/HelpCommand.h"
#include "app/commands/RunCommand.h"
#include "app/commands/failures.h"
#include "app/commands/output_files.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/version.h"

#include <QtGui/QIcon>
#include <QtWidgets/QApplication>

#include <exception>
#include <memory>
#include <new>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
// Set for a program that was started anew because its display did not answer; names the display.
constexpr char LostDisplayVariable[] = "ZQTICKER_LOST_DISPLAY";

// While Qt looks for the display; Qt ends the process where there is none.
char** argumentsWhileConnecting = nullptr;

// The same command again, in an environment without a display. Returns only where that fails.
void restartWithoutDisplay() {
  const QByteArray display =
      qEnvironmentVariableIsEmpty("DISPLAY") ? qgetenv("WAYLAND_DISPLAY") : qgetenv("DISPLAY");
  qputenv(LostDisplayVariable, display);
  for (const char* variable : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
    qunsetenv(variable);
  ::execv("/proc/self/exe", argumentsWhileConnecting);
}

void handleMessage(QtMsgType type, const QMessageLogContext& context, const QString& message) {
  if (type == QtFatalMsg && argumentsWhileConnecting)
    restartWithoutDisplay();
  const bool isOwn = context.category && QByteArrayView(context.category).startsWith("zqticker");
  if (type == QtFatalMsg || (isOwn && (type == QtWarningMsg || type == QtCriticalMsg)))
    printError(message);
}

bool asksForHelp(const OptionTable& table, const QStringList& arguments) {
  if (arguments == QStringList{u"-h"_s})
    return true;
  for (const ParsedOption& option : parseOptions(table, arguments))
    if (option.name == "help"_L1)
      return true;
  return false;
}

// For a command that draws, but not on a display.
template <class Application = QGuiApplication>
class OffscreenApplication {
 public:
  explicit OffscreenApplication(char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // Pixels are those asked for, whatever the desktop's scale is.
    for (const char* variable : {"QT_SCALE_FACTOR", "QT_SCREEN_SCALE_FACTORS", "QT_FONT_DPI"})
      qunsetenv(variable);
    application_ = std::make_unique<Application>(argc_, argv);
  }

 private:
  int argc_ = 1;
  std::unique_ptr<Application> application_;
};

int runOnDisplay(const Command& command, const QStringList& arguments, char** argv) {
  if (!hasDisplay()) {
    const QByteArray lost = qgetenv(LostDisplayVariable);
    const OffscreenApplication<> application(argv);
    return command.runWithoutDisplay(
        arguments, lost.isEmpty() ? u"no display"_s
                                  : u"display %1 does not answer"_s.arg(QString::fromUtf8(lost)));
  }
  int argc = 1;
  argumentsWhileConnecting = argv;
  QApplication application(argc, argv);
  argumentsWhileConnecting = nullptr;
  QApplication::setQuitOnLastWindowClosed(false);
  QGuiApplication::setDesktopFileName(u"org.zqticker.Ticker"_s);
  QGuiApplication::setWindowIcon(QIcon::fromTheme(QGuiApplication::desktopFileName()));
  return command.run(arguments);
}

int run(const Command& command, const QStringList& arguments, char** argv) {
  if (command.prepare)
    if (const std::optional<int> status = command.prepare(arguments))
      return *status;
  switch (command.application) {
  case Application::None:
    break;
  case Application::Core: {
    int argc = 1;
    const QCoreApplication application(argc, argv);
    return command.run(arguments);
  }
  case Application::OffscreenGui: {
    const OffscreenApplication<> application(argv);
    return command.run(arguments);
  }
  case Application::OffscreenWidgets: {
    const OffscreenApplication<QApplication> application(argv);
    return command.run(arguments);
  }
  case Application::Display:
    return runOnDisplay(command, arguments, argv);
  }
  return command.run(arguments);
}

int dispatch(const QStringList& arguments, char** argv) {
  const QString first = arguments.value(0);
  if (first == "--version"_L1) {
    writeStandardOutput("zqticker " ZQTICKER_VERSION "\n");
    return Success;
  }
  const QStringList help{u"--help"_s, u"-h"_s};
  if (help.contains(first)) {
    writeStandardOutput(programHelp().toUtf8());
    return Success;
  }
  // Of commands that only share their first word, as "feed".
  if (arguments.size() == 2 && help.contains(arguments.last()) && !commandsNamed(first).empty()) {
    writeStandardOutput(helpOf(first).toUtf8());
    return Success;
  }
  const CommandLine line = findCommand(arguments);
  if (asksForHelp(*line.command->table, line.arguments)) {
    writeStandardOutput(helpOf(line.command->name()).toUtf8());
    return Success;
  }
  return run(*line.command, line.arguments, argv);
}
} // namespace

int runProgram(int argc, char** argv) {
  qInstallMessageHandler(handleMessage);
  QStringList arguments;
  for (int i = 1; i < argc; ++i)
    arguments.append(QString::fromLocal8Bit(argv[i]));
  try {
    return dispatch(arguments, argv);
  } catch (const CommandFailure& failure) {
    printError(failure.message());
    return failure.status();
  } catch (const platform::Exception& exception) {
    printError(exception.reason());
  } catch (const std::bad_alloc&) {
    printError(u"out of memory"_s);
  } catch (const std::exception& exception) {
    printError(QString::fromUtf8(exception.what()));
  }
  return RunTimeFailure;
}

} // namespace zq::app
