/// \file
/// JSON as text (RFC 8259).
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_WRITERS_JSON_TEXT_H
#define VS_WML_HOST_WRITERS_JSON_TEXT_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "host/text/byte_scan.h"
#include "host/text/output.h"

namespace vs_wml {

/// What stands for a character in a JSON string that cannot stand there itself.
class JsonEscape {
 public:
  explicit JsonEscape(char c);
  std::string_view View() const { return {text_.data(), length_}; }

 private:
  std::array<char, 6> text_;
  std::size_t length_ = 2;
};

/// Escapes a text for a JSON string. `room` gives the place for as many bytes as it is asked
/// for; `take` takes the bytes that were written there, `escape` what stands for a character.
template <typename Room, typename Take, typename Escape>
void EscapeJson(std::string_view text, Room room, Take take, Escape escape) {
  constexpr std::size_t kPiece = 16384;  // at once
  while (!text.empty()) {
    const std::string_view piece = text.substr(0, kPiece);
    char *const out = room(piece.size());
    std::size_t done = CopyBefore(
        piece, out, [](auto byte) { return (byte < 0x20) | (byte == '"') | (byte == '\\'); });
    take(std::string_view(out, done));
    if (done != piece.size()) escape(JsonEscape(piece[done++]).View());
    text.remove_prefix(done);
  }
}

/// Writes one value after the other, on one line, with the commas between them. Nothing is
/// held but what the output holds, however long a string is; what the output throws passes
/// through.
class JsonText {
 public:
  explicit JsonText(Output &output) : out_(output) {}

  /// Begins another text, wherever the one before was left.
  void Restart() { separated_ = true; }
  void BeginObject() { Begin('{'); }
  void EndObject() { End('}'); }
  void BeginArray() { Begin('['); }
  void EndArray() { End(']'); }

  /// The name of the member that the next value is. Inlined, as the next one is, so that
  /// the length of a literal is a constant.
  [[gnu::always_inline]] void Key(std::string_view name) {
    Quoted(name, ':');
    separated_ = true;
  }
  /// A name that a document gives.
  void EscapedKey(std::string_view name) {
    String(name);
    out_ << ':';
    separated_ = true;
  }
  /// A string of which it is known that nothing in it is to be escaped.
  [[gnu::always_inline]] void Literal(std::string_view text) {
    Quoted(text, '"');
    separated_ = false;
  }
  /// A string of well-formed UTF-8.
  void String(std::string_view text) {
    BeginString();
    StringPart(text);
    EndString();
  }
  /// A string in parts.
  void BeginString() {
    Separate();
    out_ << '"';
  }
  void StringPart(std::string_view text);
  /// A part that is escaped already.
  void EscapedPart(std::string_view text) { out_ << text; }
  void EndString() { out_ << '"'; }
  void Bool(bool value) { Word(value ? "true" : "false"); }
  void Number(std::uint64_t value);
  /// `value / divisor`, to two decimals at most, the rest cut off; at least one is written.
  void Fraction(std::uint64_t value, std::uint64_t divisor);

 private:
  void Separate() {
    if (!separated_) out_ << ',';
    separated_ = false;
  }
  void Begin(char bracket) {
    Separate();
    out_ << bracket;
    separated_ = true;
  }
  void End(char bracket) {
    out_ << bracket;
    separated_ = false;
  }
  void Word(std::string_view word) {
    Separate();
    out_ << word;
  }
  // `"text"`, and `last` in place of the closing quote or behind it.
  [[gnu::always_inline]] void Quoted(std::string_view text, char last) {
    char *out = out_.Room(text.size() + 4);
    const char *const begin = out;
    *out = ',';
    out += separated_ ? 0 : 1;
    *out++ = '"';
    out = std::copy(text.begin(), text.end(), out);
    *out++ = '"';
    *out = last;
    out += last == '"' ? 0 : 1;
    out_.Fill(static_cast<std::size_t>(out - begin));
  }
  Output &out_;
  bool separated_ = true;  // no comma is wanted before the next value
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_WRITERS_JSON_TEXT_H
