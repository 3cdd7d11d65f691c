// SPDX-License-Identifier: MIT
// One whole tag with its attributes.
#ifndef VS_WML_FILTER_LEXER_TAG_READER_H
#define VS_WML_FILTER_LEXER_TAG_READER_H

#include "filter/ground/instance.h"

// Reads a tag whose '<' has been read into `item`, attrList and attrCount. False when
// the '<' turns out to be a character ("<<"); what was set in `item` by then stays.
bool ReadTag(ItemRecord *item, WmlProc *proc);

// Inside `pre` only its own end tag and these elements are markup.
inline bool IsMarkupInPre(const ItemRecord &item) {
  constexpr uint32_t kElements = 1u << TAG_A | 1u << TAG_B | 1u << TAG_BR | 1u << TAG_EM |
                                 1u << TAG_I | 1u << TAG_STRONG | 1u << TAG_U;
  if (item.tagId == TAG_PRE) return (item.itemFlags & ITEM_END) != 0;
  return item.tagId < TAG_COUNT && (kElements >> item.tagId & 1) != 0;
}

// What is left to do when the source of a tag has been read.
inline void FinishTag(ItemRecord *item, WmlProc *proc) {
  if ((proc->save.modeFlags & MODE_PRE) && !IsMarkupInPre(*item)) item->tagId = TAG_NONE;
  if (item->itemFlags & ITEM_END) return;
  item->itemFlags |= ITEM_BEGIN;
  proc->save.lastBeginTagId = item->tagId;
}

#endif  // VS_WML_FILTER_LEXER_TAG_READER_H
