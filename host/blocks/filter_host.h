/// \file
/// The host of the filter: its output routines.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_BLOCKS_FILTER_HOST_H
#define VS_WML_HOST_BLOCKS_FILTER_HOST_H

#include <array>
#include <cstdint>
#include <span>
#include <string>

#include "host/blocks/block_assembler.h"
#include "host/blocks/character_decoder.h"
#include "host/blocks/guarded_host.h"
#include "host/blocks/parts.h"
#include "host/deck.h"
#include "host/document.h"

namespace vs_wml {

/// Takes the filter's calls for one document, decodes their arguments and hands them to an
/// assembler, which makes blocks of them. What the sink throws ends the reading.
class FilterHost : public GuardedHost {
 public:
  /// All have to outlive the host.
  FilterHost(const Deck &deck, Parts &parts, BlockSink &sink);

  /// The routines to open the stream with, and the host's address as user word.
  std::span<const OutputRoutine> Routines() const;

 private:
  // Characters.
  static std::uint32_t EmitUtf8(std::uint32_t unit, VwUserWord user, VwUserWord other) noexcept;
  void EmitUnit(std::uint32_t unit) { characters_.TakeUnit(unit); }
  void EmitCode(std::uint32_t code) { characters_.TakeCode(code); }
  void SwitchCharset(std::uint32_t hostCharset);

  // What ends the text before it.
  void ControlCode(std::uint32_t code);
  void CharSize(std::uint32_t halfPoints);
  void Break(std::uint32_t kind, std::uint32_t zero);
  void OpenTable();
  void CloseTable() { assembler_.CloseTable(); }
  void InsertGraphic(const GraphicRecord *graphic);
  void OpenLink(std::uint32_t code, std::uint32_t number, const VwLinkRecord *record);
  void CloseLink(std::uint32_t /*code*/, std::uint32_t /*number*/) { assembler_.CloseLink(); }
  void TextColor(std::uint32_t zero, std::uint32_t color);
  void Property(std::uint32_t code, std::uint32_t a, std::uint32_t b, std::uint32_t c);

  // What the text goes on behind.
  void Abort(std::uint32_t /*zero*/) { outcome_.aborted = true; }
  void StoreString(const std::uint16_t *units, std::uint32_t code, std::uint32_t length,
                   std::uint32_t *index);
  void OpenReference(std::uint32_t *id);
  void DescribeRow(const RowDescription *row);
  void DescribeCell(const CellDescription *cell) { assembler_.AddColumnWidth(cell->width); }

  // Each of them as a routine.
  template <auto kMember>
  static VwRoutine Routine() {
    return GuardedHost::Routine<FilterHost, kMember>(kMember);
  }
  template <auto kMember>
  static VwRoutine TextEnd();
  template <auto kMember, typename... Arguments>
  void EndText(Arguments... arguments) {
    characters_.Flush();
    (this->*kMember)(arguments...);
  }

  std::string StoredText(std::uint32_t index) const;

  const bool servedAsUtf8_;
  Parts &parts_;
  BlockAssembler assembler_;
  CharacterDecoder characters_;
  // Units from 0x20 on, so many, are stored as they are.
  static constexpr std::uint32_t kBelowDel = 0x7F - 0x20;
  static constexpr std::uint32_t kAllBytes = 0x100 - 0x20;  // no DEL is among them
  std::uint32_t storedUnits_ = kBelowDel;

  bool cardSeparated_ = true;     // the next colour comes from a card's start
  std::uint32_t cardOffset_ = 0;  // right behind its tag

  // The last strings that the filter stored, which uses them at once. An image takes three
  // at most: two of its own and a link's title.
  static constexpr std::uint32_t kKeptStrings = 4;
  std::array<std::string, kKeptStrings> strings_;
  std::uint32_t storedStrings_ = 0;  // the next one's index
  std::uint32_t references_ = 0;
  std::string target_;  // of the last reference
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_BLOCKS_FILTER_HOST_H
