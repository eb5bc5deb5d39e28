// What shells complete: which values there are, and what is said of options in a few words.
#pragma once

#include "app/commands/Command.h"

namespace zq::app {

enum class ValueKind { Text, File, Folder, Words };

// What stands for a value.
struct CompletedValue {
  ValueKind kind = ValueKind::Text;
  QStringList words{}; // for ValueKind::Words
};

// The value of `spec` at `index`.
CompletedValue completedValue(const OptionSpec& spec, qsizetype index);

// The operand that `table` calls `name`.
CompletedValue completedOperand(const QString& name);

// The start of the option's help text, up to its first full stop, semicolon or colon.
QString shortHelp(const OptionSpec& spec);

// The first words of all commands, and the second words of those that begin with `first`; in the
// order of the list.
QStringList firstWords();
QStringList secondWords(const QString& first);

// `text` between single quotation marks for bash and zsh.
QString quotedForShell(const QString& text);

} // namespace zq::app
