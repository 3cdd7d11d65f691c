// SPDX-License-Identifier: MIT
// The item reader: one character, reference or tag at a time.
#ifndef VS_WML_FILTER_LEXER_ITEM_READER_H
#define VS_WML_FILTER_LEXER_ITEM_READER_H

#include <cstdint>

#include "filter/ground/instance.h"
#include "filter/ground/short_cuts.h"
#include "filter/lexer/bare_tag.h"
#include "filter/lexer/tag_reader.h"
#include "filter/lexer/word_reader.h"

// Capacity of an item's text, without its NUL.
inline constexpr uint16_t ITEM_TEXT_MAX = SCRATCH_TEXT_SIZE - 1;

// Reads the bare tag at `next`, the input's next byte; an item without flags, and the input
// where it was, when there is none.
inline ItemRecord ReadBareTag(const uint8_t *next, WmlProc *proc) {
  ItemRecord item = {};
  if (kShortCuts && (proc->save.modeFlags & MODE_LITERAL) == 0) item = ScanBareTag(next, proc);
  if (item.tagId != TAG_NONE) FinishTag(&item, proc);
  return item;
}

// Reads an item that is no bare tag.
ItemRecord ReadItem(uint16_t *ch, char *text, WmlProc *proc);

// Reads the next item, whose first byte is at `next`. `ch` gets the character of an ITEM_CHAR item
// or the value of an ITEM_ENTITY or ITEM_NUMREF item, else 0; `text`, of ITEM_TEXT_MAX + 1 bytes,
// the source of an ITEM_ENTITY item or the digits of an ITEM_NUMREF item, else nothing. A tag
// leaves its attributes in attrList. What cannot be read as markup comes back as characters or as a
// tag that is TAG_NONE; at the end of the input the item is empty. Not to be called once reading
// has stopped.
inline ItemRecord ReadNextItem(const uint8_t *next, uint16_t *ch, char *text, WmlProc *proc) {
  const ItemRecord tag = ReadBareTag(next, proc);
  return tag.itemFlags != 0 ? tag : ReadItem(ch, text, proc);
}

#endif  // VS_WML_FILTER_LEXER_ITEM_READER_H
