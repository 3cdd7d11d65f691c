// SPDX-License-Identifier: MIT
// Growable arrays of fixed-size items, and scratch strings.
//
// Nothing here returns an error code: an exhausted heap sets STOP_NO_MEMORY in
// the instance's stopFlags and gives null, and the read loop ends the read.
#ifndef VS_WML_FILTER_GROUND_HEAP_H
#define VS_WML_FILTER_GROUND_HEAP_H

#include <cstddef>
#include <cstdint>

#include "filter/vs_wml.h"

// An array of items that is only appended to. A pointer to an item is valid
// until the next addition to the same array.
struct VwVarArray {
  uint32_t itemSize;  // bytes per item
  uint16_t growth;    // least number of items by which a full array grows
  uint16_t capacity;  // items that the storage holds
  uint16_t count;     // items in use
  uint8_t *storage;   // null while the array has never held an item
};

// Makes an empty array.
void VACreate(uint32_t itemSize, uint16_t growth, VwVarArray *array);

// Frees the storage and empties the array, which can be used again.
void VADestroy(VwVarArray *array);

// Appends an item, uninitialised, and stores its index through outIndex unless that
// is null. Null when the heap is exhausted or 65535 items are held; the array is
// then as it was.
void *VAAddItem(uint16_t *outIndex, VwVarArray *array, WmlProc *proc);

// The item of that index, null when there is none.
inline void *VAGetItem(uint16_t index, const VwVarArray *array) {
  return index < array->count ? array->storage + size_t{index} * array->itemSize : nullptr;
}

// A scratch string goes back to its instance when it is done with and is handed
// out again, so that a read allocates each of the few sizes once.
struct ScratchBlock {
  ScratchBlock *next;
  uint32_t size;
};

inline constexpr uint32_t SCRATCH_TEXT_SIZE = 1024;  // item text, words, attribute values
inline constexpr uint32_t SCRATCH_WIDE_SIZE = 2048;  // a text widened to 16-bit units

// A scratch string of that many bytes, uninitialised; null when the heap is exhausted.
char *StringCreate(uint32_t size, WmlProc *proc);

// Gives a string of StringCreate back; null is ignored.
void StringDestroy(char *string, WmlProc *proc);

// Frees the strings that were given back.
void StringFreeAll(WmlProc *proc);

#endif  // VS_WML_FILTER_GROUND_HEAP_H
