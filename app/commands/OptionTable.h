// The options of a command: one table serves the parser and the help text.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <vector>

class QColor;

namespace zq::app {

// A word that an option's value may be, with what is said of it: {"top", ""}, {"bottom", "the
// default"}.
struct AllowedWord {
  QString word;
  QString meaning;
};

// The words alone.
QStringList wordsOf(const std::vector<AllowedWord>& words);

// One option. Its name stands without the leading dashes; `values` names its values. The names say
// what shells complete there: file names for FILE, PATH and PNG, folders for FOLDER.
struct OptionSpec {
  QString name;
  QStringList values;
  QString help;
  bool repeatable = false;
  bool isValueOptional = false; // its only one
  // All that its only value may be, where that is a choice. The help text ends in them: `help` is
  // what stands before ("Where the strip stands.").
  std::vector<AllowedWord> words{};

  // `help` with the allowed words: "Where the strip stands: top or bottom (the default)."
  QString fullHelp() const;
};

// A name with what is said of it.
struct NamedText {
  QString name;
  QString text;
};

struct OptionTable {
  QString command;
  QString summary;
  std::vector<OptionSpec> options;
  QStringList notes;                // paragraphs after the options
  QStringList examples;             // command lines, each followed by its explanation
  QStringList operands{};           // what stands beside the options, by name; all are needed
  bool repeatsLastOperand = false;  // it takes one or more
  bool operandsAreOptional = false; // all may be left out
  QString brief{};                  // a few words for lists of commands: "write a sign's archive"
  QString exitStatus{};             // "0, 1 where …, 2 for a wrong command line."
  std::vector<NamedText> environment{}; // variables
  std::vector<NamedText> files{};
  std::vector<NamedText> keys{}; // of a window
};

// An option with its values, or an operand: no name, one value.
struct ParsedOption {
  QString name;
  QStringList values;
  const OptionSpec* spec = nullptr;      // in the table that it was read by; null for an operand
  QString dashes = QStringLiteral("--"); // before the name; none for a setting

  bool isOperand() const { return name.isEmpty(); }

  // The option as the user wrote it, for messages: "--speed abc".
  QString text() const;
};

// Reads `arguments` in order. A value is the argument after the option, whatever it looks like, or
// what follows "=" in it; after "--" all arguments are operands. An optional value is one that does
// not begin with a dash, unless it follows "=". UsageError for an unknown option, a missing or
// surplus value, an option given twice that may stand only once, a surplus operand, and, unless
// help is asked for, a missing one.
std::vector<ParsedOption> parseOptions(const OptionTable& table, const QStringList& arguments);

// Usage line, options, notes and examples.
QString helpText(const OptionTable& table);

// Values. UsageError naming the option where one cannot be read.
double numberOf(const ParsedOption& option, double least, double most);
qint64 integerOf(const ParsedOption& option, qint64 least, qint64 most);
QString wordOf(const ParsedOption& option, const QStringList& allowed);
QString wordOf(const ParsedOption& option); // one of the words that its table allows
QColor colorOf(const ParsedOption& option);

} // namespace zq::app
