/* Opens a stream for each of the filter's identities and prints the font list that a host
 * is told for it.
 *
 * SPDX-License-Identifier: MIT
 */
#include <stdio.h>
#include <vs_wml.h>

static uint32_t add_font(uint32_t number, uint32_t family, const char *name, VwUserWord user1,
                         VwUserWord user2) {
  static const char *const families[] = {"?", "national", "roman", "helvetica", "courier"};
  (void)user1, (void)user2;
  printf("  %u  %-9s  %s\n", (unsigned)number, families[family <= 4 ? family : 0],
         name[0] != '\0' ? name : "(the typeface of the character set)");
  return 0;
}

int main(void) {
  for (int i = 0; i < VW_OVERLAY_COUNT; i++) {
    const WmlOverlayRecord *identity = &WmlOverlayId[i];
    int16_t id = (int16_t)(identity->id[0] | identity->id[1] << 8);
    if (id == 0) continue; /* an empty record */
    WmlProc *instance = VwAllocProc();
    if (instance == NULL) return 1;

    VwBlockHandle empty = {NULL, NULL, NULL, NULL, NULL}; /* never read: only the section is */
    VwHandle chr, block;
    VwFileInfo info;
    VwLocalUp((VwHandle)&empty, &chr, instance);
    VwSetSoRtn(SLOT_ADD_FONT_LIST_ENTRY, (VwRoutine)add_font, instance);
    VwStreamOpen(chr, id, 0, &info, instance);
    printf("%d  %.41s\n", id, identity->name);
    VwStreamSection(chr, instance);
    VwStreamClose(chr, instance);
    VwLocalDown(chr, &block);
    VwFreeProc(instance);
  }
  return 0;
}
