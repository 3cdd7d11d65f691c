/// \file
/// Base64 (RFC 4648, 4).
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_TEXT_BASE64_H
#define VS_WML_HOST_TEXT_BASE64_H

#include <string>
#include <string_view>

namespace vs_wml {

/// Appends bytes in Base64, padded.
void AppendBase64(std::string &text, std::string_view bytes);

}  // namespace vs_wml

#endif  // VS_WML_HOST_TEXT_BASE64_H
