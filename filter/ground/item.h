// SPDX-License-Identifier: MIT
// One item of the document: a character, a reference or a tag.
#ifndef VS_WML_FILTER_GROUND_ITEM_H
#define VS_WML_FILTER_GROUND_ITEM_H

#include <cstdint>

// Kinds of items. An item without any of them carries nothing.
inline constexpr uint8_t ITEM_CHAR = 0x01;    // a character
inline constexpr uint8_t ITEM_ENTITY = 0x02;  // a named reference: value or source text
inline constexpr uint8_t ITEM_BEGIN = 0x04;   // a begin tag
inline constexpr uint8_t ITEM_END = 0x08;     // an end tag
inline constexpr uint8_t ITEM_EMPTY = 0x10;   // the tag was closed by '/'
inline constexpr uint8_t ITEM_NUMREF = 0x20;  // a numeric reference: value or its digits
// A `meta` begin tag: taken as the character 0, which writes nothing.
inline constexpr uint8_t ITEM_META = ITEM_CHAR | ITEM_BEGIN | ITEM_END;

struct ItemRecord {
  uint8_t tagId;      // TagId; 0 = no tag or an unknown one
  uint8_t itemFlags;  // ITEM_ bits
};

#endif  // VS_WML_FILTER_GROUND_ITEM_H
