/// \file
/// WBXML 1.0 to 1.3 (WAP-192), the binary form of XML: its tokens, one by one. What the codes
/// of elements and attributes mean is up to the document type.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_WMLC_WBXML_H
#define VS_WML_HOST_WMLC_WBXML_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace vs_wml {

/// A compiled deck that cannot be read; the message says why and at which byte.
class BrokenWmlc : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
  BrokenWmlc(std::size_t offset, const std::string &reason)
      : std::runtime_error("compiled deck is damaged at byte " + std::to_string(offset) + ": " +
                           reason) {}
};

/// What stands in front of the body. The views point into the document.
struct WbxmlHeader {
  unsigned minorVersion = 0;    ///< 0 to 3, of version 1
  std::uint32_t publicId = 0;   ///< 0: see publicName; 1: unknown
  std::string_view publicName;  ///< one byte a character, with publicId 0
  std::uint32_t charset = 0;    ///< a MIBenum of IANA's; 0: unknown, as always in 1.0
  std::string_view strings;     ///< the string table
  std::size_t length = 0;       ///< bytes in front of the body
};

/// The header, nothing when it is cut off, of another version or contradicts itself.
std::optional<WbxmlHeader> ReadWbxmlHeader(std::string_view document);

enum class WbxmlKind : std::uint8_t {
  kElement,        ///< `name`; `hasAttributes` and `hasContent` say what follows
  kElementEnd,     ///< `name`, of an element with content
  kAttribute,      ///< `name`; all values up to the next attribute are its own
  kAttributesEnd,  ///< of an element or an instruction
  kValue,          ///< `name`, the code of a part of an attribute's value
  kInstruction,    ///< `name`, with one value and an end as attributes have them
  kString,         ///< `text`: inline, of the string table or opaque
  kCharacter,      ///< `number`, a code point of at most 0x10FFFF
  kTextExtension,  ///< EXT_I and EXT_T: `number` 0 to 2, `text`
  kByteExtension,  ///< EXT: `number` 0 to 2
  kDocumentEnd     ///< `offset` is where the document goes on behind its root, or its length
};

/// A name by its code, or, of a literal, as text of the string table.
struct WbxmlName {
  std::uint8_t code = 0;     ///< without the bits of an element; 0: `literal`
  std::uint8_t page = 0;     ///< code page
  std::string_view literal;  ///< bytes in the document's character set
};

struct WbxmlToken {
  WbxmlKind kind = WbxmlKind::kDocumentEnd;
  std::size_t offset = 0;  ///< of the token in the document
  WbxmlName name;
  bool hasAttributes = false;
  bool hasContent = false;
  std::string_view text;  ///< bytes in the document's character set, without the end
  std::uint32_t number = 0;
};

/// The most text that a compiled deck may stand for: this many bytes for each of its own,
/// beside a fixed amount. No token stands for more than 45 bytes; strings of the table that
/// are used over and over are what is bounded.
inline constexpr std::size_t kWmlcGrowth = 64;
inline constexpr std::size_t kWmlcGrowthBase = 64U << 10U;

/// Takes a document apart, in time in proportion to its length and kWmlcGrowth, with four
/// bytes of memory for each element that is open.
class WbxmlReader {
 public:
  /// `unit`: bytes of the smallest character of the document's set, whose zero ends strings:
  /// 1, 2 or 4. The document must outlive the reader and its tokens.
  WbxmlReader(std::string_view document, const WbxmlHeader &header, std::size_t unit);

  /// The next token. Throws BrokenWmlc. Behind kDocumentEnd comes nothing.
  WbxmlToken Next();

 private:
  enum class Place : std::uint8_t { kContent, kAttributes, kInstruction };

  std::uint8_t Byte();
  std::uint32_t Number();
  std::string_view Take(std::size_t length);
  std::string_view InlineString();
  std::string_view TableString();
  std::string_view StringAt(std::size_t offset, std::uint32_t index);
  std::size_t FindEnd(std::string_view text) const;
  std::uint32_t Character();

  WbxmlToken ContentToken(std::uint8_t code, WbxmlToken token);
  WbxmlToken AttributeToken(std::uint8_t code, WbxmlToken token);
  WbxmlToken Element(std::uint8_t code, WbxmlToken token);
  WbxmlToken ElementEnd(WbxmlToken token);
  WbxmlToken AttributesEnd(WbxmlToken token);
  bool ReadCommon(std::uint8_t code, WbxmlToken &token);

  std::string_view document_;
  std::string_view strings_;
  std::size_t unit_;
  std::size_t at_;
  std::size_t expanded_ = 0;  // bytes taken from the string table
  std::size_t limit_;
  // Names of the elements that are open: a page and a code, or where a literal stands in the
  // string table.
  std::vector<std::uint32_t> open_;
  bool rootRead_ = false;
  bool hasName_ = false;  // an attribute began
  bool contentFollows_ = false;
  Place place_ = Place::kContent;
  std::uint8_t tagPage_ = 0;
  std::uint8_t attributePage_ = 0;
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_WMLC_WBXML_H
