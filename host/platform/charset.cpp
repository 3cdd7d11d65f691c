// SPDX-License-Identifier: MIT
#include "host/platform/charset.h"

#include <algorithm>

#include "host/platform/charsets.h"
#include "host/platform/converter.h"
#include "host/text/ascii.h"
#include "host/text/utf8.h"

namespace vs_wml {
namespace {

// Declarations stand at the start of a document; a detector needs no more than this.
constexpr std::size_t kDeclarationBytes = 4096;
constexpr std::size_t kDetectorBytes = 65536;
// What a document is in when nothing tells.
constexpr CharsetId kFallback = CharsetId::kWindows1252;

// The word after `key` and an equals sign, quoted or not.
std::optional<std::string> ValueAfter(std::string_view text, std::string_view key) {
  std::size_t at = text.find(key);
  if (at == std::string_view::npos) return std::nullopt;
  at += key.size();
  while (at < text.size() && IsWhiteSpace(text[at])) ++at;
  if (at == text.size() || text[at] != '=') return std::nullopt;
  do {
    ++at;
  } while (at < text.size() && IsWhiteSpace(text[at]));
  if (at < text.size() && (text[at] == '"' || text[at] == '\'')) ++at;
  const std::size_t begin = at;
  while (at < text.size() && text[at] != '"' && text[at] != '\'' && text[at] != ';' &&
         text[at] != '>' && text[at] != '?' && text[at] != '/' && !IsWhiteSpace(text[at])) {
    ++at;
  }
  if (at == begin) return std::nullopt;
  return std::string(text.substr(begin, at - begin));
}

// The start of a document in lower case and without comments.
std::string DeclarationText(std::string_view bytes) {
  std::string text = Lowered(bytes.substr(0, kDeclarationBytes));
  for (std::size_t at = text.find("<!--"); at != std::string::npos; at = text.find("<!--", at)) {
    const std::size_t end = text.find("-->", at + 4);
    if (end == std::string::npos) break;
    text.erase(at, end + 3 - at);
  }
  return text;
}

std::optional<std::string> XmlDeclaration(std::string_view lower) {
  const std::size_t begin = lower.find("<?xml");
  if (begin == std::string_view::npos) return std::nullopt;
  const std::size_t end = lower.find("?>", begin);
  if (end == std::string_view::npos) return std::nullopt;
  return ValueAfter(lower.substr(begin, end - begin), "encoding");
}

std::optional<std::string> MetaDeclaration(std::string_view lower) {
  for (std::size_t at = lower.find("<meta"); at != std::string_view::npos;
       at = lower.find("<meta", at + 1)) {
    const std::size_t end = std::min(lower.find('>', at), lower.size());
    if (auto name = ValueAfter(lower.substr(at, end - at), "charset")) return name;
  }
  return std::nullopt;
}

std::optional<std::string> HeaderDeclaration(std::string_view lower) {
  if (!HasSavedHeaders(lower)) return std::nullopt;
  lower = lower.substr(0, lower.find('<'));
  const std::size_t type = lower.find("content-type:");
  if (type == std::string_view::npos) return std::nullopt;
  lower.remove_prefix(type);
  return ValueAfter(lower.substr(0, lower.find('\n')), "charset");
}

struct Mark {
  std::string_view bytes;
  const char *name;
};

using namespace std::string_view_literals;
constexpr Mark kMarks[] = {{"\xEF\xBB\xBF"sv, "UTF-8"},
                           {"\x00\x00\xFE\xFF"sv, "UTF-32BE"},
                           {"\xFF\xFE\x00\x00"sv, "UTF-32LE"},
                           {"\xFE\xFF"sv, "UTF-16BE"},
                           {"\xFF\xFE"sv, "UTF-16LE"}};
// The start of a document in UTF-16 that has no mark.
constexpr Mark kSixteenBit[] = {{"\0<\0"sv, "UTF-16BE"}, {"<\0"sv, "UTF-16LE"}};

constexpr bool IsWide(const Charset &charset) {
  return charset.form == CharsetForm::kTwoBytes || charset.form == CharsetForm::kFourBytes;
}

const Charset &KnownOrFallback(std::string_view name) {
  const Charset *charset = FindCharset(name);
  return charset != nullptr ? *charset : CharsetOf(kFallback);
}

}  // namespace

bool HasSavedHeaders(std::string_view document) {
  constexpr std::string_view kContentType = "content-type:";
  const std::string start = Lowered(document.substr(0, kContentType.size()));
  return start.starts_with("http/") || start == kContentType;
}

bool IsKnownCharset(std::string_view name) {
  return FindCharset(name) != nullptr;
}

std::size_t CharacterUnit(std::string_view charset) {
  switch (KnownOrFallback(charset).form) {
    case CharsetForm::kTwoBytes:
      return 2;
    case CharsetForm::kFourBytes:
      return 4;
    default:
      return 1;
  }
}

DetectedCharset DetectCharset(std::string_view bytes, std::string_view option,
                              std::vector<std::string> &warnings, std::string_view contentType) {
  if (!option.empty()) return {std::string(option), CharsetOrigin::kOption, 0};
  DetectedCharset found;
  for (const Mark &mark : kMarks) {
    if (bytes.starts_with(mark.bytes)) {
      found = {mark.name, CharsetOrigin::kByteOrderMark, mark.bytes.size()};
      break;
    }
  }
  if (found.markLength != 0) return found;
  const std::size_t blanks = std::min(bytes.find_first_not_of("\0 \t\r\n"sv), bytes.size());
  for (const Mark &start : kSixteenBit) {
    if (bytes.substr(blanks / 2 * 2).starts_with(start.bytes)) {
      return {start.name, CharsetOrigin::kDetector, 0};
    }
  }

  const std::string start = DeclarationText(bytes);
  const auto believe = [&](const std::optional<std::string> &name, CharsetOrigin origin) {
    if (!name) return false;
    // A declaration that could be read as bytes is in no 16-bit or 32-bit character set.
    const Charset *charset = FindCharset(*name);
    const bool wide = charset != nullptr && IsWide(*charset);
    if (wide || charset == nullptr) {
      warnings.push_back("declared character set \"" + WithoutControls(RepairUtf8(*name)) +
                         (wide ? "\" is not the document's" : "\" is unknown"));
      return false;
    }
    found = {*name, origin, 0};
    return true;
  };
  if (believe(XmlDeclaration(start), CharsetOrigin::kXmlDeclaration)) return found;
  if (believe(MetaDeclaration(start), CharsetOrigin::kMeta)) return found;
  if (believe(ValueAfter(Lowered(contentType), "charset"), CharsetOrigin::kHeader)) return found;
  if (believe(HeaderDeclaration(start), CharsetOrigin::kHeader)) return found;
  if (IsValidUtf8(bytes)) return {"UTF-8", CharsetOrigin::kValidUtf8, 0};
  std::string guess = GuessCharset(bytes.substr(0, kDetectorBytes));
  if (!guess.empty()) return {std::move(guess), CharsetOrigin::kDetector, 0};
  return {std::string(CharsetOf(kFallback).name), CharsetOrigin::kFallback, 0};
}

std::string ToUtf8(std::string bytes, std::string_view name) {
  const Charset &charset = KnownOrFallback(name);
  if (charset.form == CharsetForm::kUtf8) {
    return IsValidUtf8(bytes) ? std::move(bytes) : RepairUtf8(bytes);
  }
  if (charset.form == CharsetForm::kAscii && AsciiPrefix(bytes) == bytes.size()) return bytes;
  std::string text;
  AppendConverted(text, bytes, charset);
  return text;
}

void AppendHostCharset(std::string &text, std::string_view bytes, std::uint32_t hostCharset) {
  AppendConverted(text, bytes, CharsetOfHost(hostCharset));
}

}  // namespace vs_wml
