// SPDX-License-Identifier: MIT
#include "host/blocks/block_assembler.h"

#include <algorithm>
#include <utility>

#include "host/text/utf8.h"

namespace vs_wml {

BlockAssembler::BlockAssembler(const Deck &deck, Parts &parts, BlockSink &sink)
    : parts_(parts),
      sink_(sink),
      textIsWellFormed_(parts.TextIsWellFormed()),
      pictures_(deck.pictures) {
  sink_.BeginDocument(deck.info);
}

// ---------------------------------------------------------------------- runs

// Ends the run that the text since the last one makes up.
void BlockAssembler::CloseRun() {
  if (text_.Size() == runStart_) return;
  if (!IsWellFormed(text_.View().substr(runStart_))) RepairRun();
  Run run;
  run.begin = static_cast<std::uint32_t>(runStart_);
  run.end = static_cast<std::uint32_t>(text_.Size());
  run.style = style_;
  run.link = link_;
  runs_.push_back(run);
  runStart_ = text_.Size();
}

void BlockAssembler::RepairRun() {
  const std::string repaired = RepairUtf8(text_.View().substr(runStart_));
  text_.Truncate(runStart_);
  text_.Add(repaired);
}

// Where the reading ends early, a character may be cut.
bool BlockAssembler::IsWellFormed(std::string_view text) const {
  return textIsWellFormed_ ? HasWholeEnds(text) : IsValidUtf8(text);
}

void BlockAssembler::SetStyle(const TextStyle &style) {
  if (style == style_) return;
  CloseRun();
  style_ = style;
}

void BlockAssembler::StartContent() {
  cellStart_ = 0;
  text_.Clear();
  runs_.clear();
  images_.clear();
  runStart_ = 0;
  if (link_ == kNone) {
    links_.clear();
  } else {  // the open link goes on
    std::swap(links_.front(), links_[link_]);
    links_.resize(1);
    link_ = 0;
  }
  parts_.EndBlock(link_ != kNone);
}

Content BlockAssembler::CurrentContent() const {
  return {text_.View(), runs_, links_, images_};
}

// --------------------------------------------------------------------- lines

void BlockAssembler::EndLine() {
  if (inTable_) {
    text_.Add('\n');
    return;
  }
  CloseRun();
  if (!preformatted_) TrimEnd();
  if (runs_.empty()) {
    // It shows only when another line of the same paragraph follows.
    if (!newParagraph_) ++emptyLines_;
  } else {
    if (newParagraph_) emptyLines_ = 0;
    for (; emptyLines_ != 0; --emptyLines_) TellParagraph({});
    TellParagraph(CurrentContent());
  }
  StartContent();
}

void BlockAssembler::TellParagraph(const Content &content) {
  Paragraph paragraph;
  paragraph.content = content;
  paragraph.alignment = alignment_;
  paragraph.preformatted = preformatted_;
  paragraph.continues = !newParagraph_;
  newParagraph_ = false;
  TellCard();
  sink_.TakeParagraph(paragraph);
}

// What is blank at the end of a paragraph or a cell separates nothing.
void BlockAssembler::TrimEnd() {
  while (runs_.size() > cellStart_ && runs_.back().image == kNone) {
    Run &run = runs_.back();
    while (run.end > run.begin && (text_[run.end - 1] == ' ' || text_[run.end - 1] == '\n')) {
      --run.end;
    }
    if (run.end > run.begin) return;
    runs_.pop_back();
  }
}

// Ends a paragraph that no break has ended.
void BlockAssembler::EndParagraph() {
  CloseRun();
  if (!runs_.empty()) EndLine();
}

void BlockAssembler::SetAlignment(Alignment alignment) {
  alignment_ = alignment;
  newParagraph_ = true;
}

void BlockAssembler::SetPreformatted(bool preformatted) {
  if (preformatted_ == preformatted) return;
  EndParagraph();
  preformatted_ = preformatted;
  newParagraph_ = true;
}

void BlockAssembler::EndDocument() {
  EndCardText();
  LeaveCard();
}

// --------------------------------------------------------------------- cards

void BlockAssembler::BeginCard(Card card) {
  EndCardText();
  LeaveCard();
  card_ = std::move(card);
  cardStarting_ = true;
  newParagraph_ = true;
}

void BlockAssembler::EndTitle() {
  CloseRun();
  if (!card_.title.empty()) card_.title += ' ';
  card_.title += text_.View();
  StartContent();
}

void BlockAssembler::EndCardText() {
  if (inTable_) CloseTable();
  EndParagraph();
}

// Tells the sink of the card that the next block lies in.
void BlockAssembler::TellCard() {
  if (cardOpen_ && !cardStarting_) return;
  if (!cardOpen_ && !cardStarting_) card_ = {};
  cardStarting_ = false;
  cardOpen_ = true;
  sink_.BeginCard(card_);
}

void BlockAssembler::LeaveCard() {
  if (cardStarting_) TellCard();
  if (cardOpen_) sink_.EndCard();
  cardOpen_ = false;
  emptyLines_ = 0;
}

// -------------------------------------------------------------------- tables

void BlockAssembler::OpenTable(TableParts parts) {
  EndParagraph();
  StartContent();
  emptyLines_ = 0;
  inTable_ = true;
  cells_.clear();
  rows_.clear();
  columnWidths_.clear();
  rowStart_ = 0;
  alignment_ = Alignment::kLeft;
  table_ = std::move(parts);
}

void BlockAssembler::BeginColumnWidths(Alignment table) {
  tableAlignment_ = table;
  describedColumns_ = 0;
}

void BlockAssembler::AddColumnWidth(std::uint32_t twips) {
  const std::size_t column = describedColumns_++;
  if (column >= columnWidths_.size()) columnWidths_.resize(column + 1);
  columnWidths_[column] = twips;
}

void BlockAssembler::EndCell() {
  // A new card closes the table; what its cells still hold is told as paragraphs.
  if (!inTable_) return EndParagraph();
  CloseRun();
  TrimEnd();
  Cell cell;
  cell.firstRun = cellStart_;
  cell.runCount = static_cast<std::uint32_t>(runs_.size()) - cellStart_;
  const std::size_t column = cells_.size() - rowStart_;
  cell.alignment = alignment_ != Alignment::kLeft   ? alignment_
                   : column < table_.columns.size() ? table_.columns[column]
                                                    : Alignment::kLeft;
  cells_.push_back(cell);
  cellStart_ = static_cast<std::uint32_t>(runs_.size());
  alignment_ = Alignment::kLeft;
}

void BlockAssembler::EndRow() {
  if (!inTable_) return EndParagraph();
  const std::size_t kept = rowStart_ + CellsOfRow(rows_.size());
  while (cells_.size() > kept && cells_.back().runCount == 0) cells_.pop_back();
  rows_.push_back({rowStart_, static_cast<std::uint32_t>(cells_.size()) - rowStart_});
  rowStart_ = static_cast<std::uint32_t>(cells_.size());
}

// The cells that the document gives a row, or one; the filter adds others up to the last column.
std::size_t BlockAssembler::CellsOfRow(std::size_t row) const {
  return row < table_.rowCells.size() ? std::max<std::size_t>(table_.rowCells[row], 1) : 1;
}

void BlockAssembler::CloseTable() {
  if (!inTable_) return;
  CloseRun();
  if (runs_.size() > cellStart_) EndCell();
  if (cells_.size() > rowStart_) EndRow();
  inTable_ = false;
  if (AsciiPrefix(text_.View()) != text_.Size()) ScaleColumns();
  Table table;
  table.content = CurrentContent();
  table.cells = cells_;
  table.rows = rows_;
  table.columnWidths = columnWidths_;
  table.columnAlignments = table_.columns;
  table.alignment = tableAlignment_;
  table.title = table_.title;
  TellCard();
  sink_.TakeTable(table);
  StartContent();
  newParagraph_ = true;
}

// The filter has measured the bytes of the served form: the widths of columns beyond
// ASCII are brought down to what their characters take.
void BlockAssembler::ScaleColumns() {
  std::vector<std::pair<std::size_t, std::size_t>> widest(columnWidths_.size());
  for (const Row &row : rows_) {
    for (std::size_t column = 0; column < std::min<std::size_t>(row.cellCount, widest.size());
         ++column) {
      const Cell &cell = cells_[row.firstCell + column];
      if (cell.runCount == 0) continue;
      const std::uint32_t begin = runs_[cell.firstRun].begin;
      const std::uint32_t end = runs_[cell.firstRun + cell.runCount - 1].end;
      const std::string_view text = text_.View().substr(begin, end - begin);
      auto &[bytes, columns] = widest[column];
      bytes = std::max(bytes, text.size());
      columns = std::max(columns, ColumnWidth(text));
    }
  }
  for (std::size_t column = 0; column < widest.size(); ++column) {
    const auto &[bytes, columns] = widest[column];
    if (bytes == 0) continue;
    columnWidths_[column] =
        static_cast<std::uint32_t>(std::uint64_t{columnWidths_[column]} * columns / bytes);
  }
}

// --------------------------------------------------------- links and pictures

void BlockAssembler::OpenLink(const Link &link) {
  CloseRun();
  link_ = static_cast<std::uint32_t>(links_.size());
  links_.push_back(link);
}

void BlockAssembler::CloseLink() {
  CloseRun();
  link_ = kNone;
}

void BlockAssembler::AddImage(Image image) {
  CloseRun();
  image.picture = pictures_.Find(image.source);
  Run run;
  run.begin = run.end = static_cast<std::uint32_t>(text_.Size());
  run.style = style_;
  run.link = link_;
  run.image = static_cast<std::uint32_t>(images_.size());
  images_.push_back(std::move(image));
  runs_.push_back(run);
}

}  // namespace vs_wml
