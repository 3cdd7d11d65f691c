// SPDX-License-Identifier: MIT
#include "host/writers/json_text.h"

#include <array>
#include <charconv>
#include <limits>

#include "host/text/ascii.h"

namespace vs_wml {

JsonEscape::JsonEscape(char c) {
  constexpr std::string_view kNamed = "\"\\\b\f\n\r\t";
  constexpr std::string_view kNames = "\"\\bfnrt";
  if (const std::size_t named = kNamed.find(c); named != std::string_view::npos) {
    text_ = {'\\', kNames[named]};
    return;
  }
  const auto code = static_cast<unsigned char>(c);
  text_ = {'\\', 'u', '0', '0', kHexDigits[code >> 4U], kHexDigits[code & 0xFU]};
  length_ = text_.size();
}

void JsonText::StringPart(std::string_view text) {
  EscapeJson(
      text, [this](std::size_t size) { return out_.Room(size); },
      [this](std::string_view written) { out_.Fill(written.size()); },
      [this](std::string_view escape) { out_ << escape; });
}

void JsonText::Number(std::uint64_t value) {
  std::array<char, std::numeric_limits<std::uint64_t>::digits10 + 1> digits;
  const auto end = std::to_chars(digits.begin(), digits.end(), value).ptr;
  Word({digits.begin(), end});
}

void JsonText::Fraction(std::uint64_t value, std::uint64_t divisor) {
  Number(value / divisor);
  const std::uint64_t hundredths = value % divisor * 100 / divisor;
  out_ << '.' << static_cast<char>('0' + hundredths / 10);
  if (hundredths % 10 != 0) out_ << static_cast<char>('0' + hundredths % 10);
}

}  // namespace vs_wml
