#include "app/commands/FeedCommand.h"

#include "app/commands/OutputValue.h"
#include "app/commands/failures.h"
#include "app/commands/output_files.h"
#include "app/commands/url_loading.h"
#include "app/services/FeedParser.h"
#include "zqticker/platform/system/URLConnection.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <memory>

using namespace Qt::StringLiterals;

namespace zq::app {

using namespace platform;

namespace {
OptionTable makeFeedCheckTable() {
  OptionTable table;
  table.command = u"feed check"_s;
  table.brief = u"read a feed and tell what is in it"_s;
  table.summary = u"Reads a feed and prints what the ticker would show of it, and what is odd "
                  u"about it."_s;
  table.operands = {u"URL"_s};
  table.options = {
      {u"json"_s, {}, u"Print it as JSON, also what was read of a broken feed."_s},
      {u"timeout"_s,
       {u"SECONDS"_s},
       u"Give up when nothing has come for so long; 60 by default."_s},
      {u"help"_s, {}, u"Print this text."_s},
  };
  table.notes = {
      u"URL is an address or the name of a file. Feeds are RSS 0.9x, 1.0 and 2.0, Atom, and JSON "
      u"Feed 1.0 and 1.1, of at most 16 MiB and 200 levels; the first 1,000 items are read."_s};
  table.exitStatus =
      u"0, 1 where the feed could not be loaded or read to its end, 2 for a wrong command line."_s;
  table.examples = {u"zqticker feed check https://www.debian.org/News/news"_s,
                    u"The items that the ticker would show."_s,
                    u"zqticker feed check --json feed.xml"_s, u"A file, for a script."_s};
  return table;
}

const OptionTable& feedCheckTable() {
  static const OptionTable table = makeFeedCheckTable();
  return table;
}

constexpr int LeastFailedStatus = 300; // of HTTP

struct CheckOptions {
  QString source;
  bool json = false;
  double timeoutSeconds = URLRequest::DefaultTimeoutInterval;
};

// A feed as it was read, or as far as that went.
struct CheckedFeed {
  std::unique_ptr<FeedParser> parser; // null where nothing was read
  QUrl url;
  QString error;
};

CheckOptions readOptions(const QStringList& arguments) {
  CheckOptions options;
  for (const ParsedOption& option : parseOptions(feedCheckTable(), arguments)) {
    if (option.isOperand())
      options.source = option.values.first();
    else if (option.name == "json"_L1)
      options.json = true;
    else if (option.name == "timeout"_L1)
      options.timeoutSeconds = timeoutOf(option);
  }
  return options;
}

// What has no scheme is a file, and so is what is there.
bool isFile(const QString& source) {
  return QFileInfo::exists(source) || QUrl(source).scheme().isEmpty();
}

CheckedFeed checkFile(const QString& path) {
  constexpr qint64 BytesPerRead = 64 << 10;
  CheckedFeed checked;
  checked.url = QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath());
  QFile file(path);
  if (QFileInfo(path).isDir())
    checked.error = u"a folder"_s;
  else if (!file.open(QIODevice::ReadOnly))
    checked.error = u"cannot read: "_s + file.errorString();
  if (!checked.error.isEmpty())
    return checked;
  checked.parser = std::make_unique<FeedParser>(checked.url);
  QByteArray bytes = file.read(BytesPerRead);
  while (!bytes.isEmpty() && !checked.parser->isComplete() && checked.parser->addData(bytes))
    bytes = file.read(BytesPerRead);
  checked.parser->finish();
  checked.error = checked.parser->errorText();
  return checked;
}

CheckedFeed checkAddress(const QUrl& url, double timeoutSeconds) {
  CheckedFeed checked;
  checked.url = url;
  URLConnection::setMaximumBodyLength(FeedLimits().bytes);
  const std::optional<LoadedURL> loaded =
      loadAndWait(url, URLRequestCachePolicy::ReloadIgnoringCacheData, timeoutSeconds);
  if (!loaded) {
    checked.error = u"interrupted"_s;
  } else if (loaded->error || !loaded->data) {
    checked.error = loaded->error ? loaded->error->localizedDescription() : u"nothing came"_s;
  } else if (loaded->response && loaded->response->statusCode() >= LeastFailedStatus) {
    checked.url = loaded->response->URL();
    checked.error = u"the server answers with status %1"_s.arg(loaded->response->statusCode());
  } else {
    QString contentType;
    if (loaded->response) {
      checked.url = loaded->response->URL();
      contentType = loaded->response->valueForHTTPHeaderField(u"Content-Type").value_or(QString());
    }
    checked.parser = std::make_unique<FeedParser>(checked.url, contentType);
    checked.parser->addData(*loaded->data);
    checked.parser->finish();
    checked.error = checked.parser->errorText();
  }
  return checked;
}

QString textOf(const QUrl& url) {
  return url.toString(QUrl::FullyEncoded | QUrl::RemovePassword);
}

OutputValue valueOf(const QString& text) {
  return text.isEmpty() ? OutputValue() : OutputValue::string(text);
}

OutputValue valueOf(const FeedItem& item) {
  OutputValue value = OutputValue::map();
  value.insert(u"identity"_s, valueOf(item.identity));
  value.insert(u"title"_s, valueOf(item.title));
  value.insert(u"link"_s, valueOf(textOf(item.link)));
  value.insert(u"picture"_s, valueOf(textOf(item.picture)));
  value.insert(u"published"_s,
               item.published ? valueOf(item.published->toString(Qt::ISODate)) : OutputValue());
  return value;
}

QString jsonOf(const CheckedFeed& checked) {
  const Feed nothing;
  const Feed& feed = checked.parser ? checked.parser->feed() : nothing;
  OutputValue value = OutputValue::map();
  value.insert(u"outcome"_s, valueOf(checked.error.isEmpty() ? u"finished"_s : u"failed"_s));
  value.insert(u"url"_s, valueOf(textOf(checked.url)));
  value.insert(u"format"_s, valueOf(feed.format));
  value.insert(u"title"_s, valueOf(feed.title));
  value.insert(u"link"_s, valueOf(textOf(feed.link)));
  value.insert(u"picture"_s, valueOf(textOf(feed.picture)));
  value.insert(u"timeToLive"_s,
               feed.timeToLive ? OutputValue::integer(feed.timeToLive->count()) : OutputValue());
  OutputValue items = OutputValue::list();
  for (const FeedItem& item : feed.items)
    items.append(valueOf(item));
  value.insert(u"items"_s, items);
  value.insert(u"furtherItems"_s,
               OutputValue::boolean(checked.parser && checked.parser->hasFurtherItems()));
  OutputValue warnings = OutputValue::list();
  for (const QString& warning : checked.parser ? checked.parser->warnings() : QStringList())
    warnings.append(valueOf(warning));
  value.insert(u"warnings"_s, warnings);
  value.insert(u"error"_s, valueOf(checked.error));
  return value.json() + u'\n';
}

// For people: the feed, its items with their numbers, what is odd.
QString reportOf(const FeedParser& parser) {
  const Feed& feed = parser.feed();
  QString report;
  const auto add = [&report](const QString& name, const QString& value) {
    if (!value.isEmpty())
      report += name + u": "_s + value + u'\n';
  };
  add(u"Format"_s, feed.format);
  add(u"Title"_s, feed.title);
  add(u"Link"_s, textOf(feed.link));
  add(u"Picture"_s, textOf(feed.picture));
  if (feed.timeToLive)
    add(u"Time to live"_s, u"%1 s"_s.arg(feed.timeToLive->count()));
  const QString further = parser.hasFurtherItems() ? u" (there are more)"_s : QString();
  add(u"Items"_s, QString::number(feed.items.size()) + further);
  int number = 0;
  for (const FeedItem& item : feed.items) {
    report += u"\n%1. "_s.arg(++number) + item.title + u'\n';
    add(u"   Link"_s, textOf(item.link));
    if (item.published)
      add(u"   Date"_s, item.published->toString(u"yyyy-MM-dd hh:mm:ss 'UTC'"_s));
    add(u"   Picture"_s, textOf(item.picture));
  }
  const QStringList warnings = parser.warnings();
  if (!warnings.isEmpty())
    report += u'\n';
  for (const QString& warning : warnings)
    add(u"Warning"_s, warning);
  return report;
}

int feedCheckCommand(const QStringList& arguments) {
  const CheckOptions options = readOptions(arguments);
  const bool readsFile = isFile(options.source);
  const CheckedFeed checked = readsFile
                                  ? checkFile(options.source)
                                  : checkAddress(addressOf(options.source), options.timeoutSeconds);
  if (options.json)
    writeStandardOutput(jsonOf(checked).toUtf8());
  else if (checked.error.isEmpty())
    writeStandardOutput(reportOf(*checked.parser).toUtf8());
  if (!checked.error.isEmpty())
    throw RunTimeError(
        quotedForMessage(readsFile ? options.source : checked.url.toDisplayString()) + u": "_s +
        checked.error);
  return Success;
}
} // namespace

const std::vector<Command>& feedCommands() {
  static const std::vector<Command> commands{
      {&feedCheckTable(), CommandGroup::Sources, Application::Core, feedCheckCommand}};
  return commands;
}

} // namespace zq::app
