/// \file
/// The form in which a document is served to the filter so that every character of it
/// comes back.
///
/// SPDX-License-Identifier: MIT
///
/// The filter passes characters on as codes of the document's character set, keeps one
/// byte of each in attribute values, knows numeric references of four digits and
/// follows character-set declarations and escapes. Served as UTF-8 under an identity
/// whose character set has one byte a character and leaves all of 0x80 to 0xFF alone,
/// the bytes of a character come back one by one and in order, in text as in attribute
/// values, and the host puts them together.
#ifndef VS_WML_HOST_SERVE_SERVED_BYTES_H
#define VS_WML_HOST_SERVE_SERVED_BYTES_H

#include <cstdint>
#include <string>
#include <string_view>

namespace vs_wml {

/// The identity for served UTF-8: windows-1251, one byte a character.
inline constexpr std::int16_t kServedIdentity = 1157;

/// Well-formed UTF-8 markup in the form that is served: references beyond ASCII replaced
/// by their characters, control characters taken out, `meta` elements renamed so that
/// they declare nothing.
std::string MakeServedBytes(std::string_view text);

/// Resolves the references of an attribute value that the filter hands over as written
/// (link targets and image sources).
std::string ResolveReferences(std::string_view value);

}  // namespace vs_wml

#endif  // VS_WML_HOST_SERVE_SERVED_BYTES_H
