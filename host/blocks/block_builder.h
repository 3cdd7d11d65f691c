/// \file
/// Turns the filter's calls into blocks.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_BLOCKS_BLOCK_BUILDER_H
#define VS_WML_HOST_BLOCKS_BLOCK_BUILDER_H

#include <array>
#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <vector>

#include "host/blocks/guarded_host.h"
#include "host/deck.h"
#include "host/document.h"
#include "host/text/text_buffer.h"

namespace vs_wml {

/// Collects one block at a time from the output routines and hands it to a sink. One
/// builder reads one document; its buffers grow to the largest block and no further.
///
/// What the sink throws ends the reading; Rethrow throws it.
class BlockBuilder : public GuardedHost {
 public:
  /// Both have to outlive the builder.
  BlockBuilder(const Deck &deck, BlockSink &sink);

  /// The routines to open the stream with, and the builder's address as user word.
  std::span<const OutputRoutine> Routines() const;

 private:
  struct LinkText {
    std::string target;
    std::string title;
  };
  struct Reference {
    std::uint32_t id = 0;
    std::string target;
  };

  // The output routines.
  static std::uint32_t EmitUtf8(std::uint32_t unit, VwUserWord user, VwUserWord other) noexcept;
  void EmitOther(std::uint32_t unit);
  void EmitCoded(std::uint32_t code);
  void ControlCode(std::uint32_t code);
  void CharSize(std::uint32_t halfPoints);
  void Break(std::uint32_t kind, std::uint32_t zero);
  void Abort(std::uint32_t /*zero*/) { outcome_.aborted = true; }
  void OpenTable();
  void CloseTable();
  void InsertGraphic(const GraphicRecord *graphic);
  void OpenLink(std::uint32_t code, std::uint32_t number, const VwLinkRecord *record);
  void CloseLink(std::uint32_t code, std::uint32_t number);
  void StoreString(const std::uint16_t *units, std::uint32_t code, std::uint32_t length,
                   std::uint32_t *index);
  void DescribeRow(const RowDescription *row);
  void TextColor(std::uint32_t zero, std::uint32_t color);
  void SwitchCharset(std::uint32_t hostCharset);
  void OpenReference(std::uint32_t *id);
  void DescribeCell(const CellDescription *cell);
  void Property(std::uint32_t code, std::uint32_t a, std::uint32_t b, std::uint32_t c);
  template <auto kMember>
  static VwRoutine Routine();

  void AppendCharacter(char32_t character);
  void FlushCoded();
  void FlushSurrogate();
  void FlushCharacters();

  bool TakesBytes() const;
  void CloseRun();
  [[gnu::noinline]] void RepairRun();
  bool IsWellFormed(std::string_view text) const;
  void SetStyle(const TextStyle &style);
  void StartContent();
  Content CurrentContent() const;

  void EndLine();
  void EndParagraph();
  void TellParagraph(const Content &content);
  void TrimEnd();
  void EndCell();
  void EndRow();
  void EndDocument();
  void StartCard();
  void TakeCardParts();
  void TellCard();
  void LeaveCard();
  void ScaleColumns();
  void SetAlignment(std::uint32_t code);
  void TakeLinkParts(Link &link);
  void TakeImageParts(Image &image) const;
  std::string AttributeText(std::uint32_t index) const;
  std::string TextOfBytes(const std::string &bytes) const;
  std::string WholeValue(std::string value, std::string_view tag, std::string_view attribute) const;

  const Deck &deck_;
  BlockSink &sink_;

  // Characters.
  std::uint32_t charset_ = HOST_CS_UNICODE;
  std::string coded_;           ///< codes not yet converted, of documents served untouched
  char32_t highSurrogate_ = 0;  ///< waiting for its other half, 0: none
  // Units from 0x20 on, so many, are stored as they are.
  static constexpr std::uint32_t kBelowDel = 0x7F - 0x20;
  static constexpr std::uint32_t kAdaptedBytes = 0x100 - 0x20;  // the adapter serves no DEL
  std::uint32_t storedUnits_ = kBelowDel;

  // The block.
  TextBuffer text_;
  std::vector<Run> runs_;
  std::vector<Link> links_;
  std::deque<LinkText> linkTexts_;  ///< of links_, where no action has them
  std::vector<Image> images_;
  std::size_t runStart_ = 0;
  TextStyle style_;
  std::uint32_t link_ = kNone;  ///< the open link, named again in every block it goes on in
  Alignment alignment_ = Alignment::kLeft;
  bool preformatted_ = false;
  bool newParagraph_ = true;    ///< the next line starts a paragraph
  std::size_t emptyLines_ = 0;  ///< lines not told yet: none are at the end of a paragraph

  // What links and pictures stand for.
  const Action *linkAction_ = nullptr;  ///< of the last link of the card
  std::uint32_t linkNumber_ = 0;        ///< of the last link, in adapted documents
  std::size_t nextCard_ = 0;            ///< of the adapted document
  PictureLibrary pictures_;

  // The table, while inTable_.
  bool inTable_ = false;
  std::string tableTitle_;
  std::uint32_t cellStart_ = 0;
  std::uint32_t rowStart_ = 0;
  std::vector<Cell> cells_;
  std::vector<Row> rows_;
  std::vector<std::uint32_t> columnWidths_;
  std::vector<Alignment> columnAlignments_;
  std::uint32_t describedColumn_ = 0;
  Alignment tableAlignment_ = Alignment::kLeft;

  // The card.
  Card card_;
  std::uint32_t cardOffset_ = 0;  ///< right behind its tag
  bool cardStarting_ = false;     ///< the sink has not been told of it yet
  bool cardOpen_ = false;
  bool cardSeparated_ = true;  ///< the next colour comes from a card's start

  // The last strings that the filter stored, which uses them at once. An image takes three
  // at most: two of its own and a link's title.
  static constexpr std::uint32_t kKeptStrings = 4;
  std::array<std::string, kKeptStrings> strings_;
  std::uint32_t storedStrings_ = 0;  ///< the next one's index
  Reference reference_;
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_BLOCKS_BLOCK_BUILDER_H
