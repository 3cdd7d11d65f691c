// SPDX-License-Identifier: MIT
// Ordinary tags, read in place when they lie whole in the input buffer.
#ifndef VS_WML_FILTER_LEXER_TAG_SCAN_H
#define VS_WML_FILTER_LEXER_TAG_SCAN_H

#include "filter/ground/instance.h"

// Reads the tag behind the '<' that has been read, as far as its closing punctuation
// included, into item, attrList and attrCount. False, with the input where it was, for
// anything out of the ordinary: a reference or a control byte in it, quotes in odd
// places, many attributes, `meta`, or an end beyond the buffer.
bool ScanTag(ItemRecord *item, WmlProc *proc);

#endif  // VS_WML_FILTER_LEXER_TAG_SCAN_H
