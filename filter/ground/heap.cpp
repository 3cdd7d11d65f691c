// SPDX-License-Identifier: MIT
#include "filter/ground/heap.h"

#include <cassert>
#include <cstdlib>

#include "filter/ground/instance.h"

namespace {

[[maybe_unused]] bool IsSpare(const ScratchBlock *block, const WmlProc *proc) {
  const ScratchBlock *spare = proc->spareStrings;
  while (spare != nullptr && spare != block) spare = spare->next;
  return spare != nullptr;
}

constexpr uint32_t kMaxItems = 0xFFFF;

// Half as much again, so that a document with many tables costs time in
// proportion to their number.
uint32_t GrownCapacity(const VwVarArray *array) {
  const uint32_t half = array->capacity / 2u;
  const uint32_t grown = array->capacity + (half > array->growth ? half : array->growth);
  return grown < kMaxItems ? grown : kMaxItems;
}

}  // namespace

void VACreate(uint32_t itemSize, uint16_t growth, VwVarArray *array) {
  *array = {itemSize, growth, 0, 0, nullptr};
}

void VADestroy(VwVarArray *array) {
  std::free(array->storage);
  array->capacity = 0;
  array->count = 0;
  array->storage = nullptr;
}

void *VAAddItem(uint16_t *outIndex, VwVarArray *array, WmlProc *proc) {
  if (array->count == array->capacity) {
    const uint32_t capacity = GrownCapacity(array);
    void *storage = capacity > array->capacity
                        ? std::realloc(array->storage, size_t{capacity} * array->itemSize)
                        : nullptr;
    if (storage == nullptr) {
      proc->stopFlags |= STOP_NO_MEMORY;
      return nullptr;
    }
    array->storage = static_cast<uint8_t *>(storage);
    array->capacity = static_cast<uint16_t>(capacity);
  }
  const uint16_t index = array->count++;
  if (outIndex != nullptr) *outIndex = index;
  return array->storage + size_t{index} * array->itemSize;
}

char *StringCreate(uint32_t size, WmlProc *proc) {
  for (ScratchBlock **link = &proc->spareStrings; *link != nullptr; link = &(*link)->next) {
    ScratchBlock *block = *link;
    if (block->size != size) continue;
    *link = block->next;
    return reinterpret_cast<char *>(block + 1);
  }
  auto *block = static_cast<ScratchBlock *>(std::malloc(sizeof(ScratchBlock) + size));
  if (block == nullptr) {
    proc->stopFlags |= STOP_NO_MEMORY;
    return nullptr;
  }
  block->size = size;
  return reinterpret_cast<char *>(block + 1);
}

void StringDestroy(char *string, WmlProc *proc) {
  if (string == nullptr) return;
  ScratchBlock *block = reinterpret_cast<ScratchBlock *>(string) - 1;
  assert(!IsSpare(block, proc));
  block->next = proc->spareStrings;
  proc->spareStrings = block;
}

void StringFreeAll(WmlProc *proc) {
  while (proc->spareStrings != nullptr) {
    ScratchBlock *block = proc->spareStrings;
    proc->spareStrings = block->next;
    std::free(block);
  }
}
