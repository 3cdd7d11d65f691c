// SPDX-License-Identifier: MIT
#include "host/blocks/character_decoder.h"

#include <utility>

#include "host/platform/charset.h"
#include "host/text/utf8.h"

namespace vs_wml {

void CharacterDecoder::TakeUnit(std::uint32_t unit) {
  if (unit >= 0x80 && TakesBytes()) {
    text_.Add(static_cast<char>(unit));
  } else {
    Append(unit);
  }
}

void CharacterDecoder::TakeCode(std::uint32_t code) {
  if (charset_ != HOST_CS_UNICODE) {
    FlushSurrogate();
    if (code > 0xFF) coded_ += static_cast<char>(code >> 8U);
    coded_ += static_cast<char>(code);
    return;
  }
  if (highSurrogate_ != 0 && code >= 0xDC00 && code < 0xE000) {
    const char32_t high = std::exchange(highSurrogate_, 0);
    Append(0x10000 + ((high - 0xD800) << 10U) + (code - 0xDC00));
    return;
  }
  FlushSurrogate();
  if (code >= 0xD800 && code < 0xDC00) {
    highSurrogate_ = code;
  } else {
    Append(code);
  }
}

std::string CharacterDecoder::TextOf(const std::string &bytes) const {
  if (AsciiPrefix(bytes) == bytes.size()) return bytes;
  if (utf8_) return RepairUtf8(bytes);
  std::string text;
  AppendHostCharset(text, bytes, charset_);
  return text;
}

void CharacterDecoder::Append(char32_t character) {
  if (character == '\n' || character == '\t' || character == '\r') {
    text_.Add(' ');
  } else if (!IsControl(character)) {
    std::string bytes;
    AppendUtf8(bytes, character);
    text_.Add(bytes);
  }
}

void CharacterDecoder::AppendCoded() {
  std::string converted;
  AppendHostCharset(converted, coded_, charset_);
  coded_.clear();
  for (std::size_t offset = 0; offset < converted.size();) {
    Append(NextCharacter(converted, offset));
  }
}

void CharacterDecoder::AppendSurrogate() {
  Append(std::exchange(highSurrogate_, 0));
}

}  // namespace vs_wml
