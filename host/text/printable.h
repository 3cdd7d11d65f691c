/// \file
/// Names and values as people may read them.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_TEXT_PRINTABLE_H
#define VS_WML_HOST_TEXT_PRINTABLE_H

#include <string>
#include <string_view>

namespace vs_wml {

/// A name or a value in one line in which nothing hides: what drives a terminal, turns the
/// direction of the text or has no width is escaped (`\n`, `\x1B`, `\u{202E}`), and so are bytes
/// that are not UTF-8 (`\xFF`). All else stays as it is.
std::string Printable(std::string_view text);

}  // namespace vs_wml

#endif  // VS_WML_HOST_TEXT_PRINTABLE_H
