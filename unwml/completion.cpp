// SPDX-License-Identifier: MIT
#include "completion.h"

#include <string>

#include "option_table.h"

namespace unwml {
namespace {

// A text between single quotes, as all three shells read it.
std::string Quoted(std::string_view text) {
  std::string quoted = "'";
  for (const char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string{c};
  return quoted + "'";
}

std::string Joined(std::span<const std::string_view> words) {
  std::string joined;
  for (const std::string_view word : words) {
    if (!joined.empty()) joined += ' ';
    joined += word;
  }
  return joined;
}

// The words that stand for an option: "-t", "--to" and, where there is one, "--no-to".
std::string Flags(const OptionRow &row, const char *separator) {
  std::string flags = row.letter == '\0' ? "" : std::string{'-', row.letter} + separator;
  flags += std::string("--") + row.name;
  if (row.negatable) flags += std::string(separator) + "--no-" + row.name;
  return flags;
}

void PrintBash(std::ostream &out) {
  out << R"(# bash completion for unwml
_unwml() {
  local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]}
  # bash takes --to=html for three words
  if [[ $cur == = ]]; then
    cur=
  elif [[ $prev == = ]]; then
    prev=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  case $prev in
)";
  std::string all;
  for (const OptionRow &row : OptionTable()) {
    all += (all.empty() ? "" : " ") + Flags(row, " ");
    if (row.argument == Argument::kNone) continue;
    out << "    " << Flags(row, " | ") << ") ";
    if (row.argument == Argument::kFile || row.argument == Argument::kFolder) {
      out << "_unwml_files -" << (row.argument == Argument::kFile ? 'f' : 'd') << " \"$cur\"";
    } else {
      out << "_unwml_words " << Quoted(Joined(row.choices)) << " \"$cur\"";
    }
    out << " && return ;;\n";
  }
  out << R"(  esac
  if [[ $cur == -* ]]; then
    _unwml_words )"
      << Quoted(all) << R"( "$cur"
  else
    _unwml_files -f "$cur"
  fi
}
_unwml_words() {
  mapfile -t COMPREPLY < <(compgen -W "$1" -- "$2")
}
_unwml_files() {
  compopt -o filenames 2>/dev/null
  mapfile -t COMPREPLY < <(compgen "$1" -- "$2")
}
complete -F _unwml unwml
)";
}

// The description of an option as _arguments of zsh takes it, where brackets end it.
std::string Bracketed(std::string_view text) {
  std::string bracketed = "[";
  for (const char c : text) {
    if (c == '[' || c == ']' || c == '\\') bracketed += '\\';
    bracketed += c;
  }
  return bracketed + "]";
}

std::string ZshAction(const OptionRow &row) {
  if (row.argument == Argument::kNone) return "";
  std::string action = std::string(":") + row.placeholder + ":";
  if (row.argument == Argument::kFile) return action += "_files";
  if (row.argument == Argument::kFolder) return action += "_files -/";
  if (row.choices.empty()) return action += ' ';
  return action.append("(").append(Joined(row.choices)).append(")");
}

void PrintZsh(std::ostream &out) {
  out << "#compdef unwml\n_unwml() {\n  _arguments -s -S \\\n";
  for (const OptionRow &row : OptionTable()) {
    const bool takesOne = row.argument != Argument::kNone;
    const std::string rest = Bracketed(row.brief) + ZshAction(row);
    std::string option("*--");
    option.append(row.name).append(takesOne ? "=" : "").append(rest);
    out << "    " << Quoted(option) << " \\\n";
    if (row.negatable) out << "    '*--no-" << row.name << "' \\\n";
    if (row.letter == '\0') continue;
    std::string letter("*-");
    letter.append(1, row.letter).append(takesOne ? "+" : "").append(rest);
    out << "    " << Quoted(letter) << " \\\n";
  }
  out << R"(    '*:file:_files'
}
if [[ $funcstack[1] == _unwml ]]; then
  _unwml "$@"
else
  compdef _unwml unwml
fi
)";
}

void PrintFish(std::ostream &out) {
  out << "# fish completion for unwml\n";
  for (const OptionRow &row : OptionTable()) {
    out << "complete -c unwml";
    if (row.letter != '\0') out << " -s " << row.letter;
    out << " -l " << row.name;
    if (row.argument == Argument::kFile) {
      out << " -r -F";
    } else if (row.argument == Argument::kFolder) {
      out << " -x -a '(__fish_complete_directories)'";
    } else if (row.argument != Argument::kNone) {
      out << " -x";
      if (!row.choices.empty()) out << " -a " << Quoted(Joined(row.choices));
    }
    out << " -d " << Quoted(row.brief) << '\n';
    if (row.negatable) out << "complete -c unwml -l no-" << row.name << '\n';
  }
}

}  // namespace

void PrintCompletion(std::string_view shell, std::ostream &out) {
  if (shell == "bash") PrintBash(out);
  if (shell == "zsh") PrintZsh(out);
  if (shell == "fish") PrintFish(out);
}

}  // namespace unwml
