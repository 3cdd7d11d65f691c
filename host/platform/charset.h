/// \file
/// The character set of a document: finding it, and turning bytes into UTF-8.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_PLATFORM_CHARSET_H
#define VS_WML_HOST_PLATFORM_CHARSET_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/document.h"

namespace vs_wml {

/// A character set and how it was learnt.
struct DetectedCharset {
  std::string name;
  CharsetOrigin origin = CharsetOrigin::kFallback;
  std::size_t markLength = 0;  ///< bytes of the byte-order mark to skip
};

/// Whether a document may name the set (see charsets.h).
bool IsKnownCharset(std::string_view name);

/// Bytes of the shortest character of a set: 1, 2 or 4.
std::size_t CharacterUnit(std::string_view charset);

/// Whether HTTP headers were saved with a document, in front of it.
bool HasSavedHeaders(std::string_view document);

/// Finds the character set of `bytes`: `option` when it is not empty, else byte-order
/// mark, XML declaration, meta element, HTTP header saved with the document, well-formed
/// UTF-8, a statistical detector, windows-1252. A declared name that is unknown or impossible
/// becomes a warning. `contentType` is what the server called the document, empty when that
/// is not known; it goes before a saved header.
DetectedCharset DetectCharset(std::string_view bytes, std::string_view option,
                              std::vector<std::string> &warnings,
                              std::string_view contentType = {});

/// The bytes as UTF-8; what they do not encode becomes U+FFFD. `bytes` is moved from
/// when it is UTF-8 already.
std::string ToUtf8(std::string bytes, std::string_view charset);

/// Appends `bytes`, which are in one of the filter's host character sets (HOST_CS_),
/// to `text` as UTF-8.
void AppendHostCharset(std::string &text, std::string_view bytes, std::uint32_t hostCharset);

}  // namespace vs_wml

#endif  // VS_WML_HOST_PLATFORM_CHARSET_H
