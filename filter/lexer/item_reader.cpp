// SPDX-License-Identifier: MIT
#include "filter/lexer/item_reader.h"

#include "filter/input/decoder.h"
#include "filter/lexer/reference.h"

namespace {

void SetChar(uint16_t c, ItemRecord *item, uint16_t *ch) {
  item->itemFlags |= ITEM_CHAR;
  *ch = c;
}

// "$$" is a dollar; a single one is dropped, and the variable's name is text.
void ReadDollar(ItemRecord *item, uint16_t *ch, WmlProc *proc) {
  if (WMLGetChar(proc) == '$') {
    SetChar('$', item, ch);
  } else {
    PushBack(1, proc);
  }
}

// "/>" closes the element on top of the stack if it was begun as an empty one.
void ReadSlash(ItemRecord *item, uint16_t *ch, WmlProc *proc) {
  const uint16_t c = WMLGetChar(proc);
  PushBack(1, proc);
  if (c != '>') {
    SetChar('/', item, ch);
    return;
  }
  const TagStackElem &top = TagStackTop(proc);
  if ((top.itemFlags & ITEM_EMPTY) == 0) return;
  *item = {top.tagId, static_cast<uint8_t>((top.itemFlags | ITEM_END) & ~ITEM_BEGIN)};
  WMLGetChar(proc);
}

void ReadAmpersand(ItemRecord *item, uint16_t *ch, char *text, WmlProc *proc) {
  const uint16_t c = WMLGetChar(proc);
  if (c == CHAR_END) return;
  if (c == '#') {
    item->itemFlags = ITEM_NUMREF;
    *ch = ReadNumericReference(text, ITEM_TEXT_MAX, proc);
  } else if (c == '<') {
    PushBack(2, proc);
    SetChar(WMLGetChar(proc), item, ch);
  } else {
    PushBack(1, proc);
    item->itemFlags = ITEM_ENTITY;
    *ch = ReadNamedReference(text, ITEM_TEXT_MAX, proc);
  }
}

}  // namespace

ItemRecord ReadItem(uint16_t *ch, char *text, WmlProc *proc) {
  ItemRecord item = {};
  *ch = 0;
  text[0] = 0;
  const uint16_t c = GetChar(proc);
  switch (c) {
    case CHAR_END:
      break;
    case '<':
      if (proc->save.modeFlags & MODE_LITERAL) break;
      if (!ReadTag(&item, proc)) SetChar('<', &item, ch);
      break;
    case '$':
      ReadDollar(&item, ch, proc);
      break;
    case '/':
      ReadSlash(&item, ch, proc);
      break;
    case '&':
      ReadAmpersand(&item, ch, text, proc);
      break;
    default:
      *ch = c;
      return {TAG_NONE, ITEM_CHAR};
  }
  return item;
}
