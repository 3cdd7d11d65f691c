/// \file
/// Character classes of markup: ASCII only, whatever the locale.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_TEXT_ASCII_H
#define VS_WML_HOST_TEXT_ASCII_H

#include <algorithm>
#include <string>
#include <string_view>

namespace vs_wml {

constexpr bool IsWhiteSpace(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}
constexpr bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}
constexpr char ToLower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
constexpr bool IsLetter(char c) {
  return ToLower(c) >= 'a' && ToLower(c) <= 'z';
}
constexpr bool IsHexDigit(char c) {
  return IsDigit(c) || (ToLower(c) >= 'a' && ToLower(c) <= 'f');
}

/// The value of a hexadecimal digit, -1 for anything else.
constexpr int HexValue(char c) {
  if (IsDigit(c)) return c - '0';
  return IsHexDigit(c) ? ToLower(c) - 'a' + 10 : -1;
}
inline constexpr std::string_view kHexDigits = "0123456789ABCDEF";

/// Appends a byte as "%2F".
inline void AppendPercentEncoded(std::string &text, char c) {
  const auto byte = static_cast<unsigned char>(c);
  text += {'%', kHexDigits[byte >> 4U], kHexDigits[byte & 15U]};
}

/// Where the first character from `at` on stands that is no white space, or the end.
constexpr std::size_t SkipWhiteSpace(std::string_view text, std::size_t at) {
  while (at < text.size() && IsWhiteSpace(text[at])) ++at;
  return at;
}

/// The length of the text without the white space at its end.
constexpr std::size_t LengthWithoutWhiteSpace(std::string_view text) {
  std::size_t length = text.size();
  while (length > 0 && IsWhiteSpace(text[length - 1])) --length;
  return length;
}

constexpr bool IsBlank(std::string_view text) {
  return SkipWhiteSpace(text, 0) == text.size();
}

constexpr std::string_view Trim(std::string_view text) {
  text.remove_prefix(SkipWhiteSpace(text, 0));
  return text.substr(0, LengthWithoutWhiteSpace(text));
}

/// Whether `lowered` is the text in lower case.
constexpr bool IsLowered(std::string_view text, std::string_view lowered) {
  if (text.size() != lowered.size()) return false;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (ToLower(text[at]) != lowered[at]) return false;
  }
  return true;
}

inline bool EqualIgnoringCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return ToLower(x) == ToLower(y); });
}

inline std::string Lowered(std::string_view text) {
  std::string lowered(text);
  std::transform(lowered.begin(), lowered.end(), lowered.begin(), ToLower);
  return lowered;
}

/// The text trimmed, each run of white space in it one space.
inline std::string Collapsed(std::string_view text) {
  std::string collapsed;
  for (const char c : Trim(text)) {
    if (!IsWhiteSpace(c)) {
      collapsed += c;
    } else if (collapsed.back() != ' ') {
      collapsed += ' ';
    }
  }
  return collapsed;
}

}  // namespace vs_wml

#endif  // VS_WML_HOST_TEXT_ASCII_H
