// SPDX-License-Identifier: MIT
#include "host/wmlc/wmlc.h"

#include <algorithm>
#include <bitset>

#include "host/platform/charset.h"
#include "host/platform/charsets.h"
#include "host/text/ascii.h"
#include "host/wmlc/wml_tokens.h"

namespace vs_wml {
namespace {

constexpr std::uint32_t kUnknownPublicId = 1;
constexpr std::uint8_t kRootCode = 0x3F;  // `wml`, in all versions
constexpr std::uint8_t kElementBits = 0xC0;

// What an unknown element or attribute is called.
constexpr std::string_view kUnknownName = "unknown";
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

// By the number of an extension token.
constexpr std::string_view kConversions[] = {"escape", "unesc", "noesc"};

enum class Oddity : std::uint8_t {
  kTag,
  kAttribute,
  kValue,
  kExtension,
  kName,
  kVariable,
  kRest,
  kCharset,
  kCount
};

// By Oddity.
constexpr std::string_view kOddities[] = {
    "the code of an element is unknown; its content is kept",
    "the code of an attribute is unknown; its value is not shown",
    "the code of a part of a value is unknown; it reads as U+FFFD",
    "an extension token means nothing in WML",
    "a name that markup cannot have is written with underscores",
    "the name of a variable is none; the reference reads as text",
    "what follows the end of the deck is left out",
    "the number of its character set is unknown; it was found out",
};
static_assert(std::size(kOddities) == static_cast<std::size_t>(Oddity::kCount));

// Each oddity once, with the byte where it was met first.
class Oddities {
 public:
  void Add(Oddity oddity, std::size_t offset) {
    const auto index = static_cast<std::size_t>(oddity);
    if (seen_[index]) return;
    seen_[index] = true;
    texts_.push_back("compiled deck, byte " + std::to_string(offset) + ": " +
                     std::string(kOddities[index]));
  }
  std::vector<std::string> Take() { return std::move(texts_); }

 private:
  std::bitset<static_cast<std::size_t>(Oddity::kCount)> seen_;
  std::vector<std::string> texts_;
};

bool StartsWithRoot(std::string_view body) {
  if (body.empty()) return false;
  return (static_cast<std::uint8_t>(body.front()) & ~kElementBits) == kRootCode;
}

bool IsNameCharacter(char c) {
  return IsLetter(c) || IsDigit(c) || c == '_' || c == '-' || c == '.' || c == ':' ||
         static_cast<unsigned char>(c) >= 0x80;
}

bool IsVariableCharacter(char c) {
  return IsLetter(c) || IsDigit(c) || c == '_' || c == '-' || c == '.';
}

struct TextRules {
  std::string_view charset;  // of the strings; empty: they are left as they are
  bool wml10 = false;
  bool escapesDollars = false;
};

/// Writes the tokens of a deck as markup.
class WmlText {
 public:
  WmlText(std::size_t limit, TextRules rules, Oddities &oddities)
      : rules_(rules), limit_(limit), oddities_(oddities) {}

  void Declare(const WbxmlHeader &header);
  void Write(const WbxmlToken &token);
  std::string Take() { return std::move(text_); }

 private:
  void BeginElement(const WbxmlToken &token);
  void EndElement(const WbxmlToken &token);
  void BeginAttribute(const WbxmlToken &token);
  void EndAttributes(const WbxmlToken &token);
  void BeginInstruction(const WbxmlToken &token);
  void Variable(const WbxmlToken &token);
  void Value(const WbxmlToken &token);
  void Character(char32_t character);
  void Markup(std::string_view text, bool isSource);
  void Name(std::string_view literal, std::size_t offset);
  void Tag(const WbxmlToken &token);
  void CloseValue();
  std::string Decoded(std::string_view bytes) const;

  TextRules rules_;
  std::size_t limit_;
  Oddities &oddities_;
  std::string text_;
  bool inValue_ = false;
  bool inInstruction_ = false;
};

void WmlText::Declare(const WbxmlHeader &header) {
  text_ = "<?xml version=\"1.0\"?>";
  if (const auto type = FindWmlDocumentType(header)) {
    text_.append("<!DOCTYPE wml PUBLIC \"").append(type->publicId).append("\" \"");
    text_.append(type->systemId).append("\">");
  }
}

void WmlText::Write(const WbxmlToken &token) {
  switch (token.kind) {
    case WbxmlKind::kElement:
      BeginElement(token);
      break;
    case WbxmlKind::kElementEnd:
      EndElement(token);
      break;
    case WbxmlKind::kAttribute:
      BeginAttribute(token);
      break;
    case WbxmlKind::kAttributesEnd:
      EndAttributes(token);
      break;
    case WbxmlKind::kValue:
      Value(token);
      break;
    case WbxmlKind::kInstruction:
      BeginInstruction(token);
      break;
    case WbxmlKind::kString:
      Markup(Decoded(token.text), true);
      break;
    case WbxmlKind::kCharacter:
      Character(token.number);
      break;
    case WbxmlKind::kTextExtension:
      Variable(token);
      break;
    case WbxmlKind::kByteExtension:
      oddities_.Add(Oddity::kExtension, token.offset);
      break;
    case WbxmlKind::kDocumentEnd:
      break;
  }
  if (text_.size() > limit_) {
    throw BrokenWmlc(token.offset, "it stands for more than " + std::to_string(kWmlcGrowth) +
                                       " times its length");
  }
}

std::string WmlText::Decoded(std::string_view bytes) const {
  std::string text(bytes);
  return rules_.charset.empty() ? text : ToUtf8(std::move(text), rules_.charset);
}

// Text as markup reads it back. In a source, dollar signs may be references.
void WmlText::Markup(std::string_view text, bool isSource) {
  const bool dollars = !isSource || rules_.escapesDollars;
  while (!text.empty()) {
    const std::size_t plain = std::min(
        text.find_first_of(inInstruction_ ? "?" : (dollars ? "&<>\"$" : "&<>\"")), text.size());
    text_ += text.substr(0, plain);
    text.remove_prefix(plain);
    if (text.empty()) return;
    switch (text.front()) {
      case '&':
        text_ += "&amp;";
        break;
      case '<':
        text_ += "&lt;";
        break;
      case '>':
        text_ += "&gt;";
        break;
      case '"':
        text_ += inValue_ ? "&quot;" : "\"";
        break;
      case '$':
        text_ += "$$";
        break;
      default:  // the end of an instruction must not stand in it
        text_ += text.starts_with("?>") ? "? " : "?";
        break;
    }
    text.remove_prefix(1);
  }
}

void WmlText::Character(char32_t character) {
  if (character == U'$') {
    Markup("$", false);
  } else {
    text_.append("&#").append(std::to_string(static_cast<std::uint32_t>(character))).append(";");
  }
}

void WmlText::Name(std::string_view literal, std::size_t offset) {
  std::string name = Decoded(literal);
  const auto wrong = [](char c) { return !IsNameCharacter(c); };
  const bool odd = std::any_of(name.begin(), name.end(), wrong);
  if (odd) std::replace_if(name.begin(), name.end(), wrong, '_');
  const bool starts =
      !name.empty() && !IsDigit(name.front()) && name.front() != '-' && name.front() != '.';
  if (!starts) name.insert(name.begin(), '_');
  if (odd || !starts) oddities_.Add(Oddity::kName, offset);
  text_ += name;
}

void WmlText::Tag(const WbxmlToken &token) {
  if (token.name.code == 0) {
    Name(token.name.literal, token.offset);
    return;
  }
  const std::string_view name = FindWmlTag(token.name, rules_.wml10);
  if (name.empty()) oddities_.Add(Oddity::kTag, token.offset);
  text_ += name.empty() ? kUnknownName : name;
}

void WmlText::BeginElement(const WbxmlToken &token) {
  text_ += '<';
  Tag(token);
  if (!token.hasAttributes) text_ += token.hasContent ? ">" : "/>";
}

void WmlText::EndElement(const WbxmlToken &token) {
  text_ += "</";
  Tag(token);
  text_ += '>';
}

void WmlText::CloseValue() {
  if (inValue_) text_ += '"';
  inValue_ = false;
}

void WmlText::BeginAttribute(const WbxmlToken &token) {
  CloseValue();
  text_ += ' ';
  WmlAttribute attribute;
  if (token.name.code == 0) {
    Name(token.name.literal, token.offset);
  } else {
    attribute = FindWmlAttribute(token.name, rules_.wml10);
    if (attribute.name.empty()) oddities_.Add(Oddity::kAttribute, token.offset);
    text_ += attribute.name.empty() ? kUnknownName : attribute.name;
  }
  text_.append("=\"").append(attribute.value);
  inValue_ = true;
}

void WmlText::EndAttributes(const WbxmlToken &token) {
  CloseValue();
  text_ += inInstruction_ ? "?>" : (token.hasContent ? ">" : "/>");
  inInstruction_ = false;
}

void WmlText::BeginInstruction(const WbxmlToken &token) {
  text_ += "<?";
  inInstruction_ = true;
  WmlAttribute attribute;
  if (token.name.code == 0) {
    Name(token.name.literal, token.offset);
  } else {
    attribute = FindWmlAttribute(token.name, rules_.wml10);
    text_ += attribute.name.empty() ? kUnknownName : attribute.name;
  }
  text_.append(" ").append(attribute.value);
}

void WmlText::Value(const WbxmlToken &token) {
  const std::string_view value = FindWmlValue(token.name, rules_.wml10);
  if (value.empty()) oddities_.Add(Oddity::kValue, token.offset);
  text_ += value.empty() ? kReplacement : value;
}

void WmlText::Variable(const WbxmlToken &token) {
  const std::string name = Decoded(token.text);
  const std::string_view conversion = kConversions[token.number];
  const bool plain = !name.empty() && std::all_of(name.begin(), name.end(), IsVariableCharacter);
  if (plain) {
    text_.append("$(").append(name).append(":").append(conversion).append(")");
    return;
  }
  oddities_.Add(Oddity::kVariable, token.offset);
  Markup("$(" + name + ")", false);
}

std::string Written(std::string_view bytes, const WbxmlHeader &header, std::size_t unit,
                    TextRules rules, Oddities &oddities) {
  WmlText text(kWmlcGrowth * bytes.size() + kWmlcGrowthBase, rules, oddities);
  text.Declare(header);
  WbxmlReader reader(bytes, header, unit);
  WbxmlToken token = reader.Next();
  for (; token.kind != WbxmlKind::kDocumentEnd; token = reader.Next()) text.Write(token);
  const std::string_view rest = bytes.substr(token.offset);
  if (rest.find_first_not_of('\0') != std::string_view::npos) {
    oddities.Add(Oddity::kRest, token.offset);
  }
  return text.Take();
}

// Whether variables are tokens of their own.
bool HasVariables(std::string_view bytes, const WbxmlHeader &header, std::size_t unit) {
  WbxmlReader reader(bytes, header, unit);
  while (true) {
    const WbxmlKind kind = reader.Next().kind;
    if (kind == WbxmlKind::kDocumentEnd) return false;
    if (kind == WbxmlKind::kTextExtension) return true;
  }
}

}  // namespace

bool IsWmlc(std::string_view bytes) {
  const auto header = ReadWbxmlHeader(bytes);
  if (!header) return false;
  const bool root = StartsWithRoot(bytes.substr(header->length));
  if (header->minorVersion == 0 && !root) return false;
  if (header->publicId == 0) return header->publicName.find("DTD WML") != std::string_view::npos;
  if (header->publicId == kUnknownPublicId) return root;
  return FindWmlDocumentType(*header).has_value();
}

DecodedWmlc DecodeWmlc(std::string_view bytes, std::string_view charset) {
  const auto header = ReadWbxmlHeader(bytes);
  if (!header) throw BrokenWmlc(0, "its header is cut off or of an unknown version");
  DecodedWmlc result;
  result.charset = charset;
  result.charsetOrigin = charset.empty() ? CharsetOrigin::kCompiled : CharsetOrigin::kOption;
  if (charset.empty()) result.charset = CharsetOfNumber(header->charset);

  const auto type = FindWmlDocumentType(*header);
  TextRules rules{{}, type && type->wml10, false};
  Oddities oddities;
  if (result.charset.empty()) {
    if (header->charset != 0) oddities.Add(Oddity::kCharset, 0);
    Oddities ignored;
    const std::string raw = Written(bytes, *header, 1, rules, ignored);
    const DetectedCharset found = DetectCharset(raw, {}, result.warnings);
    result.charset = found.name;
    result.charsetOrigin = found.origin;
  }
  rules.charset = result.charset;
  const std::size_t unit = CharacterUnit(result.charset);
  rules.escapesDollars = HasVariables(bytes, *header, unit);
  result.wml = Written(bytes, *header, unit, rules, oddities);
  for (std::string &warning : oddities.Take()) result.warnings.push_back(std::move(warning));
  return result;
}

}  // namespace vs_wml
