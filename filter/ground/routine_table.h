// SPDX-License-Identifier: MIT
// The 118 slots of the host's output routines, in their order in memory.
#ifndef VS_WML_FILTER_GROUND_ROUTINE_TABLE_H
#define VS_WML_FILTER_GROUND_ROUTINE_TABLE_H

#include <cstdint>

#include "filter/vs_wml.h"

struct SoRoutineTable {
  VwRoutine field[VW_SLOT_COUNT];
};

// For each slot number the place of its field: the slots stand in the order 1-30,
// 113, 109-112, 31-35, 104, 36-75, 114, 76-103, 105-108, 115-118.
struct SlotFields {
  uint8_t of[VW_SLOT_COUNT + 1];
};

constexpr SlotFields MakeSlotFields() {
  constexpr struct {
    uint8_t first, last;
  } kRuns[] = {{1, 30},  {113, 113}, {109, 112}, {31, 35},   {104, 104},
               {36, 75}, {114, 114}, {76, 103},  {105, 108}, {115, 118}};
  SlotFields fields = {};
  uint8_t place = 0;
  for (const auto &run : kRuns) {
    for (uint8_t slot = run.first; slot <= run.last; ++slot) fields.of[slot] = place++;
  }
  return fields;
}

inline constexpr SlotFields SLOT_FIELDS = MakeSlotFields();
static_assert(SLOT_FIELDS.of[118] == VW_SLOT_COUNT - 1 && SLOT_FIELDS.of[31] == 35);

#endif  // VS_WML_FILTER_GROUND_ROUTINE_TABLE_H
