// SPDX-License-Identifier: MIT
#include "host/serve/served_bytes.h"

#include <algorithm>
#include <array>

#include "host/deck/references.h"
#include "host/text/ascii.h"
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
  const CharacterReference reference = ReadReference(text, ReferencePlace::kServed);
  if (reference.length == 0) {
    out += '&';
    return 1;
  }
  const char32_t character = reference.character;
  if (character == '\t' || character == '\n' || character == '\r') {
    out += static_cast<char>(character);
  } else if (IsControl(character)) {
    AppendUtf8(out, kReplacementCharacter);
  } else if (character < 0x80) {
    AppendAscii(out, character);
  } else {
    AppendUtf8(out, character);
  }
  return reference.length;
}

// Length of the start of a `meta` tag up to and with its name; 0 when it is another tag.
std::size_t MetaTag(std::string_view text) {
  std::size_t at = 1;
  while (at < text.size() && IsWhiteSpace(text[at])) ++at;
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
  while (!value.empty()) {
    const std::size_t plain = std::min(value.find('&'), value.size());
    resolved.append(value.substr(0, plain));
    value.remove_prefix(plain);
    if (value.empty()) break;
    const CharacterReference reference = ReadReference(value, ReferencePlace::kServed);
    if (reference.length == 0) {
      resolved += '&';
    } else if (!IsControl(reference.character)) {
      AppendUtf8(resolved, reference.character);
    }
    value.remove_prefix(std::max<std::size_t>(reference.length, 1));
  }
  return resolved;
}

}  // namespace vs_wml
