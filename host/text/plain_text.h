/// \file
/// Text that is served as it stands.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_TEXT_PLAIN_TEXT_H
#define VS_WML_HOST_TEXT_PLAIN_TEXT_H

#include <cstddef>
#include <string_view>

namespace vs_wml {

/// How many bytes at the start of a UTF-8 text are neither markup ('<', '>'), references
/// ('&') or variables ('$'), nor control characters other than white space, nor 0xC2,
/// which may begin one.
std::size_t PlainLength(std::string_view text);

}  // namespace vs_wml

#endif  // VS_WML_HOST_TEXT_PLAIN_TEXT_H
