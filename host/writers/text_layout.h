/// \file
/// Lines of text: where to break them and how wide they are.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_WRITERS_TEXT_LAYOUT_H
#define VS_WML_HOST_WRITERS_TEXT_LAYOUT_H

#include <cstddef>
#include <string_view>
#include <vector>

namespace vs_wml {

/// Part of a text that goes on one line.
struct Line {
  std::size_t begin = 0;  ///< bytes of the text
  std::size_t end = 0;
  std::size_t columns = 0;  ///< its width on a terminal
};

enum class LongWords {
  kKeep,  ///< a word wider than the line stands out
  kBreak  ///< it goes on in the next line
};

/// What is known of a text.
enum class TextKind {
  kAny,
  kPlain  ///< ASCII without line feeds: a column a byte
};

/// Breaks `text[begin, end)` into lines of at most `width` columns, between words and,
/// in East Asian text, between characters. Line feeds end lines; blanks at the ends of
/// lines are left out. Appends to `lines`; an empty text is one empty line.
void BreakLines(std::string_view text, std::size_t begin, std::size_t end, std::size_t width,
                LongWords longWords, std::vector<Line> &lines, TextKind kind = TextKind::kAny);

/// Columns of the widest word, the narrowest that lines can be without breaking one.
std::size_t WidestWord(std::string_view text, TextKind kind = TextKind::kAny);

}  // namespace vs_wml

#endif  // VS_WML_HOST_WRITERS_TEXT_LAYOUT_H
