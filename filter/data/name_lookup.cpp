// SPDX-License-Identifier: MIT
#include "filter/data/name_lookup.h"

#include "filter/data/ascii.h"

uint8_t IDTag(const char *name) {
  const NameRecord *record = FindName(name, WmlInit.tags, ncstrcmp);
  return record != nullptr ? static_cast<uint8_t>(record->value) : uint8_t{TAG_NONE};
}

uint16_t IDAttrib(const char *name) {
  const NameRecord *record = FindName(name, WmlInit.attributes, ncstrcmp);
  return record != nullptr ? static_cast<uint16_t>(record->value) : uint16_t{ATTRIB_NONE};
}

uint16_t IDEntity(const char *name) {
  const NameRecord *record = FindName(name, WmlInit.entities, hstrcmp);
  return record != nullptr ? static_cast<uint16_t>(record->value) : uint16_t{0};
}

uint32_t IDUnits(const char *name) {
  const NumberedName *unit = FindName(name, WmlInit.units, ncstrcmp);
  return unit != nullptr ? unit->number : UNIT_NONE;
}
