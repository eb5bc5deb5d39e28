#include "app/commands/program.h"

#include "app/commands/AppearanceCommand.h"
#include "app/commands/ArchiveCommand.h"
#include "app/commands/FeedCommand.h"
#include "app/commands/FetchCommand.h"
#include "app/commands/RenderCommand.h"
#include "app/commands/RunCommand.h"
#include "app/commands/SignCommand.h"
#include "app/commands/StripOptions.h"
#include "app/commands/WatchCommand.h"
#include "app/commands/appearance_tables.h"
#include "app/commands/command_tables.h"
#include "app/commands/failures.h"
#include "app/commands/output_files.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/version.h"

#include <QtWidgets/QApplication>

#include <cstdio>
#include <cstdlib>
#include <exception>
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

void print(const QString& text) {
  const QByteArray bytes = text.toUtf8();
  std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stdout);
}

bool asksForHelp(const OptionTable& table, const QStringList& arguments) {
  if (arguments == QStringList{u"-h"_s})
    return true;
  for (const ParsedOption& option : parseOptions(table, arguments))
    if (option.name == "help"_L1)
      return true;
  return false;
}

// A command that draws, but not on a display. Menus exist in an application with widgets only.
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

int runOnDisplay(const QStringList& arguments, char** argv) {
  // Before the display is looked for: a wrong command line is wrong everywhere.
  readRunOptions(arguments);
  if (!hasDisplay()) {
    const QByteArray lost = qgetenv(LostDisplayVariable);
    const OffscreenApplication<> application(argv);
    return runWithoutDisplay(
        arguments, lost.isEmpty() ? u"no display"_s
                                  : u"display %1 does not answer"_s.arg(QString::fromUtf8(lost)));
  }
  int argc = 1;
  argumentsWhileConnecting = argv;
  QApplication application(argc, argv);
  argumentsWhileConnecting = nullptr;
  QApplication::setQuitOnLastWindowClosed(false);
  return runCommand(arguments);
}

int runHelp(const QStringList& arguments) {
  if (arguments.isEmpty()) {
    print(programHelp());
    return Success;
  }
  for (const OptionTable* table :
       {&runTable(), &renderTable(), &signTable(), &fetchTable(), &watchTable()})
    if (arguments == QStringList{table->command}) {
      print(helpText(*table));
      return Success;
    }
  if (arguments == QStringList{u"feed"_s} || arguments == QStringList{u"feed"_s, u"check"_s}) {
    print(helpText(feedCheckTable()));
    return Success;
  }
  const std::vector<const OptionTable*> appearances{&appearanceShowTable(), &appearanceMakeTable(),
                                                    &appearancePreviewTable()};
  if (arguments == QStringList{u"appearance"_s}) {
    QStringList texts;
    for (const OptionTable* table : appearances)
      texts.append(helpText(*table));
    print(texts.join(u'\n'));
    return Success;
  }
  for (const OptionTable* table : appearances)
    if (arguments == table->command.split(u' ')) {
      print(helpText(*table));
      return Success;
    }
  if (arguments == QStringList{u"archive"_s})
    return archiveCommand({u"--help"_s});
  throw UsageError(quotedForMessage(arguments.join(u' ')) + u": unknown command (see zqticker "
                                                            u"--help)"_s);
}

int runFeed(const QStringList& arguments, char** argv) {
  const QStringList help{u"--help"_s, u"-h"_s};
  if (arguments.size() == 1 && help.contains(arguments.first()))
    return runHelp({u"feed"_s});
  if (arguments.isEmpty() || arguments.first() != "check"_L1)
    throw UsageError(u"feed: needs \"check\" (see zqticker feed --help)"_s);
  if (asksForHelp(feedCheckTable(), arguments.sliced(1)))
    return runHelp({u"feed"_s});
  int argc = 1;
  const QCoreApplication application(argc, argv);
  return feedCheckCommand(arguments.sliced(1));
}

int runAppearance(const QStringList& arguments, char** argv) {
  if (arguments == QStringList{u"--help"_s} || arguments == QStringList{u"-h"_s})
    return runHelp({u"appearance"_s});
  const QString command = arguments.value(0);
  const OptionTable* table = command == "show"_L1      ? &appearanceShowTable()
                             : command == "make"_L1    ? &appearanceMakeTable()
                             : command == "preview"_L1 ? &appearancePreviewTable()
                                                       : nullptr;
  if (!table)
    throw UsageError(u"appearance: needs \"show\", \"make\" or \"preview\" (see zqticker "
                     u"appearance --help)"_s);
  const QStringList rest = arguments.sliced(1);
  if (asksForHelp(*table, rest))
    return runHelp({u"appearance"_s, command});
  if (command == "preview"_L1) {
    const OffscreenApplication<QApplication> application(argv);
    return previewAppearanceCommand(rest);
  }
  int argc = 1;
  const QCoreApplication application(argc, argv);
  return command == "show"_L1 ? showAppearanceCommand(rest) : makeAppearanceCommand(rest);
}

int runNamed(const QString& command, const QStringList& arguments, char** argv) {
  if (command == "render"_L1 || command == "sign"_L1) {
    const bool renders = command == "render"_L1;
    const OptionTable& table = renders ? renderTable() : signTable();
    if (asksForHelp(table, arguments))
      return runHelp({command});
    const OffscreenApplication<> application(argv);
    return renders ? renderCommand(arguments) : signCommand(arguments);
  }
  if (command == "archive"_L1) {
    const OffscreenApplication<> application(argv);
    return archiveCommand(arguments);
  }
  if (command == "fetch"_L1) {
    if (asksForHelp(fetchTable(), arguments))
      return runHelp({command});
    int argc = 1;
    const QCoreApplication application(argc, argv);
    return fetchCommand(arguments);
  }
  if (command == "watch"_L1) {
    if (asksForHelp(watchTable(), arguments))
      return runHelp({command});
    // Before the application opens descriptors of its own, one of which might take its place.
    requireStandardOutput();
    int argc = 1;
    const QCoreApplication application(argc, argv);
    return watchCommand(arguments);
  }
  if (command == "feed"_L1)
    return runFeed(arguments, argv);
  if (command == "appearance"_L1)
    return runAppearance(arguments, argv);
  if (command == "help"_L1)
    return runHelp(arguments);
  if (command != "run"_L1)
    throw UsageError(quotedForMessage(command) + u": unknown command (see zqticker --help)"_s);
  if (asksForHelp(runTable(), arguments))
    return runHelp({command});
  return runOnDisplay(arguments, argv);
}

int dispatch(const QStringList& arguments, char** argv) {
  if (arguments.isEmpty())
    return runNamed(u"run"_s, arguments, argv);
  const QString& first = arguments.first();
  if (first == "--version"_L1) {
    print(QStringLiteral("zqticker " ZQTICKER_VERSION "\n"));
    return Success;
  }
  if (first == "--help"_L1 || first == "-h"_L1)
    return runHelp({});
  if (first.startsWith(u'-'))
    return runNamed(u"run"_s, arguments, argv);
  return runNamed(first, arguments.sliced(1), argv);
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
