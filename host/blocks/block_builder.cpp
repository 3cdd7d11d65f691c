// SPDX-License-Identifier: MIT
#include "host/blocks/block_builder.h"

#include <algorithm>
#include <utility>

#include "host/blocks/source_tag.h"
#include "host/platform/charset.h"
#include "host/serve/served_bytes.h"
#include "host/serve/served_writer.h"
#include "host/text/utf8.h"

namespace vs_wml {
namespace {

Alignment AlignmentOf(std::uint32_t property) {
  switch (property) {
    case PROP_ALIGN_RIGHT:
      return Alignment::kRight;
    case PROP_ALIGN_CENTER:
      return Alignment::kCenter;
    case PROP_ALIGN_JUSTIFIED:
      return Alignment::kJustified;
    default:
      return Alignment::kLeft;
  }
}

Alignment TableAlignmentOf(std::uint32_t code) {
  switch (code) {
    case SO_TABLE_RIGHT:
      return Alignment::kRight;
    case SO_TABLE_CENTER:
      return Alignment::kCenter;
    default:
      return Alignment::kLeft;
  }
}

// The `align` attribute of a table has a letter for each column.
std::vector<Alignment> ColumnAlignments(std::string_view letters) {
  std::vector<Alignment> alignments;
  for (const char letter : letters) {
    switch (letter) {
      case 'R':
      case 'r':
        alignments.push_back(Alignment::kRight);
        break;
      case 'C':
      case 'c':
        alignments.push_back(Alignment::kCenter);
        break;
      case 'L':
      case 'l':
      case 'D':
      case 'd':
        alignments.push_back(Alignment::kLeft);
        break;
      default:  // a word such as "center" aligns the table, not its columns
        return {};
    }
  }
  return alignments;
}

// Without the control characters that an attribute value may hold.
std::string CleanText(std::string text) {
  for (char &c : text) {
    if (c == '\t' || c == '\n' || c == '\r') c = ' ';
  }
  return WithoutControls(std::move(text));
}

}  // namespace

BlockBuilder::BlockBuilder(const Deck &deck, BlockSink &sink)
    : deck_(deck), sink_(sink), pictures_(deck.pictures) {
  sink_.BeginDocument(deck.info);
}

// The routine that a member is.
template <auto kMember>
VwRoutine BlockBuilder::Routine() {
  return GuardedHost::Routine<BlockBuilder, kMember>(kMember);
}

std::span<const OutputRoutine> BlockBuilder::Routines() const {
  using Self = BlockBuilder;
  static const OutputRoutine kRoutines[] = {
      {SLOT_EMIT_CHAR, AsRoutine(&Self::EmitUtf8)},
      {SLOT_EMIT_CONTROL_CODE, Routine<&Self::ControlCode>()},
      {SLOT_SET_CHAR_SIZE, Routine<&Self::CharSize>()},
      {SLOT_EMIT_BREAK, Routine<&Self::Break>()},
      {SLOT_ABORT_STREAM, Routine<&Self::Abort>()},
      {SLOT_OPEN_TABLE, Routine<&Self::OpenTable>()},
      {SLOT_CLOSE_TABLE, Routine<&Self::CloseTable>()},
      {SLOT_INSERT_GRAPHIC, Routine<&Self::InsertGraphic>()},
      {SLOT_OPEN_LINK, Routine<&Self::OpenLink>()},
      {SLOT_CLOSE_LINK, Routine<&Self::CloseLink>()},
      {SLOT_STORE_STRING, Routine<&Self::StoreString>()},
      {SLOT_DESCRIBE_ROW, Routine<&Self::DescribeRow>()},
      {SLOT_SET_TEXT_COLOR, Routine<&Self::TextColor>()},
      {SLOT_SWITCH_CHARSET, Routine<&Self::SwitchCharset>()},
      {SLOT_OPEN_REFERENCE, Routine<&Self::OpenReference>()},
      {SLOT_DESCRIBE_CELL, Routine<&Self::DescribeCell>()},
      {SLOT_SET_PROPERTY, Routine<&Self::Property>()},
      {SLOT_EMIT_CHAR, Routine<&Self::EmitCoded>()},  // documents served untouched only
  };
  const std::span<const OutputRoutine> all = kRoutines;
  return deck_.servedAsUtf8 ? all.first(all.size() - 1) : all;
}

// Nearly every call ends in the first line; the rest stays out of line to keep it short.
// ASCII and other bytes take the same way: which of them comes next is hard to predict.
std::uint32_t BlockBuilder::EmitUtf8(std::uint32_t unit, VwUserWord user,
                                     VwUserWord other) noexcept {
  BlockBuilder &builder = Of<BlockBuilder>(user);
  if (unit - 0x20 < builder.storedUnits_ && builder.text_.TryAdd(static_cast<char>(unit))) {
    return 0;
  }
  return Call<BlockBuilder, &BlockBuilder::EmitOther, std::uint32_t>(unit, user, other);
}

// ---------------------------------------------------------------- characters

void BlockBuilder::AppendCharacter(char32_t character) {
  if (character == '\n' || character == '\t' || character == '\r') {
    text_.Add(' ');
  } else if (!IsControl(character)) {
    std::string bytes;
    AppendUtf8(bytes, character);
    text_.Add(bytes);
  }
}

// Whether units beyond ASCII are bytes of UTF-8. Those from a reference are UTF-16.
bool BlockBuilder::TakesBytes() const {
  return deck_.servedAsUtf8 && charset_ != HOST_CS_UNICODE;
}

// Units that need more than a store: control characters and UTF-16.
void BlockBuilder::EmitOther(std::uint32_t unit) {
  if (unit >= 0x80 && TakesBytes()) {
    text_.Add(static_cast<char>(unit));
  } else {
    AppendCharacter(unit);
  }
}

void BlockBuilder::EmitCoded(std::uint32_t code) {
  if (charset_ != HOST_CS_UNICODE) {
    FlushSurrogate();
    if (code > 0xFF) coded_ += static_cast<char>(code >> 8U);
    coded_ += static_cast<char>(code);
    return;
  }
  if (highSurrogate_ != 0 && code >= 0xDC00 && code < 0xE000) {
    const char32_t high = std::exchange(highSurrogate_, 0);
    AppendCharacter(0x10000 + ((high - 0xD800) << 10U) + (code - 0xDC00));
    return;
  }
  FlushSurrogate();
  if (code >= 0xD800 && code < 0xDC00) {
    highSurrogate_ = code;
  } else {
    AppendCharacter(code);
  }
}

void BlockBuilder::SwitchCharset(std::uint32_t hostCharset) {
  FlushCoded();
  charset_ = hostCharset;
  storedUnits_ = TakesBytes() && deck_.info.adapted ? kAdaptedBytes : kBelowDel;
}

// A surrogate whose other half does not follow shows as U+FFFD.
void BlockBuilder::FlushSurrogate() {
  if (highSurrogate_ != 0) AppendCharacter(std::exchange(highSurrogate_, 0));
}

void BlockBuilder::FlushCharacters() {
  FlushSurrogate();
  FlushCoded();
}

void BlockBuilder::FlushCoded() {
  if (coded_.empty()) return;
  std::string converted;
  AppendHostCharset(converted, coded_, charset_);
  coded_.clear();
  for (std::size_t offset = 0; offset < converted.size();) {
    AppendCharacter(NextCharacter(converted, offset));
  }
}

// ---------------------------------------------------------------------- runs

// Ends the run that the text since the last one makes up.
void BlockBuilder::CloseRun() {
  FlushCharacters();
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

void BlockBuilder::RepairRun() {
  const std::string repaired = RepairUtf8(text_.View().substr(runStart_));
  text_.Truncate(runStart_);
  text_.Add(repaired);
}

// What the adapter has served is well-formed, and the filter hands every byte on: only where
// the reading ends early, a character may be cut.
bool BlockBuilder::IsWellFormed(std::string_view text) const {
  return deck_.info.adapted ? HasWholeEnds(text) : IsValidUtf8(text);
}

void BlockBuilder::SetStyle(const TextStyle &style) {
  if (style == style_) return;
  CloseRun();
  style_ = style;
}

void BlockBuilder::StartContent() {
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
  // The open link is the last one.
  while (linkTexts_.size() > links_.size()) linkTexts_.pop_front();
}

Content BlockBuilder::CurrentContent() const {
  return {text_.View(), runs_, links_, images_};
}

// -------------------------------------------------------------------- breaks

void BlockBuilder::ControlCode(std::uint32_t code) {
  if (code == SO_CONTROL_TAB) {
    FlushCharacters();
    text_.Add('\t');
  } else if (code == SO_CONTROL_CARD) {
    if (inTable_) CloseTable();
    EndParagraph();
    cardSeparated_ = true;
  }
}

void BlockBuilder::Break(std::uint32_t kind, std::uint32_t /*zero*/) {
  switch (kind) {
    case SO_BREAK_PARAGRAPH:
      EndLine();
      break;
    case SO_BREAK_CELL:
      // A new card closes the table; what its cells still hold is told as paragraphs.
      inTable_ ? EndCell() : EndParagraph();
      break;
    case SO_BREAK_ROW:
      inTable_ ? EndRow() : EndParagraph();
      break;
    case SO_BREAK_DOCUMENT:
      EndDocument();
      break;
    default:
      break;
  }
}

// A paragraph break: the end of a card's title, of a line in a cell, or of a paragraph.
void BlockBuilder::EndLine() {
  if (cardStarting_ && Source().Offset() == cardOffset_) {
    CloseRun();
    if (!card_.title.empty()) card_.title += ' ';
    card_.title += text_.View();
    StartContent();
    return;
  }
  if (inTable_) {
    FlushCharacters();
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

void BlockBuilder::TellParagraph(const Content &content) {
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
void BlockBuilder::TrimEnd() {
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
void BlockBuilder::EndParagraph() {
  CloseRun();
  if (!runs_.empty()) EndLine();
}

void BlockBuilder::EndDocument() {
  if (outcome_.ended) return;
  if (inTable_) CloseTable();
  EndParagraph();
  LeaveCard();
  outcome_.ended = true;
}

// --------------------------------------------------------------------- cards

void BlockBuilder::StartCard() {
  cardSeparated_ = false;
  if (inTable_) CloseTable();
  EndParagraph();
  LeaveCard();

  card_ = {};
  cardOffset_ = Source().Offset();
  cardStarting_ = true;
  newParagraph_ = true;
  if (deck_.info.adapted) {
    TakeCardParts();
    return;
  }
  const SourceTag tag = SourceTag::EndingAt(deck_.bytes, cardOffset_, "card");
  card_.id = CleanText(TextOfBytes(tag.Attribute("id").value_or("")));
  card_.newContext = tag.Attribute("newcontext") == "true";
  card_.ordered = tag.Attribute("ordered") != "false";
}

// The adapter writes one card for each that it tells.
void BlockBuilder::TakeCardParts() {
  const std::deque<DeckCard> &cards = deck_.info.parts.cards;
  linkAction_ = nullptr;
  if (nextCard_ >= cards.size()) return;
  const DeckCard &parts = cards[nextCard_++];
  card_.id = parts.id;
  card_.title = parts.title.shown;
  card_.newContext = parts.newContext;
  card_.ordered = parts.ordered;
  card_.parts = &parts;
}

// Tells the sink of the card that the next block lies in.
void BlockBuilder::TellCard() {
  if (cardOpen_ && !cardStarting_) return;
  if (!cardOpen_ && !cardStarting_) card_ = {};
  cardStarting_ = false;
  cardOpen_ = true;
  sink_.BeginCard(card_);
}

void BlockBuilder::LeaveCard() {
  if (cardStarting_) TellCard();
  if (cardOpen_) sink_.EndCard();
  cardOpen_ = false;
  emptyLines_ = 0;
}

// -------------------------------------------------------------------- tables

void BlockBuilder::OpenTable() {
  ++outcome_.tables;
  EndParagraph();
  StartContent();
  emptyLines_ = 0;
  inTable_ = true;
  cells_.clear();
  rows_.clear();
  columnWidths_.clear();
  rowStart_ = 0;
  alignment_ = Alignment::kLeft;
  const SourceTag tag = SourceTag::EndingAt(deck_.bytes, Source().Offset(), "table");
  columnAlignments_ = ColumnAlignments(tag.Attribute("align").value_or(""));
  tableTitle_ = CleanText(TextOfBytes(tag.Attribute("title").value_or("")));
}

void BlockBuilder::DescribeRow(const RowDescription *row) {
  tableAlignment_ = TableAlignmentOf(row->alignment);
  describedColumn_ = 0;
}

void BlockBuilder::DescribeCell(const CellDescription *cell) {
  const std::uint32_t column = describedColumn_++;
  if (column >= columnWidths_.size()) columnWidths_.resize(column + 1);
  columnWidths_[column] = cell->width;
}

void BlockBuilder::EndCell() {
  CloseRun();
  TrimEnd();
  Cell cell;
  cell.firstRun = cellStart_;
  cell.runCount = static_cast<std::uint32_t>(runs_.size()) - cellStart_;
  const std::size_t column = cells_.size() - rowStart_;
  cell.alignment = alignment_ != Alignment::kLeft      ? alignment_
                   : column < columnAlignments_.size() ? columnAlignments_[column]
                                                       : Alignment::kLeft;
  cells_.push_back(cell);
  cellStart_ = static_cast<std::uint32_t>(runs_.size());
  alignment_ = Alignment::kLeft;
}

void BlockBuilder::EndRow() {
  rows_.push_back({rowStart_, static_cast<std::uint32_t>(cells_.size()) - rowStart_});
  rowStart_ = static_cast<std::uint32_t>(cells_.size());
}

void BlockBuilder::CloseTable() {
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
  table.alignment = tableAlignment_;
  table.title = tableTitle_;
  TellCard();
  sink_.TakeTable(table);
  StartContent();
  newParagraph_ = true;
}

// The filter has measured the bytes of the served form: the widths of columns beyond
// ASCII are brought down to what their characters take.
void BlockBuilder::ScaleColumns() {
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

// ---------------------------------------------------------------- properties

void BlockBuilder::CharSize(std::uint32_t halfPoints) {
  TextStyle style = style_;
  style.halfPoints = static_cast<std::uint16_t>(halfPoints);
  SetStyle(style);
}

void BlockBuilder::TextColor(std::uint32_t /*zero*/, std::uint32_t color) {
  if (cardSeparated_) StartCard();
  TextStyle style = style_;
  style.color = color;
  SetStyle(style);
}

void BlockBuilder::SetAlignment(std::uint32_t code) {
  alignment_ = AlignmentOf(code);
  newParagraph_ = true;
}

void BlockBuilder::Property(std::uint32_t code, std::uint32_t a, std::uint32_t b,
                            std::uint32_t /*c*/) {
  TextStyle style = style_;
  switch (code) {
    case PROP_CHAR_ATTRIBUTE:
      if (a == PROP_ATTR_BOLD) style.bold = b != 0;
      if (a == PROP_ATTR_ITALIC) style.italic = b != 0;
      if (a == PROP_ATTR_UNDERLINE) style.underline = b != 0;
      SetStyle(style);
      break;
    case PROP_ALIGNMENT:
      SetAlignment(a);
      break;
    case PROP_LAYOUT:
      if (preformatted_ != (a == PROP_LAYOUT_PREFORMATTED)) {
        EndParagraph();
        preformatted_ = !preformatted_;
        newParagraph_ = true;
      }
      break;
    case PROP_REFERENCE_TARGET:
      // What the adapter has served holds no references.
      reference_.target = AttributeText(b);
      if (!deck_.info.adapted) {
        reference_.target = CleanText(ResolveReferences(reference_.target));
      }
      break;
    default:
      break;
  }
}

void BlockBuilder::StoreString(const std::uint16_t *units, std::uint32_t /*code*/,
                               std::uint32_t length, std::uint32_t *index) {
  std::string &bytes = strings_[storedStrings_ % kKeptStrings];
  bytes.resize(length);
  std::transform(units, units + length, bytes.begin(),
                 [](std::uint16_t unit) { return static_cast<char>(unit); });
  *index = storedStrings_++;
}

// The value of an attribute as it stands in the tag that the filter has just read: it
// takes apostrophes around the values that it hands over, and a slash right behind them,
// for part of them, and ends them at an equals sign and at 1023 bytes.
std::string BlockBuilder::WholeValue(std::string value, std::string_view tag,
                                     std::string_view attribute) const {
  const SourceTag source = SourceTag::EndingAt(deck_.bytes, Source().Offset(), tag);
  const auto whole = source.Attribute(attribute);
  if (!whole) return value;
  std::string text = CleanText(TextOfBytes(*whole));
  std::string_view start = value;
  if (start.starts_with('\'')) start.remove_prefix(1);
  if (start.ends_with("'/")) start.remove_suffix(1);
  if (start.ends_with('\'')) start.remove_suffix(1);
  return text.starts_with(start) ? text : value;
}

// A stored string as text; empty when the index names none of those kept.
std::string BlockBuilder::AttributeText(std::uint32_t index) const {
  const bool kept = index < storedStrings_ && storedStrings_ - index <= kKeptStrings;
  return kept ? TextOfBytes(strings_[index % kKeptStrings]) : std::string();
}

// The bytes of an attribute value as text.
std::string BlockBuilder::TextOfBytes(const std::string &bytes) const {
  if (AsciiPrefix(bytes) == bytes.size()) return bytes;
  if (deck_.servedAsUtf8) return RepairUtf8(bytes);
  std::string text;
  AppendHostCharset(text, bytes, charset_);
  return text;
}

void BlockBuilder::OpenReference(std::uint32_t *id) {
  reference_.target.clear();
  *id = ++reference_.id;
}

void BlockBuilder::OpenLink(std::uint32_t /*code*/, std::uint32_t number,
                            const VwLinkRecord *record) {
  CloseRun();
  Link &link = links_.emplace_back();
  link_ = static_cast<std::uint32_t>(links_.size() - 1);
  if (deck_.info.adapted) {
    TakeLinkParts(link);
    return;
  }
  link.number = number;
  LinkText &text = linkTexts_.emplace_back();
  link.target = text.target = WholeValue(reference_.target, "a", "href");
  if ((record->flags & SO_LINK_HAS_TITLE) != 0 && storedStrings_ != 0) {
    link.title = text.title = CleanText(AttributeText(storedStrings_ - 1));
  }
}

// What the served link stands for. Fields are not numbered, and a link that the adapter
// had to interrupt keeps its number.
void BlockBuilder::TakeLinkParts(Link &link) {
  const DeckParts &parts = deck_.info.parts;
  const auto reference = ParseServedTarget(reference_.target);
  if (!reference) return;
  if (reference->kind == ServedKind::kField && reference->index < parts.fields.size()) {
    link.fieldIndex = static_cast<PartIndex>(reference->index);
    link.field = &parts.fields[link.fieldIndex];
  } else if (reference->kind == ServedKind::kAction && reference->index < parts.actions.size()) {
    link.action = &parts.actions[reference->index];
    link.actionIndex = static_cast<PartIndex>(reference->index);
    link.title = DetailsOf(*link.action).title.shown;
    link.target = link.action->task.target.shown;
    if (link.action != linkAction_) ++linkNumber_;
    linkAction_ = link.action;
    link.number = linkNumber_;
  }
}

void BlockBuilder::CloseLink(std::uint32_t /*code*/, std::uint32_t /*number*/) {
  CloseRun();
  link_ = kNone;
}

void BlockBuilder::InsertGraphic(const GraphicRecord *graphic) {
  CloseRun();
  Image image;
  if (deck_.info.adapted) {
    TakeImageParts(image);
  } else {
    image.source = WholeValue(reference_.target, "img", "src");
    image.hasAlternative = (graphic->flags & SO_GRAPHIC_HAS_ALT) != 0;
    if (image.hasAlternative) image.alternative = CleanText(AttributeText(graphic->alternative));
  }
  image.picture = pictures_.Find(image.source);
  image.width = graphic->width;
  image.height = graphic->height;
  Run run;
  run.begin = run.end = static_cast<std::uint32_t>(text_.Size());
  run.style = style_;
  run.link = link_;
  run.image = static_cast<std::uint32_t>(images_.size());
  images_.push_back(std::move(image));
  runs_.push_back(run);
}

void BlockBuilder::TakeImageParts(Image &image) const {
  const std::deque<Picture> &pictures = deck_.info.parts.pictures;
  const auto reference = ParseServedTarget(reference_.target);
  if (!reference || reference->kind != ServedKind::kPicture) return;
  if (reference->index >= pictures.size()) return;
  const Picture &picture = pictures[reference->index];
  image.part = static_cast<PartIndex>(reference->index);
  image.source = (picture.source.IsEmpty() ? picture.localSource : picture.source).shown;
  image.alternative = picture.alternative.shown;
  image.hasAlternative = picture.alternative.IsGiven();
}

}  // namespace vs_wml
