// A document in memory behind a block handle, with the ways in which a host can be awkward.
//
// SPDX-License-Identifier: MIT
#ifndef VS_WML_TESTS_SUPPORT_BLOCK_SOURCE_H
#define VS_WML_TESTS_SUPPORT_BLOCK_SOURCE_H

#include <cstdint>
#include <string>
#include <string_view>

#include "vs_wml.h"

namespace vs_wml::test {

/// What a host does wrong at its n-th call of one kind, counted from 1; 0: never.
struct BlockFaults {
  std::uint64_t readAt = 0;             ///< this read fails
  std::uint64_t seekAt = 0;             ///< this seek fails and does not move
  std::uint64_t tellAt = 0;             ///< this tell fails and stores nothing
  bool forever = false;                 ///< and so does every later call of that kind
  std::uint32_t readFrom = 0xFFFFFFFF;  ///< reads at this position and behind it fail
  std::uint32_t tellLie = 0;            ///< added to every position told
  std::uint32_t overclaim = 0;          ///< added to the count of every read but the last
};

/// The bytes of `text`, repeated to fill `length`. The record comes first, so that
/// its address is the address of the source.
struct BlockSource {
  explicit BlockSource(std::string_view text, std::uint32_t bytesPerRead = 0);
  BlockSource(const BlockSource &) = delete;
  BlockSource &operator=(const BlockSource &) = delete;

  VwHandle Handle() const { return reinterpret_cast<VwHandle>(this); }

  VwBlockHandle record{};
  std::string_view text;
  std::uint32_t length;  ///< of the document
  std::uint32_t chunk;   ///< bytes that one read delivers at most, 0: all it wants
  std::uint32_t position = 0;
  BlockFaults faults;
  std::uint64_t budget = 0;  ///< every read fails once so many bytes are delivered; 0: none

  std::uint64_t reads = 0;
  std::uint64_t seeks = 0;
  std::uint64_t tells = 0;
  std::uint64_t bytes = 0;  ///< delivered in all
};

}  // namespace vs_wml::test

#endif  // VS_WML_TESTS_SUPPORT_BLOCK_SOURCE_H
