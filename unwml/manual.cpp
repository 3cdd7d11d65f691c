// SPDX-License-Identifier: MIT
#include "manual.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "formats.h"
#include "option_table.h"

namespace unwml {
namespace {

// A term and what is said of it.
struct Item {
  std::string_view term;
  std::string_view meaning;
};

constexpr Item kExamples[] = {
    {"unwml deck.wml", "Read a deck on the terminal."},
    {"unwml -t html -o site decks/", "A web page for each deck of a tree."},
    {"find . -name '*.wml' -print0 | unwml -t json -j 4 --files-from -", "Index many decks."},
};

constexpr Item kOutputs[] = {
    {"Layout",
     "The outputs of one folder lie as its files do. Of several inputs each lies as it "
     "was named; what is named by an absolute path, or outside of the current folder, "
     "lies under its last part."},
    {"Names",
     "The format's extension takes the place of the input's. Where that name is taken, "
     "also by one that differs in case only, it follows the whole name (a.wmlc.html); "
     "where that is taken too, a number stands before it (a-2.html). An output never "
     "takes the place of an input."},
    {"Failures",
     "A file appears only when it is complete. What is half-written is removed, after "
     "KILL by the next run into the folder. Symbolic links inside the folder are not "
     "written through. On standard output nothing is seen of a document that fails, "
     "unless it is larger than a megabyte: such a one goes out as it is read, and when "
     "it fails then its last line is ended and a message says so."},
};

constexpr Item kExitCodes[] = {
    {"0", "All documents were read, or whoever read the output had seen enough and closed it."},
    {"1",
     "Some documents failed: a message names each of them, and the others were read. Or the "
     "output could not be written."},
    {"2", "Wrong usage: nothing was read."},
    {"129, 130, 131, 143",
     "Ended by the signal HUP, INT (Ctrl+C), QUIT or TERM, as shells tell it: 128 and the number "
     "of "
     "the signal. Outputs that were complete stay."},
};

constexpr Item kEnvironment[] = {
    {"UNWML_PAGER, PAGER", "The pager, see --pager. LESS is set to FRX unless it is set."},
    {"NO_COLOR", "When set, text is not styled by --color auto."},
    {"TERM", "On a terminal that is dumb, text is not styled by --color auto."},
};

constexpr std::size_t kNameColumns = 24;

// "-t, --to FORMAT", options without a short form set in.
std::string Names(const OptionRow &row) {
  std::string names = row.letter == '\0' ? "    " : std::string{'-', row.letter, ',', ' '};
  names += row.negatable ? "--[no-]" : "--";
  names += row.name;
  if (row.argument != Argument::kNone) names += std::string(" ") + row.placeholder;
  return names;
}

std::string Padded(std::string_view text, std::size_t columns) {
  return std::string(text) + std::string(columns - std::min(columns - 1, text.size()), ' ');
}

// Calls `print` for each option, and `begin` before each category.
template <typename Begin, typename Print>
void ForEachOption(Begin begin, Print print) {
  const OptionRow *last = nullptr;
  for (const OptionRow &row : OptionTable()) {
    if (last == nullptr || row.category != last->category) begin(TitleOf(row.category));
    print(row);
    last = &row;
  }
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

void PrintItem(std::ostream &out, const Item &item) {
  out << ".TP\n\\fB" << Roff(item.term) << "\\fR\n" << Roff(item.meaning) << '\n';
}

void PrintSection(std::ostream &out, const char *title, std::span<const Item> items) {
  out << ".SH " << title << '\n';
  for (const Item &item : items) PrintItem(out, item);
}

void PrintManualOption(std::ostream &out, const OptionRow &row) {
  std::string names = Names(row);
  names.erase(0, names.find_first_not_of(' '));
  std::string brief = row.brief;
  if (brief.front() >= 'a' && brief.front() <= 'z') brief.front() -= 'a' - 'A';
  PrintItem(out, {names, brief + "."});
  if (*row.detail != '\0') out << Roff(row.detail) << '\n';
}

}  // namespace

void PrintHelp(std::ostream &out) {
  out << "Usage: unwml [OPTION]... [FILE|DIR|-]...\n"
         "Read WML decks as text, HTML, JSON or Markdown. Walks directories for *.wml.\n";
  ForEachOption([&](const char *title) { out << '\n'
                                             << title << ":\n"; },
                [&](const OptionRow &row) {
                  out << "  " << Padded(Names(row), kNameColumns) << row.brief << '\n';
                });
  out << "\nFormats:\n";
  for (const FormatRow &row : kFormats) {
    out << "  " << Padded(row.name, kNameColumns) << row.meaning << '\n';
  }
  out << "\nExamples:\n";
  for (const Item &example : kExamples) out << "  " << example.term << '\n';
  out << "\nExit status: 0 all read, 1 some failed, 2 wrong usage. More: man unwml\n";
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
         "all mean standard input.\n"
         ".SH OPTIONS\n"
         "Options and inputs may be mixed; \\-\\- ends the options. A value follows as the next "
         "word or behind an equals sign. Of an option that is given twice, the last one counts. "
         "\\-\\-[no\\-]NAME is a switch: \\-\\-no\\-NAME turns it off.\n";
  ForEachOption([&](const char *title) { out << ".SS \"" << title << "\"\n"; },
                [&](const OptionRow &row) { PrintManualOption(out, row); });
  out << ".SH FORMATS\n";
  for (const FormatRow &row : kFormats) {
    PrintItem(out, {row.name, std::string(row.meaning) + "; files end in " +
                                  std::string(row.extension) + "."});
  }
  PrintSection(out, "OUTPUTS", kOutputs);
  PrintSection(out, "\"EXIT STATUS\"", kExitCodes);
  PrintSection(out, "ENVIRONMENT", kEnvironment);
  PrintSection(out, "EXAMPLES", kExamples);
}

}  // namespace unwml
