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

void EmptySlots(WmlProc *proc) {
  for (VwRoutine &field : proc->routines.field) field = AsRoutine(SODummy);
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
  proc->routines.field[SLOT_FIELDS.of[slot]] = routine != nullptr ? routine : AsRoutine(SODummy);
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
