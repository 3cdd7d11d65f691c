// SPDX-License-Identifier: MIT
#include "option_table.h"

namespace unwml {
namespace {

constexpr OptionRow kRows[] = {
    {OptionId::kTo, "-t,--to", "FORMAT", "text html json markdown trace",
     "text (default), html, json, markdown or trace",
     "Text is wrapped and has its links numbered. HTML is one page that needs nothing else. "
     "JSON is one object a line. Markdown has pipe tables. The trace has a line for each call "
     "of the filter."},
    {OptionId::kOutput, "-o,--output", "DIR", "DIR",
     "write files under DIR, laid out as the inputs are",
     "Without it everything goes to standard output. A file appears only when it is complete, "
     "and never in the place of an input."},
    {OptionId::kWidth, "-w,--width", "N", "", "columns of text (default: the terminal's, or 80)",
     ""},
    {OptionId::kColor, "--color", "WHEN", "auto always never",
     "style text: auto (default), always or never",
     "With auto, text is styled on a terminal unless the variable NO_COLOR is set."},
    {OptionId::kCharset, "--charset", "NAME", "UTF-8 windows-1252 Shift_JIS GB18030 Big5 EUC-KR",
     "character set of the input, whatever it says",
     "Otherwise it is found from, in this order: byte-order mark, XML declaration, meta "
     "element, saved HTTP header, well-formed UTF-8, a statistical detector, windows-1252."},
    {OptionId::kIdentity, "--identity", "ID",
     "1151 1154 1155 1156 1157 1158 1159 1160 1161 1162 1163",
     "serve the bytes untouched under a filter identity",
     "1151 is plain WML; the others stand for national character sets."},
    {OptionId::kRaw, "--raw", "", "", "show only what the filter knows",
     "Otherwise a deck is adapted first: its actions become links, its forms and variables are "
     "shown, comments and damaged markup are taken out. --identity and the trace imply it."},
    {OptionId::kVariable, "--var", "NAME=VALUE", "",
     "value of a variable, shown as {NAME} otherwise", "May be given several times."},
    {OptionId::kBase, "--base", "URL", "", "address that link targets are resolved against", ""},
    {OptionId::kAssets, "--assets", "DIR", "DIR", "also look for pictures under DIR",
     "Pictures are looked for beside the document. WBMP, PNG, GIF and JPEG become part of the "
     "HTML."},
    {OptionId::kImages, "--images", "HOW", "blocks alt",
     "WBMP in text: blocks (default on a terminal) or alt",
     "Small pictures are drawn with block characters; with alt their alternative text stands "
     "for them."},
    {OptionId::kFilesFrom, "--files-from", "FILE", "FILE",
     "also read the files that FILE (- for stdin) names",
     "One name a line, or each ended by a NUL character."},
    {OptionId::kJobs, "-j,--jobs", "N", "", "documents worked on at a time (default 1)",
     "The output keeps the order of the input."},
    {OptionId::kHelp, "-h,--help", "", "", "show this help", ""},
    {OptionId::kVersion, "--version", "", "", "show the version", ""},
};

}  // namespace

std::span<const OptionRow> OptionTable() {
  return kRows;
}

}  // namespace unwml
