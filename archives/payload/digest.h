/// \file
/// Digests that records carry.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_ARCHIVES_PAYLOAD_DIGEST_H
#define VS_WML_ARCHIVES_PAYLOAD_DIGEST_H

#include <string_view>

namespace vs_wml {

enum class DigestMatch { kSame, kDifferent, kUnknown };

/// Compares bytes with a digest as "sha1:" and so on write it, in base32 or hexadecimal, in
/// any case: MD5, SHA-1, SHA-256, SHA-512. kUnknown: it is none of these, or has not the
/// length of one.
DigestMatch CompareDigest(std::string_view digest, std::string_view bytes);

}  // namespace vs_wml

#endif  // VS_WML_ARCHIVES_PAYLOAD_DIGEST_H
