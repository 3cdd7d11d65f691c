/// \file
/// Splits a document into text and tags, and puts up with what people write.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_ADAPTER_MARKUP_READER_H
#define VS_WML_HOST_ADAPTER_MARKUP_READER_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "host/adapter/warnings.h"

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

/// Views point into the document.
struct Token {
  TokenKind kind = TokenKind::kEnd;
  std::size_t offset = 0;
  std::string_view text;              ///< of kText and kLiteral
  std::string_view name;              ///< of tags, as written
  std::vector<Attribute> attributes;  ///< of kStartTag
  bool empty = false;                 ///< of kStartTag: closed by "/"

  /// The first attribute of that name (in lower case), however it is written; null when
  /// there is none.
  const std::string_view *Find(std::string_view attribute) const;
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
  void ReadText(Token &token);
  bool ReadMarkup(Token &token);
  bool ReadCdata(Token &token);
  void SkipComment();
  void SkipDeclaration();
  void SkipUntil(std::size_t from, std::string_view end, const char *warning);
  void SkipToTagEnd();
  void ReadEndTag(Token &token);
  void ReadStartTag(Token &token);
  void ReadAttribute(Token &token);
  std::string_view ReadValue(const Token &token);
  bool ReadQuotedValue(std::string_view &value);
  std::string_view ReadName();
  std::size_t FindOnce(std::string_view what, std::size_t from);
  void Warn(const char *message, std::size_t offset) const;

  std::string_view document_;
  Warnings *warnings_;
  std::size_t position_ = 0;
  // What was looked for once and does not come any more: looking again would make
  // the work quadratic.
  std::vector<std::string_view> absent_;
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_ADAPTER_MARKUP_READER_H
