// SPDX-License-Identifier: MIT
// From the measured extents of a table's columns to their widths.
//
// Extents are in character-width units, of which 1000 are 460 twips.
#ifndef VS_WML_FILTER_TABLES_COLUMN_WIDTHS_H
#define VS_WML_FILTER_TABLES_COLUMN_WIDTHS_H

#include <cstdint>

struct ColumnExtent {
  uint32_t wordMax;  // widest unbreakable run
  uint32_t lineMax;  // widest line
};

// A length in twips in character-width units, truncated; lengths are signed.
uint32_t UnitsOfTwips(uint32_t twips);

// Shares the width of the page among `count` columns: each gets its widest line when
// all of them fit; else its widest run and a part of what is left in proportion to how
// much it could use; or just its widest run when nothing is left. Widths in twips.
void DistributeWidths(const ColumnExtent *columns, uint16_t count, uint32_t *widths);

#endif  // VS_WML_FILTER_TABLES_COLUMN_WIDTHS_H
