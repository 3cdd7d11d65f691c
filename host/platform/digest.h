/// \file
/// Digests and codes of bytes.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_PLATFORM_DIGEST_H
#define VS_WML_HOST_PLATFORM_DIGEST_H

#include <string>
#include <string_view>

namespace vs_wml {

/// The SHA-256 of bytes (FIPS 180-4), in hexadecimal digits.
std::string Sha256(std::string_view bytes);

/// Bytes in Base64 (RFC 4648, 4), padded.
std::string Base64(std::string_view bytes);

}  // namespace vs_wml

#endif  // VS_WML_HOST_PLATFORM_DIGEST_H
