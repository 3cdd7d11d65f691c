// SPDX-License-Identifier: MIT
// The stream's typefaces and the widths of characters.
#ifndef VS_WML_FILTER_FORMAT_TYPEFACE_H
#define VS_WML_FILTER_FORMAT_TYPEFACE_H

#include <cstdint>

#include "filter/ground/instance.h"

inline constexpr uint32_t TYPEFACE_NAME_SIZE = 32;  // bytes, with the NUL
inline constexpr uint8_t TYPEFACE_NONE = 255;       // could not be added

// The number, from 1, of the typeface of that name, ignoring case; added when it is
// new. TYPEFACE_NONE when it cannot be.
uint8_t AddTypeface(const char *name, WmlProc *proc);

// Makes the host select a typeface by its number.
void PutTypeface(uint8_t number, WmlProc *proc);

// Width of a character in a style: WmlInit's value scaled to the point size.
uint32_t WMLGetCharWidth(uint16_t ch, const StyleRecord &style);

#endif  // VS_WML_FILTER_FORMAT_TYPEFACE_H
