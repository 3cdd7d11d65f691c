// SPDX-License-Identifier: MIT
#include "manual.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "option_table.h"

namespace unwml {
namespace {

struct Example {
  const char *command;
  const char *meaning;
};

constexpr Example kExamples[] = {
    {"unwml deck.wml", "read a deck on the terminal"},
    {"unwml -t html -o site decks/", "a web page for each deck of a tree"},
    {"find . -name '*.wml' -print0 | unwml -t json -j 4 --files-from -", "index many decks"},
};

constexpr std::size_t kNameColumns = 24;

// "-t, --to FORMAT", options without a short form set in.
std::string Names(const OptionRow &row) {
  std::string names = row.flags;
  const std::size_t comma = names.find(',');
  if (comma == std::string::npos) {
    names.insert(0, 4, ' ');
  } else {
    names.insert(comma + 1, 1, ' ');
  }
  if (*row.argument != '\0') names += std::string(" ") + row.argument;
  return names;
}

// Roff takes a hyphen for a hyphen; options have minus signs.
std::string Roff(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '-') {
      escaped += "\\-";
    } else if (c == '\\') {
      escaped += "\\e";
    } else {
      escaped += c;
    }
  }
  return escaped;
}

}  // namespace

void PrintHelp(std::ostream &out) {
  out << "Usage: unwml [OPTION]... [FILE|DIR|-]...\n"
         "Read WML decks as text, HTML, JSON or Markdown. Walks directories for *.wml.\n\n";
  for (const OptionRow &row : OptionTable()) {
    const std::string names = Names(row);
    out << "  " << names
        << std::string(kNameColumns - std::min(kNameColumns - 1, names.size()), ' ') << row.brief
        << '\n';
  }
  out << "\nExamples:\n";
  for (const Example &example : kExamples) out << "  " << example.command << '\n';
  out << "\nExit status: 0 all read, 1 some failed, 2 wrong usage.\n";
}

void PrintVersion(std::ostream &out) {
  out << "unwml " VS_WML_VERSION "\n";
}

void PrintManual(std::ostream &out) {
  out << ".TH UNWML 1 \"\" \"vs_wml " VS_WML_VERSION
         "\" \"User Commands\"\n"
         ".SH NAME\nunwml \\- read WML decks\n"
         ".SH SYNOPSIS\n.B unwml\n[\\fIOPTION\\fR]... [\\fIFILE\\fR|\\fIDIR\\fR|\\-]...\n"
         ".SH DESCRIPTION\n"
         "Reads documents written in WML, the Wireless Markup Language of WAP phones, and writes "
         "them as text, HTML, JSON or Markdown in UTF\\-8. Directories are searched for files "
         "named *.wml and *.wmlc; other files are read when they are named. \\- and no input at "
         "all mean "
         "standard input.\n"
         ".SH OPTIONS\n";
  for (const OptionRow &row : OptionTable()) {
    std::string names = Names(row);
    names.erase(0, names.find_first_not_of(' '));
    out << ".TP\n\\fB" << Roff(names) << "\\fR\n" << Roff(row.brief) << ".\n";
    if (*row.detail != '\0') out << Roff(row.detail) << '\n';
  }
  out << ".SH EXIT STATUS\n"
         ".TP\n0\nAll documents were read.\n"
         ".TP\n1\nSome failed; a message names each of them, and the others were read.\n"
         ".TP\n2\nWrong usage.\n"
         ".SH ENVIRONMENT\n.TP\nNO_COLOR\nWhen set, text is not styled by \\-\\-color auto.\n"
         ".SH EXAMPLES\n";
  for (const Example &example : kExamples) {
    out << ".TP\n\\fB" << Roff(example.command) << "\\fR\n" << Roff(example.meaning) << "\n";
  }
}

void PrintCompletion(std::ostream &out) {
  std::string all;
  out << "# bash completion for unwml\n"
         "_unwml() {\n"
         "  local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD-1]}\n"
         "  case $prev in\n";
  for (const OptionRow &row : OptionTable()) {
    std::string flags = row.flags;
    const std::string_view choices = row.choices;
    std::replace(flags.begin(), flags.end(), ',', '|');
    if (*row.argument != '\0') {
      out << "    " << flags << ") ";
      if (choices == "DIR") {
        out << "COMPREPLY=($(compgen -d -- \"$cur\"))";
      } else if (choices == "FILE") {
        out << "COMPREPLY=($(compgen -f -- \"$cur\"))";
      } else {
        out << "COMPREPLY=($(compgen -W '" << choices << "' -- \"$cur\"))";
      }
      out << "; return ;;\n";
    }
    std::replace(flags.begin(), flags.end(), '|', ' ');
    all += (all.empty() ? "" : " ") + flags;
  }
  out << "  esac\n"
         "  if [[ $cur == -* ]]; then\n"
         "    COMPREPLY=($(compgen -W '"
      << all
      << "' -- \"$cur\"))\n"
         "  else\n"
         "    COMPREPLY=($(compgen -f -- \"$cur\"))\n"
         "  fi\n"
         "}\n"
         "complete -o filenames -F _unwml unwml\n";
}

}  // namespace unwml
