// The stack of open elements: each with the style in force inside it, and the
// repair of markup that is not well formed.
//
// Element 0 is the base element (TAG_NONE, the base style); it is pushed by the
// first read and never popped. The current style is that of the top element.
#ifndef VS_WML_FORMAT_TAG_STACK_H
#define VS_WML_FORMAT_TAG_STACK_H

#include <cstdint>

#include "filter/instance.h"

// Class bits (TAGF_) of a tag, 0 for a number that is no tag.
inline uint32_t TagClass(uint8_t tagId) {
  return tagId < TAG_COUNT ? WmlInit.tags[tagId].value >> 8 & 0xFF : 0;
}

inline constexpr TagStackElem NO_ELEMENT = {TAG_NONE, 0, NO_INDEX, 0, 0};

// The top element, NO_ELEMENT when the stack is empty.
inline const TagStackElem &TagStackTop(const WmlProc *proc) {
  const WmlSave &save = proc->save;
  return save.tagStackTop >= 0 && save.tagStackTop < TAG_STACK_SIZE
             ? save.tagStack[save.tagStackTop]
             : NO_ELEMENT;
}

// Pushes an item, which takes the current style if it has none, and sends the
// difference of styles; an empty element only sends it. The index of the top, -1 when
// the stack is full: then nothing happens.
int16_t TagStackPush(ItemRecord *item, WmlProc *proc);

// Pops the top element into the item if it has the item's tag, and sends the
// difference of styles; -1 when it has not.
int16_t TagStackPop(ItemRecord *item, WmlProc *proc);

// Repairs the stack before a tag is handled: closes what the tag closes without
// saying so, and drops stray end tags by making the item a TAG_NONE.
void TagStackCheck(ItemRecord *item, WmlProc *proc);

// Closes every element from the top down to `index`: pops it, then handles its end.
void TagStackCloseTo(int16_t index, WmlProc *proc);

// True when an element of that tag is open.
bool TagStackHolds(uint8_t tagId, const WmlProc *proc);

// The style of the top element, null when there is none.
const StyleRecord *TagStackGetCurrentStyle(const WmlProc *proc);

// Gives the top element, and those below it that share its alignment, another one
// (PARA_ALIGN_ bits, 0 changes nothing). The host is not told.
void TagStackApplyStyle(uint8_t alignment, WmlProc *proc);

#endif  // VS_WML_FORMAT_TAG_STACK_H
