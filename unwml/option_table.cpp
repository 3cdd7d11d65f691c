// SPDX-License-Identifier: MIT
#include "option_table.h"

#include "formats.h"

namespace unwml {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view kColors[] = {"auto"sv, "always"sv, "never"sv};
constexpr std::string_view kImages[] = {"blocks"sv, "alt"sv};
// Any other that is known may be given, too.
constexpr std::string_view kCharsets[] = {"UTF-8"sv,   "windows-1252"sv, "Shift_JIS"sv,
                                          "GB18030"sv, "Big5"sv,         "EUC-KR"sv};
constexpr std::string_view kIdentities[] = {"1151"sv, "1154"sv, "1155"sv, "1156"sv,
                                            "1157"sv, "1158"sv, "1159"sv, "1160"sv,
                                            "1161"sv, "1162"sv, "1163"sv};
constexpr std::string_view kPrinted[] = {"manual"sv, "bash"sv, "zsh"sv, "fish"sv};
constexpr std::size_t kMostColumns = 100000;
constexpr std::size_t kMostJobs = 256;

constexpr const char *kTitles[kCategories] = {
    "Input",   "Output",  "Reading",        "Text on a terminal",
    "Running", "Playing", "Looking inside", "Help",
};

constexpr OptionRow kRows[] = {
    {.category = Category::kInput,
     .name = "files-from",
     .argument = Argument::kFile,
     .placeholder = "FILE",
     .brief = "also read the files that FILE (- for stdin) names",
     .detail = "One name a line, or each ended by a NUL character.",
     .set = [](CommandLine &line, const Given &given) { line.filesFrom = given.text; }},

    {.category = Category::kInput,
     .name = "name",
     .argument = Argument::kText,
     .placeholder = "GLOB",
     .brief = "in folders, also read files whose names match GLOB",
     .detail =
         "Servers had decks under other names than *.wml, too: --name '*.php' --name '*.asp'. "
         "May be given several times. Capitals and small letters are the same.",
     .set = [](CommandLine &line, const Given &given) { line.names.emplace_back(given.text); }},
    {.category = Category::kInput,
     .name = "follow",
     .negatable = true,
     .brief = "in folders, follow symbolic links",
     .detail = "Otherwise links to decks and folders that are found in a folder are left out, and "
               "their number is told. A link that is named itself is always followed. A folder "
               "that several links lead to is read once.",
     .set = [](CommandLine &line, const Given &given) { line.follow = given.on; }},

    {.category = Category::kOutput,
     .letter = 't',
     .name = "to",
     .argument = Argument::kChoice,
     .placeholder = "FORMAT",
     .choices = kFormatNames,
     .brief = "what to write, text by default: see Formats",
     .set = [](CommandLine &line, const Given &given) { line.to = given.text; }},
    {.category = Category::kOutput,
     .letter = 'o',
     .name = "output",
     .argument = Argument::kFile,
     .placeholder = "PATH",
     .brief = "write the file PATH, or files under the folder PATH",
     .detail = "A folder is meant when PATH is one, when it ends in a slash, or when there are "
               "several inputs; see Outputs. The name of a single file tells the format if --to "
               "does not: out.html. Without this option, and for -, everything goes to standard "
               "output.",
     .set = [](CommandLine &line, const Given &given) { line.output = given.text; }},
    {.category = Category::kOutput,
     .name = "skip-existing",
     .negatable = true,
     .brief = "leave out what has an output already",
     .detail = "To go on with a run that was interrupted: outputs appear only when they are "
               "complete.",
     .set = [](CommandLine &line, const Given &given) { line.skipExisting = given.on; }},
    {.category = Category::kOutput,
     .name = "sync",
     .negatable = true,
     .brief = "have each output on the disk before it appears",
     .detail = "Off by default: when the power fails, files that were written last may be empty. "
               "With it each file is waited for (fsync), which takes longer.",
     .set = [](CommandLine &line, const Given &given) { line.sync = given.on; }},
    {.category = Category::kOutput,
     .letter = 'H',
     .name = "with-filename",
     .negatable = true,
     .brief = "begin each line with the name of its file",
     .detail = "As grep does, for text, Markdown and the trace.",
     .set = [](CommandLine &line, const Given &given) { line.withFilename = given.on; }},

    {.category = Category::kOutput,
     .name = "remote-images",
     .brief = "let HTML and Markdown fetch pictures from elsewhere",
     .detail = "Otherwise a page asks nobody for anything, and pictures that are not at hand are "
               "links.",
     .set = [](CommandLine &line, const Given &) { line.remoteImages = true; }},

    {.category = Category::kReading,
     .name = "var",
     .argument = Argument::kText,
     .placeholder = "NAME=VALUE",
     .brief = "value of a variable, shown as {NAME} otherwise",
     .detail = "May be given several times.",
     .set = [](CommandLine &line, const Given &given) { line.variables.emplace_back(given.text); }},
    {.category = Category::kReading,
     .name = "base",
     .argument = Argument::kText,
     .placeholder = "URL",
     .brief = "address that link targets are resolved against",
     .set = [](CommandLine &line, const Given &given) { line.base = given.text; }},
    {.category = Category::kReading,
     .name = "charset",
     .argument = Argument::kText,
     .placeholder = "NAME",
     .choices = kCharsets,
     .brief = "character set of the input, whatever it says",
     .detail = "Otherwise it is found from, in this order: byte-order mark, XML declaration, meta "
               "element, saved HTTP header, well-formed UTF-8, a statistical detector, "
               "windows-1252.",
     .set = [](CommandLine &line, const Given &given) { line.charset = given.text; }},
    {.category = Category::kReading,
     .name = "assets",
     .argument = Argument::kFolder,
     .placeholder = "DIR",
     .brief = "also look for pictures under DIR",
     .detail = "Pictures are looked for beside the document. WBMP, PNG, GIF and JPEG become part "
               "of the HTML.",
     .set = [](CommandLine &line, const Given &given) { line.assets = given.text; }},

    {.category = Category::kText,
     .letter = 'w',
     .name = "width",
     .argument = Argument::kNumber,
     .placeholder = "N",
     .least = 1,
     .most = kMostColumns,
     .brief = "columns of text (default: the terminal's, or 80)",
     .set = [](CommandLine &line, const Given &given) { line.width = given.number; }},
    {.category = Category::kText,
     .name = "color",
     .argument = Argument::kChoice,
     .placeholder = "WHEN",
     .choices = kColors,
     .brief = "style text: auto (default), always or never",
     .detail = "With auto, text is styled on a terminal unless the variable NO_COLOR is set.",
     .set = [](CommandLine &line, const Given &given) { line.color = given.text; }},
    {.category = Category::kText,
     .name = "images",
     .argument = Argument::kChoice,
     .placeholder = "HOW",
     .choices = kImages,
     .brief = "WBMP in text: blocks (default on a terminal) or alt",
     .detail = "Small pictures are drawn with block characters; with alt their alternative text "
               "stands for them.",
     .set = [](CommandLine &line, const Given &given) { line.images = given.text; }},

    {.category = Category::kText,
     .name = "pager",
     .negatable = true,
     .brief = "page what is longer than the screen (default)",
     .detail = "Only on a terminal. The pager is the first that is set of UNWML_PAGER, PAGER and "
               "less; none is used when that is empty or cat. Leaving it early ends the run "
               "quietly, with status 0 if no document had failed.",
     .set = [](CommandLine &line, const Given &given) { line.pager = given.on; }},

    {.category = Category::kRunning,
     .letter = 'j',
     .name = "jobs",
     .argument = Argument::kNumber,
     .placeholder = "N",
     .least = 1,
     .most = kMostJobs,
     .brief = "documents worked on at a time (default 1)",
     .detail = "The output keeps the order of the input.",
     .set = [](CommandLine &line, const Given &given) { line.jobs = given.number; }},

    {.category = Category::kRunning,
     .letter = 'q',
     .name = "quiet",
     .negatable = true,
     .brief = "tell of failures only",
     .detail = "Neither warnings nor progress nor a summary. Warnings are in the JSON in any case, "
               "and are told on standard error for the other formats.",
     .set = [](CommandLine &line, const Given &given) { line.quiet = given.on; }},
    {.category = Category::kRunning,
     .name = "summary",
     .negatable = true,
     .brief = "end with how many were read, with warnings, failed",
     .detail = "The default for several documents when standard error is a terminal, or when "
               "there were warnings to tell.",
     .set = [](CommandLine &line, const Given &given) { line.summary = given.on; }},

    {.category = Category::kPlaying,
     .name = "flow",
     .brief = "play the FILEs as flows: decks, step by step",
     .detail = "A flow is a JSON file with the documents that a network would answer with, what a "
               "person does with a phone, and what must hold then. Each is told as ok or FAIL. "
               "The status is 1 when one fails, 2 when a file is no flow. See docs/flows.md.",
     .set = [](CommandLine &line, const Given &) { line.flow = true; }},

    {.category = Category::kInside,
     .name = "raw",
     .negatable = true,
     .brief = "show only what the filter knows",
     .detail = "The filter, which tells a program about a document call by call, knows text, "
               "links, tables and pictures. A deck is adapted for it first: its actions become "
               "links, its forms and variables are shown, comments and damaged markup are taken "
               "out. This option leaves that out, to see what a host of the filter sees. "
               "--identity and the trace imply it.",
     .set = [](CommandLine &line, const Given &given) { line.raw = given.on; }},
    {.category = Category::kInside,
     .name = "identity",
     .argument = Argument::kChoice,
     .placeholder = "ID",
     .choices = kIdentities,
     .brief = "serve the bytes untouched under a filter identity",
     .detail = "A host tells the filter by a number what it has found a document to be. 1151 is "
               "plain WML; the others stand for national character sets. The character set is "
               "then the filter's affair, and --charset cannot be given.",
     .set = [](CommandLine &line, const Given &given) { line.identity = std::string(given.text); }},

    {.category = Category::kHelp,
     .letter = 'h',
     .name = "help",
     .brief = "show this help",
     .set = [](CommandLine &line, const Given &) { line.help = true; }},
    {.category = Category::kHelp,
     .name = "version",
     .brief = "show the version",
     .set = [](CommandLine &line, const Given &) { line.version = true; }},
    {.category = Category::kHelp,
     .name = "print",
     .argument = Argument::kChoice,
     .placeholder = "WHAT",
     .choices = kPrinted,
     .brief = "print the manual page, or the completion of a shell",
     .detail = "The manual is in roff, for man -l. Completions are for bash, zsh and fish.",
     .set = [](CommandLine &line, const Given &given) { line.print = given.text; }},
};

}  // namespace

std::span<const OptionRow> OptionTable() {
  return kRows;
}

const char *TitleOf(Category category) {
  return kTitles[static_cast<std::size_t>(category)];
}

}  // namespace unwml
