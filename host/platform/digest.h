/// \file
/// Digests of bytes.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_PLATFORM_DIGEST_H
#define VS_WML_HOST_PLATFORM_DIGEST_H

#include <string>
#include <string_view>

namespace vs_wml {

/// The 128-bit XXH3 of bytes in hexadecimal, as `xxhsum -H2` prints it. It tells documents
/// apart at next to no cost; as opposed to a cryptographic digest it proves nothing.
std::string Xxh128(std::string_view bytes);

}  // namespace vs_wml

#endif  // VS_WML_HOST_PLATFORM_DIGEST_H
