// SPDX-License-Identifier: MIT
#include "filter/text/characters.h"

#include "filter/ground/callbacks.h"
#include "filter/input/charset.h"
#include "filter/text/paragraph.h"

void PutUnicodeCharacter(uint16_t ch, WmlProc *proc) {
  const uint32_t hostCharset = MapCSToSO(proc->save.curCharset);
  if (hostCharset != HOST_CS_UNICODE) SOSwitchCharset(HOST_CS_UNICODE, proc);
  SOEmitChar(ch, proc);
  if (hostCharset != HOST_CS_UNICODE) SOSwitchCharset(hostCharset, proc);
}

void WmlPutString(const char *text, WmlProc *proc) {
  for (; *text != 0; ++text) {
    const auto byte = static_cast<uint8_t>(*text);
    if (byte == '\n') {
      SOEmitBreak(SO_BREAK_PARAGRAPH, proc);
      proc->save.lastChar = 0;
    } else {
      SOEmitChar(byte, proc);
      proc->save.lastChar = byte;
    }
  }
}

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

void SendBlank(WmlProc *proc) {
  if (!DropsBlank(proc->save.lastChar)) SendChar(' ', proc);
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

}  // namespace

[[gnu::noinline]] void PutItemText(ItemRecord item, uint16_t ch, const char *text, WmlProc *proc) {
  if (item.itemFlags & ITEM_CHAR) {
    PutChar(ch, item, proc);
  } else if (item.itemFlags & ITEM_ENTITY) {
    PutEntity(ch, text, proc);
  } else {
    PutReferenceValue(ch, text, proc);
  }
}
