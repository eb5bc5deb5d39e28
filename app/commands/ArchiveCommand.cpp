#include "app/commands/ArchiveCommand.h"

#include "app/commands/ArchiveTree.h"
#include "app/commands/failures.h"
#include "zqticker/platform/objects/Exception.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <cstdio>
#include <optional>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {

// The largest file that is read, in bytes.
constexpr qint64 MaximumFileSize = qint64(1) << 30;

OptionTable makeArchiveTable() {
  OptionTable table;
  table.command = u"archive"_s;
  table.brief = u"print a keyed archive"_s;
  table.summary = u"Prints keyed archives, binary or XML, as indented trees. A single - stands for "
                  u"standard input."_s;
  table.operands = {u"FILE"_s};
  table.repeatsLastOperand = true;
  table.options = {{u"json"_s, {}, u"Print JSON instead of a tree."_s, true},
                   {u"help"_s, {}, u"Print this text."_s}};
  table.notes = {
      u"Keys stand in the order of the file. Each object shows its class, its place in the archive "
      u"as #N, and its values; where it comes up again, in a cycle too, only -> #N stands. "
      u"Colours, fonts, shadows, attributed strings, dates, URLs and the like show what they "
      u"mean."_s,
      u"In JSON an object is {\"$class\": name, \"$classes\": [...], \"$id\": N, key: value, ...} "
      u"and {\"$ref\": N} where it comes up again. \"$value\" is what the object means, "
      u"\"$elements\" are the elements of a list or a set, \"$entries\" those of a dictionary: an "
      u"object where all keys are texts, else a list of {\"key\", \"value\"}. Data is {\"$hex\": "
      u"digits}, with \"$text\" where it is ASCII text; a date without a record is "
      u"{\"$secondsSince2001\": number}; nothing is null. Integers are exact, reals have a point "
      u"or an exponent, and what is no number is \"nan\", \"inf\" or \"-inf\". Lone surrogates are "
      u"escaped. Objects more than 100 deep stand in \"$deeper\" at the end. A key of an object "
      u"that begins with one of these words keeps a second $. Several files make a list of "
      u"{\"$file\": name, \"$archive\": ...}."_s};
  table.exitStatus = u"0, 1 where a file could not be printed, 2 for a wrong command line."_s;
  table.examples = {u"zqticker archive noon.sign"_s, u"The sign as a tree."_s,
                    u"zqticker archive --json noon.sign | python3 -m json.tool"_s,
                    u"The same for another program."_s};
  return table;
}

// A message on one line, whatever it quotes.
QByteArray errorLine(const QString& message) {
  QString line = u"zqticker archive: "_s + message;
  for (QChar& c : line)
    if (c.category() == QChar::Other_Control || c.category() == QChar::Separator_Line ||
        c.category() == QChar::Separator_Paragraph)
      c = u'?';
  return line.toUtf8() + '\n';
}

class FileError : public platform::Exception {
 public:
  using Exception::Exception;
};

QByteArray contents(QIODevice& file) {
  QByteArray bytes = file.read(MaximumFileSize + 1);
  if (bytes.size() > MaximumFileSize)
    throw FileError(u"the file is larger than 1 GiB"_s);
  return bytes;
}

QByteArray contentsOfFile(const QString& name) {
  if (QFileInfo(name).isDir())
    throw FileError(u"is a folder"_s);
  QFile file(name);
  if (!file.open(QIODevice::ReadOnly))
    throw FileError(file.errorString());
  QByteArray bytes = contents(file);
  if (file.error() != QFileDevice::NoError)
    throw FileError(file.errorString());
  return bytes;
}

struct Arguments {
  bool json = false;
  QStringList files;
};

Arguments readArguments(const QStringList& arguments) {
  Arguments result;
  for (const ParsedOption& option : parseOptions(archiveTable(), arguments)) {
    if (option.isOperand())
      result.files.append(option.values.first());
    else if (option.name == "json"_L1)
      result.json = true;
  }
  return result;
}

QString trees(const std::vector<std::pair<QString, OutputValue>>& archives, bool withNames) {
  QString text;
  for (const auto& [name, archive] : archives) {
    if (withNames)
      text += (text.isEmpty() ? QString() : u"\n"_s) + name + u":\n"_s;
    text += archive.treeOfMembers();
  }
  return text;
}

QString json(const std::vector<std::pair<QString, OutputValue>>& archives, bool withNames) {
  if (!withNames)
    return archives.empty() ? QString() : QString(archives.front().second.json() + u'\n');
  OutputValue list = OutputValue::list();
  for (const auto& [name, archive] : archives) {
    OutputValue entry = OutputValue::map();
    entry.insert(u"$file"_s, OutputValue::string(name));
    entry.insert(u"$archive"_s, archive);
    list.append(entry);
  }
  return list.json() + u'\n';
}

} // namespace

const OptionTable& archiveTable() {
  static const OptionTable table = makeArchiveTable();
  return table;
}

int archiveCommand(const QStringList& arguments, QIODevice& input, QIODevice& output,
                   QIODevice& errors) {
  const Arguments options = readArguments(arguments);
  int status = Success;
  std::vector<std::pair<QString, OutputValue>> archives;
  for (const QString& name : options.files) {
    const bool isInput = name == "-"_L1;
    const QString shownName = isInput ? u"standard input"_s : name;
    try {
      const QByteArray data = isInput ? contents(input) : contentsOfFile(name);
      archives.emplace_back(shownName, ArchiveTree(data).top());
    } catch (const platform::Exception& error) {
      errors.write(errorLine(shownName + u": "_s + error.reason()));
      status = RunTimeFailure;
    }
  }
  const bool withNames = options.files.size() > 1;
  const QString text = options.json ? json(archives, withNames) : trees(archives, withNames);
  const QByteArray bytes = text.toUtf8();
  if (output.write(bytes) != bytes.size()) {
    errors.write(errorLine(u"standard output: "_s + output.errorString()));
    return RunTimeFailure;
  }
  return status;
}

namespace {
int runArchiveCommand(const QStringList& arguments) {
  QFile input;
  QFile output;
  QFile errors;
  if (!input.open(stdin, QIODevice::ReadOnly) || !output.open(stdout, QIODevice::WriteOnly) ||
      !errors.open(stderr, QIODevice::WriteOnly | QIODevice::Unbuffered))
    return RunTimeFailure;
  const int status = archiveCommand(arguments, input, output, errors);
  if (!output.flush() || std::fflush(stdout) != 0) {
    errors.write(errorLine(u"standard output: "_s + output.errorString()));
    return RunTimeFailure;
  }
  return status;
}
} // namespace

const std::vector<Command>& archiveCommands() {
  static const std::vector<Command> commands{
      {&archiveTable(), CommandGroup::Signs, Application::OffscreenGui, runArchiveCommand}};
  return commands;
}

} // namespace zq::app
