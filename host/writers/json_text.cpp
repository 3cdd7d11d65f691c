// SPDX-License-Identifier: MIT
#include "host/writers/json_text.h"

#include <array>
#include <charconv>
#include <limits>

#include "host/text/ascii.h"
#include "host/text/byte_scan.h"

namespace vs_wml {
namespace {

constexpr std::size_t kPiece = 16384;  // of a string that is written at once

}  // namespace

void JsonText::StringPart(std::string_view text) {
  while (!text.empty()) {
    const std::string_view piece = text.substr(0, kPiece);
    std::size_t done = CopyBefore(piece, out_.Room(piece.size()), [](auto byte) {
      return (byte < 0x20) | (byte == '"') | (byte == '\\');
    });
    out_.Fill(done);
    if (done != piece.size()) Escape(piece[done++]);
    text.remove_prefix(done);
  }
}

void JsonText::Escape(char c) {
  constexpr std::string_view kNamed = "\"\\\b\f\n\r\t";
  constexpr std::string_view kNames = "\"\\bfnrt";
  out_ << '\\';
  if (const std::size_t named = kNamed.find(c); named != std::string_view::npos) {
    out_ << kNames[named];
    return;
  }
  const auto code = static_cast<unsigned char>(c);
  for (const char digit : {'u', '0', '0', kHexDigits[code >> 4U], kHexDigits[code & 0xFU]}) {
    out_ << digit;
  }
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
