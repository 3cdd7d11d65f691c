// SPDX-License-Identifier: MIT
#include "filter/tables/cell_widths.h"

#include "filter/data/ascii.h"
#include "filter/format/typeface.h"

namespace {

// True for the ASCII bytes that are characters of their own in every charset but JIS X 0208.
bool IsPlain(uint16_t byte) {
  return byte > ' ' && byte != '<' && byte != '&' && byte != '$' && byte != '/';
}

}  // namespace

void MakeCellWidths(const StyleRecord &style, bool multiByte, WmlProc *proc) {
  CellWidths &widths = proc->cellWidths;
  if (widths.pointSize == style.pointSize && widths.multiByte == multiByte) return;
  widths = {};
  widths.pointSize = style.pointSize;
  widths.multiByte = multiByte;
  for (uint16_t byte = 0; byte < 0x80; ++byte) {
    const bool white = IsBlank(byte);
    if (!white && !IsPlain(byte)) continue;
    uint32_t entry = CELL_MEASURED | WMLGetCharWidth(byte, style);
    if (white) entry |= CELL_WHITE;
    if (byte == ' ') entry |= CELL_SPACE;
    if (!white && !multiByte) entry |= CELL_IN_WORD;
    widths.of[byte] = entry;
  }
}
