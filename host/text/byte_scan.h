/// \file
/// Looking for bytes, many at once.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_TEXT_BYTE_SCAN_H
#define VS_WML_HOST_TEXT_BYTE_SCAN_H

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace vs_wml {

/// The first eight bytes of a text, the first of them lowest.
inline std::uint64_t LowestFirst(const char *text) {
  std::uint64_t word = 0;
  std::memcpy(&word, text, sizeof word);
  if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
  return word;
}

/// A word of eight times the same byte.
constexpr std::uint64_t EightTimes(unsigned char byte) {
  return 0x0101010101010101U * byte;
}

namespace byte_scan {

using Sixteen [[gnu::vector_size(16)]] = unsigned char;
using Eight [[gnu::vector_size(8)]] = unsigned char;

template <typename Vector>
Vector Load(const char *text) {
  Vector bytes;
  std::memcpy(&bytes, text, sizeof bytes);
  return bytes;
}

// The position of the first byte that is not 0 in a word as it lies in memory.
inline std::size_t FirstByte(std::uint64_t word) {
  const bool little = std::endian::native == std::endian::little;
  return static_cast<std::size_t>(little ? std::countr_zero(word) : std::countl_zero(word)) / 8;
}

// The position of the first byte that is not 0 in a vector, its size when there is none. Which
// of the words has it is not branched on: that would be hard to predict.
template <typename Vector>
std::size_t FirstIn(Vector vector) {
  std::array<std::uint64_t, sizeof vector / sizeof(std::uint64_t)> words;
  std::memcpy(words.data(), &vector, sizeof vector);
  std::uint64_t word = words.back();
  std::size_t at = sizeof vector - sizeof word;
  for (std::size_t before = words.size() - 1; before-- != 0;) {
    const bool has = words[before] != 0;
    word = has ? words[before] : word;
    at = has ? before * sizeof word : at;
  }
  return word != 0 ? at + FirstByte(word) : sizeof vector;
}

// LengthBefore for a text no shorter than the vector, the last of which may overlap the one
// before. `visit` takes the position of each vector and the vector.
template <typename Vector, typename IsSpecial, typename Visit>
std::size_t LengthInVectors(std::string_view text, IsSpecial isSpecial, Visit visit) {
  const std::size_t last = text.size() - sizeof(Vector);
  for (std::size_t at = 0;; at = std::min(at + sizeof(Vector), last)) {
    const auto bytes = Load<Vector>(text.data() + at);
    visit(at, bytes);
    const std::size_t first = FirstIn(isSpecial(bytes));
    if (first != sizeof(Vector)) return at + first;
    if (at == last) return text.size();
  }
}

template <typename IsSpecial, typename Visit>
std::size_t VisitBefore(std::string_view text, IsSpecial isSpecial, Visit visit) {
  if (text.size() >= sizeof(Sixteen)) return LengthInVectors<Sixteen>(text, isSpecial, visit);
  if (text.size() >= sizeof(Eight)) return LengthInVectors<Eight>(text, isSpecial, visit);
  std::size_t at = 0;
  for (; at < text.size(); ++at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    if (isSpecial(byte)) break;
    visit(at, byte);
  }
  return at;
}

}  // namespace byte_scan

/// The length of the text before its first special byte. `isSpecial` takes an unsigned
/// char, or a vector of them, and says with operators that both have.
template <typename IsSpecial>
std::size_t LengthBefore(std::string_view text, IsSpecial isSpecial) {
  return byte_scan::VisitBefore(text, isSpecial, [](std::size_t, auto) {});
}

/// As LengthBefore, and copies the text so far to `out`, of which as many bytes as the
/// whole text has may be overwritten.
template <typename IsSpecial>
std::size_t CopyBefore(std::string_view text, char *out, IsSpecial isSpecial) {
  return byte_scan::VisitBefore(text, isSpecial, [out](std::size_t at, auto bytes) {
    std::memcpy(out + at, &bytes, sizeof bytes);
  });
}

}  // namespace vs_wml

#endif  // VS_WML_HOST_TEXT_BYTE_SCAN_H
