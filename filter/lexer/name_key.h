// SPDX-License-Identifier: MIT
// Keys of names that lie in the input buffer.
#ifndef VS_WML_FILTER_LEXER_NAME_KEY_H
#define VS_WML_FILTER_LEXER_NAME_KEY_H

#include <bit>
#include <cstdint>
#include <cstring>

#include "filter/data/name_index.h"

// The first `length` bytes, at most NAME_KEY_MAX, as a name key. Eight bytes are
// loaded, whatever the length.
inline uint64_t LoadNameKey(const uint8_t *bytes, size_t length) {
  uint64_t key;
  std::memcpy(&key, bytes, sizeof key);
  if constexpr (std::endian::native == std::endian::big) key = __builtin_bswap64(key);
  return length < NAME_KEY_MAX ? key & ((uint64_t{1} << 8 * length) - 1) : key;
}

// The key of eight bytes with the letters lowered: no byte above 0x1F becomes an ASCII
// letter, a digit, '-' or ':' by the bit that lowers a letter but the letter itself.
inline uint64_t LowerNameKey(uint64_t key) {
  return key | 0x2020202020202020u;
}

// The first `length` bytes as a name key with its letters lowered.
inline uint64_t LoadLowerNameKey(const uint8_t *bytes, size_t length) {
  const uint64_t key = LowerNameKey(LoadNameKey(bytes, NAME_KEY_MAX));
  return length < NAME_KEY_MAX ? key & ((uint64_t{1} << 8 * length) - 1) : key;
}

#endif  // VS_WML_FILTER_LEXER_NAME_KEY_H
