#include "app/commands/ServiceCommand.h"

#include "app/bus/TickerClient.h"
#include "app/commands/StripOptions.h"
#include "app/commands/failures.h"
#include "app/commands/interrupts.h"
#include "app/commands/service_tables.h"
#include "app/commands/strip_setup.h"
#include "app/services/BusTickerLink.h"
#include "app/services/FeedService.h"
#include "app/services/FeedSigns.h"
#include "app/services/FeedSubscription.h"
#include "app/services/FileService.h"
#include "app/services/FileSigns.h"
#include "app/services/LineSigns.h"
#include "app/services/SignSender.h"
#include "app/services/loading_setup.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QCryptographicHash>
#include <QtCore/QDir>

#include <chrono>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace zq::app {

namespace {
constexpr int UsualPictureHeight = 128;
constexpr int LeastPictureHeight = 8;
constexpr int MostPictureHeight = 1024;
// Of a picture's room, in heights.
constexpr int PictureWidth = 4;
// How long a ticker is waited for that is to give back signs, besides the time that they take.
constexpr std::chrono::milliseconds EndPatience = 3s;
// Digits of the hash that tells services with other sources apart.
constexpr qsizetype HashDigits = 16;

enum class SourceKind { Feed, Watched, Tailed };

struct ServiceOptions {
  StripOptions strip; // sources and loops
  int pictureHeight = UsualPictureHeight;
  bool startsTicker = false;
  EndlessSigns atEnd = EndlessSigns::AreTakenBack;
};

ServiceOptions readOptions(const OptionTable& table, SourceKind kind,
                           const QStringList& arguments) {
  ServiceOptions options;
  for (const ParsedOption& option : parseOptions(table, arguments)) {
    if (option.isOperand() && kind == SourceKind::Feed)
      addFeed(options.strip.feeds, option);
    else if (option.isOperand())
      addFile(kind == SourceKind::Watched ? options.strip.files.watched
                                          : options.strip.files.tailed,
              option);
    else if (option.name == "picture-height"_L1)
      options.pictureHeight =
          static_cast<int>(integerOf(option, LeastPictureHeight, MostPictureHeight));
    else if (option.name == "start"_L1)
      options.startsTicker = true;
    else if (option.name == "keep"_L1)
      options.atEnd = EndlessSigns::Stay;
    else
      readStripOption(options.strip, option);
  }
  return options;
}

// The same for the same sources, wherever the service was started.
QString senderIdentifier(const ServiceOptions& options, const OptionTable& table) {
  QStringList sources;
  for (const QUrl& url : options.strip.feeds.feeds)
    sources.append(url.toString(QUrl::FullyEncoded));
  for (const QStringList* files : {&options.strip.files.watched, &options.strip.files.tailed})
    for (const QString& file : *files)
      sources.append(QDir::cleanPath(QDir().absoluteFilePath(file)));
  sources.sort();
  const QByteArray hash =
      QCryptographicHash::hash(sources.join(u'\0').toUtf8(), QCryptographicHash::Sha1).toHex();
  return u"org.zqticker."_s + QString(table.command).replace(u' ', u'.') + u':' +
         QString::fromLatin1(hash.first(HashDigits));
}

// What the services have in common: the way to the ticker, and the end.
class SendingProgram {
 public:
  // RunTimeError without a bus, and where a ticker is to be started and cannot be.
  SendingProgram(const ServiceOptions& options, const OptionTable& table);

  SignSender& sender() { return *sender_; }
  // Sends until the user ends it.
  int exec();

 private:
  void startTicker();
  void tellOfTicker();

  EndlessSigns atEnd_;
  Interrupts interrupts_;
  TickerClient client_;
  bool isWaiting_ = false; // for a ticker
  std::unique_ptr<BusTickerLink> link_;
  std::unique_ptr<SignSender> sender_;
};

SendingProgram::SendingProgram(const ServiceOptions& options, const OptionTable& table)
    : atEnd_(options.atEnd) {
  if (!client_.hasBus())
    throw RunTimeError(u"no session bus: there is no way to a ticker"_s);
  const bool hasTicker = client_.hasTicker();
  if (!hasTicker && options.startsTicker)
    startTicker();
  isWaiting_ = !hasTicker && !options.startsTicker;
  link_ = std::make_unique<BusTickerLink>(client_);
  sender_ = std::make_unique<SignSender>(*link_, senderIdentifier(options, table));
  tellOfTicker();
}

// A call that changes nothing, of a kind that starts the ticker.
void SendingProgram::startTicker() {
  client_.setStartsTicker(true);
  const BusReply reply = client_.arrangeSigns({});
  if (!reply.ok)
    throw RunTimeError(u"--start: "_s +
                       (reply.isUnreachable()
                            ? u"the session bus knows of no ticker that it could start"_s
                            : reply.errorMessage));
}

void SendingProgram::tellOfTicker() {
  QObject::connect(link_.get(), &TickerLink::vanished, link_.get(), [this] {
    isWaiting_ = true;
    printError(u"the ticker has gone, waiting for it"_s);
  });
  QObject::connect(link_.get(), &TickerLink::appeared, link_.get(), [this] {
    if (isWaiting_)
      printError(u"the ticker is there"_s);
    isWaiting_ = false;
  });
}

int SendingProgram::exec() {
  if (isWaiting_)
    printError(u"no ticker is running, waiting for it"_s);
  QObject::connect(sender_.get(), &SignSender::finished, sender_.get(),
                   [] { QCoreApplication::quit(); });
  QObject::connect(&interrupts_, &Interrupts::interrupted, sender_.get(), [this] {
    sender_->finish(atEnd_);
    QTimer::singleShot(EndPatience + sender_->removalTime(), [] { QCoreApplication::quit(); });
  });
  QCoreApplication::exec();
  return Success;
}

int feedServiceCommand(const QStringList& arguments) {
  const ServiceOptions options = readOptions(feedServiceTable(), SourceKind::Feed, arguments);
  SendingProgram program(options, feedServiceTable());
  prepareLoading();
  FeedSigns signs(program.sender(), feedRuleOf(options.strip));
  FeedService feeds(options.strip.feeds,
                    QSize(options.pictureHeight * PictureWidth, options.pictureHeight),
                    [&](const std::vector<ShownItem>& items) { signs.show(items); });
  feeds.start();
  return program.exec();
}

int fileServiceCommand(const OptionTable& table, SourceKind kind, const QStringList& arguments) {
  const ServiceOptions options = readOptions(table, kind, arguments);
  SendingProgram program(options, table);
  const LoopRule rule = lineRuleOf(options.strip);
  FileSigns reports(program.sender(), rule);
  LineSigns lines(program.sender(), rule);
  FileService files(options.strip.files,
                    {[&](const QString& line, const QString& path) { lines.show(line, path); },
                     [&](const FileReport& report) { reports.show(report); },
                     [&] { return program.sender().isFull(); }});
  if (const std::optional<FileFailure> failure = files.start())
    throw RunTimeError(quotedForMessage(failure->path) + u": "_s + failure->reason);
  return program.exec();
}

int watchServiceCommand(const QStringList& arguments) {
  return fileServiceCommand(watchServiceTable(), SourceKind::Watched, arguments);
}

int tailServiceCommand(const QStringList& arguments) {
  return fileServiceCommand(tailServiceTable(), SourceKind::Tailed, arguments);
}
} // namespace

const std::vector<Command>& serviceCommands() {
  static const std::vector<Command> commands{
      {&feedServiceTable(), CommandGroup::Ticker, Application::OffscreenGui, feedServiceCommand},
      {&watchServiceTable(), CommandGroup::Ticker, Application::OffscreenGui, watchServiceCommand},
      {&tailServiceTable(), CommandGroup::Ticker, Application::OffscreenGui, tailServiceCommand}};
  return commands;
}

} // namespace zq::app
