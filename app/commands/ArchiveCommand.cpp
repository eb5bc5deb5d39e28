#include "app/commands/ArchiveCommand.h"

#include "app/commands/ArchiveTree.h"
#include "zqticker/platform/objects/Exception.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <cstdio>
#include <optional>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {

constexpr int Success = 0;
constexpr int RunTimeFailure = 1;
constexpr int UsageFailure = 2;

// The largest file that is read, in bytes.
constexpr qint64 MaximumFileSize = qint64(1) << 30;

const char HelpText[] =
    "Usage: zqticker archive [--json] FILE...\n"
    "\n"
    "Prints keyed archives, binary or XML, as indented trees. A single - stands for standard\n"
    "input.\n"
    "\n"
    "  --json      print JSON instead of a tree\n"
    "  -h, --help  print this text\n"
    "\n"
    "Keys stand in the order of the file. Each object shows its class, its place in the archive\n"
    "as #N, and its values; where it comes up again, in a cycle too, only -> #N stands. Colours,\n"
    "fonts, shadows, attributed strings, dates, URLs and the like show what they mean.\n"
    "\n"
    "In JSON an object is {\"$class\": name, \"$classes\": [...], \"$id\": N, key: value, ...} "
    "and\n"
    "{\"$ref\": N} where it comes up again. \"$value\" is what the object means, \"$elements\" "
    "are\n"
    "the elements of a list or a set, \"$entries\" those of a dictionary: an object where all "
    "keys\n"
    "are texts, else a list of {\"key\", \"value\"}. Data is {\"$hex\": digits}, with \"$text\" "
    "where\n"
    "it is ASCII text; a date without a record is {\"$secondsSince2001\": number}; nothing is "
    "null.\n"
    "Integers are exact, reals have a point or an exponent, and what is no number is \"nan\",\n"
    "\"inf\" or \"-inf\". Lone surrogates are escaped. Objects more than 100 deep stand in "
    "\"$deeper\"\n"
    "at the end. A key of an object that begins with one of these words keeps a second $. Several\n"
    "files make a list of {\"$file\": name, \"$archive\": ...}.\n"
    "\n"
    "Exit status: 0, 1 where a file could not be printed, 2 for a wrong command line.\n"
    "\n"
    "Examples:\n"
    "  zqticker archive noon.sign\n"
    "      The sign as a tree.\n"
    "  zqticker archive --json noon.sign | python3 -m json.tool\n"
    "      The same for another program.\n";

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
  bool help = false;
  QStringList files;
};

// Raises FileError for a wrong command line.
Arguments parse(const QStringList& arguments) {
  Arguments result;
  bool hasEnded = false;
  for (const QString& argument : arguments) {
    if (hasEnded || argument == "-"_L1 || !argument.startsWith(u'-'))
      result.files.append(argument);
    else if (argument == "--"_L1)
      hasEnded = true;
    else if (argument == "--json"_L1)
      result.json = true;
    else if (argument == "--help"_L1 || argument == "-h"_L1)
      result.help = true;
    else
      throw FileError(u"%1: unknown option (see zqticker archive --help)"_s.arg(argument));
  }
  if (!result.help && result.files.isEmpty())
    throw FileError(u"no file is named (see zqticker archive --help)"_s);
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

int archiveCommand(const QStringList& arguments, QIODevice& input, QIODevice& output,
                   QIODevice& errors) {
  Arguments options;
  try {
    options = parse(arguments);
  } catch (const FileError& error) {
    errors.write(errorLine(error.reason()));
    return UsageFailure;
  }
  if (options.help) {
    output.write(HelpText);
    return Success;
  }

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

int archiveCommand(const QStringList& arguments) {
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

} // namespace zq::app
