// SPDX-License-Identifier: MIT
#include "filter/lexer/word_reader.h"

#include "filter/data/ascii.h"
#include "filter/ground/stream_position.h"
#include "filter/input/decoder.h"
#include "filter/lexer/reference.h"

namespace {

uint16_t NextChar(WordBuffer *word, WmlProc *proc) {
  const uint16_t c = GetChar(proc);
  if (c != CHAR_END) ++word->sourceLength;
  return c;
}

// True when the byte was stored, which DropLast wants to know.
bool Append(uint16_t c, WordBuffer *word) {
  if (word->length >= word->max) return false;
  word->bytes[word->length++] = static_cast<char>(c);
  return true;
}

void DropLast(bool stored, WordBuffer *word) {
  if (stored) --word->length;
}

uint8_t EndWord(WordBuffer *word) {
  word->bytes[word->length] = 0;
  return word->length == 1 ? static_cast<uint8_t>(word->bytes[0]) : uint8_t{0};
}

uint8_t EmptyWord(WordBuffer *word) {
  word->length = 0;
  return EndWord(word);
}

// The first character of a word, CHAR_END when there is none.
uint16_t SkipBlanks(WordBuffer *word, WmlProc *proc) {
  uint16_t c;
  do {
    c = NextChar(word, proc);
  } while (IsBlank(c));
  return c;
}

// A delimiter ends the word before it, or is the word when nothing stands before it.
void EndAtDelimiter(bool stored, WordBuffer *word, WmlProc *proc) {
  if (word->length <= 1) return;
  PushBack(1, proc);
  --word->sourceLength;
  DropLast(stored, word);
}

// The next byte, left in place; at the end of the input nothing is noted.
int PeekByte(WmlProc *proc) {
  const int byte = VwCharRead(proc->input);
  PushBack(1, proc);
  return byte;
}

// Decodes the reference behind an '&'; one without a value stays as it is written.
void ReadReference(bool stored, WordBuffer *word, WmlProc *proc) {
  const uint32_t behindAmpersand = WMLGetFilePos(proc);
  char source[64];
  uint16_t value;
  if (WMLGetChar(proc) == '#') {
    value = ReadNumericReference(source, sizeof source - 1, proc);
    if (value > 0xFF) value = 0;  // only what is one byte can stand in a word
  } else {
    PushBack(1, proc);
    value = ReadNamedReference(source, sizeof source - 1, proc);
  }
  if (value == 0) {
    WMLSetFilePos(behindAmpersand, proc);
  } else if (stored) {
    word->bytes[word->length - 1] = static_cast<char>(value);
  }
}

bool IsWordDelimiter(uint16_t c) {
  return IsBlank(c) || c == '<' || c == '>' || c == '=' || c == '/' || c == '!';
}

}  // namespace

uint8_t ReadWord(WordBuffer *word, WmlProc *proc) {
  word->length = 0;
  if (ReadingStopped(proc)) return EmptyWord(word);
  uint16_t c = SkipBlanks(word, proc);
  bool inSingle = false;
  bool inDouble = false;
  for (; c != CHAR_END; c = NextChar(word, proc)) {
    const bool stored = Append(c, word);
    if (c == '&') {
      ReadReference(stored, word, proc);
    } else if (c == '\'' && !inDouble) {
      if (inSingle) {
        DropLast(stored, word);
        return EndWord(word);
      }
      inSingle = true;
      word->length = 0;
    } else if (c == '"' && !inSingle) {
      if (inDouble) {
        DropLast(stored, word);
        return EndWord(word);
      }
      if (PeekByte(proc) == '>') return EndWord(word);
      inDouble = true;
      word->length = 0;
    } else if (!inSingle && !inDouble && IsWordDelimiter(c)) {
      EndAtDelimiter(stored, word, proc);
      return EndWord(word);
    }
  }
  return EmptyWord(word);
}

uint8_t ReadWordWithNoQuote(WordBuffer *word, WmlProc *proc) {
  word->length = 0;
  if (ReadingStopped(proc)) return EmptyWord(word);
  uint16_t c = SkipBlanks(word, proc);
  bool inQuotes = false;
  for (; c != CHAR_END; c = NextChar(word, proc)) {
    const bool stored = Append(c, word);
    if (c == '"') {
      if (inQuotes) {
        DropLast(stored, word);
        return EndWord(word);
      }
      inQuotes = true;
      word->length = 0;
    } else if (c == ' ' ? !inQuotes : IsWordDelimiter(c) && c != '/') {
      EndAtDelimiter(stored, word, proc);
      return EndWord(word);
    }
  }
  return EmptyWord(word);
}
