// What each element does to the output.
#ifndef VS_WML_FILTER_ELEMENTS_TAG_PROCESSING_H
#define VS_WML_FILTER_ELEMENTS_TAG_PROCESSING_H

#include "filter/ground/instance.h"

// Handles a begin tag before it is pushed on the tag stack; the style template that its
// element takes, 0 for none.
uint8_t ProcessBeginTag(ItemRecord item, WmlProc *proc);

// Handles the end of an element.
void ProcessEndTag(uint8_t tagId, WmlProc *proc);

#endif  // VS_WML_FILTER_ELEMENTS_TAG_PROCESSING_H
