/// \file
/// Compiled decks (WMLC, the binary form of WML).
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_WMLC_WMLC_H
#define VS_WML_HOST_WMLC_WMLC_H

#include <stdexcept>
#include <string>
#include <string_view>

namespace vs_wml {

/// The bytes are a compiled deck that cannot be read; the message says why.
class BrokenWmlc : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Whether the first bytes are those of a compiled deck: a version and the public id of
/// a WML document type.
bool IsWmlc(std::string_view bytes);

struct DecodedWmlc {
  std::string wml;
  std::string charset;  ///< of `wml`, empty when the deck names none that is known
};

/// A compiled deck as WML, in its own character set. Throws BrokenWmlc. A deck that is
/// longer than one megabyte, nests deeper than 200 elements or stands for more than 16
/// megabytes of text is refused.
DecodedWmlc DecodeWmlc(std::string_view bytes);

}  // namespace vs_wml

#endif  // VS_WML_HOST_WMLC_WMLC_H
