#include "app/commands/AppearanceCommand.h"

#include "app/commands/JsonValue.h"
#include "app/commands/appearance_json.h"
#include "app/commands/appearance_tables.h"
#include "app/commands/failures.h"
#include "app/commands/output_files.h"
#include "app/commands/sign_loading.h"
#include "app/intake/SilencedStandardError.h"
#include "zqticker/rollover/ZQRollOverButtonAppearance.h"

using namespace Qt::StringLiterals;

namespace zq::app {

using namespace platform;

namespace {

// The most bytes of a description; far more than any needs.
constexpr qsizetype LargestDescription = qsizetype(16) << 20;

struct Options {
  QString file;
  QString output;
};

Options readOptions(const OptionTable& table, const QStringList& arguments) {
  Options options;
  for (const ParsedOption& option : parseOptions(table, arguments)) {
    if (option.isOperand())
      options.file = option.values.first();
    else if (option.name == "output"_L1)
      options.output = option.values.first();
  }
  if (options.file.isEmpty())
    throw UsageError(u"the file name is empty"_s);
  return options;
}

} // namespace

int showAppearanceCommand(const QStringList& arguments) {
  const Options options = readOptions(appearanceShowTable(), arguments);
  const QString name = quotedForMessage(options.file);
  const QByteArray data = readFile(name, options.file);
  QByteArray json;
  try {
    // Libraries that read pictures write there.
    const SilencedStandardError silence;
    const auto appearance = ZQRollOverButtonAppearance::appearanceWithDataRepresentation(data);
    if (!appearance)
      throw RunTimeError(name + u": holds nothing, not an appearance"_s);
    json = jsonOfAppearance(*appearance).json().toUtf8() + '\n';
  } catch (const Exception& exception) {
    throw RunTimeError(name + u": "_s + exception.reason());
  }
  writeStandardOutput(json);
  return Success;
}

int makeAppearanceCommand(const QStringList& arguments) {
  const Options options = readOptions(appearanceMakeTable(), arguments);
  if (options.output.isEmpty())
    throw UsageError(u"--output: missing; say which file to write"_s);
  const QString name = quotedForMessage(options.file);
  const QByteArray text = readFile(name, options.file);
  if (text.size() > LargestDescription)
    throw RunTimeError(name + u": larger than %1 MiB"_s.arg(LargestDescription >> 20));
  QByteArray data;
  try {
    const SilencedStandardError silence;
    data = ZQRollOverButtonAppearance::dataRepresentationFromAppearance(appearanceOfJson(text));
  } catch (const Exception& exception) {
    throw RunTimeError(name + u": "_s + exception.reason());
  }
  writeOutputFile(u"--output"_s, options.output, data);
  return Success;
}

} // namespace zq::app
