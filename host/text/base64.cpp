// SPDX-License-Identifier: MIT
#include "host/text/base64.h"

#include <cstddef>
#include <cstdint>

namespace vs_wml {

void AppendBase64(std::string &text, std::string_view bytes) {
  constexpr std::string_view kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  text.reserve(text.size() + (bytes.size() + 2) / 3 * 4);
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    std::uint32_t group = 0;
    const std::string_view part = bytes.substr(at, 3);
    for (std::size_t i = 0; i < 3; ++i) {
      group = (group << 8U) | (i < part.size() ? static_cast<unsigned char>(part[i]) : 0U);
    }
    for (std::size_t i = 0; i < 4; ++i) {
      text += i <= part.size() ? kDigits[(group >> (18U - 6U * i)) & 63U] : '=';
    }
  }
}

}  // namespace vs_wml
