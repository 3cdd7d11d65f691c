// SPDX-License-Identifier: MIT
#include "filter/entry/read_loop.h"

#include "filter/elements/tag_processing.h"
#include "filter/format/style.h"
#include "filter/format/tag_stack.h"
#include "filter/ground/callbacks.h"
#include "filter/input/charset.h"
#include "filter/lexer/item_reader.h"
#include "filter/tables/table_output.h"
#include "filter/text/characters.h"
#include "filter/text/text_run.h"

namespace {

void HandleTag(ItemRecord item, WmlProc *proc) {
  if (item.tagId == TAG_NONE) return;
  if (item.itemFlags & ITEM_BEGIN) {
    ProcessBeginTag(item, proc);
  } else {
    ProcessEndTag(item.tagId, proc);
  }
}

// The state at the start of a read, which a save block may have brought.
void Resume(WmlProc *proc) {
  int16_t &top = proc->save.tagStackTop;
  if (top < -1 || top >= TAG_STACK_SIZE) top = -1;
  TableResume(proc);
}

void ReadItems(char *text, WmlProc *proc) {
  Resume(proc);
  if (proc->save.tagStackTop == -1) {
    TagStackPushBase(proc);
  } else {
    StyleUpdate(proc);
  }
  SOSwitchCharset(MapCSToSO(proc->save.curCharset), proc);
  if (proc->input == nullptr) proc->stopFlags |= STOP_END_OF_INPUT;
  TextRun run = MakeTextRun(proc);
  uint16_t ch;
  while (proc->stopFlags == 0) {
    const uint8_t *next = SendTextRun(&run, proc);
    const ItemRecord tag = ReadBareTag(next, proc);
    if (tag.itemFlags != 0) {
      HandleTag(tag, proc);
      continue;
    }
    const ItemRecord item = ReadItem(&ch, text, proc);
    if (proc->stopFlags != 0) break;
    if (item.itemFlags & (ITEM_CHAR | ITEM_ENTITY | ITEM_NUMREF)) {
      PutItemText(item, ch, text, proc);
    } else {
      HandleTag(item, proc);
    }
  }
}

void EndRead(WmlProc *proc) {
  if (proc->stopFlags & STOP_NO_MEMORY) SOAbortStream(proc);
  if (proc->stopFlags & STOP_HOST) return;
  CloseAllElements(proc);
  SOEmitBreak(SO_BREAK_DOCUMENT, proc);
}

}  // namespace

void ReadDocument(WmlProc *proc) {
  proc->stopFlags = 0;
  char *text = StringCreate(SCRATCH_TEXT_SIZE, proc);
  proc->attrScratch = text != nullptr ? StringCreate(SCRATCH_TEXT_SIZE, proc) : nullptr;
  if (proc->attrScratch != nullptr) {
    ReadItems(text, proc);
    EndRead(proc);
    StringDestroy(proc->attrScratch, proc);
    proc->attrScratch = nullptr;
  }
  StringDestroy(text, proc);
}
