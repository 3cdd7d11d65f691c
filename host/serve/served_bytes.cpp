// SPDX-License-Identifier: MIT
#include "host/serve/served_bytes.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "host/text/entities.h"
#include "host/text/utf8.h"

namespace vs_wml {
namespace {

enum ByteClass : std::uint8_t { kPlain, kControl, kReference, kTag, kLeadOfC1 };

constexpr std::array<std::uint8_t, 256> MakeClasses() {
  std::array<std::uint8_t, 256> classes{};
  for (std::size_t byte = 0; byte < 0x20; ++byte) classes[byte] = kControl;
  classes['\t'] = classes['\n'] = classes['\r'] = kPlain;
  classes[0x7F] = kControl;
  classes['&'] = kReference;
  classes['<'] = kTag;
  classes[0xC2] = kLeadOfC1;
  return classes;
}

constexpr std::array<std::uint8_t, 256> kClasses = MakeClasses();

// What numeric references to C1 controls mean: characters of windows-1252.
constexpr std::array<char16_t, 32> kHighControls = {
    0x20AC, 0x81,   0x201A, 0x192,  0x201E, 0x2026, 0x2020, 0x2021, 0x2C6,  0x2030, 0x160,
    0x2039, 0x152,  0x8D,   0x17D,  0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x2DC,  0x2122, 0x161,  0x203A, 0x153,  0x9D,   0x17E,  0x178};

struct Reference {
  char32_t character;
  std::size_t length;  ///< of the reference in the text, '&' included
};

// The value of a digit, 16 for anything else.
unsigned DigitValue(char c) {
  if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
  if (c >= 'a' && c <= 'f') return static_cast<unsigned>(c - 'a') + 10;
  if (c >= 'A' && c <= 'F') return static_cast<unsigned>(c - 'A') + 10;
  return 16;
}

std::optional<Reference> ReadNumeric(std::string_view text) {
  std::size_t at = 2;
  unsigned base = 10;
  if (at < text.size() && (text[at] == 'x' || text[at] == 'X')) {
    base = 16;
    ++at;
  }
  const std::size_t digits = at;
  char32_t value = 0;
  for (; at < text.size() && DigitValue(text[at]) < base; ++at) {
    if (value <= 0x10FFFF) value = value * base + DigitValue(text[at]);
  }
  if (at == digits) return std::nullopt;
  if (at < text.size() && text[at] == ';') ++at;
  if (value >= 0x80 && value < 0xA0) value = kHighControls[value - 0x80];
  return Reference{value, at};
}

constexpr bool IsHighSurrogate(char32_t c) {
  return c >= 0xD800 && c < 0xDC00;
}
constexpr bool IsLowSurrogate(char32_t c) {
  return c >= 0xDC00 && c < 0xE000;
}

std::optional<Reference> ReadReference(std::string_view text) {
  if (text.size() < 3) return std::nullopt;
  if (text[1] == '#') {
    auto first = ReadNumeric(text);
    if (!first || !IsHighSurrogate(first->character)) return first;
    const std::string_view rest = text.substr(first->length);
    if (!rest.starts_with("&#")) return first;
    const auto second = ReadNumeric(rest);
    if (!second || !IsLowSurrogate(second->character)) return first;
    return Reference{0x10000 + ((first->character - 0xD800) << 10U) + (second->character - 0xDC00),
                     first->length + second->length};
  }
  constexpr std::size_t kLongestName = 8;
  const std::size_t end = text.substr(0, kLongestName + 2).find(';');
  if (end == std::string_view::npos) return std::nullopt;
  const char32_t character = FindEntity(text.substr(1, end - 1));
  if (character == 0) return std::nullopt;
  return Reference{character, end + 1};
}

// An ASCII character as markup that stays text wherever it stands.
void AppendAscii(std::string &out, char32_t character) {
  switch (character) {
    case '&':
      out += "&amp;";
      break;
    case '<':
      out += "&lt;";
      break;
    case '>':
      out += "&gt;";
      break;
    case '"':
      out += "&quot;";
      break;
    case '\'':
      out += "&apos;";
      break;
    default:
      if (std::string_view(" !$/=").find(static_cast<char>(character)) != std::string_view::npos) {
        out += "&#" + std::to_string(static_cast<unsigned>(character)) + ";";
      } else {
        out += static_cast<char>(character);
      }
  }
}

// Appends what is served for the reference at the start of `text`; returns its length.
std::size_t ServeReference(std::string &out, std::string_view text) {
  const auto reference = ReadReference(text);
  if (!reference) {
    out += '&';
    return 1;
  }
  const char32_t character = reference->character;
  if (character == '\t' || character == '\n' || character == '\r') {
    out += static_cast<char>(character);
  } else if (IsControl(character)) {
    AppendUtf8(out, kReplacementCharacter);
  } else if (character < 0x80) {
    AppendAscii(out, character);
  } else {
    AppendUtf8(out, character);
  }
  return reference->length;
}

bool IsSpace(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// Length of the start of a `meta` tag up to and with its name; 0 when it is another tag.
std::size_t MetaTag(std::string_view text) {
  std::size_t at = 1;
  while (at < text.size() && IsSpace(text[at])) ++at;
  constexpr std::string_view kName = "meta";
  if (text.size() - at < kName.size()) return 0;
  for (const char wanted : kName) {
    if ((text[at] | 0x20) != wanted) return 0;
    ++at;
  }
  return at;
}

// Appends what is served for the special byte at the start of `text`; returns how many
// bytes it stands for.
std::size_t ServeSpecial(std::string &out, std::string_view text) {
  switch (kClasses[static_cast<unsigned char>(text[0])]) {
    case kControl:
      return 1;
    case kReference:
      return ServeReference(out, text);
    case kTag:
      if (const std::size_t length = MetaTag(text); length != 0) {
        out.append(text.substr(0, length - 1));
        out += '_';
        return length;
      }
      break;
    case kLeadOfC1:
      if (text.size() > 1 && static_cast<unsigned char>(text[1]) < 0xA0) return 2;
      break;
    default:
      break;
  }
  out += text[0];
  return 1;
}

std::size_t PlainPrefix(std::string_view text) {
  std::size_t length = 0;
  while (length < text.size() && kClasses[static_cast<unsigned char>(text[length])] == kPlain) {
    ++length;
  }
  return length;
}

}  // namespace

std::string MakeServedBytes(std::string_view text) {
  std::string served;
  served.reserve(text.size() + text.size() / 64 + 16);
  while (!text.empty()) {
    const std::size_t plain = PlainPrefix(text);
    served.append(text.substr(0, plain));
    text.remove_prefix(plain);
    if (!text.empty()) text.remove_prefix(ServeSpecial(served, text));
  }
  return served;
}

std::string ResolveReferences(std::string_view value) {
  std::string resolved;
  resolved.reserve(value.size());
  constexpr std::pair<std::string_view, char> kNamed[] = {
      {"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''}};
  while (!value.empty()) {
    const std::size_t plain = std::min(value.find('&'), value.size());
    resolved.append(value.substr(0, plain));
    value.remove_prefix(plain);
    if (value.empty()) break;
    std::size_t length = 0;
    for (const auto &[name, character] : kNamed) {
      if (value.starts_with(name)) {
        resolved += character;
        length = name.size();
      }
    }
    if (length == 0) {
      if (const auto reference = ReadReference(value)) {
        if (!IsControl(reference->character)) AppendUtf8(resolved, reference->character);
        length = reference->length;
      } else {
        resolved += '&';
        length = 1;
      }
    }
    value.remove_prefix(length);
  }
  return resolved;
}

}  // namespace vs_wml
