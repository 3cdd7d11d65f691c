// SPDX-License-Identifier: MIT
/* The public header on its own, in C99: records and constants have the documented sizes. */
#include "vs_wml.h"

#define SIZE(type, bytes) typedef char size_of_##type[sizeof(type) == (bytes) ? 1 : -1]
SIZE(VwLinkRecord, 8);
SIZE(SideDescription, 20);
SIZE(GraphicRecord, 160);
SIZE(RowDescription, 28);
SIZE(CellDescription, 128);
SIZE(WmlOverlayRecord, 44);
SIZE(VwStreamPos, 8);
SIZE(VwHandle, sizeof(void *));

VwRoutine every_routine_has_a_type(SOEmitCharRoutine emit);
VwRoutine every_routine_has_a_type(SOEmitCharRoutine emit) {
  return (VwRoutine)emit;
}
