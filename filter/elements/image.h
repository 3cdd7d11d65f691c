// SPDX-License-Identifier: MIT
// Embedded images: the `img` element.
#ifndef VS_WML_FILTER_ELEMENTS_IMAGE_H
#define VS_WML_FILTER_ELEMENTS_IMAGE_H

#include "filter/ground/instance.h"

// Sends the image of an `img` with a `src`.
void ProcessImage(WmlProc *proc);

#endif  // VS_WML_FILTER_ELEMENTS_IMAGE_H
