// SPDX-License-Identifier: MIT
// Names of tags, attributes, entities and units to their ids.
#ifndef VS_WML_FILTER_DATA_NAME_LOOKUP_H
#define VS_WML_FILTER_DATA_NAME_LOOKUP_H

#include <cstddef>
#include <cstdint>

#include "filter/data/vsd_wml.h"

// The id of a tag, ignoring case; TAG_NONE when it is not known.
uint8_t IDTag(const char *name);

// The id of an attribute, ignoring case; ATTRIB_NONE when it is not known.
uint16_t IDAttrib(const char *name);

// The UTF-16 unit of an entity, 0 when it is not known or has none. Names are
// case-sensitive.
uint16_t IDEntity(const char *name);

// The unit of a unit name, ignoring case; UNIT_NONE when it is not known.
uint32_t IDUnits(const char *name);

// The row of a name, compared whole, in a table sorted by `compare`; null when it has none.
template <typename Row, size_t count>
const Row *FindName(const char *name, const Row (&table)[count],
                    int (*compare)(const char *, const char *)) {
  int low = 0;
  int high = static_cast<int>(count) - 1;
  while (low <= high) {
    const int middle = (low + high) / 2;
    const int order = compare(name, table[middle].name);
    if (order == 0) return &table[middle];
    if (order > 0) {
      low = middle + 1;
    } else {
      high = middle - 1;
    }
  }
  return nullptr;
}

#endif  // VS_WML_FILTER_DATA_NAME_LOOKUP_H
