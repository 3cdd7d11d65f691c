/// \file
/// Puts blocks together.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_BLOCKS_BLOCK_ASSEMBLER_H
#define VS_WML_HOST_BLOCKS_BLOCK_ASSEMBLER_H

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "host/blocks/parts.h"
#include "host/deck.h"
#include "host/document.h"
#include "host/text/text_buffer.h"

namespace vs_wml {

/// Collects one block at a time, lines, runs, tables and cards, and hands it to a sink. Its
/// buffers grow to the largest block and no further.
class BlockAssembler {
 public:
  /// All have to outlive the assembler. Begins the document.
  BlockAssembler(const Deck &deck, Parts &parts, BlockSink &sink);

  /// Where the characters of the block are added.
  TextBuffer &Text() { return text_; }
  void AddTab() { text_.Add('\t'); }
  const TextStyle &Style() const { return style_; }
  void SetStyle(const TextStyle &style);
  void SetAlignment(Alignment alignment);
  void SetPreformatted(bool preformatted);
  void OpenLink(const Link &link);
  void CloseLink();
  void AddImage(Image image);
  /// Ends a line of a cell or a paragraph.
  void EndLine();

  /// Ends what was open before, and begins a card. Until anything of it is told, what it
  /// begins with may be its title.
  void BeginCard(Card card);
  bool CardIsStarting() const { return cardStarting_; }
  /// What was added is the title, or a line of it.
  void EndTitle();
  void EndCardText();

  void OpenTable(TableParts parts);
  void EndCell();
  void EndRow();
  void CloseTable();
  /// The widths of a row's columns follow, those of all rows being the same.
  void BeginColumnWidths(Alignment table);
  void AddColumnWidth(std::uint32_t twips);

  void EndDocument();

 private:
  void CloseRun();
  void RepairRun();
  bool IsWellFormed(std::string_view text) const;
  void StartContent();
  Content CurrentContent() const;
  void EndParagraph();
  void TellParagraph(const Content &content);
  void TrimEnd();
  void TellCard();
  void LeaveCard();
  std::size_t CellsOfRow(std::size_t row) const;
  void ScaleColumns();

  Parts &parts_;
  BlockSink &sink_;
  const bool textIsWellFormed_;
  PictureLibrary pictures_;

  // The block.
  TextBuffer text_;
  std::vector<Run> runs_;
  std::vector<Link> links_;
  std::vector<Image> images_;
  std::size_t runStart_ = 0;
  TextStyle style_;
  std::uint32_t link_ = kNone;  // the open link, named again in every block it goes on in
  Alignment alignment_ = Alignment::kLeft;
  bool preformatted_ = false;
  bool newParagraph_ = true;    // the next line starts a paragraph
  std::size_t emptyLines_ = 0;  // lines not told yet: none are at the end of a paragraph

  // The table, while inTable_.
  bool inTable_ = false;
  TableParts table_;
  std::uint32_t cellStart_ = 0;
  std::uint32_t rowStart_ = 0;
  std::vector<Cell> cells_;
  std::vector<Row> rows_;
  std::vector<std::uint32_t> columnWidths_;
  std::size_t describedColumns_ = 0;
  Alignment tableAlignment_ = Alignment::kLeft;

  // The card.
  Card card_;
  bool cardStarting_ = false;  // the sink has not been told of it yet
  bool cardOpen_ = false;
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_BLOCKS_BLOCK_ASSEMBLER_H
