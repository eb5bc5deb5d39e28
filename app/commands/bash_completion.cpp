#include "app/commands/completion_values.h"
#include "app/commands/shell_completion.h"

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
// What does not depend on the commands. The tables set: `kinds` to the values that an option takes,
// `options` and `operands` to those of a command; a kind is "file", "folder", "text" or "=" with
// words behind it, and "?" stands before one that may be left out.
constexpr char Engine[] = R"bash(
# What stands for a value of the kind $1.
_zqticker_complete_kind() {
  case ${1#\?} in
    file) compopt -o default ;;
    folder) compopt -o dirnames ;;
    =*) mapfile -t COMPREPLY < <(compgen -W "${1#*=}" -- "$current") ;;
  esac
}

_zqticker() {
  local command='' current option word ended='' i count
  local length repeats
  local -a given=() kinds=() options=() operands=() pending=() left=() first_words=() subcommands=()
  COMPREPLY=()
  # "--option=value" comes in three words where "=" breaks them.
  for ((i = 1; i <= COMP_CWORD; ++i)); do
    word=${COMP_WORDS[i]}
    count=${#given[@]}
    if ((count > 0)) && [[ $word == = && ${given[count - 1]} == --[a-z]* ||
      ${COMP_WORDS[i - 1]} == = && ${given[count - 1]} == --*= ]]; then
      given[count - 1]+=$word
    else
      given+=("$word")
    fi
  done
  count=$((${#given[@]} - 1))
  current=${given[count]}
  given=("${given[@]:0:count}")

  _zqticker_find_command
  if [[ -z $command ]]; then
    if ((count == 0)) || ((count == 1 && ${#subcommands[@]} > 0)); then
      ((count > 0)) || subcommands=("${first_words[@]}" --help --version)
      mapfile -t COMPREPLY < <(compgen -W "${subcommands[*]}" -- "$current")
    fi
    return
  fi
  _zqticker_describe "$command"
  if ((count == 1)) && ((${#subcommands[@]} > 0)) && [[ $current != -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "${subcommands[*]}" -- "$current")
  fi

  # What the words before the present one have left to be completed.
  i=0
  local seen=' '
  for word in "${given[@]:length}"; do
    if ((${#pending[@]} > 0)) && [[ ${pending[0]} != \?* || $word != -* ]]; then
      pending=("${pending[@]:1}")
      continue
    fi
    pending=()
    if [[ -z $ended && $word == -- && ${#operands[@]} -gt 0 ]]; then
      ended=yes
    elif [[ -z $ended && $word == --* ]]; then
      option=${word%%=*}
      seen+="$option "
      kinds=()
      _zqticker_values "$command" "$option"
      pending=("${kinds[@]}")
      [[ $word != *=* ]] || pending=("${kinds[@]:1}")
    else
      i=$((i + 1))
    fi
  done

  if ((${#pending[@]} > 0)) && [[ ${pending[0]} != \?* || $current != -* ]]; then
    _zqticker_complete_kind "${pending[0]}"
  elif [[ -z $ended && $current == --*=* ]]; then
    option=${current%%=*}
    kinds=()
    _zqticker_values "$command" "$option"
    current=${current#*=}
    _zqticker_complete_kind "${kinds[0]-text}"
    # Where "=" does not break words, the option is part of the present one.
    [[ $COMP_WORDBREAKS == *=* ]] || COMPREPLY=("${COMPREPLY[@]/#/$option=}")
  elif [[ -z $ended && $current == -* ]]; then
    for option in "${options[@]}"; do
      # Those that may stand once end in "!".
      [[ $option == *! && $seen == *" ${option%!} "* ]] || left+=("${option%!}")
    done
    ((count > 0)) || left+=(--version)
    mapfile -t COMPREPLY < <(compgen -W "${left[*]}" -- "$current")
  elif ((${#operands[@]} > 0)); then
    word=${operands[i]-}
    [[ -n $word || -z $repeats ]] || word=${operands[${#operands[@]} - 1]}
    [[ -z $word || ${#COMPREPLY[@]} -gt 0 ]] || _zqticker_complete_kind "$word"
  fi
}

complete -F _zqticker zqticker
)bash";

QString kindText(const CompletedValue& value) {
  switch (value.kind) {
  case ValueKind::File:
    return u"file"_s;
  case ValueKind::Folder:
    return u"folder"_s;
  case ValueKind::Words:
    return u"="_s + value.words.join(u' ');
  case ValueKind::Text:
    break;
  }
  return u"text"_s;
}

QString quotedList(const QStringList& words) {
  QStringList quoted;
  for (const QString& word : words)
    quoted.append(quotedForShell(word));
  return u'(' + quoted.join(u' ') + u')';
}

// Sets `command`, `length` (the words of its name), `first_words` and `subcommands`.
QString findFunction() {
  QString text = u"\n# The command that the words before the present one name.\n"
                 u"_zqticker_find_command() {\n"
                 u"  length=0\n  subcommands=()\n"
                 u"  first_words="_s +
                 quotedList(firstWords()) +
                 u"\n"
                 u"  if ((count == 0)); then\n"
                 u"    [[ $current != -* ]] || command=run\n"
                 u"    return\n"
                 u"  fi\n"
                 u"  case ${given[0]} in\n"
                 u"    -*) command=run; return ;;\n"_s;
  for (const QString& first : firstWords()) {
    const QStringList seconds = secondWords(first);
    if (!seconds.isEmpty())
      text += u"    "_s + quotedForShell(first) + u") subcommands="_s + quotedList(seconds) +
              u" ;;\n"_s;
  }
  text += u"  esac\n"
          u"  case \"${given[0]} ${given[1]-}\" in\n"_s;
  QStringList pairs;
  QStringList singles;
  for (const Command& command : allCommands())
    (command.name().contains(u' ') ? pairs : singles).append(quotedForShell(command.name()));
  text += u"    "_s + pairs.join(u" | ") +
          u") command=\"${given[0]} ${given[1]}\"; length=2; return ;;\n"
          u"  esac\n"
          u"  case ${given[0]} in\n"
          u"    "_s +
          singles.join(u" | ") + u") command=${given[0]}; length=1 ;;\n  esac\n}\n"_s;
  return text;
}

QString describeFunction() {
  QString text = u"\n# The options and operands of the command $1.\n"
                 u"_zqticker_describe() {\n  repeats=''\n  case $1 in\n"_s;
  for (const Command& command : allCommands()) {
    const OptionTable& table = *command.table;
    QStringList options;
    for (const OptionSpec& spec : table.options)
      options.append(u"--"_s + spec.name + (spec.repeatable ? u""_s : u"!"_s));
    QStringList operands;
    for (const QString& name : table.operands)
      operands.append(kindText(completedOperand(name)));
    text += u"    "_s + quotedForShell(command.name()) + u")\n      options="_s +
            quotedList(options) + u"\n      operands="_s + quotedList(operands) + u'\n';
    if (table.repeatsLastOperand)
      text += u"      repeats=yes\n"_s;
    text += u"      ;;\n"_s;
  }
  return text + u"  esac\n}\n"_s;
}

QString valuesFunction() {
  QString text = u"\n# The kinds of the values that the option $2 of the command $1 takes.\n"
                 u"_zqticker_values() {\n  case \"$1 $2\" in\n"_s;
  for (const Command& command : allCommands())
    for (const OptionSpec& spec : command.table->options) {
      QStringList kinds;
      for (qsizetype i = 0; i < spec.values.size(); ++i)
        kinds.append((spec.isValueOptional ? u"?"_s : u""_s) + kindText(completedValue(spec, i)));
      if (!kinds.isEmpty())
        text += u"    "_s + quotedForShell(command.name() + u" --"_s + spec.name) + u") kinds="_s +
                quotedList(kinds) + u" ;;\n"_s;
    }
  return text + u"  esac\n}\n"_s;
}
} // namespace

QByteArray bashCompletion() {
  const QString text = u"# Completion of zqticker's command lines for bash.\n"_s + findFunction() +
                       describeFunction() + valuesFunction();
  return text.toUtf8() + Engine;
}

} // namespace zq::app
