// SPDX-License-Identifier: MIT
#include "host/blocks/filter_host.h"

#include <algorithm>
#include <utility>

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

}  // namespace

FilterHost::FilterHost(const Deck &deck, Parts &parts, BlockSink &sink)
    : servedAsUtf8_(deck.servedAsUtf8),
      parts_(parts),
      assembler_(deck, parts, sink),
      characters_(deck.servedAsUtf8, assembler_.Text()) {}

template <auto kMember>
VwRoutine FilterHost::TextEnd() {
  return []<typename... Arguments>(void (FilterHost::* /*member*/)(Arguments...)) {
    return Routine<&FilterHost::EndText<kMember, Arguments...>>();
  }(kMember);
}

std::span<const OutputRoutine> FilterHost::Routines() const {
  using Self = FilterHost;
  static const OutputRoutine kRoutines[] = {
      {SLOT_EMIT_CHAR, AsRoutine(&Self::EmitUtf8)},
      {SLOT_EMIT_CONTROL_CODE, TextEnd<&Self::ControlCode>()},
      {SLOT_SET_CHAR_SIZE, TextEnd<&Self::CharSize>()},
      {SLOT_EMIT_BREAK, TextEnd<&Self::Break>()},
      {SLOT_ABORT_STREAM, Routine<&Self::Abort>()},
      {SLOT_OPEN_TABLE, TextEnd<&Self::OpenTable>()},
      {SLOT_CLOSE_TABLE, TextEnd<&Self::CloseTable>()},
      {SLOT_INSERT_GRAPHIC, TextEnd<&Self::InsertGraphic>()},
      {SLOT_OPEN_LINK, TextEnd<&Self::OpenLink>()},
      {SLOT_CLOSE_LINK, TextEnd<&Self::CloseLink>()},
      {SLOT_STORE_STRING, Routine<&Self::StoreString>()},
      {SLOT_DESCRIBE_ROW, Routine<&Self::DescribeRow>()},
      {SLOT_SET_TEXT_COLOR, TextEnd<&Self::TextColor>()},
      {SLOT_SWITCH_CHARSET, Routine<&Self::SwitchCharset>()},
      {SLOT_OPEN_REFERENCE, Routine<&Self::OpenReference>()},
      {SLOT_DESCRIBE_CELL, Routine<&Self::DescribeCell>()},
      {SLOT_SET_PROPERTY, TextEnd<&Self::Property>()},
      {SLOT_EMIT_CHAR, Routine<&Self::EmitCode>()},  // documents served untouched only
  };
  const std::span<const OutputRoutine> all = kRoutines;
  return servedAsUtf8_ ? all.first(all.size() - 1) : all;
}

// Nearly every call ends in the first line; the rest stays out of line to keep it short.
// ASCII and other bytes take the same way: which of them comes next is hard to predict.
std::uint32_t FilterHost::EmitUtf8(std::uint32_t unit, VwUserWord user, VwUserWord other) noexcept {
  auto &host = Of<FilterHost>(user);
  if (unit - 0x20 < host.storedUnits_ && host.assembler_.Text().TryAdd(static_cast<char>(unit))) {
    return 0;
  }
  return Call<FilterHost, &FilterHost::EmitUnit, std::uint32_t>(unit, user, other);
}

void FilterHost::SwitchCharset(std::uint32_t hostCharset) {
  characters_.Switch(hostCharset);
  const bool all = characters_.TakesBytes() && parts_.TextIsWellFormed();
  storedUnits_ = all ? kAllBytes : kBelowDel;
}

void FilterHost::ControlCode(std::uint32_t code) {
  if (code == SO_CONTROL_TAB) {
    assembler_.AddTab();
  } else if (code == SO_CONTROL_CARD) {
    assembler_.EndCardText();
    cardSeparated_ = true;
  }
}

void FilterHost::Break(std::uint32_t kind, std::uint32_t /*zero*/) {
  switch (kind) {
    case SO_BREAK_PARAGRAPH:
      // What comes before anything behind a card's tag is its title.
      if (assembler_.CardIsStarting() && Source().Offset() == cardOffset_) {
        assembler_.EndTitle();
      } else {
        assembler_.EndLine();
      }
      break;
    case SO_BREAK_CELL:
      assembler_.EndCell();
      break;
    case SO_BREAK_ROW:
      assembler_.EndRow();
      break;
    case SO_BREAK_DOCUMENT:
      if (!outcome_.ended) assembler_.EndDocument();
      outcome_.ended = true;
      break;
    default:
      break;
  }
}

void FilterHost::CharSize(std::uint32_t halfPoints) {
  TextStyle style = assembler_.Style();
  style.halfPoints = static_cast<std::uint16_t>(halfPoints);
  assembler_.SetStyle(style);
}

void FilterHost::TextColor(std::uint32_t /*zero*/, std::uint32_t color) {
  if (std::exchange(cardSeparated_, false)) {
    cardOffset_ = Source().Offset();
    assembler_.BeginCard(parts_.CardAt(cardOffset_));
  }
  TextStyle style = assembler_.Style();
  style.color = color;
  assembler_.SetStyle(style);
}

void FilterHost::Property(std::uint32_t code, std::uint32_t a, std::uint32_t b,
                          std::uint32_t /*c*/) {
  TextStyle style = assembler_.Style();
  switch (code) {
    case PROP_CHAR_ATTRIBUTE:
      if (a == PROP_ATTR_BOLD) style.bold = b != 0;
      if (a == PROP_ATTR_ITALIC) style.italic = b != 0;
      if (a == PROP_ATTR_UNDERLINE) style.underline = b != 0;
      assembler_.SetStyle(style);
      break;
    case PROP_ALIGNMENT:
      assembler_.SetAlignment(AlignmentOf(a));
      break;
    case PROP_LAYOUT:
      assembler_.SetPreformatted(a == PROP_LAYOUT_PREFORMATTED);
      break;
    case PROP_REFERENCE_TARGET:
      target_ = StoredText(b);
      break;
    default:
      break;
  }
}

void FilterHost::OpenTable() {
  ++outcome_.tables;
  assembler_.OpenTable(parts_.TableAt(Source().Offset()));
}

void FilterHost::DescribeRow(const RowDescription *row) {
  assembler_.BeginColumnWidths(TableAlignmentOf(row->alignment));
}

void FilterHost::StoreString(const std::uint16_t *units, std::uint32_t /*code*/,
                             std::uint32_t length, std::uint32_t *index) {
  std::string &bytes = strings_[storedStrings_ % kKeptStrings];
  bytes.resize(length);
  std::transform(units, units + length, bytes.begin(),
                 [](std::uint16_t unit) { return static_cast<char>(unit); });
  *index = storedStrings_++;
}

// Empty when the index names none of the strings kept.
std::string FilterHost::StoredText(std::uint32_t index) const {
  const bool kept = index < storedStrings_ && storedStrings_ - index <= kKeptStrings;
  return kept ? characters_.TextOf(strings_[index % kKeptStrings]) : std::string();
}

void FilterHost::OpenReference(std::uint32_t *id) {
  target_.clear();
  *id = ++references_;
}

void FilterHost::OpenLink(std::uint32_t /*code*/, std::uint32_t number,
                          const VwLinkRecord *record) {
  ToldReference told;
  told.number = number;
  told.target = std::move(target_);
  if ((record->flags & SO_LINK_HAS_TITLE) != 0) told.label = StoredText(storedStrings_ - 1);
  assembler_.OpenLink(parts_.LinkOf(std::move(told)));
}

void FilterHost::InsertGraphic(const GraphicRecord *graphic) {
  ToldReference told;
  told.target = std::move(target_);
  if ((graphic->flags & SO_GRAPHIC_HAS_ALT) != 0) told.label = StoredText(graphic->alternative);
  Image image = parts_.ImageOf(std::move(told));
  image.width = graphic->width;
  image.height = graphic->height;
  assembler_.AddImage(std::move(image));
}

}  // namespace vs_wml
