// SPDX-License-Identifier: MIT
// The words of a tag: names, punctuation and attribute values.
#ifndef VS_WML_FILTER_LEXER_WORD_READER_H
#define VS_WML_FILTER_LEXER_WORD_READER_H

#include <cstdint>

#include "filter/ground/instance.h"

// A word is read into `bytes`, at most `max` of them and a NUL; what goes beyond is
// read and dropped. It may hold NUL bytes, so its length is counted.
struct WordBuffer {
  char *bytes;
  uint16_t max;
  uint16_t length;
  uint32_t sourceLength;  // characters read for all words so far, less those pushed back
};

// Reads the next word. Quotes are taken off, references decoded. Gives the word's
// only byte when it has exactly one, else 0, also at the end of the input, where the
// word is empty: '<', '>', '=', '/' and '!' mean that the word is that punctuation.
uint8_t ReadWord(WordBuffer *word, WmlProc *proc);

// The same for `href` and `src` values: only '"' quotes, '/' is an ordinary character
// and references are left as they are.
uint8_t ReadWordWithNoQuote(WordBuffer *word, WmlProc *proc);

#endif  // VS_WML_FILTER_LEXER_WORD_READER_H
