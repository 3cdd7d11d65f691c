/// \file
/// Compiled decks (WMLC, the binary form of WML).
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_WMLC_WMLC_H
#define VS_WML_HOST_WMLC_WMLC_H

#include <string>
#include <string_view>
#include <vector>

#include "host/document.h"
#include "host/wmlc/wbxml.h"

namespace vs_wml {

/// Whether the first bytes are those of a compiled deck: a version, and the public id of a
/// WML document type. Where the id is unknown, or the version 1.0, the root must be `wml`, too.
bool IsWmlc(std::string_view bytes);

struct DecodedWmlc {
  std::string wml;      ///< in UTF-8
  std::string charset;  ///< that its strings were in
  CharsetOrigin charsetOrigin = CharsetOrigin::kCompiled;
  std::vector<std::string> warnings;  ///< what is in it but not in `wml`, with its offset
};

/// A compiled deck as WML. Its strings are in `charset` when that is not empty, else in the
/// character set that it names, else in what DetectCharset finds.
///
/// Variables are references with their conversion (`$(name:escape)`). Dollar signs in strings
/// are escaped when the deck has variables: its compiler replaced them then. Else they are
/// left to be read, as some compilers leave all references in the strings.
///
/// Takes time in proportion to the deck, and memory of kWmlcGrowth bytes for each of its own
/// beside kWmlcGrowthBase. Throws BrokenWmlc for a deck that is cut off, damaged, or stands
/// for more text than that.
DecodedWmlc DecodeWmlc(std::string_view bytes, std::string_view charset = {});

}  // namespace vs_wml

#endif  // VS_WML_HOST_WMLC_WMLC_H
