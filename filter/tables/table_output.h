// SPDX-License-Identifier: MIT
// Tables, rows and cells as the host is told of them. One table is open at a time.
#ifndef VS_WML_FILTER_TABLES_TABLE_OUTPUT_H
#define VS_WML_FILTER_TABLES_TABLE_OUTPUT_H

#include "filter/ground/instance.h"

// `table`: measures it and opens it. Inside an open table the element is only pushed,
// and its rows and cells act on the table that is open.
void ProcessBeginTable(ItemRecord item, WmlProc *proc);

// `tr`: from the second one on, ends the row before it.
void ProcessBeginRow(WmlProc *proc);

// `td` in an open table: begins the next cell; false for one beyond the columns.
bool ProcessBeginCell(WmlProc *proc);

// The end of `table`.
void ProcessEndTable(WmlProc *proc);

// Finds the open table's record again at the start of a read.
void TableResume(WmlProc *proc);

#endif  // VS_WML_FILTER_TABLES_TABLE_OUTPUT_H
