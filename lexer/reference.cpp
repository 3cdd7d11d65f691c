#include "lexer/reference.h"

#include <cstdlib>
#include <cstring>

#include "input/decoder.h"
#include "lexer/name_lookup.h"

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

bool IsReferenceDigit(uint16_t c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f') || c == 'x' ||
         c == 'X';
}

}  // namespace

uint16_t ReadEntity(char *text, uint16_t size, WmlProc *proc) {
  SourceText source = {text, size, 0};
  Append('&', &source);
  const uint16_t value = ReadEntityName(&source, proc);
  text[source.length] = 0;
  return value;
}

void ReadVariableSubstitution(char *text, uint16_t size, WmlProc *proc) {
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
}

uint16_t ConvertVarString(const char *text) {
  constexpr size_t kDigitsMax = 4;
  int base = 10;
  if (text[0] == 'x' || text[0] == 'X') {
    base = 16;
    text += 1;
  } else if (text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
    base = 16;
    text += 2;
  }
  char digits[kDigitsMax + 1] = {};
  std::memcpy(digits, text, strnlen(text, kDigitsMax));
  return static_cast<uint16_t>(std::strtol(digits, nullptr, base));
}
