// SPDX-License-Identifier: MIT
#include "filter/attributes/alignment.h"

#include "filter/attributes/attribute_values.h"
#include "filter/data/ascii.h"

uint16_t CheckJustify(WmlProc *proc) {
  constexpr struct {
    int keyword;
    uint8_t alignment;
  } kAlignments[] = {
      {KEYWORD_RIGHT, PARA_ALIGN_RIGHT},    {KEYWORD_BLEED_RIGHT, PARA_ALIGN_RIGHT},
      {KEYWORD_CENTER, PARA_ALIGN_CENTER},  {KEYWORD_MIDDLE, PARA_ALIGN_CENTER},
      {KEYWORD_JUST, PARA_ALIGN_JUSTIFIED}, {KEYWORD_INDENT, PARA_ALIGN_JUSTIFIED},
  };
  char value[16];
  if (!GetAttributeString(ATTRIB_ALIGN, value, sizeof value - 1, proc)) return 0;
  for (const auto &row : kAlignments) {
    if (ncstrcmp(value, WmlInit.keywords[row.keyword].name) == 0) return row.alignment;
  }
  return PARA_ALIGN_LEFT;
}
