// SPDX-License-Identifier: MIT
#include "host/blocks/source_tag.h"

#include <algorithm>

#include "host/serve/served_bytes.h"

namespace vs_wml {
namespace {

// How far back a tag may begin: all its attributes at their greatest length fit.
constexpr std::size_t kLongestTag = 16384;
// How many angle brackets its values may hold.
constexpr int kMostBrackets = 16;

bool IsSpace(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}
char ToLower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

bool EqualsIgnoringCase(std::string_view text, std::string_view lower) {
  return std::equal(text.begin(), text.end(), lower.begin(), lower.end(),
                    [](char a, char b) { return ToLower(a) == b; });
}

void SkipSpace(std::string_view &text) {
  while (!text.empty() && IsSpace(text.front())) text.remove_prefix(1);
}

// Cuts the characters before the first of `ends` off the text.
std::string_view TakeUntil(std::string_view &text, std::string_view ends) {
  const std::string_view part = text.substr(0, std::min(text.find_first_of(ends), text.size()));
  text.remove_prefix(part.size());
  return part;
}

// Cuts an attribute value, quoted or not, off the text.
std::string_view TakeValue(std::string_view &text) {
  SkipSpace(text);
  if (text.empty() || (text.front() != '"' && text.front() != '\'')) {
    return TakeUntil(text, " \t\r\n>");
  }
  const char quote = text.front();
  text.remove_prefix(1);
  const std::string_view value = TakeUntil(text, std::string_view(&quote, 1));
  if (!text.empty()) text.remove_prefix(1);
  return value;
}

}  // namespace

SourceTag SourceTag::EndingAt(std::string_view bytes, std::size_t offset, std::string_view name) {
  SourceTag tag;
  offset = std::min(offset, bytes.size());
  const std::size_t begin = offset - std::min(offset, kLongestTag);
  const std::string_view before = bytes.substr(begin, offset - begin);
  std::size_t at = before.rfind('<');
  for (int bracket = 0; at != std::string_view::npos && bracket <= kMostBrackets; ++bracket) {
    std::string_view text = before.substr(at + 1);
    SkipSpace(text);
    if (text.size() > name.size() && EqualsIgnoringCase(text.substr(0, name.size()), name) &&
        (IsSpace(text[name.size()]) || text[name.size()] == '>' || text[name.size()] == '/')) {
      tag.attributes_ = text.substr(name.size());
      break;
    }
    at = at == 0 ? std::string_view::npos : before.rfind('<', at - 1);
  }
  return tag;
}

std::optional<std::string> SourceTag::Attribute(std::string_view name) const {
  std::string_view text = attributes_;
  while (!text.empty()) {
    SkipSpace(text);
    const std::string_view found = TakeUntil(text, " \t\r\n=>/");
    SkipSpace(text);
    if (!text.empty() && text.front() == '=') {
      text.remove_prefix(1);
      const std::string_view value = TakeValue(text);
      if (EqualsIgnoringCase(found, name)) return ResolveReferences(value);
    } else if (!text.empty() && found.empty()) {
      text.remove_prefix(1);
    }
  }
  return std::nullopt;
}

}  // namespace vs_wml
