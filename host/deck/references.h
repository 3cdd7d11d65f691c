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
/// targets are full of `&name=`.
enum class ReferencePlace { kText, kAttribute };

/// Reads the reference at the start of `text`, which begins with '&'. Known are
/// numbers of any length and the names of XML and HTML 4. Numbers 128 to 159 mean
/// windows-1252 characters, and two that form a surrogate pair are one character; what is
/// no character at all gives U+FFFD.
CharacterReference ReadReference(std::string_view text, ReferencePlace place);

/// Length of a named reference by its form, known or not (`&name;`, at most eight
/// letters and digits), else 0.
std::size_t NamedReferenceLength(std::string_view text);

/// Appends text with its white space as blanks and without control characters.
void AppendClean(std::string &out, std::string_view text);

/// The value of an attribute: references replaced, line ends and tabs spaces, control
/// characters left out.
std::string DecodeAttribute(std::string_view raw);

}  // namespace vs_wml

#endif  // VS_WML_HOST_DECK_REFERENCES_H
