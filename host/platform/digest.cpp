// SPDX-License-Identifier: MIT
#include "host/platform/digest.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

namespace vs_wml {

std::string Xxh128(std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  XXH128_canonical_t canonical;
  XXH128_canonicalFromHash(&canonical, XXH3_128bits(bytes.data(), bytes.size()));
  std::string digits;
  for (const unsigned char byte : canonical.digest) {
    digits += kDigits[byte >> 4U];
    digits += kDigits[byte & 0xFU];
  }
  return digits;
}

}  // namespace vs_wml
