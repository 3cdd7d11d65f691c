// SPDX-License-Identifier: MIT
// The entry points around an instance: routine table, allocation, input, slots, save block.
#include "filter/ground/instance.h"

#include <cstdlib>
#include <cstring>

namespace {

template <typename Routine>
VwRoutine AsRoutine(Routine *routine) {
  return reinterpret_cast<VwRoutine>(routine);
}

template <typename Routine>
struct Nothing;
template <typename... Arguments>
struct Nothing<uint32_t (*)(Arguments...)> {
  static uint32_t Routine(Arguments...) noexcept { return 0; }
};

VwRoutine EmptyFontRoutine(int16_t slot) {
  switch (slot) {
    case SLOT_SELECT_FONT_NUMBER:
      return AsRoutine(Nothing<SOSelectFontNumberRoutine>::Routine);
    case SLOT_SELECT_FONT_NAME:
      return AsRoutine(Nothing<SOSelectFontNameRoutine>::Routine);
    case SLOT_OPEN_FONT_LIST:
      return AsRoutine(Nothing<SOOpenFontListRoutine>::Routine);
    case SLOT_ADD_FONT_LIST_ENTRY:
      return AsRoutine(Nothing<SOAddFontListEntryRoutine>::Routine);
    case SLOT_CLOSE_FONT_LIST:
      return AsRoutine(Nothing<SOCloseFontListRoutine>::Routine);
    default:
      return AsRoutine(SODummy);  // is not called
  }
}

// What is called in place of an empty slot's SODummy: a routine of the slot's own type that does
// nothing. WebAssembly calls no routine through another type.
VwRoutine EmptyRoutine(int16_t slot) {
  switch (slot) {
    case SLOT_EMIT_CHAR:
      return AsRoutine(Nothing<SOEmitCharRoutine>::Routine);
    case SLOT_EMIT_CONTROL_CODE:
      return AsRoutine(Nothing<SOEmitControlCodeRoutine>::Routine);
    case SLOT_SET_CHAR_SIZE:
      return AsRoutine(Nothing<SOSetCharSizeRoutine>::Routine);
    case SLOT_EMIT_BREAK:
      return AsRoutine(Nothing<SOEmitBreakRoutine>::Routine);
    case SLOT_DECLARE_SECTION:
      return AsRoutine(Nothing<SODeclareSectionRoutine>::Routine);
    case SLOT_ABORT_STREAM:
      return AsRoutine(Nothing<SOAbortStreamRoutine>::Routine);
    case SLOT_OPEN_TABLE:
      return AsRoutine(Nothing<SOOpenTableRoutine>::Routine);
    case SLOT_CLOSE_TABLE:
      return AsRoutine(Nothing<SOCloseTableRoutine>::Routine);
    case SLOT_INSERT_GRAPHIC:
      return AsRoutine(Nothing<SOInsertGraphicRoutine>::Routine);
    case SLOT_OPEN_LINK:
      return AsRoutine(Nothing<SOOpenLinkRoutine>::Routine);
    case SLOT_CLOSE_LINK:
      return AsRoutine(Nothing<SOCloseLinkRoutine>::Routine);
    case SLOT_STORE_STRING:
      return AsRoutine(Nothing<SOStoreStringRoutine>::Routine);
    case SLOT_DESCRIBE_ROW:
      return AsRoutine(Nothing<SODescribeRowRoutine>::Routine);
    case SLOT_SET_TEXT_COLOR:
      return AsRoutine(Nothing<SOSetTextColorRoutine>::Routine);
    case SLOT_SWITCH_CHARSET:
      return AsRoutine(Nothing<SOSwitchCharsetRoutine>::Routine);
    case SLOT_OPEN_REFERENCE:
      return AsRoutine(Nothing<SOOpenReferenceRoutine>::Routine);
    case SLOT_DESCRIBE_CELL:
      return AsRoutine(Nothing<SODescribeCellRoutine>::Routine);
    case SLOT_SET_PROPERTY:
      return AsRoutine(Nothing<SOSetPropertyRoutine>::Routine);
    default:
      return EmptyFontRoutine(slot);
  }
}

void SetSlot(int16_t slot, VwRoutine routine, WmlProc *proc) {
  const VwRoutine dummy = AsRoutine(SODummy);
  if (routine == nullptr) routine = dummy;
  const uint8_t place = SLOT_FIELDS.of[slot];
  proc->routines.field[place] = routine;
  proc->calls.field[place] = routine == dummy ? EmptyRoutine(slot) : routine;
}

void EmptySlots(WmlProc *proc) {
  for (int16_t slot = 1; slot <= VW_SLOT_COUNT; ++slot) SetSlot(slot, nullptr, proc);
}

}  // namespace

void VwGetRtns(VwRoutine *table, uint16_t entries) noexcept {
  const VwRoutine routines[] = {
      AsRoutine(VwStreamOpen),
      AsRoutine(VwStreamSection),
      AsRoutine(VwStreamRead),
      AsRoutine(VwStreamTell),
      AsRoutine(VwStreamSeek),
      AsRoutine(VwGetInfo),
      AsRoutine(VwGetData),
      AsRoutine(VwSetData),
      AsRoutine(VwLocalUp),
      AsRoutine(VwLocalDown),
      AsRoutine(VwAllocProc),
      AsRoutine(VwFreeProc),
      AsRoutine(VwSetUser),
      AsRoutine(VwSetSoRtn),
      AsRoutine(VwStreamClose),
      nullptr,
      nullptr,
      AsRoutine(VwStreamReadRecord),
  };
  if (table == nullptr) return;
  std::memcpy(table, routines, sizeof routines);
  if (entries >= 19) table[18] = AsRoutine(VwDoSpecial);
  if (entries >= 22) table[19] = table[20] = table[21] = nullptr;
}

// The block is cleared, so that a host that leaves out a step of the calling order
// meets empty state instead of stray bytes.
WmlProc *VwAllocProc() noexcept {
  auto *proc = static_cast<WmlProc *>(std::calloc(1, sizeof(WmlProc)));
  if (proc != nullptr) EmptySlots(proc);
  return proc;
}

void VwFreeProc(WmlProc *proc) noexcept {
  if (proc == nullptr) return;
  VwStreamClose(reinterpret_cast<VwHandle>(proc->input), proc);
  std::free(proc);
}

void VwLocalUp(VwHandle block, VwHandle *outChar, WmlProc *proc) noexcept {
  if (outChar == nullptr) return;
  *outChar = proc != nullptr ? reinterpret_cast<VwHandle>(VwBlockToChar(block)) : 0;
  if (proc != nullptr) EmptySlots(proc);
}

void VwLocalDown(VwHandle chr, VwHandle *outBlock) noexcept {
  auto *buffer = reinterpret_cast<VwCharBuffer *>(chr);
  const VwHandle block = buffer != nullptr ? VwCharToBlock(buffer) : 0;
  if (outBlock != nullptr) *outBlock = block;
}

void VwSetSoRtn(int16_t slot, VwRoutine routine, WmlProc *proc) noexcept {
  if (proc == nullptr || slot < 1 || slot > VW_SLOT_COUNT) return;
  SetSlot(slot, routine, proc);
}

void VwSetUser(VwUserWord user1, VwUserWord user2, WmlProc *proc) noexcept {
  if (proc == nullptr) return;
  proc->userData1 = user1;
  proc->userData2 = user2;
}

void VwGetData(void *out, WmlProc *proc) noexcept {
  if (proc != nullptr) std::memcpy(out, &proc->save, sizeof proc->save);
}

void VwSetData(const void *in, WmlProc *proc) noexcept {
  if (proc != nullptr) std::memcpy(&proc->save, in, sizeof proc->save);
}

void VwStreamReadRecord() noexcept {}
void VwDoSpecial() noexcept {}
void VwGetSectionData() noexcept {}
void VwSetSectionData() noexcept {}

uint32_t SODummy() noexcept {
  return 0;
}
