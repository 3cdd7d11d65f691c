// Runs of plain text, sent straight from the input buffer.
#ifndef VS_WML_FILTER_TEXT_RUN_H
#define VS_WML_FILTER_TEXT_RUN_H

#include "filter/instance.h"

// Sends the text at the input as far as it lies in the buffer and is plain: characters,
// white space and ordinary references, up to a tag or anything that only the item
// reader can take. The host gets the calls that the items would give it. Nothing
// happens where text is not sent at all, or where a mode treats it in its own way.
void SendTextRun(WmlProc *proc);

#endif  // VS_WML_FILTER_TEXT_RUN_H
