// Keys of names that lie in the input buffer.
#ifndef VS_WML_LEXER_NAME_KEY_H
#define VS_WML_LEXER_NAME_KEY_H

#include <bit>
#include <cstdint>
#include <cstring>

#include "data/name_index.h"

// The first `length` bytes, at most NAME_KEY_MAX, as a name key. Eight bytes are
// loaded, whatever the length.
inline uint64_t LoadNameKey(const uint8_t *bytes, size_t length) {
  uint64_t key;
  std::memcpy(&key, bytes, sizeof key);
  if constexpr (std::endian::native == std::endian::big) key = __builtin_bswap64(key);
  return length < NAME_KEY_MAX ? key & ((uint64_t{1} << 8 * length) - 1) : key;
}

// The key of a name of ASCII letters, digits, '-' and ':' with its letters lowered: no
// other byte above 0x1F becomes one of these by the bit that lowers a letter.
inline uint64_t LoadLowerNameKey(const uint8_t *bytes, size_t length) {
  constexpr uint64_t kLower = 0x2020202020202020u;
  const uint64_t key = LoadNameKey(bytes, length);
  return length < NAME_KEY_MAX ? key | (kLower & ((uint64_t{1} << 8 * length) - 1)) : key | kLower;
}

#endif  // VS_WML_LEXER_NAME_KEY_H
