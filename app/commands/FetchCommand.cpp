#include "app/commands/FetchCommand.h"

#include "app/commands/OutputValue.h"
#include "app/commands/TransferProgress.h"
#include "app/commands/command_tables.h"
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
struct FetchOptions {
  QUrl url;
  bool json = false;
  std::optional<QString> output;
  URLRequestCachePolicy policy = URLRequestCachePolicy::UseProtocolCachePolicy;
  double timeoutSeconds = URLRequest::DefaultTimeoutInterval;
};

URLRequestCachePolicy policyOf(const ParsedOption& option) {
  const QStringList names{u"protocol"_s, u"ignore-cache"_s, u"cache-else-load"_s, u"cache-only"_s};
  switch (names.indexOf(wordOf(option, names))) {
  case 1:
    return URLRequestCachePolicy::ReloadIgnoringCacheData;
  case 2:
    return URLRequestCachePolicy::ReturnCacheDataElseLoad;
  case 3:
    return URLRequestCachePolicy::ReturnCacheDataDontLoad;
  default:
    return URLRequestCachePolicy::UseProtocolCachePolicy;
  }
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
} // namespace

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

} // namespace zq::app
