/// \file
/// UTF-8 text: checking, repairing, taking apart.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_TEXT_UTF8_H
#define VS_WML_HOST_TEXT_UTF8_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vs_wml {

inline constexpr char32_t kReplacementCharacter = 0xFFFD;

/// Offset of the first ill-formed byte, or the length of the text when there is none.
std::size_t FindIllFormedUtf8(std::string_view text);

/// Length of the ASCII characters at the start of the text.
std::size_t AsciiPrefix(std::string_view text);

bool IsValidUtf8(std::string_view text);

/// Whether no character is cut at the start or the end of a part of well-formed text.
bool HasWholeEnds(std::string_view text);

/// The text with every ill-formed sequence replaced by U+FFFD.
std::string RepairUtf8(std::string_view text);

/// Appends a character; what is no Unicode scalar value is appended as U+FFFD.
void AppendUtf8(std::string &text, char32_t character);

/// The character at `offset`, which is moved behind it; U+FFFD for ill-formed bytes.
char32_t NextCharacter(std::string_view text, std::size_t &offset);

/// Columns that a character takes on a terminal: 2 for wide East Asian characters, 0
/// for combining marks and format characters, else 1.
int ColumnWidth(char32_t character);

/// Columns of the character at `offset`, which is moved behind it.
std::size_t NextWidth(std::string_view text, std::size_t &offset);

/// Columns of a text without line feeds.
std::size_t ColumnWidth(std::string_view text);

/// Whether each character of a well-formed text takes one column, as far as that shows
/// at a glance: true for ASCII and most text in European scripts.
bool IsNarrow(std::string_view text);

/// Characters of a well-formed text.
std::size_t CountCharacters(std::string_view text);

/// Where `count` characters from `offset` on end, or the end of the text.
std::size_t SkipCharacters(std::string_view text, std::size_t offset, std::size_t count);

/// Whether the byte is none of those that go on with a character of well-formed text.
constexpr bool StartsCharacter(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80;
}

/// What a character is to the rules of emphasis in Markdown. Symbols and format characters
/// beyond ASCII count as punctuation in some versions of the rules, as parts of words in others.
enum class CharacterClass { kBlank, kPunctuation, kSymbol, kWord };
CharacterClass ClassOf(char32_t character);

/// The text without control characters. Nothing is copied when it has none.
std::string WithoutControls(std::string text);

/// The text with the characters that reorder or hide what stands around them shown as what they
/// are, `<U+202E>`: marks, embeddings, overrides and isolates of direction, zero-width blanks.
/// Joiners stay between letters beyond ASCII, which they shape.
std::string WithVisibleFormats(std::string_view text);

/// Whether the text may hold characters that set its direction (embeddings, overrides, isolates).
bool HasDirections(std::string_view text);

/// The text between marks that keep the directions it sets from what stands around it. As it is
/// when it sets none.
std::string Isolated(std::string_view text);

/// Whether a character controls a terminal rather than shows: C0, DEL and C1.
constexpr bool IsControl(char32_t character) {
  return character < 0x20 || (character >= 0x7F && character <= 0x9F);
}

}  // namespace vs_wml

#endif  // VS_WML_HOST_TEXT_UTF8_H
