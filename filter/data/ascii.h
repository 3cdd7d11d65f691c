// SPDX-License-Identifier: MIT
// ASCII text: letters, digits and white space, and the comparing of strings.
#ifndef VS_WML_FILTER_DATA_ASCII_H
#define VS_WML_FILTER_DATA_ASCII_H

#include <cstdint>

// 'A'..'Z' to 'a'..'z', every other byte as it is.
constexpr char LowerAscii(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

constexpr bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// The value of a hexadecimal digit, NOT_A_DIGIT for any other byte.
inline constexpr uint32_t NOT_A_DIGIT = 16;
constexpr uint32_t DigitValue(char c) {
  if (IsDigit(c)) return static_cast<uint32_t>(c - '0');
  const char lower = LowerAscii(c);
  return lower >= 'a' && lower <= 'f' ? static_cast<uint32_t>(lower - 'a' + 10) : NOT_A_DIGIT;
}

// White space between words.
constexpr bool IsBlank(uint16_t c) {
  return c == ' ' || c == '\n' || c == '\r' || c == '\t';
}

// Lowers the ASCII letters of a string in place.
void strToLwr(char *s);

// Compare strings as unsigned bytes; below, at or above 0 as usual.
int hstrcmp(const char *a, const char *b);
int hstrcmpn(const char *a, const char *b, int n);  // the first n bytes
int ncstrcmp(const char *a, const char *b);         // ignoring the case of ASCII letters

#endif  // VS_WML_FILTER_DATA_ASCII_H
