// The entry points of a build of the library.
//
// SPDX-License-Identifier: MIT
#ifndef VS_WML_TESTS_SUPPORT_LIBRARY_H
#define VS_WML_TESTS_SUPPORT_LIBRARY_H

#include "vs_wml.h"

namespace vs_wml::test {

/// What `VwGetRtns` gives, each with its type.
struct Library {
  decltype(&VwStreamOpen) streamOpen;
  decltype(&VwStreamSection) streamSection;
  decltype(&VwStreamRead) streamRead;
  decltype(&VwStreamTell) streamTell;
  decltype(&VwStreamSeek) streamSeek;
  decltype(&VwGetData) getData;
  decltype(&VwSetData) setData;
  decltype(&VwLocalUp) localUp;
  decltype(&VwLocalDown) localDown;
  decltype(&VwAllocProc) allocProc;
  decltype(&VwFreeProc) freeProc;
  decltype(&VwSetUser) setUser;
  decltype(&VwSetSoRtn) setSoRtn;
  decltype(&VwStreamClose) streamClose;
};

/// The objects that this program is linked with.
const Library &LinkedLibrary();

/// A shared library, which stays loaded; ends the program when it cannot be.
Library LoadLibrary(const char *path);

}  // namespace vs_wml::test

#endif  // VS_WML_TESTS_SUPPORT_LIBRARY_H
