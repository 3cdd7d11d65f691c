// SPDX-License-Identifier: MIT
#include "host/text/printable.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <array>
#include <cstdio>

#include "host/text/utf8.h"

namespace vs_wml {
namespace {

// Whether a character beyond ASCII is not seen, or changes how others are.
bool Hides(char32_t character) {
  const auto code = static_cast<UChar32>(character);
  if (u_hasBinaryProperty(code, UCHAR_VARIATION_SELECTOR) != 0) return false;
  const auto categories = U_GC_CF_MASK | U_GC_ZL_MASK | U_GC_ZP_MASK;
  return IsControl(character) || (U_GET_GC_MASK(code) & categories) != 0 ||
         u_hasBinaryProperty(code, UCHAR_DEFAULT_IGNORABLE_CODE_POINT) != 0;
}

void AppendEscaped(std::string &text, const char *format, unsigned value) {
  std::array<char, 16> escape{};
  std::snprintf(escape.data(), escape.size(), format, value);
  text += escape.data();
}

void AppendControl(std::string &text, char32_t control) {
  if (control == '\n') {
    text += "\\n";
  } else if (control == '\t') {
    text += "\\t";
  } else {
    AppendEscaped(text, "\\x%02X", control);
  }
}

}  // namespace

std::string Printable(std::string_view text) {
  const auto shows = [](char c) { return c >= 0x20 && c < 0x7F; };
  if (std::all_of(text.begin(), text.end(), shows)) return std::string(text);
  std::string printable;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t begin = at;
    const char32_t character = NextCharacter(text, at);
    const std::string_view bytes = text.substr(begin, at - begin);
    if (character < 0x80 && IsControl(character)) {
      AppendControl(printable, character);
    } else if (!IsValidUtf8(bytes)) {
      for (const char byte : bytes) {
        AppendEscaped(printable, "\\x%02X", static_cast<unsigned char>(byte));
      }
    } else if (character >= 0x80 && Hides(character)) {
      AppendEscaped(printable, "\\u{%X}", character);
    } else {
      printable += bytes;
    }
  }
  return printable;
}

}  // namespace vs_wml
