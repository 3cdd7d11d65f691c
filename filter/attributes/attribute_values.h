// SPDX-License-Identifier: MIT
// Values of the current tag's attributes, as text and as strings of the host's.
#ifndef VS_WML_FILTER_ATTRIBUTES_ATTRIBUTE_VALUES_H
#define VS_WML_FILTER_ATTRIBUTES_ATTRIBUTE_VALUES_H

#include <cstdint>

#include "filter/ground/instance.h"

// Reads an attribute's value from the document again into a buffer of `size` bytes.
// False, and an empty buffer, when the tag has no such attribute or it has no value.
bool GetAttributeString(uint16_t attribute, char *buffer, uint16_t size, WmlProc *proc);

// Hands an attribute's value, of which the first 1023 bytes count, to the host, each byte
// widened to 16 bits. `index` gets the host's index for it, NO_STRING when it was not stored;
// false when there is none.
bool PutAttributeString(uint16_t attribute, uint32_t *index, WmlProc *proc);

// Defines a reference to the host: its target is a string index, its id is stored
// through `id`.
void PutReference(uint32_t stringIndex, uint32_t *id, WmlProc *proc);

#endif  // VS_WML_FILTER_ATTRIBUTES_ATTRIBUTE_VALUES_H
