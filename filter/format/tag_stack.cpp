// SPDX-License-Identifier: MIT
#include "filter/format/tag_stack.h"

#include <cassert>

#include "filter/format/style.h"

namespace {

// True in every read, which begins by putting right what a save block brought.
[[maybe_unused]] bool IsSound(const WmlSave &save) {
  return save.tagStackTop >= -1 && save.tagStackTop < TAG_STACK_SIZE;
}

// Takes a cell or a row out of the stack; their ends do nothing else. Styles are neither
// sent nor changed.
void TagStackElemRemove(int16_t index, WmlProc *proc) {
  WmlSave &save = proc->save;
  assert(IsSound(save) && index >= 0 && index <= save.tagStackTop);
  for (int16_t i = index; i < save.tagStackTop; ++i) save.tagStack[i] = save.tagStack[i + 1];
  --save.tagStackTop;
}

// A cell begins or ends: the open cell of the same table is closed.
void CloseCell(WmlProc *proc) {
  for (int16_t i = proc->save.tagStackTop; i >= 0; --i) {
    const uint8_t tagId = proc->save.tagStack[i].tagId;
    if (tagId == TAG_TD) TagStackElemRemove(i, proc);
    if (tagId == TAG_TD || tagId == TAG_TABLE) return;
  }
}

// A row begins or ends: all rows and cells of the same table are closed.
void CloseRows(WmlProc *proc) {
  WmlSave &save = proc->save;
  for (int16_t i = save.tagStackTop; i >= 0;) {
    const uint8_t tagId = save.tagStack[i].tagId;
    if (tagId == TAG_TABLE) return;
    if (tagId == TAG_TR || tagId == TAG_TD) {
      TagStackElemRemove(i, proc);
      if (i > save.tagStackTop) i = save.tagStackTop;
    } else {
      --i;
    }
  }
}

}  // namespace

void TagStackPushBase(WmlProc *proc) {
  TagStackElem base = NO_ELEMENT;
  base.styleIndex = StyleStore(BaseStyle(proc), proc);
  if (base.styleIndex == NO_INDEX) return;
  proc->save.tagStackTop = 0;
  proc->save.tagStack[0] = base;
  StyleUpdate(proc);
}

void TagStackPush(ItemRecord item, uint8_t styleClass, WmlProc *proc) {
  WmlSave &save = proc->save;
  assert(IsSound(save));
  const uint16_t current = TagStackTop(proc).styleIndex;
  uint16_t styleIndex = StyleSelect(styleClass, proc);
  if (styleIndex == NO_INDEX) styleIndex = current;
  if (save.tagStackTop >= TAG_STACK_SIZE - 1) return;
  if ((TagClass(item.tagId) & TAGF_EMPTY) == 0) {
    save.tagStack[++save.tagStackTop] = {item.tagId, item.itemFlags, styleIndex, styleClass, 0};
  }
  StyleDelta(current, styleIndex, proc);
}

uint8_t TagStackPopTop(WmlProc *proc) {
  assert(IsSound(proc->save));
  const TagStackElem &popped = TagStackTop(proc);
  const uint8_t tagId = popped.tagId;
  const uint16_t styleIndex = popped.styleIndex;
  if (proc->save.tagStackTop > 0) --proc->save.tagStackTop;
  StyleDelta(styleIndex, TagStackTop(proc).styleIndex, proc);
  return tagId;
}

void TagStackPop(uint8_t tagId, WmlProc *proc) {
  if (TagStackTop(proc).tagId == tagId) TagStackPopTop(proc);
}

void TagStackCloseParts(uint8_t tagId, WmlProc *proc) {
  if ((proc->save.modeFlags & MODE_IN_TABLE) == 0) return;
  if (tagId == TAG_TD) {
    CloseCell(proc);
  } else {
    CloseRows(proc);
  }
}

int16_t TagStackFind(uint8_t tagId, const WmlProc *proc) {
  assert(IsSound(proc->save));
  int16_t i = proc->save.tagStackTop;
  while (i >= 0 && proc->save.tagStack[i].tagId != tagId) --i;
  return i;
}

const StyleRecord *TagStackGetCurrentStyle(const WmlProc *proc) {
  return StyleRetrieve(TagStackTop(proc).styleIndex, proc);
}

void TagStackApplyStyle(uint8_t alignment, WmlProc *proc) {
  const StyleRecord *current = TagStackGetCurrentStyle(proc);
  if (alignment == 0 || current == nullptr) return;
  const uint8_t shared = current->paraFlags & PARA_ALIGN_MASK;
  if (alignment == shared) return;
  for (int16_t i = proc->save.tagStackTop; i >= 1; --i) {
    TagStackElem &element = proc->save.tagStack[i];
    const StyleRecord *stored = StyleRetrieve(element.styleIndex, proc);
    if (stored == nullptr || (stored->paraFlags & PARA_ALIGN_MASK) != shared) return;
    StyleRecord style = *stored;
    style.paraFlags = static_cast<uint8_t>((style.paraFlags & ~PARA_ALIGN_MASK) | alignment);
    element.styleIndex = StyleStore(style, proc);
  }
}
