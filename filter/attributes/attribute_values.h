// Values of the current tag's attributes: as text, as lengths, as host strings.
#ifndef VS_WML_FILTER_ATTRIBUTES_ATTRIBUTE_VALUES_H
#define VS_WML_FILTER_ATTRIBUTES_ATTRIBUTE_VALUES_H

#include <cstdint>

#include "filter/ground/instance.h"

// Reads an attribute's value from the document again into a buffer of `size` bytes.
// False, and an empty buffer, when the tag has no such attribute or it has no value.
bool GetAttributeString(uint16_t attribute, char *buffer, uint16_t size, WmlProc *proc);

// Writes an attribute's value into the document as a paragraph of its own; false
// when there is none.
bool PutAttributeParagraph(uint16_t attribute, WmlProc *proc);

// The unit of a unit name, compared whole and ignoring case; UNIT_NONE when it is
// not known.
uint32_t IDUnits(const char *text);

// A length with an optional unit, in twips; a percentage, negated; a relative length
// ("3*") in hundredths; or a hexadecimal number ("#FF0000", "ff"). A number without a
// unit that is known is in defaultUnit. 0 for text that is none of these.
uint32_t StrToLong(const char *text, uint32_t defaultUnit, const WmlProc *proc);

// Hands an attribute's value, of which the first 1023 bytes count, to the host, each byte
// widened to 16 bits. `index` gets the host's index for it, NO_STRING when it was not stored;
// false when there is none.
bool PutAttributeString(uint16_t attribute, uint32_t *index, WmlProc *proc);

// Defines a reference to the host: its target is a string index, its id is stored
// through `id`.
void PutReference(uint32_t stringIndex, uint32_t *id, WmlProc *proc);

#endif  // VS_WML_FILTER_ATTRIBUTES_ATTRIBUTE_VALUES_H
