#include "app/commands/FetchCommand.h"

#include "app/commands/OutputValue.h"
#include "app/commands/TransferProgress.h"
#include "app/commands/failures.h"
#include "app/commands/output_files.h"
#include "app/commands/size_text.h"
#include "app/commands/url_loading.h"
#include "app/services/loading_setup.h"

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace zq::app {

using namespace platform;

namespace {
OptionTable makeFetchTable() {
  OptionTable table;
  table.command = u"fetch"_s;
  table.brief = u"load the contents of an address"_s;
  table.summary =
      u"Loads the contents of an address and writes them to standard output or a file."_s;
  table.operands = {u"URL"_s};
  table.options = {
      {u"json"_s,
       {},
       u"Print what came of it as JSON instead of the contents: outcome, number of bytes, the same "
       u"as a size for people (\"1.5 KB\"), response and error."_s},
      {u"policy"_s,
       {u"POLICY"_s},
       u"How the cache is used."_s,
       false,
       false,
       {{u"protocol"_s, u"the default; as HTTP has it"_s},
        {u"ignore-cache"_s, {}},
        {u"cache-else-load"_s, u"whatever its age"_s},
        {u"cache-only"_s, {}}}},
      {u"timeout"_s,
       {u"SECONDS"_s},
       u"Give up when nothing has come for so long; 60 by default."_s},
      {u"output"_s, {u"FILE"_s}, u"The file to write."_s},
      {u"help"_s, {}, u"Print this text."_s},
  };
  table.notes = {
      u"Addresses begin with http://, https://, file:// or data:. Redirects are followed, up to "
      u"20; compressed contents are written decoded. The page that comes with an HTTP error status "
      u"is contents like any other; --json tells the status. At most 2 GiB are loaded."_s,
      u"Proxies are those of the environment (http_proxy, https_proxy, all_proxy, no_proxy). Where "
      u"SSL_CERT_FILE names a file, its certificates are trusted instead of the system's. A "
      u"progress bar runs on standard error where that is a terminal. The file is complete or not "
      u"there."_s};
  table.exitStatus =
      u"0, 1 where the contents could not be loaded or written, 2 for a wrong command line."_s;
  table.examples = {u"zqticker fetch https://www.debian.org/News/news --output news.rdf"_s,
                    u"A feed into a file."_s,
                    u"zqticker fetch --json --timeout 5 https://www.debian.org/"_s,
                    u"Whether a server answers, and with what."_s};
  return table;
}

const OptionTable& fetchTable() {
  static const OptionTable table = makeFetchTable();
  return table;
}

struct FetchOptions {
  QUrl url;
  bool json = false;
  std::optional<QString> output;
  URLRequestCachePolicy policy = URLRequestCachePolicy::UseProtocolCachePolicy;
  double timeoutSeconds = URLRequest::DefaultTimeoutInterval;
};

URLRequestCachePolicy policyOf(const ParsedOption& option) {
  const QString word = wordOf(option);
  if (word == "ignore-cache"_L1)
    return URLRequestCachePolicy::ReloadIgnoringCacheData;
  if (word == "cache-else-load"_L1)
    return URLRequestCachePolicy::ReturnCacheDataElseLoad;
  return word == "cache-only"_L1 ? URLRequestCachePolicy::ReturnCacheDataDontLoad
                                 : URLRequestCachePolicy::UseProtocolCachePolicy;
}

FetchOptions readOptions(const QStringList& arguments) {
  FetchOptions options;
  for (const ParsedOption& option : parseOptions(fetchTable(), arguments)) {
    if (option.isOperand())
      options.url = addressOf(option.values.first());
    else if (option.name == "json"_L1)
      options.json = true;
    else if (option.name == "output"_L1)
      options.output = option.values.first();
    else if (option.name == "policy"_L1)
      options.policy = policyOf(option);
    else if (option.name == "timeout"_L1)
      options.timeoutSeconds = timeoutOf(option);
  }
  return options;
}

OutputValue valueOf(const Ref<URLResponse>& response) {
  if (!response)
    return {};
  OutputValue headers = OutputValue::map();
  QStringList seen;
  for (const auto& [name, value] : response->allHeaderFields()) {
    if (seen.contains(name, Qt::CaseInsensitive))
      continue;
    seen.append(name);
    headers.insert(name, OutputValue::string(*response->valueForHTTPHeaderField(name)));
  }
  OutputValue value = OutputValue::map();
  value.insert(u"status"_s, OutputValue::integer(response->statusCode()));
  value.insert(u"url"_s, OutputValue::string(
                             response->URL().toString(QUrl::FullyEncoded | QUrl::RemovePassword)));
  value.insert(u"headers"_s, headers);
  return value;
}

OutputValue valueOf(const Ref<Error>& error) {
  if (!error)
    return {};
  OutputValue value = OutputValue::map();
  value.insert(u"domain"_s, OutputValue::string(error->domain()));
  value.insert(u"code"_s, OutputValue::integer(error->code()));
  value.insert(u"text"_s, OutputValue::string(error->localizedDescription()));
  return value;
}

QByteArray jsonOf(const LoadedURL& loaded) {
  OutputValue value = OutputValue::map();
  value.insert(u"outcome"_s, OutputValue::string(loaded.data ? u"finished"_s : u"failed"_s));
  const qint64 bytes = loaded.data ? loaded.data->size() : 0;
  value.insert(u"bytes"_s, OutputValue::integer(bytes));
  value.insert(u"size"_s, OutputValue::string(sizeText(bytes)));
  value.insert(u"response"_s, valueOf(loaded.response));
  value.insert(u"error"_s, valueOf(loaded.error));
  return value.json().toUtf8() + '\n';
}

int fetchCommand(const QStringList& arguments) {
  const FetchOptions options = readOptions(arguments);
  useCacheFolder();
  // A body on the terminal would run into the bar.
  const bool bodyOnTerminal = !options.json && !options.output && ::isatty(STDOUT_FILENO);
  std::optional<LoadedURL> loaded;
  {
    TransferProgress progress(!bodyOnTerminal);
    loaded = loadAndWait(options.url, options.policy, options.timeoutSeconds,
                         [&](qint64 received, qint64 total) { progress.show(received, total); });
  }
  const QString address = quotedForMessage(options.url.toDisplayString());
  if (!loaded)
    throw RunTimeError(address + u": interrupted"_s);
  if (loaded->data && options.output)
    writeOutputFile(u"--output"_s, *options.output, *loaded->data);
  if (options.json)
    writeStandardOutput(jsonOf(*loaded));
  else if (loaded->data && !options.output)
    writeStandardOutput(*loaded->data);
  if (loaded->error)
    throw RunTimeError(address + u": "_s + loaded->error->localizedDescription());
  return Success;
}
} // namespace

const std::vector<Command>& fetchCommands() {
  static const std::vector<Command> commands{
      {&fetchTable(), CommandGroup::Sources, Application::Core, fetchCommand}};
  return commands;
}

} // namespace zq::app
