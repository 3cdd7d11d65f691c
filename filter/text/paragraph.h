// Text that handlers write themselves, paragraph breaks and alignment.
#ifndef VS_WML_FILTER_TEXT_PARAGRAPH_H
#define VS_WML_FILTER_TEXT_PARAGRAPH_H

#include <cstdint>

#include "filter/ground/instance.h"

// Writes one UTF-16 unit, announcing Unicode around it if another set is in force.
void PutUnicodeCharacter(uint16_t ch, WmlProc *proc);

// Writes a string byte by byte in the character set in force; a line feed ends the
// paragraph, and the host's answer to that is not read.
void WmlPutString(const char *text, WmlProc *proc);

// Ends the paragraph; the host's answer. SO_STOP ends the read after this item.
uint16_t ForceParaBreak(WmlProc *proc);

// The same only if something was written since the last break, else 0.
uint16_t OptionParaBreak(WmlProc *proc);

// Ends `count` cells, or a row. Only the answer to a row break can stop the read.
void ForceCellBreak(uint32_t count, WmlProc *proc);
uint16_t ForceRowBreak(WmlProc *proc);

// The PARA_ALIGN_ bit of the current tag's `align` attribute, 0 when it has none.
uint16_t CheckJustify(WmlProc *proc);

// Sends the alignment of the current paragraph: the first set of the left, right,
// centre and justified bits; nothing when there is none.
void SetParaAlign(uint16_t alignment, WmlProc *proc);

#endif  // VS_WML_FILTER_TEXT_PARAGRAPH_H
