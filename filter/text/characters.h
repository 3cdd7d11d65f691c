// SPDX-License-Identifier: MIT
// Text as the host is told of it: what the modes in force make of a character, and what handlers
// write themselves.
#ifndef VS_WML_FILTER_TEXT_CHARACTERS_H
#define VS_WML_FILTER_TEXT_CHARACTERS_H

#include <cstdint>

#include "filter/ground/instance.h"

// White space sends nothing behind white space and at the start of a paragraph; `last` is
// lastChar of the save block.
constexpr bool DropsBlank(uint16_t last) {
  return last == 0 || last == ' ';
}

// Sends an item that is a character or a reference: `ch` and `text` as the item reader gave them.
void PutItemText(ItemRecord item, uint16_t ch, const char *text, WmlProc *proc);

// Writes one UTF-16 unit, announcing Unicode around it if another set is in force.
void PutUnicodeCharacter(uint16_t ch, WmlProc *proc);

// Writes a string byte by byte in the character set in force; a line feed ends the
// paragraph, and the host's answer to that is not read.
void WmlPutString(const char *text, WmlProc *proc);

#endif  // VS_WML_FILTER_TEXT_CHARACTERS_H
