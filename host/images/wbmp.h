/// \file
/// WBMP pictures: the black and white bitmaps of WAP phones.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_IMAGES_WBMP_H
#define VS_WML_HOST_IMAGES_WBMP_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace vs_wml {

/// A picture of black and white pixels.
struct Bitmap {
  std::uint32_t width = 0;   ///< pixels, 1 or more
  std::uint32_t height = 0;  ///< pixels, 1 or more
  /// Rows from top to bottom, each of RowBytes() bytes; the leftmost pixel is the high
  /// bit, 1 is white. Bits behind the width are 0.
  std::vector<std::uint8_t> rows;

  std::size_t RowBytes() const { return (width + 7U) / 8U; }
  bool White(std::uint32_t x, std::uint32_t y) const {
    return (rows[y * RowBytes() + x / 8U] & (0x80U >> (x % 8U))) != 0;
  }
};

/// The most pixels that a side may have.
inline constexpr std::uint32_t kLongestWbmpSide = 4096;

/// Decodes a picture of type 0. Nothing when the header is damaged or of another type,
/// a side is 0 or too long, or less than half of the pixels are there; what is missing
/// beyond that is white.
std::optional<Bitmap> DecodeWbmp(std::string_view bytes);

}  // namespace vs_wml

#endif  // VS_WML_HOST_IMAGES_WBMP_H
