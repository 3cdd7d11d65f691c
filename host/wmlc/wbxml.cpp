// SPDX-License-Identifier: MIT
#include "host/wmlc/wbxml.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace vs_wml {
namespace {

// Global tokens; they mean the same on all code pages.
enum Token : std::uint8_t {
  kSwitchPage = 0x00,
  kEnd = 0x01,
  kEntity = 0x02,
  kInlineString = 0x03,
  kLiteral = 0x04,
  kExtensionInline0 = 0x40,
  kExtensionInline2 = 0x42,
  kInstruction = 0x43,
  kExtensionTable0 = 0x80,
  kExtensionTable2 = 0x82,
  kTableString = 0x83,
  kExtension0 = 0xC0,
  kExtension2 = 0xC2,
  kOpaque = 0xC3
};

// An element's token.
constexpr std::uint8_t kHasContent = 0x40;
constexpr std::uint8_t kHasAttributes = 0x80;
constexpr std::uint8_t kTagCode = 0x3F;

// The first token of an attribute list that is part of a value.
constexpr std::uint8_t kFirstValue = 0x80;

constexpr std::uint32_t kLastCharacter = 0x10FFFF;
constexpr unsigned kLatestMinorVersion = 3;

// A literal's place in the string table, among the names of open elements.
constexpr std::uint32_t kLiteralName = 0x80000000U;

constexpr bool Within(std::uint8_t code, Token first, Token last) {
  return code >= first && code <= last;
}

std::string HexByte(std::uint8_t byte) {
  std::array<char, 8> text{};
  std::snprintf(text.data(), text.size(), "0x%02X", byte);
  return text.data();
}

// The number at the start of `bytes`, seven bits a byte and all but the last with the high bit
// set, and how many bytes it takes; nothing when it is cut off or has more than 32 bits.
struct LongNumber {
  std::uint32_t value = 0;
  std::size_t length = 0;
};

std::optional<LongNumber> ReadNumber(std::string_view bytes) {
  constexpr std::size_t kLongest = 5;
  LongNumber number;
  while (number.length < std::min(bytes.size(), kLongest)) {
    const auto byte = static_cast<std::uint8_t>(bytes[number.length++]);
    if (number.value > (UINT32_MAX >> 7U)) return std::nullopt;
    number.value = (number.value << 7U) | (byte & 0x7FU);
    if ((byte & 0x80U) == 0) return number;
  }
  return std::nullopt;
}

std::optional<std::uint32_t> TakeNumber(std::string_view &bytes) {
  const auto number = ReadNumber(bytes);
  if (!number) return std::nullopt;
  bytes.remove_prefix(number->length);
  return number->value;
}

}  // namespace

std::optional<WbxmlHeader> ReadWbxmlHeader(std::string_view document) {
  if (document.empty()) return std::nullopt;
  WbxmlHeader header;
  header.minorVersion = static_cast<std::uint8_t>(document.front());
  if (header.minorVersion > kLatestMinorVersion) return std::nullopt;
  std::string_view rest = document.substr(1);
  const auto publicId = TakeNumber(rest);
  if (!publicId) return std::nullopt;
  header.publicId = *publicId;
  const auto nameIndex = header.publicId == 0 ? TakeNumber(rest) : 0;
  const auto charset = header.minorVersion == 0 ? 0 : TakeNumber(rest);
  const auto tableLength = TakeNumber(rest);
  if (!nameIndex || !charset || !tableLength || *tableLength > rest.size()) return std::nullopt;
  header.charset = *charset;
  header.strings = rest.substr(0, *tableLength);
  header.length = document.size() - rest.size() + *tableLength;
  if (header.publicId == 0) {
    const std::string_view name =
        header.strings.substr(std::min<std::size_t>(*nameIndex, header.strings.size()));
    header.publicName = name.substr(0, name.find('\0'));
  }
  return header;
}

WbxmlReader::WbxmlReader(std::string_view document, const WbxmlHeader &header, std::size_t unit)
    : document_(document),
      strings_(header.strings),
      unit_(unit),
      at_(header.length),
      limit_(kWmlcGrowth * document.size() + kWmlcGrowthBase) {}

std::uint8_t WbxmlReader::Byte() {
  if (at_ == document_.size()) throw BrokenWmlc(at_, "it ends in the middle");
  return static_cast<std::uint8_t>(document_[at_++]);
}

std::uint32_t WbxmlReader::Number() {
  const auto number = ReadNumber(document_.substr(at_));
  if (!number) throw BrokenWmlc(at_, "a number is cut off or has more than 32 bits");
  at_ += number->length;
  return number->value;
}

std::string_view WbxmlReader::Take(std::size_t length) {
  if (length > document_.size() - at_) {
    throw BrokenWmlc(at_, "data of " + std::to_string(length) + " bytes is cut off");
  }
  at_ += length;
  return document_.substr(at_ - length, length);
}

// Where the zero that ends a string stands, or npos.
std::size_t WbxmlReader::FindEnd(std::string_view text) const {
  if (unit_ == 1) return text.find('\0');
  for (std::size_t at = 0; at + unit_ <= text.size(); at += unit_) {
    if (text.substr(at, unit_).find_first_not_of('\0') == std::string_view::npos) return at;
  }
  return std::string_view::npos;
}

std::string_view WbxmlReader::InlineString() {
  const std::string_view rest = document_.substr(at_);
  const std::size_t length = FindEnd(rest);
  if (length == std::string_view::npos) throw BrokenWmlc(at_, "a string has no end");
  at_ += length + unit_;
  return rest.substr(0, length);
}

// A string of the table, named by a token at `offset`. The last one may lack its end.
std::string_view WbxmlReader::StringAt(std::size_t offset, std::uint32_t index) {
  if (index >= strings_.size()) {
    throw BrokenWmlc(offset, "string " + std::to_string(index) + " lies behind the string table");
  }
  const std::string_view rest = strings_.substr(index);
  const std::string_view text = rest.substr(0, FindEnd(rest));
  expanded_ += text.size();
  if (expanded_ > limit_) {
    throw BrokenWmlc(offset, "the strings of its table come to more than " +
                                 std::to_string(kWmlcGrowth) + " times its length");
  }
  return text;
}

std::string_view WbxmlReader::TableString() {
  const std::size_t begin = at_;
  return StringAt(begin, Number());
}

std::uint32_t WbxmlReader::Character() {
  const std::size_t begin = at_;
  const std::uint32_t character = Number();
  if (character > kLastCharacter) {
    throw BrokenWmlc(begin, "character number " + std::to_string(character) + " is no character");
  }
  return character;
}

// What may stand in content and in attribute lists.
bool WbxmlReader::ReadCommon(std::uint8_t code, WbxmlToken &token) {
  token.kind = WbxmlKind::kString;
  if (code == kEntity) {
    token.kind = WbxmlKind::kCharacter;
    token.number = Character();
  } else if (code == kInlineString) {
    token.text = InlineString();
  } else if (code == kTableString) {
    token.text = TableString();
  } else if (code == kOpaque) {
    token.text = Take(Number());
  } else if (Within(code, kExtensionInline0, kExtensionInline2)) {
    token.kind = WbxmlKind::kTextExtension;
    token.number = code - kExtensionInline0;
    token.text = InlineString();
  } else if (Within(code, kExtensionTable0, kExtensionTable2)) {
    token.kind = WbxmlKind::kTextExtension;
    token.number = code - kExtensionTable0;
    token.text = TableString();
  } else if (Within(code, kExtension0, kExtension2)) {
    token.kind = WbxmlKind::kByteExtension;
    token.number = code - kExtension0;
  } else {
    return false;
  }
  return true;
}

WbxmlToken WbxmlReader::Next() {
  while (true) {
    WbxmlToken token;
    token.offset = at_;
    if (rootRead_ && open_.empty() && place_ == Place::kContent) {
      const bool goesOn =
          at_ < document_.size() && static_cast<std::uint8_t>(document_[at_]) == kInstruction;
      if (!goesOn) return token;
    }
    const std::uint8_t code = Byte();
    if (code != kSwitchPage) {
      return place_ == Place::kContent ? ContentToken(code, token) : AttributeToken(code, token);
    }
    (place_ == Place::kContent ? tagPage_ : attributePage_) = Byte();
  }
}

WbxmlToken WbxmlReader::ContentToken(std::uint8_t code, WbxmlToken token) {
  if (code == kInstruction) {
    place_ = Place::kInstruction;
    WbxmlToken name = Next();
    if (name.kind != WbxmlKind::kAttribute) {
      throw BrokenWmlc(token.offset, "an instruction has no name");
    }
    name.kind = WbxmlKind::kInstruction;
    return name;
  }
  if (code == kEnd) return ElementEnd(token);
  if (ReadCommon(code, token)) {
    if (open_.empty()) throw BrokenWmlc(token.offset, "text stands in front of the root");
    return token;
  }
  return Element(code, token);
}

WbxmlToken WbxmlReader::Element(std::uint8_t code, WbxmlToken token) {
  token.kind = WbxmlKind::kElement;
  token.hasAttributes = (code & kHasAttributes) != 0;
  token.hasContent = (code & kHasContent) != 0;
  const auto tag = static_cast<std::uint8_t>(code & kTagCode);
  std::uint32_t name = static_cast<std::uint32_t>(tagPage_) << 8U | tag;
  if (tag == kLiteral) {
    const std::size_t begin = at_;
    const std::uint32_t index = Number();
    token.name.literal = StringAt(begin, index);
    if (index >= kLiteralName) throw BrokenWmlc(begin, "its string table is too long");
    name = kLiteralName | index;
  } else {
    token.name.code = tag;
    token.name.page = tagPage_;
  }
  rootRead_ = true;
  if (token.hasContent) open_.push_back(name);
  if (token.hasAttributes) {
    place_ = Place::kAttributes;
    contentFollows_ = token.hasContent;
    hasName_ = false;
  }
  return token;
}

WbxmlToken WbxmlReader::ElementEnd(WbxmlToken token) {
  if (open_.empty()) throw BrokenWmlc(token.offset, "nothing is open that could end");
  const std::uint32_t name = open_.back();
  open_.pop_back();
  token.kind = WbxmlKind::kElementEnd;
  if ((name & kLiteralName) != 0) {
    token.name.literal = StringAt(token.offset, name & ~kLiteralName);
  } else {
    token.name.code = static_cast<std::uint8_t>(name);
    token.name.page = static_cast<std::uint8_t>(name >> 8U);
  }
  return token;
}

WbxmlToken WbxmlReader::AttributeToken(std::uint8_t code, WbxmlToken token) {
  if (code == kEnd) return AttributesEnd(token);
  const bool begins = code == kLiteral || (code < kFirstValue && !Within(code, kEntity, kLiteral) &&
                                           !Within(code, kExtensionInline0, kInstruction) &&
                                           code != (kLiteral | kHasContent));
  if (begins) {
    if (place_ == Place::kInstruction && hasName_) {
      throw BrokenWmlc(token.offset, "an instruction has a second name");
    }
    token.kind = WbxmlKind::kAttribute;
    if (code == kLiteral) {
      token.name.literal = TableString();
    } else {
      token.name = {code, attributePage_, {}};
    }
    hasName_ = true;
    return token;
  }
  if (!hasName_) throw BrokenWmlc(token.offset, "a value stands in front of the first attribute");
  if (ReadCommon(code, token)) return token;
  if ((code & static_cast<std::uint8_t>(~(kHasContent | kHasAttributes))) <= kLiteral) {
    throw BrokenWmlc(token.offset, "token " + HexByte(code) + " stands among attributes");
  }
  token.kind = WbxmlKind::kValue;
  token.name = {code, attributePage_, {}};
  return token;
}

WbxmlToken WbxmlReader::AttributesEnd(WbxmlToken token) {
  token.kind = WbxmlKind::kAttributesEnd;
  token.hasContent = place_ == Place::kAttributes && contentFollows_;
  place_ = Place::kContent;
  hasName_ = false;
  return token;
}

}  // namespace vs_wml
