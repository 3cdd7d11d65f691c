// SPDX-License-Identifier: MIT
// Lengths, percentages and colours in the values of attributes.
#ifndef VS_WML_FILTER_ATTRIBUTES_LENGTH_H
#define VS_WML_FILTER_ATTRIBUTES_LENGTH_H

#include <cstdint>

#include "filter/ground/instance.h"

// A length with an optional unit, in twips; a percentage, negated; a relative length
// ("3*") in hundredths; or a hexadecimal number ("#FF0000", "ff"). A number without a
// unit that is known is in defaultUnit. 0 for text that is none of these.
uint32_t StrToLong(const char *text, uint32_t defaultUnit, const WmlProc *proc);

#endif  // VS_WML_FILTER_ATTRIBUTES_LENGTH_H
