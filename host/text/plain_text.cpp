// SPDX-License-Identifier: MIT
#include "host/text/plain_text.h"

#include "host/text/byte_scan.h"

namespace vs_wml {

std::size_t PlainLength(std::string_view text) {
  // Where two bytes differ in one bit, that bit is set for one comparison with both.
  return LengthBefore(text, [](auto byte) {
    const auto tabOrReturn = (byte | ('\t' ^ '\r')) == '\r';
    const auto angle = (byte | ('<' ^ '>')) == '>';
    const auto dollarOrAmpersand = (byte | ('$' ^ '&')) == '&';
    const auto control = (byte < 0x20) ^ (tabOrReturn | (byte == '\n'));
    return control | angle | dollarOrAmpersand | (byte == 0x7F) | (byte == 0xC2);
  });
}

}  // namespace vs_wml
