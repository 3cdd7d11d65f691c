// SPDX-License-Identifier: MIT
// Reads the document item by item and tells the host.
#ifndef VS_WML_FILTER_ENTRY_READ_LOOP_H
#define VS_WML_FILTER_ENTRY_READ_LOOP_H

#include "filter/ground/instance.h"

// One VwStreamRead of an open stream.
void ReadDocument(WmlProc *proc);

#endif  // VS_WML_FILTER_ENTRY_READ_LOOP_H
