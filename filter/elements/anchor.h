// SPDX-License-Identifier: MIT
// Hyperlinks: the `a` element.
#ifndef VS_WML_FILTER_ELEMENTS_ANCHOR_H
#define VS_WML_FILTER_ELEMENTS_ANCHOR_H

#include "filter/ground/instance.h"

// Opens a link for an `a` with a `href`, unless one is open.
void ProcessBeginAnchor(WmlProc *proc);

// Closes the open link, if there is one.
void ProcessEndAnchor(WmlProc *proc);

#endif  // VS_WML_FILTER_ELEMENTS_ANCHOR_H
