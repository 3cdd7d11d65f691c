/// \file
/// What a compiled deck asks of a decoder.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_WMLC_WMLC_CHECK_H
#define VS_WML_HOST_WMLC_WMLC_CHECK_H

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vs_wml {

/// The start of a compiled deck.
struct WmlcHeader {
  bool valid = false;
  std::uint8_t version = 0;  ///< 1 to 3
  std::uint32_t publicId = 0;
  std::string_view publicName;   ///< when publicId is 0
  std::uint32_t charset = 0;     ///< MIB number, 0: not given
  std::size_t charsetStart = 0;  ///< where the number of the charset lies
  std::size_t charsetEnd = 0;
  std::string_view strings;  ///< the string table
  std::size_t length = 0;    ///< of the header, the table included
};

WmlcHeader ReadWmlcHeader(std::string_view bytes);

struct WmlcDemand {
  bool wellFormed = false;
  std::size_t depth = 0;  ///< of nested elements
  std::size_t text = 0;   ///< bytes of strings, those of the table each time they are used
};

/// Goes over the tokens once without following them: decoders recurse into elements and
/// copy strings, and a deck can be written so that either has no end.
WmlcDemand MeasureWmlc(std::string_view bytes);

}  // namespace vs_wml

#endif  // VS_WML_HOST_WMLC_WMLC_CHECK_H
