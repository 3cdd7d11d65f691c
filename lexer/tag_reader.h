// One whole tag with its attributes.
#ifndef VS_WML_LEXER_TAG_READER_H
#define VS_WML_LEXER_TAG_READER_H

#include "filter/instance.h"

// Reads a tag whose '<' has been read into `item`, attrList and attrCount. False when
// the '<' turns out to be a character ("<<"); what was set in `item` by then stays.
bool ReadTag(ItemRecord *item, WmlProc *proc);

#endif  // VS_WML_LEXER_TAG_READER_H
