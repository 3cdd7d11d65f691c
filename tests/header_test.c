/* The public header serves C99 hosts: this file only has to compile and link.
 *
 * SPDX-License-Identifier: MIT
 */
#include "vs_wml.h"

#include <stddef.h>

int HeaderTestRun(void);

static uint32_t EmitChar(uint32_t character, VwUserWord user1, VwUserWord user2) {
  (void)user2;
  *(uint32_t *)user1 += character;
  return 0;
}

static uint32_t Read(VwHandle self, void *buffer, uint32_t wanted, uint32_t *delivered) {
  (void)self;
  (void)buffer;
  (void)wanted;
  *delivered = 0;
  return 0;
}

static uint32_t Seek(VwHandle self, uint32_t origin, uint32_t offset) {
  (void)self;
  (void)origin;
  (void)offset;
  return 0;
}

static uint32_t Tell(VwHandle self, uint32_t *position) {
  (void)self;
  *position = 0;
  return 0;
}

/* Reads an empty document; 0 when all went as it should. */
int HeaderTestRun(void) {
  VwBlockHandle block = {0};
  SOEmitCharRoutine emit = EmitChar;
  VwFileInfo info;
  VwHandle chr = 0;
  VwHandle back = 0;
  uint32_t sum = 0;
  WmlProc *instance = VwAllocProc();
  block.read = Read;
  block.seek = Seek;
  block.tell = Tell;
  VwLocalUp((VwHandle)&block, &chr, instance);
  VwSetSoRtn(SLOT_EMIT_CHAR, (VwRoutine)emit, instance);
  VwSetUser((VwUserWord)&sum, 0, instance);
  VwStreamOpen(chr, 1151, 0, &info, instance);
  VwStreamSection(chr, instance);
  VwStreamRead(chr, instance);
  VwStreamClose(chr, instance);
  VwLocalDown(chr, &back);
  VwFreeProc(instance);
  return back == (VwHandle)&block && sum == 0 && info.typeCode == 120 ? 0 : 1;
}
