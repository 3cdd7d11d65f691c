// SPDX-License-Identifier: MIT
#include "agent/input_mask.h"

#include <vector>

#include "host/text/ascii.h"
#include "host/text/utf8.h"

namespace vs_wml {
namespace {

// One place of a format.
struct Place {
  char32_t code = 0;  // a format code, or the literal character
  bool literal = false;
  bool optional = false;  // of the last code, which may be typed fewer times than it stands for
  bool repeated = false;  // "*f": any number of times
};

bool IsUpper(char32_t c) {
  return (c >= U'A' && c <= U'Z') || (c >= 0xC0 && c <= 0xDE && c != 0xD7) ||
         (c >= 0x391 && c <= 0x3A9) || (c >= 0x400 && c <= 0x42F);
}
bool IsLower(char32_t c) {
  return (c >= U'a' && c <= U'z') || (c >= 0xDF && c <= 0xFF && c != 0xF7) ||
         (c >= 0x3B1 && c <= 0x3C9) || (c >= 0x430 && c <= 0x45F);
}
bool IsNumeric(char32_t c) {
  return c >= U'0' && c <= U'9';
}

bool IsCode(char32_t code) {
  return code < 0x80 &&
         std::string_view("AaNXxMm").find(static_cast<char>(code)) != std::string_view::npos;
}

// Letters of scripts without case fit both cases.
bool Fits(char32_t code, char32_t c) {
  switch (code) {
    case U'A':
      return !IsLower(c) && !IsNumeric(c);
    case U'a':
      return !IsUpper(c) && !IsNumeric(c);
    case U'N':
      return IsNumeric(c);
    case U'X':
      return !IsLower(c);
    case U'x':
      return !IsUpper(c);
    default:  // M and m say only which case phones offer first
      return true;
  }
}

constexpr std::size_t kMostPlaces = 1024;

// Nothing when the format is none.
std::optional<std::vector<Place>> ReadFormat(std::string_view format) {
  std::vector<Place> places;
  for (std::size_t at = 0; at < format.size() && places.size() < kMostPlaces;) {
    char32_t c = NextCharacter(format, at);
    if (c == U'\\') {
      if (at == format.size()) return std::nullopt;
      places.push_back({NextCharacter(format, at), true});
    } else if (c == U'*' || (c >= U'1' && c <= U'9')) {
      if (at == format.size()) return std::nullopt;
      const char32_t code = NextCharacter(format, at);
      if (!IsCode(code) || at != format.size()) return std::nullopt;
      if (c == U'*') {
        places.push_back({code, false, true, true});
      } else {
        for (char32_t n = U'0'; n < c; ++n) places.push_back({code, false, true});
      }
    } else if (IsCode(c)) {
      places.push_back({c});
    } else {
      return std::nullopt;
    }
  }
  return places;
}

}  // namespace

std::optional<std::string> FitMask(std::string_view format, std::string_view text) {
  const auto places = ReadFormat(format);
  if (!places) return std::string(text);
  std::string fitted;
  std::size_t at = 0;
  for (const Place &place : *places) {
    do {
      std::size_t next = at;
      const bool ended = at == text.size();
      const char32_t c = ended ? 0 : NextCharacter(text, next);
      if (place.literal) {
        if (!ended && c == place.code) at = next;
        AppendUtf8(fitted, place.code);
      } else if (!ended && Fits(place.code, c)) {
        fitted += text.substr(at, next - at);
        at = next;
      } else if (place.optional) {
        break;
      } else {
        return std::nullopt;
      }
    } while (place.repeated);
  }
  if (at != text.size()) return std::nullopt;
  return fitted;
}

std::optional<std::string> FitField(const Field &field, std::string_view text) {
  if (field.length != 0 && CountCharacters(text) > field.length) return std::nullopt;
  if (text.empty() && (field.Format().empty() || field.emptyAllowed)) return std::string();
  if (field.Format().empty()) return std::string(text);
  return FitMask(field.Format(), text);
}

}  // namespace vs_wml
