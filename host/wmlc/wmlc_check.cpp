// SPDX-License-Identifier: MIT
#include "host/wmlc/wmlc_check.h"

#include <algorithm>

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

constexpr std::uint8_t kHasContent = 0x40;
constexpr std::uint8_t kHasAttributes = 0x80;
constexpr std::uint8_t kTagCode = 0x3F;

// Bytes of text that a reference or an attribute token stands for at most.
constexpr std::size_t kTokenText = 32;

class Cursor {
 public:
  explicit Cursor(std::string_view bytes) : bytes_(bytes) {}

  bool Failed() const { return failed_; }
  bool AtEnd() const { return at_ == bytes_.size(); }
  std::size_t Position() const { return at_; }

  std::uint8_t Byte() {
    if (AtEnd()) {
      failed_ = true;
      return 0;
    }
    return static_cast<std::uint8_t>(bytes_[at_++]);
  }

  // A number of seven bits a byte, all but the last with the high bit set.
  std::uint32_t Number() {
    std::uint32_t value = 0;
    for (int i = 0; i < 5; ++i) {
      const std::uint8_t byte = Byte();
      if (value > (UINT32_MAX >> 7U)) break;
      value = (value << 7U) | (byte & 0x7FU);
      if ((byte & 0x80U) == 0) return value;
    }
    failed_ = true;
    return 0;
  }

  std::string_view Take(std::size_t length) {
    if (length > bytes_.size() - at_) {
      failed_ = true;
      return {};
    }
    at_ += length;
    return bytes_.substr(at_ - length, length);
  }

  std::string_view String() {
    const std::size_t end = bytes_.find('\0', at_);
    if (end == std::string_view::npos) {
      failed_ = true;
      return {};
    }
    const std::string_view text = bytes_.substr(at_, end - at_);
    at_ = end + 1;
    return text;
  }

 private:
  std::string_view bytes_;
  std::size_t at_ = 0;
  bool failed_ = false;
};

std::string_view TableString(std::string_view strings, std::size_t offset) {
  if (offset >= strings.size()) return {};
  const std::string_view rest = strings.substr(offset);
  return rest.substr(0, rest.find('\0'));
}

class Meter {
 public:
  Meter(std::string_view body, std::string_view strings) : cursor_(body), strings_(strings) {}

  WmlcDemand Measure() {
    std::size_t open = 0;
    while (!cursor_.AtEnd() && !cursor_.Failed()) {
      const std::uint8_t token = cursor_.Byte();
      if (token == kEnd) {
        if (open == 0) break;
        --open;
      } else if (!Common(token)) {
        Element(token, open);
      }
      if (open == 0 && demand_.depth != 0) break;
    }
    demand_.wellFormed = !cursor_.Failed() && open == 0 && demand_.depth != 0;
    return demand_;
  }

 private:
  // A token that may stand in content and in attribute lists.
  bool Common(std::uint8_t token) {
    if (token == kSwitchPage) {
      cursor_.Byte();
    } else if (token == kEntity) {
      cursor_.Number();
      demand_.text += kTokenText;
    } else if (token == kInlineString ||
               (token >= kExtensionInline0 && token <= kExtensionInline2)) {
      demand_.text += cursor_.String().size() + kTokenText;
    } else if (token == kTableString || (token >= kExtensionTable0 && token <= kExtensionTable2)) {
      FromTable();
    } else if (token >= kExtension0 && token <= kExtension2) {
      demand_.text += kTokenText;
    } else if (token == kOpaque) {
      demand_.text += cursor_.Take(cursor_.Number()).size() + kTokenText;
    } else if (token == kInstruction) {
      Attributes();
    } else {
      return false;
    }
    return true;
  }

  void FromTable() { demand_.text += TableString(strings_, cursor_.Number()).size() + kTokenText; }

  void Element(std::uint8_t token, std::size_t &open) {
    if ((token & kTagCode) == kLiteral) FromTable();
    demand_.text += kTokenText;
    if ((token & kHasAttributes) != 0) Attributes();
    demand_.depth = std::max(demand_.depth, open + 1);
    if ((token & kHasContent) != 0) ++open;
  }

  void Attributes() {
    while (!cursor_.Failed()) {
      const std::uint8_t token = cursor_.Byte();
      if (token == kEnd) return;
      if (token == kLiteral) {
        FromTable();
      } else if (token == kInstruction || !Common(token)) {
        demand_.text += kTokenText;
      }
    }
  }

  Cursor cursor_;
  std::string_view strings_;
  WmlcDemand demand_;
};

}  // namespace

WmlcHeader ReadWmlcHeader(std::string_view bytes) {
  WmlcHeader header;
  Cursor cursor(bytes);
  header.version = cursor.Byte();
  header.publicId = cursor.Number();
  const std::uint32_t nameOffset = header.publicId == 0 ? cursor.Number() : 0;
  header.charsetStart = cursor.Position();
  header.charset = cursor.Number();
  header.charsetEnd = cursor.Position();
  header.strings = cursor.Take(cursor.Number());
  header.length = cursor.Position();
  if (header.publicId == 0) header.publicName = TableString(header.strings, nameOffset);
  header.valid = !cursor.Failed() && header.version >= 1 && header.version <= 3;
  return header;
}

WmlcDemand MeasureWmlc(std::string_view bytes) {
  const WmlcHeader header = ReadWmlcHeader(bytes);
  if (!header.valid) return {};
  return Meter(bytes.substr(header.length), header.strings).Measure();
}

}  // namespace vs_wml
