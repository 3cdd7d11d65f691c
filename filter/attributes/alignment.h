// SPDX-License-Identifier: MIT
// The alignment that a tag asks for.
#ifndef VS_WML_FILTER_ATTRIBUTES_ALIGNMENT_H
#define VS_WML_FILTER_ATTRIBUTES_ALIGNMENT_H

#include <cstdint>

#include "filter/ground/instance.h"

// The PARA_ALIGN_ bit of the current tag's `align` attribute, 0 when it has none.
uint16_t CheckJustify(WmlProc *proc);

#endif  // VS_WML_FILTER_ATTRIBUTES_ALIGNMENT_H
