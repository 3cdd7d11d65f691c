// SPDX-License-Identifier: MIT
// Reads a table ahead and measures its columns before any of it is told.
#ifndef VS_WML_FILTER_TABLES_TABLE_SCAN_H
#define VS_WML_FILTER_TABLES_TABLE_SCAN_H

#include <cstdint>

#include "filter/ground/instance.h"

// The index of the record of the table whose start tag has just been read. It is
// measured once: a record made at the same position before is found again without
// reading. A fresh measurement leaves the input behind the table and clears stopFlags;
// what the decoder changed on the way stays. NO_INDEX, with STOP_NO_MEMORY set, when no
// record could be made.
uint16_t PreprocessTable(WmlProc *proc);

#endif  // VS_WML_FILTER_TABLES_TABLE_SCAN_H
