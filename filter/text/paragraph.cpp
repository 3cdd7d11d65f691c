// SPDX-License-Identifier: MIT
#include "filter/text/paragraph.h"

#include "filter/ground/callbacks.h"
#include "filter/input/charset.h"

namespace {

// A break whose answer is read.
uint16_t StoppableBreak(uint32_t kind, WmlProc *proc) {
  proc->save.lastChar = 0;
  const uint16_t answer = SOEmitBreak(kind, proc);
  if (answer == SO_STOP) proc->stopFlags |= STOP_HOST;
  return answer;
}

}  // namespace

uint16_t ForceParaBreak(WmlProc *proc) {
  const uint16_t answer = StoppableBreak(SO_BREAK_PARAGRAPH, proc);
  if (proc->save.charsetState & CS_RESET_AT_BREAK) {
    SwitchCharset(proc->docCharset, proc);
    proc->save.charsetState &= static_cast<uint16_t>(~CS_RESET_AT_BREAK);
  }
  return answer;
}

uint16_t OptionParaBreak(WmlProc *proc) {
  return proc->save.lastChar == 0 ? uint16_t{0} : ForceParaBreak(proc);
}

void ForceCellBreak(uint32_t count, WmlProc *proc) {
  proc->save.lastChar = 0;
  for (; count > 0; --count) SOEmitBreak(SO_BREAK_CELL, proc);
}

uint16_t ForceRowBreak(WmlProc *proc) {
  return StoppableBreak(SO_BREAK_ROW, proc);
}

void SetParaAlign(uint16_t alignment, WmlProc *proc) {
  constexpr struct {
    uint8_t bit;
    uint32_t property;
  } kOrder[] = {
      {PARA_ALIGN_LEFT, PROP_ALIGN_LEFT},
      {PARA_ALIGN_RIGHT, PROP_ALIGN_RIGHT},
      {PARA_ALIGN_CENTER, PROP_ALIGN_CENTER},
      {PARA_ALIGN_JUSTIFIED, PROP_ALIGN_JUSTIFIED},
  };
  for (const auto &row : kOrder) {
    if ((alignment & row.bit) == 0) continue;
    SOSetProperty(PROP_ALIGNMENT, row.property, 0, 0, proc);
    SOSetProperty(PROP_ALIGNMENT_DONE, 0, 0, 2, proc);
    return;
  }
}
