// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "host/images/picture_formats.h"
#include "host/text/printable.h"
#include "host/text/utf8.h"
#include "host/writer.h"
#include "host/writers/repeat_budget.h"
#include "host/writers/target.h"
#include "host/writers/text_layout.h"

namespace vs_wml {
namespace {

constexpr std::string_view kRule = "\xE2\x94\x80";  // ─
constexpr std::size_t kColumnGap = 2;
// A column of a table that does not fit as it is is no narrower than this part of the line: the
// rest of the row is blank beside a long word.
constexpr std::size_t kLinePart = 20;
constexpr std::size_t kMostLines = 48;  // of a picture that is drawn

enum StyleBit : std::uint8_t { kBold = 1, kItalic = 2, kUnderline = 4, kLinked = 8 };

// From `offset` on, the text has this style.
struct Mark {
  std::size_t offset;
  std::uint8_t style;
};

// The text of a content as it is laid out, links numbered and images named. Where nothing
// is added to it, it is the content's own; else it stands in `made`.
struct FlatText {
  std::string_view text;
  std::string made;
  std::vector<Mark> marks;
  bool directed = false;  ///< something in it sets the direction of text

  void Clear() {
    made.clear();
    marks.clear();
  }
};

// Whether what is laid out is the text as it stands.
bool IsBareText(const Content &content) {
  return content.links.empty() && content.images.empty();
}

// The text of runs that lie one behind the other.
struct Extent {
  std::size_t begin;
  std::size_t end;
};

Extent ExtentOf(std::span<const Run> runs) {
  if (runs.empty()) return {0, 0};
  return {runs.front().begin, runs.back().end};
}

// A link by its number; a field of a form looks like what it is.
bool IsNumbered(const Content &content, std::uint32_t link) {
  return link != kNone && content.links[link].field == nullptr;
}

// The filter underlines what stands for a field, as it does links.
std::uint8_t StyleBits(const Content &content, const Run &run) {
  const bool numbered = IsNumbered(content, run.link);
  unsigned bits = 0;
  if (run.style.bold) bits |= kBold;
  if (run.style.italic) bits |= kItalic;
  if (run.style.underline && (numbered || run.link == kNone)) bits |= kUnderline;
  if (numbered) bits |= kLinked;
  return static_cast<std::uint8_t>(bits);
}

void AppendBracketed(std::string &text, std::string_view inside) {
  text += '[';
  text += inside;
  text += ']';
}

std::string AnsiStyle(std::uint8_t style) {
  std::string sequence = "\x1B[0";
  if ((style & kBold) != 0) sequence += ";1";
  if ((style & kItalic) != 0) sequence += ";3";
  if ((style & kUnderline) != 0) sequence += ";4";
  if ((style & kLinked) != 0) sequence += ";34";
  return sequence + 'm';
}

// Columns of the widest of the lines that a text has.
std::size_t WidestLine(std::string_view text) {
  std::size_t widest = 0;
  for (std::size_t feed = text.find('\n'); feed != std::string_view::npos; feed = text.find('\n')) {
    widest = std::max(widest, ColumnWidth(text.substr(0, feed)));
    text.remove_prefix(feed + 1);
  }
  return std::max(widest, ColumnWidth(text));
}

class TextWriter : public BlockSink {
 public:
  TextWriter(Output &output, const WriterOptions &options)
      : out_(output),
        width_(std::max<std::size_t>(options.width, 1)),
        color_(options.color),
        nameHeading_(options.nameHeading),
        images_(options.images),
        hyperlinks_(options.hyperlinks) {}

  void BeginDocument(const DeckInfo &deck) override {
    firstCard_ = true;
    written_ = blank_ = false;
    listedLinks_ = 0;
    parts_ = &deck.parts;
    reader_ = LinkReader(deck);
    repeats_ = {};
    said_.clear();
    groups_.clear();
    if (!nameHeading_) return;
    out_ << "==> " << Printable(deck.name) << " <==\n";
  }

  void BeginCard(const Card &card) override {
    if (!firstCard_ || !card.title.empty() || !card.id.empty()) CardRule(card);
    firstCard_ = false;
  }

  void TakeParagraph(const Paragraph &paragraph) override {
    if (!paragraph.continues) blank_ = written_;
    // Pictures that are drawn stand in lines of their own, before the number of the link
    // that they are in.
    drawing_ = images_;
    Content part = paragraph.content;
    const std::span<const Run> runs = paragraph.content.runs;
    std::size_t done = 0;
    for (std::size_t i = 0; drawing_ && i < runs.size(); ++i) {
      const Bitmap *bitmap = SmallBitmap(paragraph.content, runs[i]);
      if (bitmap == nullptr) continue;
      part.runs = runs.subspan(done, i - done);
      WriteParagraph(part, paragraph);
      Draw(*bitmap, paragraph.alignment);
      done = i;
    }
    part.runs = runs.subspan(done);
    WriteParagraph(part, paragraph);
    drawing_ = false;
  }

  void TakeTable(const Table &table) override;

  void EndCard() override {
    if (linkList_.empty()) return;
    blank_ = written_;
    FlushBlank();
    out_ << linkList_;
    linkList_.clear();
  }

  void EndDocument(const DeckInfo & /*deck*/) override {
    if (nameHeading_) out_ << '\n';
    out_.Flush();
  }

 private:
  struct CellText {
    std::size_t begin;
    std::size_t end;
    std::size_t columns;  // of its widest line
  };
  // A target that stands above.
  struct Said {
    std::uint32_t number;  // of its link
    std::size_t size;
  };
  // A cell of the row that is written.
  struct RowCell {
    std::size_t line;  // the next of lines_
    std::size_t end;   // behind the last of its lines_
    std::size_t width;
    Alignment alignment;
  };

  static std::size_t Indent(Alignment alignment, std::size_t width, std::size_t columns) {
    const std::size_t free = width - std::min(width, columns);
    if (alignment == Alignment::kRight) return free;
    return alignment == Alignment::kCenter ? free / 2 : 0;
  }

  // The bitmap of a run that is a picture small enough to be drawn.
  const Bitmap *SmallBitmap(const Content &content, const Run &run) const {
    const LoadedPicture *picture = run.image == kNone ? nullptr : content.images[run.image].picture;
    if (picture == nullptr || !picture->bitmap) return nullptr;
    const Bitmap &bitmap = *picture->bitmap;
    const bool fits = (bitmap.width + 1) / 2 <= width_ && (bitmap.height + 1) / 2 <= kMostLines;
    return fits ? &bitmap : nullptr;
  }

  void Draw(const Bitmap &bitmap, Alignment alignment) {
    const std::size_t indent = Indent(alignment, width_, (bitmap.width + 1) / 2);
    FlushBlank();
    for (const std::string &line : DrawBlocks(bitmap)) {
      if (!line.empty()) out_.Pad(indent);
      out_ << line << '\n';
    }
    written_ = true;
  }

  void WriteParagraph(const Content &content, const Paragraph &paragraph) {
    flat_.Clear();
    const auto [begin, end] = Flatten(content);
    if (begin == end && content.runs.size() != paragraph.content.runs.size()) return;
    if (paragraph.preformatted) {
      WriteLine({begin, end, 0}, 0);
      return;
    }
    lines_.clear();
    BreakLines(flat_.text, begin, end, width_, LongWords::kKeep, lines_);
    for (const Line &line : lines_) {
      WriteLine(line, Indent(paragraph.alignment, width_, line.columns));
    }
  }

  void CardRule(const Card &card) {
    if (!firstCard_) out_ << '\n';
    std::size_t columns = 0;
    const auto rule = [&](std::size_t count) {
      for (std::size_t i = 0; i < count; ++i) out_ << kRule;
      columns += count;
    };
    const auto words = [&](std::string_view prefix, std::string_view text) {
      if (color_) out_ << "\x1B[1m";
      out_ << ' ' << prefix << text << ' ';
      if (color_) out_ << "\x1B[0m";
      columns += 2 + prefix.size() + ColumnWidth(text);
      rule(2);
    };
    rule(2);
    if (!card.title.empty()) words("", WithVisibleFormats(card.title));
    if (!card.id.empty()) words("#", WithVisibleFormats(card.id));
    rule(width_ - std::min(columns, width_));
    out_ << '\n';
    blank_ = false;
    written_ = true;
  }

  // Lays out the runs of a paragraph or a cell: where they stand in flat_.text.
  Extent Flatten(const Content &content) {
    const Extent part = ExtentOf(content.runs);
    flat_.directed = HasDirections(content.text.substr(part.begin, part.end - part.begin));
    if (!IsBareText(content)) return Make(content);
    flat_.text = content.text;
    if (color_) {
      for (const Run &run : content.runs) {
        flat_.marks.push_back({run.begin, StyleBits(content, run)});
      }
    }
    return ExtentOf(content.runs);
  }

  // Puts the runs one after the other, with the numbers of the links behind them.
  Extent Make(const Content &content) {
    std::string &made = flat_.made;
    const std::size_t begin = made.size();
    std::uint32_t link = kNone;
    std::uint32_t list = kNone;  // the select that the last line shows
    const auto endLink = [&] {
      if (!IsNumbered(content, link)) return;
      AppendBracketed(made, std::to_string(content.links[link].number));
      NoteLink(content.links[link]);
    };
    for (const Run &run : content.runs) {
      if (run.link != link) {
        endLink();
        link = run.link;
      }
      if (color_) flat_.marks.push_back({made.size(), StyleBits(content, run)});
      const Field *field = run.link == kNone ? nullptr : content.links[run.link].field;
      if (field != nullptr && field->kind == FieldKind::kSelect) {
        if (run.link != list) MakeList(made, *field, begin);
        list = run.link;
      } else if (run.image == kNone) {
        BeginText(made, content.TextOf(run), list);
      } else if (!drawing_ || SmallBitmap(content, run) == nullptr) {
        AppendBracketed(made, ImageLabel(content.images[run.image]));
      }
    }
    endLink();
    flat_.text = made;
    return {begin, made.size()};
  }

  // What comes behind a list of choices begins a line. Text that sets directions of its own is
  // kept from reordering what stands beside it.
  void BeginText(std::string &made, std::string_view text, std::uint32_t &list) const {
    if (list != kNone) {
      text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
      if (text.empty()) return;
      made += '\n';
      list = kNone;
    }
    flat_.directed ? made += Isolated(text) : made += text;
  }

  // A list of choices, each in a line of its own.
  void MakeList(std::string &made, const Field &field, std::size_t begin) {
    const auto line = [&] {
      while (made.size() > begin && made.back() == ' ') made.pop_back();
      if (made.size() > begin && made.back() != '\n') made += '\n';
    };
    if (!field.Label().empty()) {
      line();
      made.append(field.Label()).append(":");
    }
    PartIndex group = kNoIndex;
    for (PartIndex index = 0; index < field.optionCount; ++index) {
      const FieldOption &option = parts_->options[field.firstOption + index];
      if (option.group != group && option.group != kNoIndex) {
        const std::string_view title = parts_->groups[option.group].title.shown;
        line();
        const bool whole = repeats_.MaySay(groups_, option.group, title.size());
        (whole ? made.append(title) : made.append(AsAbove(title))) += ':';
      }
      group = option.group;
      line();
      made += field.multiple ? (option.selected ? "[x] " : "[ ] ")
                             : (option.selected ? "(*) " : "( ) ");
      made += option.Label();
    }
  }

  // The target of a link in the list, which terminals that can make a link of.
  std::string ListedTarget(const Link &link) const {
    std::string shown = WithVisibleFormats(LinkTargetText(link));
    if (!hyperlinks_ || !HasScheme(link.target) ||
        reader_.OutcomeOf(link) != LinkOutcome::kFollowed) {
      return shown;
    }
    return "\x1B]8;;" + EncodeTarget(link.target) + "\x1B\\" + shown + "\x1B]8;;\x1B\\";
  }

  // Every link is listed once, in the card where it begins; as another that does the same where
  // their values are long, and have been listed so often that once more would be out of
  // proportion.
  void NoteLink(const Link &link) {
    if (link.number == listedLinks_) return;
    listedLinks_ = link.number;
    AppendBracketed(linkList_, std::to_string(link.number));
    linkList_ += ' ';
    const auto said = said_.find(link.actionIndex);
    if (said != said_.end() && !repeats_.Spend(said->second.size)) {
      linkList_ += "as ";
      AppendBracketed(linkList_, std::to_string(said->second.number));
    } else {
      const std::string target = ListedTarget(link);
      if (said == said_.end()) NoteSaid(link, target.size());
      linkList_ += target;
    }
    linkList_ += '\n';
  }

  void NoteSaid(const Link &link, std::size_t size) {
    if (link.actionIndex == kNoIndex || size < RepeatBudget::kShort) return;
    said_.emplace(link.actionIndex, Said{link.number, size});
    repeats_.Earn(size);
  }

  void FlushBlank() {
    if (blank_) out_ << '\n';
    blank_ = false;
  }

  void WriteLine(const Line &line, std::size_t indent) {
    if (line.begin == line.end) {
      blank_ = written_;
      return;
    }
    FlushBlank();
    out_.Pad(indent);
    WriteStyled(line);
    out_ << '\n';
    written_ = true;
  }

  void WriteStyled(const Line &line) {
    if (flat_.directed && !color_) {
      out_ << Isolated(flat_.text.substr(line.begin, line.end - line.begin));
      return;
    }
    color_ ? WriteColored(line) : out_.WritePart(flat_.text, line.begin, line.end);
  }

  [[gnu::noinline]] void WriteColored(const Line &line) {
    const std::string_view text = flat_.text;
    auto mark = std::upper_bound(
        flat_.marks.begin(), flat_.marks.end(), line.begin,
        [](std::size_t offset, const Mark &candidate) { return offset < candidate.offset; });
    std::uint8_t style = mark == flat_.marks.begin() ? std::uint8_t{0} : std::prev(mark)->style;
    if (style != 0) out_ << AnsiStyle(style);
    for (std::size_t at = line.begin; at < line.end;) {
      const std::size_t next =
          mark == flat_.marks.end() ? line.end : std::min(mark->offset, line.end);
      out_ << text.substr(at, next - at);
      at = next;
      if (mark != flat_.marks.end() && at == mark->offset && at < line.end) {
        if (mark->style != style) out_ << AnsiStyle(mark->style);
        style = mark->style;
        ++mark;
      }
    }
    if (style != 0) out_ << "\x1B[0m";
  }

  void FlattenCells(const Table &table);
  std::vector<std::size_t> ColumnsOf(const Table &table) const;
  void WriteCells(const Row &row);
  void BreakCell(const CellText &cell, std::size_t width);
  void WriteRow(const Table &table, const Row &row, const std::vector<std::size_t> &columns);
  // Out of line, which leaves it the registers.
  [[gnu::noinline]] void WriteRowLine();

  Output &out_;
  std::size_t width_;
  bool color_;
  bool nameHeading_;
  bool images_;
  bool hyperlinks_;
  const DeckParts *parts_ = nullptr;
  LinkReader reader_;
  RepeatBudget repeats_;
  std::unordered_map<PartIndex, Said> said_;  ///< long targets, by action
  std::unordered_set<std::size_t> groups_;    ///< of options, with a long title above
  bool drawing_ = false;                      ///< small pictures are drawn, not named
  bool firstCard_ = true;
  bool written_ = false;  ///< something stands above, so that a blank line separates
  bool blank_ = false;    ///< a blank line comes before the next line
  std::uint32_t listedLinks_ = 0;
  std::string linkList_;  ///< lines that follow the card

  // Buffers.
  FlatText flat_;
  std::vector<Line> lines_;
  std::vector<CellText> cells_;
  TextKind cellKind_ = TextKind::kAny;
  std::vector<RowCell> rowCells_;
};

void TextWriter::TakeTable(const Table &table) {
  FlattenCells(table);
  blank_ = written_;
  const std::vector<std::size_t> columns = ColumnsOf(table);
  for (const Row &row : table.rows) {
    columns.empty() ? WriteCells(row) : WriteRow(table, row, columns);
  }
}

void TextWriter::FlattenCells(const Table &table) {
  flat_.Clear();
  cells_.clear();
  for (const Cell &cell : table.cells) {
    const auto [begin, end] = Flatten(table.ContentOf(cell));
    cells_.push_back({begin, end, end - begin});
  }
  const std::string_view text = flat_.text;
  const bool plain = AsciiPrefix(text) == text.size() && text.find('\n') == std::string_view::npos;
  cellKind_ = plain ? TextKind::kPlain : TextKind::kAny;
  if (plain) return;
  for (CellText &cell : cells_) {
    cell.columns = WidestLine(text.substr(cell.begin, cell.end - cell.begin));
  }
}

// Widths of the columns in characters: as wide as their content where that fits, else
// the room shared in proportion, no narrower than the longest word while that is possible.
// None when there is no room for columns that can be read.
std::vector<std::size_t> TextWriter::ColumnsOf(const Table &table) const {
  std::vector<std::size_t> natural;
  std::vector<std::size_t> least;
  const std::string_view text = flat_.text;
  for (const Row &row : table.rows) {
    if (row.cellCount > natural.size()) {
      natural.resize(row.cellCount);
      least.resize(row.cellCount);
    }
    for (std::size_t column = 0; column < row.cellCount; ++column) {
      natural[column] = std::max(natural[column], cells_[row.firstCell + column].columns);
    }
  }
  if (natural.empty()) return natural;

  const std::size_t gaps = kColumnGap * (natural.size() - 1);
  const std::size_t room = std::max(width_, gaps + natural.size()) - gaps;
  std::size_t wanted = 0;
  for (const std::size_t columns : natural) wanted += columns;
  if (wanted <= room) return natural;

  const std::size_t fair = room / natural.size();
  if (fair * kLinePart < gaps + room) return {};
  for (const Row &row : table.rows) {
    for (std::size_t column = 0; column < row.cellCount; ++column) {
      const CellText &cell = cells_[row.firstCell + column];
      if (least[column] >= std::min(fair, cell.columns)) continue;
      const std::size_t widest =
          WidestWord(text.substr(cell.begin, cell.end - cell.begin), cellKind_);
      least[column] = std::max(least[column], widest);
    }
  }
  std::size_t used = 0;
  for (std::size_t &columns : least) {
    columns = std::min(columns, fair);
    used += columns;
  }
  // What is left goes to the columns in proportion to what they lack.
  const std::size_t left = room - std::min(room, used);
  const std::size_t lacking = std::max<std::size_t>(wanted - std::min(wanted, used), 1);
  for (std::size_t column = 0; column < natural.size(); ++column) {
    const std::size_t lack = natural[column] - std::min(natural[column], least[column]);
    least[column] = std::max<std::size_t>(least[column] + left * lack / lacking, 1);
  }
  return least;
}

// Writes each cell of a row in lines of its own, those behind the first indented.
void TextWriter::WriteCells(const Row &row) {
  for (std::size_t column = 0; column < row.cellCount; ++column) {
    const CellText &cell = cells_[row.firstCell + column];
    const std::size_t indent = column == 0 ? 0 : kColumnGap;
    lines_.clear();
    BreakLines(flat_.text, cell.begin, cell.end, width_ - std::min(width_, indent),
               LongWords::kKeep, lines_, cellKind_);
    for (const Line &line : lines_) {
      if (line.begin != line.end) WriteLine(line, indent);
    }
  }
}

// Appends the lines of a cell to lines_.
void TextWriter::BreakCell(const CellText &cell, std::size_t width) {
  const bool fits = cell.columns != 0 && cell.columns <= width;
  if (cellKind_ == TextKind::kPlain && fits && flat_.text[cell.end - 1] != ' ') {
    lines_.push_back({cell.begin, cell.end, cell.columns});
  } else {
    BreakLines(flat_.text, cell.begin, cell.end, width, LongWords::kBreak, lines_, cellKind_);
  }
}

void TextWriter::WriteRow(const Table &table, const Row &row,
                          const std::vector<std::size_t> &columns) {
  lines_.clear();
  rowCells_.clear();
  std::size_t height = 0;
  for (std::size_t column = 0; column < row.cellCount; ++column) {
    const std::size_t cell = row.firstCell + column;
    const std::size_t first = lines_.size();
    BreakCell(cells_[cell], columns[column]);
    height = std::max(height, lines_.size() - first);
    rowCells_.push_back({first, lines_.size(), columns[column], table.cells[cell].alignment});
  }
  FlushBlank();
  written_ = true;
  for (; height != 0; --height) WriteRowLine();
}

// Writes the next line of each cell of the row beside each other.
void TextWriter::WriteRowLine() {
  std::size_t behind = 0;  // blanks not yet written: none stand at the end of a line
  for (RowCell &cell : rowCells_) {
    const Line line = cell.line != cell.end ? lines_[cell.line++] : Line{};
    if (line.begin == line.end) {
      behind += cell.width + kColumnGap;
      continue;
    }
    const std::size_t indent = Indent(cell.alignment, cell.width, line.columns);
    out_.Pad(behind + indent);
    WriteStyled(line);
    behind = cell.width - std::min(cell.width, indent + line.columns) + kColumnGap;
  }
  out_ << '\n';
}

}  // namespace

std::unique_ptr<BlockSink> MakeTextWriter(Output &output, const WriterOptions &options) {
  return std::make_unique<TextWriter>(output, options);
}

}  // namespace vs_wml
