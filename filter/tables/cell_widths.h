// SPDX-License-Identifier: MIT
// What the bytes of plain text add to the width of a cell.
#ifndef VS_WML_FILTER_TABLES_CELL_WIDTHS_H
#define VS_WML_FILTER_TABLES_CELL_WIDTHS_H

#include "filter/ground/instance.h"

// An entry of CellWidths: the width in character-width units in the low half, and these.
// 0 marks the bytes that are markup, or characters only together with others.
inline constexpr uint32_t CELL_WIDTH = 0xFFFF;
inline constexpr uint32_t CELL_WHITE = 0x00010000;     // white space
inline constexpr uint32_t CELL_MEASURED = 0x00020000;  // in every entry that is not 0
inline constexpr uint32_t CELL_SPACE = 0x01000000;     // white space behind it has no width
inline constexpr uint32_t CELL_IN_WORD = 0x80000000;   // the run goes on behind the byte

// The bit of the entries that are to be skipped behind an entry.
inline uint32_t CellSkippedBehind(uint32_t entry) {
  static_assert(CELL_SPACE >> 8 == CELL_WHITE);
  return entry >> 8 & CELL_WHITE;
}

// Makes cellWidths hold the widths of a style; in multi-byte text every character is a run
// of its own.
void MakeCellWidths(const StyleRecord &style, bool multiByte, WmlProc *proc);

#endif  // VS_WML_FILTER_TABLES_CELL_WIDTHS_H
