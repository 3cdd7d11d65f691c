// SPDX-License-Identifier: MIT
#include "host/images/wbmp.h"

#include <algorithm>

namespace vs_wml {
namespace {

constexpr std::uint8_t kMore = 0x80;  // another byte follows

struct Header {
  std::string_view rest;
  bool damaged = false;

  std::uint8_t Byte() {
    if (rest.empty()) {
      damaged = true;
      return 0;
    }
    const auto byte = static_cast<std::uint8_t>(rest.front());
    rest.remove_prefix(1);
    return byte;
  }

  // Seven bits a byte; no side needs more than three.
  std::uint32_t Number() {
    std::uint32_t value = 0;
    for (int i = 0; i < 3; ++i) {
      const std::uint8_t byte = Byte();
      value = (value << 7U) | (byte & 0x7FU);
      if ((byte & kMore) == 0) return value;
    }
    damaged = true;
    return 0;
  }
};

// Extension headers behind the fixed one: a bit field that goes on as long as its high
// bit is set. The other types, with parameters of their own, are not in use.
void SkipExtensions(Header &header, std::uint8_t fixed) {
  if ((fixed & kMore) == 0) return;
  if ((fixed & 0x60U) != 0) header.damaged = true;
  while (!header.damaged && (header.Byte() & kMore) != 0) {
  }
}

void ClearPadding(Bitmap &bitmap) {
  const unsigned used = bitmap.width % 8U;
  if (used == 0) return;
  const auto mask = static_cast<std::uint8_t>(0xFFU << (8U - used));
  for (std::size_t end = bitmap.RowBytes(); end <= bitmap.rows.size(); end += bitmap.RowBytes()) {
    bitmap.rows[end - 1] &= mask;
  }
}

}  // namespace

std::optional<Bitmap> DecodeWbmp(std::string_view bytes) {
  Header header{bytes};
  const std::uint32_t type = header.Number();
  SkipExtensions(header, header.Byte());
  Bitmap bitmap;
  bitmap.width = header.Number();
  bitmap.height = header.Number();
  const auto fits = [](std::uint32_t side) { return side >= 1 && side <= kLongestWbmpSide; };
  if (header.damaged || type != 0 || !fits(bitmap.width) || !fits(bitmap.height)) {
    return std::nullopt;
  }
  const std::size_t size = bitmap.RowBytes() * bitmap.height;
  if (header.rest.size() < (size + 1) / 2) return std::nullopt;
  const std::string_view pixels = header.rest.substr(0, size);
  bitmap.rows.assign(pixels.begin(), pixels.end());
  bitmap.rows.resize(size, 0xFF);
  ClearPadding(bitmap);
  return bitmap;
}

}  // namespace vs_wml
