// SPDX-License-Identifier: MIT
#include "host/deck/references.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "host/text/ascii.h"
#include "host/text/byte_scan.h"
#include "host/text/entities.h"
#include "host/text/utf8.h"

namespace vs_wml {
namespace {

constexpr std::size_t kLongestName = 8;

struct NamedCharacter {
  std::string_view name;
  char32_t character;
};

constexpr NamedCharacter kXmlNames[] = {
    {"lt", U'<'}, {"gt", U'>'}, {"amp", U'&'}, {"quot", U'"'}, {"apos", U'\''}};

// The windows-1252 characters of 128 to 159; 0: none.
constexpr std::array<std::uint16_t, 32> kWindows1252 = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

// Whether a byte is a control character or, 0xC2, may begin one.
struct MayBeControl {
  template <typename T>
  constexpr auto operator()(T byte) const {
    return (byte < 0x20) | (byte == 0x7F) | (byte == 0xC2);
  }
};

constexpr bool IsHighSurrogate(char32_t c) {
  return c >= 0xD800 && c < 0xDC00;
}
constexpr bool IsLowSurrogate(char32_t c) {
  return c >= 0xDC00 && c < 0xE000;
}

std::size_t NameEnd(std::string_view text) {
  std::size_t end = 1;
  while (end < text.size() && (IsLetter(text[end]) || IsDigit(text[end]))) ++end;
  return end;
}

CharacterReference ReadNamed(std::string_view text, ReferencePlace place) {
  // The five names of XML count as soon as they are complete in text.
  for (const NamedCharacter &entry : kXmlNames) {
    if (text[1] != entry.name[0] || !text.substr(1).starts_with(entry.name)) continue;
    const std::size_t end = 1 + entry.name.size();
    if (end < text.size() && text[end] == ';') return {entry.character, end + 1};
    if (place == ReferencePlace::kText) return {entry.character, end};
  }
  const std::size_t end = NameEnd(text.substr(0, kLongestName + 2));
  const bool terminated = end < text.size() && text[end] == ';';
  if (!terminated && place != ReferencePlace::kText) return {};
  const char32_t character = FindEntity(text.substr(1, end - 1));
  if (character == 0) return {};
  return {character, end + (terminated ? 1 : 0)};
}

constexpr std::uint32_t kNoCharacter = 0x110000;

// Decimal digits and a semicolon, as nearly all references to numbers are.
CharacterReference ReadPlainNumber(std::string_view text) {
  std::uint32_t value = 0;
  std::size_t at = 2;
  for (; at < text.size() && IsDigit(text[at]); ++at) {
    value = std::min(value * 10 + static_cast<std::uint32_t>(text[at] - '0'), kNoCharacter);
  }
  if (at == 2 || at == text.size() || text[at] != ';') return {};
  return {value, at + 1};
}

// The number itself, whatever it means.
CharacterReference ReadNumber(std::string_view text, ReferencePlace place) {
  if (const CharacterReference plain = ReadPlainNumber(text); plain.length != 0) return plain;
  std::size_t at = 2;
  const bool marked = at < text.size() && ToLower(text[at]) == 'x';
  if (marked) ++at;
  std::size_t end = at;
  bool decimal = !marked;
  for (; end < text.size() && IsHexDigit(text[end]); ++end) decimal &= IsDigit(text[end]);
  const bool terminated = end < text.size() && text[end] == ';';
  const bool repairs = place != ReferencePlace::kServed && terminated;
  if (!marked && !decimal && !repairs) {
    // Letters right behind the digits are text; `&#e4;` is a number that lacks its x.
    end = at;
    while (end < text.size() && IsDigit(text[end])) ++end;
    decimal = true;
  }
  if (end == at) return {};
  const std::uint32_t base = decimal ? 10 : 16;
  std::uint32_t value = 0;
  for (; at < end; ++at) {
    const auto digit = static_cast<std::uint32_t>(HexValue(text[at]));
    value = std::min(value * base + digit, kNoCharacter);
  }
  return {value, end + (end < text.size() && text[end] == ';' ? 1 : 0)};
}

CharacterReference ReadNumeric(std::string_view text, ReferencePlace place) {
  CharacterReference reference = ReadNumber(text, place);
  if (reference.length == 0) return {};
  char32_t &c = reference.character;
  if (IsHighSurrogate(c) && text.substr(reference.length, 2) == "&#") {
    const CharacterReference low = ReadNumber(text.substr(reference.length), place);
    if (low.length != 0 && IsLowSurrogate(low.character)) {
      c = 0x10000 + ((c - 0xD800) << 10U) + (low.character - 0xDC00);
      reference.length += low.length;
    }
  }
  if (c >= 0x80 && c < 0xA0) c = kWindows1252[c - 0x80];
  if (c == 0 || c > 0x10FFFF || IsHighSurrogate(c) || IsLowSurrogate(c)) c = kReplacementCharacter;
  return reference;
}

}  // namespace

CharacterReference ReadReference(std::string_view text, ReferencePlace place) {
  if (text.size() < 2) return {};
  return text[1] == '#' ? ReadNumeric(text, place) : ReadNamed(text, place);
}

std::size_t NamedReferenceLength(std::string_view text) {
  const std::size_t end = NameEnd(text.substr(0, kLongestName + 2));
  if (end < 2 || end > kLongestName + 1 || !IsLetter(text[1])) return 0;
  return end < text.size() && text[end] == ';' ? end + 1 : 0;
}

void AppendClean(std::string &out, std::string_view text, LineEnds lineEnds) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    const std::size_t clean = LengthBefore(text.substr(at), MayBeControl{});
    out += text.substr(at, clean);
    at += clean;
    if (at == text.size()) return;
    const auto byte = static_cast<unsigned char>(text[at]);
    const bool highControl =
        byte == 0xC2 && at + 1 < text.size() && static_cast<unsigned char>(text[at + 1]) < 0xA0;
    if (highControl) {
      ++at;
    } else if (IsWhiteSpace(text[at])) {
      if (lineEnds == LineEnds::kBlanks) out += ' ';
    } else if (byte >= 0x20 && byte != 0x7F) {
      out += text[at];
    }
  }
}

std::string DecodeAttribute(std::string_view raw, LineEnds lineEnds) {
  const auto isSpecial = [](auto byte) { return MayBeControl{}(byte) | (byte == '&'); };
  const std::size_t plain = LengthBefore(raw, isSpecial);
  std::string value(raw.substr(0, plain));
  raw.remove_prefix(plain);
  while (!raw.empty()) {
    const std::size_t reference = std::min(raw.find('&'), raw.size());
    AppendClean(value, raw.substr(0, reference), lineEnds);
    raw.remove_prefix(reference);
    if (raw.empty()) break;
    const CharacterReference character = ReadReference(raw, ReferencePlace::kAttribute);
    std::string bytes = "&";
    if (character.length != 0) {
      bytes.clear();
      AppendUtf8(bytes, character.character);
    }
    AppendClean(value, bytes, lineEnds);
    raw.remove_prefix(std::max<std::size_t>(character.length, 1));
  }
  return value;
}

}  // namespace vs_wml
