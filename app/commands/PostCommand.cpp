#include "app/commands/PostCommand.h"

#include "app/bus/TickerClient.h"
#include "app/bus/bus_names.h"
#include "app/commands/StripOptions.h"
#include "app/commands/failures.h"
#include "app/commands/output_files.h"
#include "app/commands/sign_loading.h"
#include "app/commands/strip_values.h"
#include "app/display/SignAction.h"
#include "app/intake/DisplayMessage.h"
#include "app/intake/SilencedStandardError.h"
#include "app/intake/message_pictures.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/graphics/ImageRepresentation.h"
#include "zqticker/signs/message_keys.h"

#include <QtCore/QBuffer>

using namespace Qt::StringLiterals;

namespace zq::app {

using namespace platform;

namespace {
// As far as a double counts whole numbers and a person writes them.
constexpr double LargestPriority = 1e9;
constexpr double LongestWait = 3600;
constexpr double UsualWait = 25;

OptionTable makePostTable() {
  OptionTable table;
  table.command = u"post"_s;
  table.brief = u"show a message on the running ticker"_s;
  table.summary = u"Sends a message to the ticker that runs, which shows it behind what is queued "
                  u"already. Where none runs, one is started."_s;
  table.options = {
      {u"text"_s, {u"TEXT"_s}, u"The text."_s},
      {u"image"_s, {u"FILE"_s}, u"The picture; the text follows it where there is one."_s},
      {u"loop"_s, {u"COUNT"_s}, u"How often it is shown: 1 (the default) or more, or forever."_s},
      delayOption(),
      continuousOption(),
      {u"fade"_s, {}, u"Fade in when it enters, and out when it leaves."_s},
      {u"priority"_s,
       {u"NUMBER"_s},
       u"Its place in the queue: of what has not been shown yet the highest number goes first; 0 "
       u"by default."_s},
      {u"identifier"_s,
       {u"NAME"_s},
       u"Its name: a further message with the same one takes its place."_s},
      {u"action"_s, {u"ADDRESS"_s}, u"What a click on it opens."_s},
      {u"sender"_s, {u"NAME"_s}, u"Who sends it, for people; the queue's window shows it."_s},
      {u"sender-id"_s,
       {u"NAME"_s},
       u"Who sends it, for the ticker, which limits how much each sender may send: such as "
       u"\"org.example.weather\". All senders without one have one share together."_s},
      {u"print-identifier"_s,
       {},
       u"Print the identifier under which it is queued; one is made where --identifier gives "
       u"none."_s},
      {u"timeout"_s,
       {u"SECONDS"_s},
       u"Give up when the ticker has not answered for so long; 25 by default."_s},
      {u"help"_s, {}, u"Print this text."_s},
  };
  table.notes = {
      u"A picture is sent as it is where the file is a TIFF or PNG file, else as a PNG file; of "
      u"several in a file the first is taken. It may have 8 MiB and 16 million pixels at most, the "
      u"text 1,000,000 characters."_s,
      u"The message goes over the session bus, to org.zqticker.Ticker. Nothing is printed where it "
      u"was taken."_s};
  table.examples = {
      u"zqticker post --text \"Tea is ready\""_s,
      u"A line of text, once."_s,
      u"zqticker post --text \"21 °C\" --image sun.png --loop forever --identifier weather"_s,
      u"A picture and a text that stay until the next message called weather takes their place."_s,
      u"make; zqticker post --priority 1 --text \"make: status $?\""_s,
      u"The end of a long command, before everything else that waits."_s};
  table.exitStatus =
      u"0, 1 where the message could not be sent or was refused, 2 for a wrong command line."_s;
  return table;
}

const OptionTable& postTable() {
  static const OptionTable table = makePostTable();
  return table;
}

struct PostOptions {
  QVariantMap message;
  QString imageOption; // as the user wrote it
  QString imageFile;
  bool printsIdentifier = false;
  double waitSeconds = UsualWait;
};

QString textOf(const ParsedOption& option) {
  const QString& text = option.values.first();
  if (text.trimmed().isEmpty())
    throw UsageError(u"--%1: needs %2"_s.arg(option.name, option.spec->values.first()));
  return text;
}

void read(const ParsedOption& option, PostOptions& options) {
  QVariantMap& message = options.message;
  const QString& name = option.name;
  if (name == "text"_L1) {
    message.insert(ZQTickerMessageTextKey, textOf(option));
  } else if (name == "image"_L1) {
    options.imageOption = option.text();
    options.imageFile = textOf(option);
  } else if (name == "loop"_L1) {
    message.insert(ZQTickerMessageLoopCountKey, static_cast<int>(loopCountOf(option)));
  } else if (name == "delay"_L1) {
    message.insert(ZQTickerMessageLoopDelayKey, numberOf(option, 0, LongestLoopDelay));
  } else if (name == "continuous"_L1) {
    message.insert(ZQTickerMessageContinuousScrollingKey, true);
  } else if (name == "fade"_L1) {
    message.insert(ZQTickerMessageFadeInOutTypeKey, 1);
  } else if (name == "priority"_L1) {
    message.insert(ZQTickerMessagePriorityKey, numberOf(option, -LargestPriority, LargestPriority));
  } else if (name == "identifier"_L1) {
    message.insert(ZQTickerMessageIdentifierKey, textOf(option));
  } else if (name == "action"_L1) {
    message.insert(ZQTickerMessageActionTypeKey, static_cast<int>(OpenLocation));
    message.insert(ZQTickerMessageActionStringKey, textOf(option));
  } else if (name == "sender"_L1) {
    message.insert(ZQTickerMessageSenderNameKey, textOf(option));
  } else if (name == "sender-id"_L1) {
    message.insert(ZQTickerMessageSenderIdentifierKey, textOf(option));
  } else if (name == "print-identifier"_L1) {
    options.printsIdentifier = true;
  } else if (name == "timeout"_L1) {
    options.waitSeconds = numberOf(option, 0.1, LongestWait);
  }
}

PostOptions readOptions(const QStringList& arguments) {
  PostOptions options;
  for (const ParsedOption& option : parseOptions(postTable(), arguments))
    read(option, options);
  if (!options.message.contains(ZQTickerMessageTextKey) && options.imageFile.isEmpty())
    throw UsageError(u"post: needs --text or --image (see zqticker post --help)"_s);
  return options;
}

// The first picture in `bytes` as PNG data, at its own size in points; empty where there is none.
QByteArray converted(const QByteArray& bytes) {
  constexpr double DotsPerMetre = 72 / 0.0254; // of one pixel a point
  const SilencedStandardError silence;
  const Ref<Image> image = Image::initWithData(bytes);
  if (!image || image->size().isEmpty())
    return QByteArray();
  QImage bitmap = image->representations().front()->bitmap();
  const int dots = qRound(DotsPerMetre * bitmap.width() / image->size().width());
  bitmap.setDotsPerMeterX(dots);
  bitmap.setDotsPerMeterY(dots);
  QByteArray png;
  QBuffer buffer(&png);
  buffer.open(QIODevice::WriteOnly);
  bitmap.save(&buffer, "png");
  return png;
}

// The picture as it is sent. What the ticker would refuse fails here already.
QByteArray pictureOf(const PostOptions& options) {
  QByteArray bytes = readFile(options.imageOption, options.imageFile);
  if (!pixelCountOf(bytes))
    bytes = converted(bytes);
  if (bytes.isEmpty())
    throw RunTimeError(options.imageOption +
                       u": not a picture that can be read, or too large a one"_s);
  QString complaint;
  if (!decodeMessagePicture(bytes, complaint))
    throw RunTimeError(options.imageOption + u": "_s + complaint);
  return bytes;
}

QString reasonOf(const BusReply& reply) {
  if (reply.errorName.startsWith("org.zqticker.Error."_L1) && reply.errorName != NoBusErrorName)
    return u"the ticker refuses the message: "_s + reply.errorMessage;
  if (reply.errorName.startsWith("org.freedesktop.DBus.Error.Spawn."_L1))
    return u"the ticker cannot be started: "_s + reply.errorMessage;
  if (reply.isUnreachable() && reply.errorName != NoBusErrorName)
    return reply.errorMessage + u", and the bus knows none to start"_s;
  return reply.errorMessage;
}

int postCommand(const QStringList& arguments) {
  PostOptions options = readOptions(arguments);
  if (!options.imageFile.isEmpty())
    options.message.insert(ZQTickerMessageImageKey, pictureOf(options));
  TickerClient client;
  client.setDeadline(qRound(options.waitSeconds * 1000));
  const BusReply reply = client.displayMessage(options.message);
  if (!reply.ok)
    throw RunTimeError(reasonOf(reply));
  if (options.printsIdentifier)
    writeStandardOutput(reply.identifier.toUtf8() + '\n');
  return Success;
}
} // namespace

const std::vector<Command>& postCommands() {
  static const std::vector<Command> commands{
      {&postTable(), CommandGroup::Ticker, Application::Core, postCommand}};
  return commands;
}

} // namespace zq::app
