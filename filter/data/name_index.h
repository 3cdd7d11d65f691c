// SPDX-License-Identifier: MIT
// Hash indexes over the name tables of WmlInit, made when the library is compiled.
//
// They find the same rows as a search of the tables, for a name that lies in a buffer
// of its own, and without comparing strings.
#ifndef VS_WML_FILTER_DATA_NAME_INDEX_H
#define VS_WML_FILTER_DATA_NAME_INDEX_H

#include <bit>
#include <cstddef>
#include <cstdint>

#include "filter/data/vsd_wml.h"

// Names of up to this many bytes fit into a key: the bytes in order, the first in the
// low byte, and 0 behind them.
inline constexpr size_t NAME_KEY_MAX = 8;

// The longest attribute name; the few that do not fit into a key are not indexed.
inline constexpr size_t ATTRIB_NAME_MAX = 10;

constexpr uint64_t NameKey(const char *name, size_t length) {
  uint64_t key = 0;
  for (size_t i = length; i > 0; --i) key = key << 8 | static_cast<uint8_t>(name[i - 1]);
  return key;
}

template <size_t slotCount>
struct NameIndex {
  uint64_t keys[slotCount];  // 0 in a free slot
  uint16_t values[slotCount];

  // The multiplier spreads the attributes over slots of their own; no search relies on it.
  static constexpr size_t SlotOf(uint64_t key) {
    return static_cast<size_t>(key * 0x56E0C20B30C86EFBu >> (64 - std::countr_zero(slotCount)));
  }

  // The value of a key, 0 when it is not there.
  constexpr uint16_t Find(uint64_t key) const {
    size_t slot = SlotOf(key);
    while (keys[slot] != key) {
      if (keys[slot] == 0) return 0;
      slot = (slot + 1) % slotCount;
    }
    return values[slot];
  }

  constexpr void Add(uint64_t key, uint32_t value) {
    size_t slot = SlotOf(key);
    while (keys[slot] != 0) slot = (slot + 1) % slotCount;
    keys[slot] = key;
    values[slot] = static_cast<uint16_t>(value);
  }
};

// Slots are at least twice the names, so that a search soon meets a free one.
extern const NameIndex<64> TAG_INDEX;         // lower-case name to TagId
extern const NameIndex<128> ATTRIBUTE_INDEX;  // lower-case name to AttributeId
extern const NameIndex<1024> ENTITY_INDEX;    // name to UTF-16 unit

// A tag that is nothing but its name, as it stands behind "<" or "</".
struct BareTag {
  uint64_t bytes;    // the name in lower case and the '>', the first byte lowest
  uint64_t mask;     // of all these bytes
  uint64_t letters;  // the bit that lowers a letter, in each byte of the name
  uint8_t tagId;     // 0 in a free slot, whose bytes nothing equals
  uint8_t length;    // bytes with the '>', from 1 to 7
};

// The tags but `meta`, each in the slot that its first two bytes tell.
struct BareTagIndex {
  static constexpr size_t SLOT_COUNT = 64;
  BareTag slots[SLOT_COUNT];

  // The only tag that the eight bytes behind a "<" or "</" can begin with.
  constexpr const BareTag &Candidate(uint64_t bytes) const {
    const auto firstTwo = static_cast<uint16_t>(bytes | 0x2020);
    return slots[(firstTwo * 0xEC6871Bu) >> 26];
  }
};
extern const BareTagIndex BARE_TAG_INDEX;

// The class bits of the tags by themselves, close together.
struct TagClasses {
  uint8_t of[TAG_COUNT];
};
extern const TagClasses TAG_CLASSES;

#endif  // VS_WML_FILTER_DATA_NAME_INDEX_H
