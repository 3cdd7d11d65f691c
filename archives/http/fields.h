/// \file
/// Header fields, as HTTP, WARC and MIME write them, and media types.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_ARCHIVES_HTTP_FIELDS_H
#define VS_WML_ARCHIVES_HTTP_FIELDS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vs_wml {

struct HeaderField {
  std::string name;   ///< trimmed
  std::string value;  ///< trimmed; folded lines joined by a blank
};

/// The length of a header that ends with an empty line, that line included; 0: no such line.
/// Lines end with LF, with or without CR.
std::size_t HeaderLength(std::string_view bytes);

/// The fields up to the first empty line. What has no colon is passed over.
std::vector<HeaderField> ParseHeaderFields(std::string_view lines);

struct MediaType {
  std::string name;     ///< in lower case, without parameters; empty: none
  std::string charset;  ///< without quotes
};

/// Reads a Content-Type; doubled, valueless and quoted parameters do no harm.
MediaType ParseMediaType(std::string_view text);

}  // namespace vs_wml

#endif  // VS_WML_ARCHIVES_HTTP_FIELDS_H
