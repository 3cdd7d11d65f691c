// SPDX-License-Identifier: MIT
// What each element does to the output, at its begin tag and at its end.
#ifndef VS_WML_FILTER_ELEMENTS_TAG_PROCESSING_H
#define VS_WML_FILTER_ELEMENTS_TAG_PROCESSING_H

#include "filter/ground/instance.h"

// A begin tag: closes what it closes without saying so, begins its element and pushes it on the
// tag stack.
void ProcessBeginTag(ItemRecord item, WmlProc *proc);

// An end tag: repairs markup that is not well formed. Closes the element of that tag with all
// above it, and nothing when it is a stray one.
void ProcessEndTag(uint8_t tagId, WmlProc *proc);

// Closes every open element, as the end of the document does.
void CloseAllElements(WmlProc *proc);

#endif  // VS_WML_FILTER_ELEMENTS_TAG_PROCESSING_H
