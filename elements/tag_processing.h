// What each element does to the output.
#ifndef VS_WML_ELEMENTS_TAG_PROCESSING_H
#define VS_WML_ELEMENTS_TAG_PROCESSING_H

#include "filter/instance.h"

// Handles a begin tag before it is pushed on the tag stack; the style template that its
// element takes, 0 for none.
uint8_t ProcessBeginTag(ItemRecord item, WmlProc *proc);

// Handles an end tag, or an open element that is being closed. Except for `table`, a
// second call for an element that is closed changes nothing.
void ProcessEndTag(uint8_t tagId, WmlProc *proc);

#endif  // VS_WML_ELEMENTS_TAG_PROCESSING_H
