/// \file
/// Splits a document into text and tags, and puts up with what people write.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_DECK_MARKUP_READER_H
#define VS_WML_HOST_DECK_MARKUP_READER_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "host/text/ascii.h"
#include "host/text/warnings.h"

namespace vs_wml {

struct Attribute {
  std::string_view name;   ///< as written
  std::string_view value;  ///< without quotes, references as they are
};

enum class TokenKind : std::uint8_t {
  kText,     ///< text with references and variables
  kLiteral,  ///< text of a CDATA section, to be taken as it is
  kStartTag,
  kEndTag,
  kEnd  ///< the end of the document
};

/// The first eight letters of a name in lower case, so that names are compared at once;
/// 0 when there is something else among them.
constexpr std::uint64_t NameKey(std::string_view name) {
  std::uint64_t key = 0;
  for (std::size_t at = 0; at < std::min(name.size(), sizeof key); ++at) {
    if (!IsLetter(name[at])) return 0;
    key |= std::uint64_t{static_cast<unsigned char>(ToLower(name[at]))} << (8 * at);
  }
  return key;
}

/// Views point into the document.
struct Token {
  TokenKind kind = TokenKind::kEnd;
  std::size_t offset = 0;
  std::string_view text;              ///< of kText and kLiteral
  bool plain = false;                 ///< of kText: as it is, see PlainLength
  std::string_view name;              ///< of tags, as written
  std::uint64_t nameKey = 0;          ///< of tags: NameKey of the name
  std::vector<Attribute> attributes;  ///< of kStartTag
  bool empty = false;                 ///< of kStartTag: closed by "/"

  /// The first attribute of that name (in lower case), however it is written, else that of
  /// the older name; null when there is none.
  const std::string_view *Find(std::string_view attribute, std::string_view older = {}) const;
};

/// Reads tokens one after the other. Comments, processing instructions, declarations
/// and server-side code are passed over. Markup that does not end is not allowed to
/// swallow the document: it ends at the next '>' instead. The work is linear in the
/// length of the document, whatever it holds.
class MarkupReader {
 public:
  /// `document` and `warnings` have to outlive the reader; null: warn nobody.
  MarkupReader(std::string_view document, Warnings *warnings)
      : document_(document), warnings_(warnings) {}

  /// Reads the next token into `token`; false at the end.
  bool Next(Token &token);

 private:
  bool StartsMarkup(std::size_t at) const;
  bool IsLooseTag(std::size_t at) const;
  bool StartsWith(std::size_t at, std::string_view prefix) const;
  bool ReadBareTag(Token &token);
  // Out of line, like all that is rarer, to keep short what reads nearly every tag.
  bool ReadOther(Token &token);
  void ReadText(Token &token);
  std::size_t FindMarkup(std::size_t at) const;
  [[gnu::noinline]] bool ReadSection(Token &token);
  bool ReadCdata(Token &token);
  void SkipComment();
  void SkipDeclaration();
  void SkipUntil(std::size_t from, std::string_view end, const char *warning);
  void SkipToTagEnd();
  void ReadTag(Token &token);
  void SkipEndTag();
  void ReadAttributes(Token &token);
  void ReadAttribute(Token &token);
  std::string_view ReadValue(const Token &token);
  bool ReadQuotedValue(std::string_view &value);
  bool ReadCurlyQuotedValue(std::string_view &value);
  std::string_view ReadName();
  std::size_t FindOnce(std::string_view what, std::size_t from);
  void Warn(const char *message, std::size_t offset) const;

  std::string_view document_;
  Warnings *warnings_;
  std::size_t position_ = 0;
  bool atMarkup_ = false;  // what stands there is known to be markup
  // What was looked for once and does not come any more: looking again would make
  // the work quadratic.
  std::vector<std::string_view> absent_;
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_DECK_MARKUP_READER_H
