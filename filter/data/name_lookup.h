// Names of tags, attributes and entities, and the string functions they need.
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

// 'A'..'Z' to 'a'..'z', every other byte as it is.
constexpr char LowerAscii(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

// Lowers the ASCII letters of a string in place.
void strToLwr(char *s);

// Compare strings as unsigned bytes; below, at or above 0 as usual.
int hstrcmp(const char *a, const char *b);
int hstrcmpn(const char *a, const char *b, int n);  // the first n bytes
int ncstrcmp(const char *a, const char *b);         // ignoring the case of ASCII letters

// Binary search over a sorted table; null when the name is not in it.
template <size_t count>
const NameRecord *FindName(const char *name, const NameRecord (&table)[count],
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
