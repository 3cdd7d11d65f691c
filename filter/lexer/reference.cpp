// SPDX-License-Identifier: MIT
#include "filter/lexer/reference.h"

#include <cstring>

#include "filter/data/ascii.h"
#include "filter/data/name_lookup.h"
#include "filter/input/decoder.h"
#include "filter/lexer/name_key.h"

namespace {

constexpr int kEntityNameMax = 8;

// The source text of a reference; bytes beyond its size are dropped.
struct SourceText {
  char *bytes;
  uint16_t size;
  uint16_t length;
};

bool Append(uint16_t c, SourceText *text) {
  if (text->length >= text->size) return false;
  text->bytes[text->length++] = static_cast<char>(c);
  return true;
}

// References that are complete with their last letter, whatever follows.
uint16_t ShortName(const char *name, int length) {
  switch (length) {
    case 2:
      if (std::memcmp(name, "lt", 2) == 0) return '<';
      if (std::memcmp(name, "gt", 2) == 0) return '>';
      return 0;
    case 3:
      return std::memcmp(name, "amp", 3) == 0 ? '&' : 0;
    case 4:
      if (std::memcmp(name, "quot", 4) == 0) return '"';
      if (std::memcmp(name, "apos", 4) == 0) return '\'';
      return 0;
    default:
      return 0;
  }
}

void TakeSemicolon(SourceText *text, WmlProc *proc) {
  const uint16_t c = WMLGetChar(proc);
  if (c == ';') {
    Append(c, text);
  } else if (c != CHAR_END) {
    PushBack(1, proc);
  }
}

// The tests are on the low byte, so that half of a two-byte code ends a name too.
bool EndsEntityName(uint8_t low) {
  return low <= ' ' || low == ';' || low == '<';
}

uint16_t ReadEntityName(SourceText *text, WmlProc *proc) {
  char name[kEntityNameMax + 1] = {};
  uint16_t c = WMLGetChar(proc);
  if (c == CHAR_END) return 0;
  bool stored = Append(c, text);
  if (c == ' ') return 0;
  for (int n = 0;;) {
    const auto low = static_cast<uint8_t>(c);
    if (n == kEntityNameMax || EndsEntityName(low)) {
      if (low != ';') {
        PushBack(1, proc);
        if (stored) --text->length;
      }
      break;
    }
    name[n++] = static_cast<char>(low);
    if (const uint16_t value = ShortName(name, n)) {
      TakeSemicolon(text, proc);
      return value;
    }
    c = WMLGetChar(proc);
    if (c == CHAR_END) break;
    stored = Append(c, text);
  }
  return IDEntity(name);
}

}  // namespace

uint16_t ReadNamedReference(char *text, uint16_t size, WmlProc *proc) {
  SourceText source = {text, size, 0};
  Append('&', &source);
  const uint16_t value = ReadEntityName(&source, proc);
  text[source.length] = 0;
  return value;
}

namespace {

constexpr size_t kDigitsMax = 4;

// A digit of either base, or the mark of the second.
bool IsReferenceDigit(uint16_t c) {
  if (c >= 0x80) return false;
  const char digit = static_cast<char>(c);
  return DigitValue(digit) != NOT_A_DIGIT || LowerAscii(digit) == 'x';
}

bool HasHexPrefix(const char *text) {
  return text[0] == '0' && LowerAscii(text[1]) == 'x';
}

}  // namespace

uint16_t ReferenceValue(const char *digits) {
  uint32_t base = 10;
  if (LowerAscii(digits[0]) == 'x') {
    base = 16;
    digits += 1;
  } else if (HasHexPrefix(digits)) {
    base = 16;
    digits += 2;
  }
  const char *end = digits + strnlen(digits, kDigitsMax);
  // A prefix among the four digits is passed over, as strtol does.
  if (base == 16 && end - digits > 2 && HasHexPrefix(digits) && DigitValue(digits[2]) < base)
    digits += 2;
  uint32_t value = 0;
  for (; digits != end && DigitValue(*digits) < base; ++digits)
    value = value * base + DigitValue(*digits);
  return static_cast<uint16_t>(value);
}

uint16_t ReadNumericReference(char *text, uint16_t size, WmlProc *proc) {
  SourceText digits = {text, size, 0};
  uint16_t c = WMLGetChar(proc);
  if (c != ' ') {
    while (c != CHAR_END && IsReferenceDigit(c)) {
      Append(c, &digits);
      c = WMLGetChar(proc);
    }
    if (c != CHAR_END && c != ';') PushBack(1, proc);
  }
  text[digits.length] = 0;
  return ReferenceValue(text);
}

namespace {

uint16_t ScanNumeric(const uint8_t *at, const uint8_t **behind) {
  constexpr int kScanMax = 6;  // "0x" and four digits
  char digits[kScanMax + 1] = {};
  int n = 0;
  while (n < kScanMax && IsReferenceDigit(at[n])) {
    digits[n] = static_cast<char>(at[n]);
    ++n;
  }
  if (at[n] != ';') return 0;
  *behind = at + n + 1;
  return ReferenceValue(digits);
}

// The names that are complete without a ';' begin no other name of the table.
uint16_t ScanNamed(const uint8_t *at, const uint8_t **behind) {
  size_t n = 0;
  while (!EndsEntityName(at[n])) {
    if (n == NAME_KEY_MAX) return 0;
    ++n;
  }
  if (at[n] != ';') return 0;
  *behind = at + n + 1;
  return ENTITY_INDEX.Find(LoadNameKey(at, n));
}

}  // namespace

uint16_t ScanReference(const uint8_t *at, const uint8_t **behind) {
  return *at == '#' ? ScanNumeric(at + 1, behind) : ScanNamed(at, behind);
}
