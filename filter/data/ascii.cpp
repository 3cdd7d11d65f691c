// SPDX-License-Identifier: MIT
#include "filter/data/ascii.h"

void strToLwr(char *s) {
  for (; *s != 0; ++s) *s = LowerAscii(*s);
}

namespace {

int Difference(char a, char b) {
  return static_cast<unsigned char>(a) - static_cast<unsigned char>(b);
}

}  // namespace

int hstrcmp(const char *a, const char *b) {
  while (*a != 0 && *a == *b) {
    ++a;
    ++b;
  }
  return Difference(*a, *b);
}

int hstrcmpn(const char *a, const char *b, int n) {
  for (int i = 0; i < n; ++i) {
    if (a[i] != b[i] || a[i] == 0) return Difference(a[i], b[i]);
  }
  return 0;
}

int ncstrcmp(const char *a, const char *b) {
  while (*a != 0 && *b != 0 && LowerAscii(*a) == LowerAscii(*b)) {
    ++a;
    ++b;
  }
  return Difference(LowerAscii(*a), LowerAscii(*b));
}
