/// \file
/// Named character references.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_TEXT_ENTITIES_H
#define VS_WML_HOST_TEXT_ENTITIES_H

#include <string_view>

namespace vs_wml {

/// The character of an HTML 4 entity beyond ASCII, such as "eacute"; 0 when there is none.
char32_t FindEntity(std::string_view name);

}  // namespace vs_wml

#endif  // VS_WML_HOST_TEXT_ENTITIES_H
