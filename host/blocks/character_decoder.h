/// \file
/// The filter's characters as text.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_BLOCKS_CHARACTER_DECODER_H
#define VS_WML_HOST_BLOCKS_CHARACTER_DECODER_H

#include <cstdint>
#include <string>

#include "host/text/text_buffer.h"
#include "vs_wml.h"

namespace vs_wml {

/// Appends characters to a text, as UTF-8 without control characters. In a document that is
/// served as UTF-8, characters come back as bytes; in one that is served untouched, as codes
/// of the character set in force. Those from references are UTF-16 in both.
class CharacterDecoder {
 public:
  CharacterDecoder(bool servedAsUtf8, TextBuffer &text) : utf8_(servedAsUtf8), text_(text) {}

  void Switch(std::uint32_t hostCharset) {
    FlushCoded();
    charset_ = hostCharset;
  }
  /// Whether units beyond ASCII are bytes of UTF-8.
  bool TakesBytes() const { return utf8_ && charset_ != HOST_CS_UNICODE; }
  /// A unit of a document that is served as UTF-8.
  void TakeUnit(std::uint32_t unit);
  /// A code of one that is served untouched.
  void TakeCode(std::uint32_t code);
  /// Appends what waits for more: nothing more of it follows.
  void Flush() {
    FlushSurrogate();
    FlushCoded();
  }
  /// The bytes of an attribute value as text.
  std::string TextOf(const std::string &bytes) const;

 private:
  void Append(char32_t character);
  void FlushCoded() {
    if (!coded_.empty()) AppendCoded();
  }
  // A surrogate whose other half does not follow shows as U+FFFD.
  void FlushSurrogate() {
    if (highSurrogate_ != 0) AppendSurrogate();
  }
  void AppendCoded();
  void AppendSurrogate();

  bool utf8_;
  TextBuffer &text_;
  std::uint32_t charset_ = HOST_CS_UNICODE;
  std::string coded_;           // codes that are not converted yet
  char32_t highSurrogate_ = 0;  // waiting for its other half, 0: none
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_BLOCKS_CHARACTER_DECODER_H
