/// \file
/// Names as disks compare them that do not tell capitals from small letters.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_TEXT_FOLD_H
#define VS_WML_HOST_TEXT_FOLD_H

#include <string>
#include <string_view>

namespace vs_wml {

/// The same for all names that differ in case, or in how accents are composed, only. Of a name
/// that is not UTF-8 the letters of ASCII are folded.
std::string FoldName(std::string_view name);

}  // namespace vs_wml

#endif  // VS_WML_HOST_TEXT_FOLD_H
