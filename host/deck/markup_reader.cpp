// SPDX-License-Identifier: MIT
#include "host/deck/markup_reader.h"

#include <algorithm>
#include <array>
#include <bit>
#include <utility>

#include "host/text/ascii.h"
#include "host/text/byte_scan.h"
#include "host/text/plain_text.h"

namespace vs_wml {
namespace {

constexpr std::size_t kNone = std::string_view::npos;
constexpr std::string_view kCdataStart = "<![CDATA[";

// The bytes that names are made of, as people write them.
constexpr auto kNameBytes = [] {
  std::array<bool, 256> name{};
  name.fill(true);
  for (const char c : std::string_view(" \t\r\n=/><\"'"))
    name[static_cast<unsigned char>(c)] = false;
  return name;
}();

constexpr bool IsNameCharacter(char c) {
  return kNameBytes[static_cast<unsigned char>(c)];
}

constexpr bool IsNameStart(char c) {
  return IsLetter(c) || c == '_' || static_cast<unsigned char>(c) >= 0x80;
}

// How many letters these bytes, in lower case, start with.
std::size_t CountLetters(std::uint64_t lowered) {
  const std::uint64_t ascii = lowered & EightTimes(0x7F);
  const std::uint64_t fromA = ascii + EightTimes(0x80 - 'a');
  const std::uint64_t behindZ = ascii + EightTimes(0x80 - 'z' - 1);
  const std::uint64_t letters = fromA & ~behindZ & ~lowered & EightTimes(0x80);
  return static_cast<std::size_t>(std::countr_one(letters | EightTimes(0x7F))) / 8;
}

}  // namespace

const std::string_view *Token::Find(std::string_view attribute, std::string_view older) const {
  for (const Attribute &entry : attributes) {
    if (IsLowered(entry.name, attribute)) return &entry.value;
  }
  return older.empty() ? nullptr : Find(older);
}

// A '<' that does not look like markup is text: "a < b".
inline bool MarkupReader::StartsMarkup(std::size_t at) const {
  if (document_[at] != '<' || at + 1 >= document_.size()) return false;
  const char next = document_[at + 1];
  if (next == '/') return at + 2 < document_.size() && IsNameStart(document_[at + 2]);
  return IsNameStart(next) || next == '!' || next == '?' || next == '%' || IsLooseTag(at);
}

bool MarkupReader::Next(Token &token) {
  token.attributes.clear();
  token.empty = false;
  return ReadBareTag(token) || ReadOther(token);
}

// Nearly all tags are a name of a few letters in angle brackets, which is found without a
// loop.
inline bool MarkupReader::ReadBareTag(Token &token) {
  constexpr std::size_t kLongest = 2 + sizeof token.nameKey;
  if (document_.size() - position_ < kLongest) return false;
  const char *tag = document_.data() + position_;
  if (*tag != '<') return false;
  const bool ends = tag[1] == '/';
  const char *name = tag + (ends ? 2 : 1);
  const std::uint64_t lowered = LowestFirst(name) | EightTimes(0x20);
  const std::size_t length = CountLetters(lowered);
  if (length == 0 || length == sizeof lowered || name[length] != '>') return false;
  token.kind = ends ? TokenKind::kEndTag : TokenKind::kStartTag;
  token.offset = position_;
  token.name = {name, length};
  token.nameKey = lowered & ((std::uint64_t{1} << (8 * length)) - 1);
  position_ += static_cast<std::size_t>(name - tag) + length + 1;
  atMarkup_ = false;
  return true;
}

bool MarkupReader::ReadOther(Token &token) {
  while (position_ < document_.size()) {
    token.offset = position_;
    if (!std::exchange(atMarkup_, false) && !StartsMarkup(position_)) {
      ReadText(token);
      return true;
    }
    const char next = document_[position_ + 1];
    if (next != '!' && next != '?' && next != '%') {
      ReadTag(token);
      return true;
    }
    if (ReadSection(token)) return true;
  }
  token.kind = TokenKind::kEnd;
  return false;
}

inline void MarkupReader::ReadText(Token &token) {
  token.kind = TokenKind::kText;
  std::size_t end = position_ + PlainLength(document_.substr(position_));
  atMarkup_ = end < document_.size() && StartsMarkup(end);
  token.plain = atMarkup_ || end == document_.size();
  if (!token.plain) end = FindMarkup(end);
  token.text = document_.substr(position_, end - position_);
  position_ = end;
}

// Where the next markup from `at` on starts, or the end of the document.
std::size_t MarkupReader::FindMarkup(std::size_t at) const {
  while ((at = document_.find('<', at)) != kNone && !StartsMarkup(at)) ++at;
  return std::min(at, document_.size());
}

void MarkupReader::Warn(const char *message, std::size_t offset) const {
  if (warnings_ != nullptr) warnings_->Add(message, offset);
}

bool MarkupReader::StartsWith(std::size_t at, std::string_view prefix) const {
  return document_.substr(at, prefix.size()) == prefix;
}

// "< br/>": a blank, a name and nothing else.
bool MarkupReader::IsLooseTag(std::size_t at) const {
  constexpr std::size_t kLongest = 16;
  const std::string_view text = document_.substr(at + 1, kLongest);
  const std::size_t end = text.find('>');
  if (end == kNone || !IsWhiteSpace(text[0])) return false;
  std::string_view inside = Trim(text.substr(0, end));
  if (!inside.empty() && inside.back() == '/') inside = Trim(inside.substr(0, inside.size() - 1));
  return !inside.empty() && std::all_of(inside.begin(), inside.end(), IsLetter);
}

// What is neither text nor a tag: true when it gave a token, false when it was passed over.
bool MarkupReader::ReadSection(Token &token) {
  switch (document_[position_ + 1]) {
    case '?':
      SkipUntil(position_ + 2, "?>", "a processing instruction does not end");
      return false;
    case '%':
      Warn("server-side code was left out", position_);
      SkipUntil(position_ + 2, "%>", "server-side code does not end");
      return false;
    default:
      if (StartsWith(position_, kCdataStart)) return ReadCdata(token);
      if (StartsWith(position_, "<!--")) {
        SkipComment();
      } else {
        SkipDeclaration();
      }
      return false;
  }
}

bool MarkupReader::ReadCdata(Token &token) {
  const std::size_t start = position_ + kCdataStart.size();
  const std::size_t end = FindOnce("]]>", start);
  if (end == kNone) {
    Warn("a CDATA section does not end", position_);
    position_ = start;
    return false;
  }
  token.kind = TokenKind::kLiteral;
  token.text = document_.substr(start, end - start);
  position_ = end + 3;
  return true;
}

// Comments end at "-->"; "-- >" and "--!>" are taken for it, too.
void MarkupReader::SkipComment() {
  for (std::size_t at = position_ + 4; (at = FindOnce("--", at)) != kNone; ++at) {
    std::size_t end = at + 2;
    if (end < document_.size() && document_[end] == '!') ++end;
    end = SkipWhiteSpace(document_, end);
    if (end == document_.size()) break;
    if (document_[end] == '>') {
      position_ = end + 1;
      return;
    }
  }
  absent_.push_back("--");
  Warn("a comment does not end", position_);
  SkipToTagEnd();
}

// A document type may have an internal subset in brackets.
void MarkupReader::SkipDeclaration() {
  const std::size_t end = document_.find_first_of("[>", position_);
  if (end == kNone || document_[end] == '>') {
    SkipToTagEnd();
    return;
  }
  for (std::size_t at = end; (at = FindOnce("]", at + 1)) != kNone;) {
    const std::size_t close = SkipWhiteSpace(document_, at + 1);
    if (close < document_.size() && document_[close] == '>') {
      position_ = close + 1;
      return;
    }
  }
  Warn("a declaration does not end", position_);
  SkipToTagEnd();
}

void MarkupReader::SkipUntil(std::size_t from, std::string_view end, const char *warning) {
  const std::size_t found = FindOnce(end, from);
  if (found != kNone) {
    position_ = found + end.size();
    return;
  }
  Warn(warning, position_);
  SkipToTagEnd();
}

void MarkupReader::SkipToTagEnd() {
  const std::size_t end = document_.find('>', position_);
  position_ = end == kNone ? document_.size() : end + 1;
}

void MarkupReader::ReadTag(Token &token) {
  const bool ends = document_[position_ + 1] == '/';
  token.kind = ends ? TokenKind::kEndTag : TokenKind::kStartTag;
  position_ = SkipWhiteSpace(document_, position_ + (ends ? 2 : 1));
  token.name = ReadName();
  token.nameKey = NameKey(token.name);
  if (position_ < document_.size() && document_[position_] == '>') {
    ++position_;
  } else {
    ends ? SkipEndTag() : ReadAttributes(token);
  }
}

// Passes over what stands behind the name of an end tag.
void MarkupReader::SkipEndTag() {
  const std::size_t nameEnd = position_;
  while (position_ < document_.size() && document_[position_] != '<') {
    if (document_[position_++] == '>') return;
  }
  Warn("a tag does not end", nameEnd);
}

// Reads a start tag from behind its name on.
void MarkupReader::ReadAttributes(Token &token) {
  while (true) {
    position_ = SkipWhiteSpace(document_, position_);
    if (position_ == document_.size() || document_[position_] == '<') {
      Warn("a tag does not end", position_);
      return;
    }
    switch (document_[position_]) {
      case '>':
        ++position_;
        return;
      case '/':
        token.empty = StartsWith(position_, "/>");
        ++position_;
        break;
      case '=':
      case '"':
      case '\'':
        ++position_;
        break;
      default:
        ReadAttribute(token);
    }
  }
}

void MarkupReader::ReadAttribute(Token &token) {
  Attribute attribute;
  attribute.name = ReadName();
  position_ = SkipWhiteSpace(document_, position_);
  if (position_ < document_.size() && document_[position_] == '=') {
    ++position_;
    position_ = SkipWhiteSpace(document_, position_);
    attribute.value = ReadValue(token);
  }
  token.attributes.push_back(attribute);
}

std::string_view MarkupReader::ReadValue(const Token &token) {
  if (position_ == document_.size()) return {};
  std::string_view value;
  if (document_[position_] == '"' || document_[position_] == '\'') {
    if (ReadQuotedValue(value)) return value;
    Warn("the value of an attribute has no closing quote", position_);
    ++position_;
  }
  if (ReadCurlyQuotedValue(value)) return value;
  std::size_t end = position_;
  while (end < document_.size() && !IsWhiteSpace(document_[end]) && document_[end] != '<' &&
         document_[end] != '>') {
    ++end;
  }
  // A slash before the '>' belongs to the tag, except that `<a href=dir/>` has a text.
  const bool slash = end < document_.size() && document_[end] == '>' && end > position_ &&
                     document_[end - 1] == '/' && !EqualIgnoringCase(token.name, "a");
  if (slash) --end;
  value = document_.substr(position_, end - position_);
  position_ = end;
  return value;
}

// A value that holds '<' or '>' and is followed by something else than the next
// attribute was opened by a quote that nobody closed: the "closing" quote opens another.
bool MarkupReader::ReadQuotedValue(std::string_view &value) {
  const std::size_t start = position_ + 1;
  const std::size_t end = FindOnce(document_.substr(position_, 1), start);
  if (end == kNone) return false;
  value = document_.substr(start, end - start);
  const char next = end + 1 < document_.size() ? document_[end + 1] : ' ';
  if (!IsWhiteSpace(next) && next != '/' && next != '>' && value.find_first_of("<>") != kNone) {
    return false;
  }
  position_ = end + 1;
  return true;
}

// A value in typographic quotes, which word processors put in the place of plain ones.
bool MarkupReader::ReadCurlyQuotedValue(std::string_view &value) {
  constexpr std::size_t kLength = 3;
  const auto isQuote = [&](std::size_t at) {
    const std::string_view quote = document_.substr(at, kLength);
    return quote == "\u201C" || quote == "\u201D" || quote == "\u201E" || quote == "\u2018" ||
           quote == "\u2019";
  };
  if (!isQuote(position_)) return false;
  const std::size_t start = position_ + kLength;
  const std::size_t tagEnd = std::min(document_.find_first_of("<>", start), document_.size());
  for (std::size_t end = start; end < tagEnd; ++end) {
    if (document_[end] != '\xE2' || !isQuote(end)) continue;
    value = document_.substr(start, end - start);
    position_ = end + kLength;
    return true;
  }
  return false;
}

std::string_view MarkupReader::ReadName() {
  std::size_t end = position_;
  while (end < document_.size() && IsNameCharacter(document_[end])) ++end;
  const std::string_view name = document_.substr(position_, end - position_);
  position_ = end;
  return name;
}

// `what` from `from` on; what is not found is not looked for again. Positions never go
// back behind an earlier search that failed.
std::size_t MarkupReader::FindOnce(std::string_view what, std::size_t from) {
  if (std::find(absent_.begin(), absent_.end(), what) != absent_.end()) return kNone;
  const std::size_t found = document_.find(what, from);
  if (found == kNone) absent_.push_back(what);
  return found;
}

}  // namespace vs_wml
