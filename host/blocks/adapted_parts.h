/// \file
/// The parts of an adapted deck.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_BLOCKS_ADAPTED_PARTS_H
#define VS_WML_HOST_BLOCKS_ADAPTED_PARTS_H

#include <cstdint>
#include <optional>

#include "host/blocks/parts.h"
#include "host/serve/served_writer.h"

namespace vs_wml {

/// Cards and tables are known by where their tags end, links and pictures by their served
/// targets; what they are is what the adapter has collected.
class AdaptedParts : public Parts {
 public:
  explicit AdaptedParts(const Deck &deck) : deck_(deck) {}

  bool TextIsWellFormed() const override { return true; }
  Card CardAt(std::size_t end) override;
  TableParts TableAt(std::size_t end) override;
  Link LinkOf(ToldReference told) override;
  Image ImageOf(ToldReference told) override;
  void EndBlock(bool /*linkGoesOn*/) override {}

 private:
  const Deck &deck_;
  const Action *action_ = nullptr;  // of the last link of the card
  std::uint32_t linkNumber_ = 0;    // of the last link
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_BLOCKS_ADAPTED_PARTS_H
