// SPDX-License-Identifier: MIT
// The stack of open elements, each with the style in force inside it.
//
// Element 0 is the base element (TAG_NONE, the base style); it is pushed by the
// first read and never popped. The current style is that of the top element.
#ifndef VS_WML_FILTER_FORMAT_TAG_STACK_H
#define VS_WML_FILTER_FORMAT_TAG_STACK_H

#include <cstdint>

#include "filter/data/name_index.h"
#include "filter/ground/instance.h"

// Class bits (TAGF_) of a tag, 0 for a number that is no tag.
inline uint32_t TagClass(uint8_t tagId) {
  return tagId < TAG_COUNT ? uint32_t{TAG_CLASSES.of[tagId]} : 0;
}

// Pushes the base element on the empty stack and sends the whole of its style; nothing
// happens when the style cannot be stored.
void TagStackPushBase(WmlProc *proc);

// Pushes the element of a begin tag in the style that the template styleClass makes of the
// current one, or in the current one, and sends the difference of styles; an empty element
// only sends it. Nothing happens when the stack is full.
void TagStackPush(ItemRecord item, uint8_t styleClass, WmlProc *proc);

// Pops the top element, unless it is the base element, and sends the difference of styles; the
// element's tag.
uint8_t TagStackPopTop(WmlProc *proc);

// Pops the top element if it has that tag.
void TagStackPop(uint8_t tagId, WmlProc *proc);

// Closes the rows and cells of the open table that a tag of a row or a cell, a TAGF_TABLE_PART,
// closes without saying so. Their ends do nothing else.
void TagStackCloseParts(uint8_t tagId, WmlProc *proc);

// The place of the innermost open element of that tag, -1 when there is none.
int16_t TagStackFind(uint8_t tagId, const WmlProc *proc);

// The style of the top element, null when there is none.
const StyleRecord *TagStackGetCurrentStyle(const WmlProc *proc);

// Gives the top element, and those below it that share its alignment, another one
// (PARA_ALIGN_ bits, 0 changes nothing). The host is not told.
void TagStackApplyStyle(uint8_t alignment, WmlProc *proc);

#endif  // VS_WML_FILTER_FORMAT_TAG_STACK_H
