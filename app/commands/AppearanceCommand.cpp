#include "app/commands/AppearanceCommand.h"

#include "app/commands/ContactSheet.h"
#include "app/commands/JsonValue.h"
#include "app/commands/appearance_json.h"
#include "app/commands/appearance_tables.h"
#include "app/commands/failures.h"
#include "app/commands/output_files.h"
#include "app/commands/sign_loading.h"
#include "app/intake/SilencedStandardError.h"
#include "zqticker/rollover/ZQRollOverButtonAppearance.h"

#include <QtCore/QBuffer>
#include <QtCore/QFileInfo>

#include <optional>

using namespace Qt::StringLiterals;

namespace zq::app {

using namespace platform;

namespace {

// The most bytes of a description; far more than any needs.
constexpr qsizetype LargestDescription = qsizetype(16) << 20;

// Pixels a point of the sheets that are written where no scale is asked for.
constexpr int PlainScale = 1;
constexpr int FineScale = 2;
constexpr int LargestScale = 4;

struct Options {
  QString file;
  QString output;
  std::optional<int> scale;
  std::optional<QColor> background;
};

Options readOptions(const OptionTable& table, const QStringList& arguments) {
  Options options;
  for (const ParsedOption& option : parseOptions(table, arguments)) {
    if (option.isOperand())
      options.file = option.values.first();
    else if (option.name == "output"_L1)
      options.output = option.values.first();
    else if (option.name == "scale"_L1)
      options.scale = int(integerOf(option, 1, LargestScale));
    else if (option.name == "background"_L1)
      options.background = colorOf(option);
  }
  if (options.file.isEmpty())
    throw UsageError(u"the file name is empty"_s);
  return options;
}

void requireOutput(const Options& options) {
  if (options.output.isEmpty())
    throw UsageError(u"--output: missing; say which file to write"_s);
}

// What `make` gives of the appearance in `file`. Libraries that read pictures are kept from
// standard error meanwhile.
template <class Make>
auto madeOfAppearance(const QString& file, const Make& make) {
  const QString name = quotedForMessage(file);
  const QByteArray data = readFile(name, file);
  try {
    const SilencedStandardError silence;
    const auto appearance = ZQRollOverButtonAppearance::appearanceWithDataRepresentation(data);
    if (!appearance)
      throw RunTimeError(name + u": holds nothing, not an appearance"_s);
    return make(*appearance);
  } catch (const Exception& exception) {
    throw RunTimeError(name + u": "_s + exception.reason());
  }
}

QByteArray png(const QImage& image) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  if (!image.save(&buffer, "png"))
    throw RunTimeError(u"the sheet: cannot be made a picture"_s);
  return bytes;
}

// sheet.png to sheet@2x.png; nothing for other endings.
std::optional<QString> nameOfFine(const QString& output) {
  const QString ending = u".png"_s;
  if (!output.endsWith(ending, Qt::CaseInsensitive) || QFileInfo(output).baseName().isEmpty())
    return std::nullopt;
  QString name = output;
  return name.insert(output.size() - ending.size(), u"@2x"_s);
}

int showAppearanceCommand(const QStringList& arguments) {
  const Options options = readOptions(appearanceShowTable(), arguments);
  writeStandardOutput(madeOfAppearance(
      options.file, [](const ZQRollOverButtonAppearance& appearance) -> QByteArray {
        return jsonOfAppearance(appearance).json().toUtf8() + '\n';
      }));
  return Success;
}

int makeAppearanceCommand(const QStringList& arguments) {
  const Options options = readOptions(appearanceMakeTable(), arguments);
  requireOutput(options);
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

int previewAppearanceCommand(const QStringList& arguments) {
  const Options options = readOptions(appearancePreviewTable(), arguments);
  requireOutput(options);
  const std::optional<QString> fine = nameOfFine(options.output);
  if (!options.scale && !fine)
    throw UsageError(u"--output "_s + quotedForMessage(options.output) +
                     u": must end with .png where --scale is left out"_s);
  const auto files =
      madeOfAppearance(options.file, [&](const ZQRollOverButtonAppearance& appearance) {
        const ContactSheet sheet(
            appearance, quotedForMessage(QFileInfo(options.file).fileName()),
            options.background.value_or(ContactSheet::usualGround(appearance)));
        std::vector<OutputFile> made{
            {options.output, png(sheet.image(options.scale.value_or(PlainScale)))}};
        if (!options.scale)
          made.push_back({*fine, png(sheet.image(FineScale))});
        return made;
      });
  writeOutputFiles(u"--output"_s, files);
  return Success;
}
} // namespace

const std::vector<Command>& appearanceCommands() {
  static const std::vector<Command> commands{
      {&appearanceShowTable(), CommandGroup::Signs, Application::Core, showAppearanceCommand},
      {&appearanceMakeTable(), CommandGroup::Signs, Application::Core, makeAppearanceCommand},
      // Menus exist in an application with widgets only.
      {&appearancePreviewTable(), CommandGroup::Signs, Application::OffscreenWidgets,
       previewAppearanceCommand}};
  return commands;
}

} // namespace zq::app
