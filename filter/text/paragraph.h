// SPDX-License-Identifier: MIT
// Breaks and alignment.
#ifndef VS_WML_FILTER_TEXT_PARAGRAPH_H
#define VS_WML_FILTER_TEXT_PARAGRAPH_H

#include <cstdint>

#include "filter/ground/instance.h"

// Ends the paragraph; the host's answer. SO_STOP ends the read after this item.
uint16_t ForceParaBreak(WmlProc *proc);

// The same only if something was written since the last break, else 0.
uint16_t OptionParaBreak(WmlProc *proc);

// Ends `count` cells, or a row. Only the answer to a row break can stop the read.
void ForceCellBreak(uint32_t count, WmlProc *proc);
uint16_t ForceRowBreak(WmlProc *proc);

// Sends the alignment of the current paragraph: the first set of the left, right,
// centre and justified bits; nothing when there is none.
void SetParaAlign(uint16_t alignment, WmlProc *proc);

#endif  // VS_WML_FILTER_TEXT_PARAGRAPH_H
