/// \file
/// Text in Markdown that is read as itself, by CommonMark, GitHub's rules and pandoc's.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_WRITERS_MARKDOWN_TEXT_H
#define VS_WML_HOST_WRITERS_MARKDOWN_TEXT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vs_wml {

/// What kind of block the text stands in.
enum class MarkdownPlace : std::uint8_t { kParagraph, kHeading, kCell };

/// Escapes the text of a block, piece by piece. What counts depends on what stands around a
/// character, on the whole line, and on what the block has held before.
class MarkdownText {
 public:
  /// A new block, which nothing before it pairs up with.
  void BeginBlock(MarkdownPlace place);
  /// A new line or cell, of which `text` is all that the pieces are parts of.
  void BeginLine(std::string_view text);

  /// Appends `text[begin, end)`, the text being that of BeginLine. Pieces come in order.
  /// `inLabel`: between the brackets of a link. Line feeds become `<br>`.
  void Append(std::string &line, std::size_t begin, std::size_t end, bool inLabel);
  /// Appends a text of its own, such as the label of a picture.
  void AppendWhole(std::string &line, std::string_view text, bool inLabel);
  /// Begins a link or (`image`) a picture, so that what stands before it is no part of it.
  static void OpenBracket(std::string &line, bool image);
  /// Appends `target "title"` as it stands in a link; an empty title is none.
  static void AppendTarget(std::string &line, std::string_view target, std::string_view title);
  /// Appends `](target "title")`.
  static void CloseBracket(std::string &line, std::string_view target, std::string_view title);

  /// Whether the line ends with an address that viewers turn into a link of their own, and
  /// that would take the mark of a line break with it.
  static bool EndsWithAddress(std::string_view line);

 private:
  std::size_t AppendStart(std::string &line, std::size_t begin, std::size_t end) const;
  void LookAtWord(std::size_t begin, std::size_t end);
  void AppendCharacter(std::string &line, std::size_t at);
  bool NeedsBackslash(std::string_view line, std::size_t at);

  MarkdownPlace place_ = MarkdownPlace::kParagraph;
  bool dollarSeen_ = false;  ///< in the block: a second one would make a formula
  std::string_view text_;
  bool inLabel_ = false;
  std::size_t pieceEnd_ = 0;     ///< of text_
  std::size_t wordEnd_ = 0;      ///< of text_: where the word ends that was looked at last
  bool stopsAddresses_ = false;  ///< in that word
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_WRITERS_MARKDOWN_TEXT_H
