/// \file
/// Character references: `&#229;`, `&#xE5;`, `&aring;`.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_DECK_REFERENCES_H
#define VS_WML_HOST_DECK_REFERENCES_H

#include <cstddef>
#include <string>
#include <string_view>

namespace vs_wml {

/// A reference that was understood; `length` is 0 when there is none.
struct CharacterReference {
  char32_t character = 0;
  std::size_t length = 0;  ///< bytes of the source, from '&' to ';' where there is one
};

/// Where a reference stands. In attributes a name counts only with its ';', since
/// targets are full of `&name=`. What is served as it is counts as an attribute does, and
/// nothing in it is repaired: hexadecimal numbers need their x.
enum class ReferencePlace { kText, kAttribute, kServed };

/// Reads the reference at the start of `text`, which begins with '&'. Known are
/// numbers of any length and the names of XML and HTML 4. Numbers 128 to 159 mean
/// windows-1252 characters, and two that form a surrogate pair are one character; what is
/// no character at all gives U+FFFD.
CharacterReference ReadReference(std::string_view text, ReferencePlace place);

/// Length of a named reference by its form, known or not (`&name;`, at most eight
/// letters and digits), else 0.
std::size_t NamedReferenceLength(std::string_view text);

/// What becomes of line ends and tabs in a value.
enum class LineEnds { kBlanks, kLeftOut };

/// Appends text without control characters.
void AppendClean(std::string &out, std::string_view text, LineEnds lineEnds = LineEnds::kBlanks);

/// The value of an attribute: references replaced, control characters left out. Line ends
/// and tabs count for nothing in an address (WHATWG URL, 4.4).
std::string DecodeAttribute(std::string_view raw, LineEnds lineEnds = LineEnds::kBlanks);

}  // namespace vs_wml

#endif  // VS_WML_HOST_DECK_REFERENCES_H
