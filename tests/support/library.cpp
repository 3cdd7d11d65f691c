// SPDX-License-Identifier: MIT
#include "tests/support/library.h"

#include <dlfcn.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace vs_wml::test {
namespace {

constexpr std::uint16_t kEntries = 18;

template <typename Routine>
void Take(VwRoutine entry, Routine &routine) {
  routine = reinterpret_cast<Routine>(entry);
}

Library FromTable(decltype(&VwGetRtns) getRtns) {
  VwRoutine entry[kEntries];
  getRtns(entry, kEntries);
  Library library;
  Take(entry[0], library.streamOpen);
  Take(entry[1], library.streamSection);
  Take(entry[2], library.streamRead);
  Take(entry[3], library.streamTell);
  Take(entry[4], library.streamSeek);
  Take(entry[6], library.getData);
  Take(entry[7], library.setData);
  Take(entry[8], library.localUp);
  Take(entry[9], library.localDown);
  Take(entry[10], library.allocProc);
  Take(entry[11], library.freeProc);
  Take(entry[12], library.setUser);
  Take(entry[13], library.setSoRtn);
  Take(entry[14], library.streamClose);
  return library;
}

}  // namespace

const Library &LinkedLibrary() {
  static const Library library = FromTable(VwGetRtns);
  return library;
}

Library LoadLibrary(const char *path) {
  void *handle = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  void *getRtns = handle != nullptr ? dlsym(handle, "VwGetRtns") : nullptr;
  if (getRtns == nullptr) {
    std::fprintf(stderr, "%s\n", dlerror());
    std::abort();
  }
  return FromTable(reinterpret_cast<decltype(&VwGetRtns)>(getRtns));
}

}  // namespace vs_wml::test
