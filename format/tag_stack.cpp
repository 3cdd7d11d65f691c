#include "format/tag_stack.h"

#include "elements/tag_processing.h"
#include "format/style.h"

namespace {

void SendStyleChange(uint16_t from, uint16_t to, WmlProc *proc) {
  if (from != to) StyleDelta(StyleRetrieve(from, proc), StyleRetrieve(to, proc), proc);
}

// Pops the top element, unless it is the base element, and sends the difference of styles.
TagStackElem PopTop(WmlProc *proc) {
  const TagStackElem popped = TagStackTop(proc);
  if (proc->save.tagStackTop > 0) --proc->save.tagStackTop;
  SendStyleChange(popped.styleIndex, TagStackTop(proc).styleIndex, proc);
  return popped;
}

// Takes a cell or a row out of the stack; their ends do nothing else. Styles are neither
// sent nor changed.
void TagStackElemRemove(int16_t index, WmlProc *proc) {
  WmlSave &save = proc->save;
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

int16_t FindElement(uint8_t tagId, const WmlProc *proc) {
  int16_t i = proc->save.tagStackTop;
  while (i >= 0 && proc->save.tagStack[i].tagId != tagId) --i;
  return i;
}

void CheckEndTag(ItemRecord *item, WmlProc *proc) {
  const uint32_t tagClass = TagClass(item->tagId);
  if (tagClass & (TAGF_CONTAINER | TAGF_STYLE)) {
    const int16_t index = FindElement(item->tagId, proc);
    if (index < 0) {
      item->tagId = TAG_NONE;
    } else {
      TagStackCloseTo(index, proc);
    }
  } else if ((tagClass & TAGF_MATCH_TOP) == 0 || TagStackTop(proc).tagId != item->tagId) {
    item->tagId = TAG_NONE;
  }
}

}  // namespace

int16_t TagStackPush(ItemRecord *item, WmlProc *proc) {
  WmlSave &save = proc->save;
  if (save.tagStackTop >= TAG_STACK_SIZE - 1) return -1;
  const uint16_t current = TagStackTop(proc).styleIndex;
  if (item->styleIndex == NO_INDEX) item->styleIndex = current;
  if (item->tagId < TAG_COUNT && (TagClass(item->tagId) & TAGF_EMPTY) == 0) {
    save.tagStack[++save.tagStackTop] = *item;
  }
  SendStyleChange(current, item->styleIndex, proc);
  return save.tagStackTop;
}

int16_t TagStackPop(ItemRecord *item, WmlProc *proc) {
  if (TagStackTop(proc).tagId != item->tagId) return -1;
  *item = PopTop(proc);
  return proc->save.tagStackTop;
}

void TagStackCheck(ItemRecord *item, WmlProc *proc) {
  if (item->tagId >= TAG_COUNT) {
    item->tagId = TAG_NONE;
  } else if (TagClass(item->tagId) & TAGF_TABLE_PART) {
    if ((proc->save.modeFlags & MODE_IN_TABLE) == 0) return;
    if (item->tagId == TAG_TD) {
      CloseCell(proc);
    } else {
      CloseRows(proc);
    }
  } else if (item->itemFlags & ITEM_END) {
    CheckEndTag(item, proc);
  }
}

void TagStackCloseTo(int16_t index, WmlProc *proc) {
  for (int16_t i = proc->save.tagStackTop; i >= index; --i) {
    const TagStackElem element = PopTop(proc);
    ProcessEndTag(element, proc);
  }
}

bool TagStackHolds(uint8_t tagId, const WmlProc *proc) {
  return FindElement(tagId, proc) >= 0;
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
