#include "filter/entry/read_loop.h"

#include "filter/elements/tag_processing.h"
#include "filter/format/style.h"
#include "filter/format/tag_stack.h"
#include "filter/ground/callbacks.h"
#include "filter/input/charset.h"
#include "filter/lexer/item_reader.h"
#include "filter/lexer/reference.h"
#include "filter/tables/table_output.h"
#include "filter/text/paragraph.h"
#include "filter/text/text_run.h"

namespace {

// Sends a character and ends a single shift.
void SendChar(uint16_t c, WmlProc *proc) {
  WmlSave &save = proc->save;
  SOEmitChar(c, proc);
  save.lastChar = c;
  if (save.charsetState & CS_SINGLE_SHIFT) {
    SwitchCharset(proc->docCharset, proc);
    save.charsetState &= static_cast<uint16_t>(~(CS_SINGLE_SHIFT | CS_RESET_AT_BREAK));
  }
}

// White space after white space, or at the start of a paragraph, is dropped.
void SendBlank(WmlProc *proc) {
  const uint16_t last = proc->save.lastChar;
  if (last != 0 && last != ' ') SendChar(' ', proc);
}

void PutPreformatted(uint16_t c, WmlProc *proc) {
  if (c == '\t') {
    SOEmitControlCode(SO_CONTROL_TAB, proc);
    proc->save.lastChar = ' ';
  } else if (c == '\n') {
    ForceParaBreak(proc);
  } else if (c >= ' ') {
    SendChar(c, proc);
  }
}

void PutTableText(uint16_t c, WmlProc *proc) {
  if ((proc->save.modeFlags & MODE_IN_CELL) == 0) return;
  if (c == ' ' || c == '\r' || c == '\n') {
    SendBlank(proc);
  } else if (c > ' ') {
    SendChar(c, proc);
  }
}

// Outside a card nothing printable is written, except a '<' that the tag reader gave
// back with a tag's number.
void PutOrdinaryText(uint16_t c, const ItemRecord &item, WmlProc *proc) {
  if (c == ' ' || c == '\r' || c == '\n' || c == '\t') {
    SendBlank(proc);
  } else if (c > ' ') {
    const bool inCard = (proc->save.modeFlags & MODE_IN_CARD) != 0;
    if (inCard || item.tagId != TAG_NONE) SendChar(c, proc);
  }
}

void PutChar(uint16_t c, const ItemRecord &item, WmlProc *proc) {
  const uint32_t mode = proc->save.modeFlags;
  constexpr uint32_t kGate = MODE_IN_WML | MODE_IN_HEAD | MODE_IN_CARD;
  if ((mode & kGate) == (MODE_IN_WML | MODE_IN_HEAD)) return;
  if (mode & (MODE_PRE | MODE_LITERAL)) {
    PutPreformatted(c, proc);
  } else if (mode & MODE_IN_TABLE) {
    PutTableText(c, proc);
  } else {
    PutOrdinaryText(c, item, proc);
  }
}

// A reference without a value is written as its text.
void PutReferenceValue(uint16_t value, const char *text, WmlProc *proc) {
  if (value != 0) {
    PutUnicodeCharacter(value, proc);
    proc->save.lastChar = value;
  } else {
    WmlPutString(text, proc);
  }
}

void PutEntity(uint16_t value, const char *text, WmlProc *proc) {
  const uint32_t mode = proc->save.modeFlags;
  if (mode & MODE_IN_HEAD) return;
  if ((mode & (MODE_IN_WML | MODE_IN_CARD)) == MODE_IN_WML) return;
  PutReferenceValue(value, text, proc);
}

[[gnu::noinline]] void HandleBeginTag(ItemRecord item, WmlProc *proc) {
  if (item.tagId >= TAG_COUNT) item.tagId = TAG_NONE;  // from a save block
  TagStackCloseParts(item.tagId, proc);
  TagStackPush(item, ProcessBeginTag(item, proc), proc);
}

[[gnu::noinline]] void HandleEndTag(uint8_t tagId, WmlProc *proc) {
  const uint8_t closing = TagStackClose(tagId, proc);
  if (closing == TAG_HEAD) ProcessEndTag(closing, proc);
  TagStackPop(closing, proc);
}

void HandleTag(ItemRecord item, WmlProc *proc) {
  if (item.tagId == TAG_NONE) return;
  if (item.itemFlags & ITEM_BEGIN) {
    HandleBeginTag(item, proc);
  } else {
    HandleEndTag(item.tagId, proc);
  }
}

[[gnu::noinline]] void HandleText(ItemRecord item, uint16_t ch, const char *text, WmlProc *proc) {
  if (item.itemFlags & ITEM_CHAR) {
    PutChar(ch, item, proc);
  } else if (item.itemFlags & ITEM_ENTITY) {
    PutEntity(ch, text, proc);
  } else {
    PutReferenceValue(ConvertVarString(text), text, proc);
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
      HandleText(item, ch, text, proc);
    } else {
      HandleTag(item, proc);
    }
  }
}

void EndRead(WmlProc *proc) {
  if (proc->stopFlags & STOP_NO_MEMORY) SOAbortStream(proc);
  if (proc->stopFlags & STOP_HOST) return;
  TagStackCloseTo(0, proc);
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
