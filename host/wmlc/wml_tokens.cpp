// SPDX-License-Identifier: MIT
#include "host/wmlc/wml_tokens.h"

#include <algorithm>
#include <iterator>

namespace vs_wml {
namespace {

// A row a token, sorted. WML 1.0 has names of its own in upper case; what it lacks is in later
// versions alone.
struct TagRow {
  std::uint8_t code;
  std::string_view name;
  std::string_view nameOf10;
};

constexpr TagRow kTags[] = {
    {0x1B, "pre", ""},
    {0x1C, "a", ""},
    {0x1D, "td", ""},
    {0x1E, "tr", ""},
    {0x1F, "table", ""},
    {0x20, "p", ""},
    {0x21, "postfield", ""},
    {0x22, "anchor", "A"},
    {0x23, "access", "ACCESS"},
    {0x24, "b", "B"},
    {0x25, "big", "BIG"},
    {0x26, "br", "BR"},
    {0x27, "card", "CARD"},
    {0x28, "do", "DO"},
    {0x29, "em", "EM"},
    {0x2A, "fieldset", "FIELDSET"},
    {0x2B, "go", "GO"},
    {0x2C, "head", "HEAD"},
    {0x2D, "i", "I"},
    {0x2E, "img", "IMG"},
    {0x2F, "input", "INPUT"},
    {0x30, "meta", "META"},
    {0x31, "noop", "NOOP"},
    {0x32, "prev", "PREV"},
    {0x33, "onevent", "ONEVENT"},
    {0x34, "optgroup", "OPTGROUP"},
    {0x35, "option", "OPTION"},
    {0x36, "refresh", "REFRESH"},
    {0x37, "select", "SELECT"},
    {0x38, "small", "SMALL"},
    {0x39, "strong", "STRONG"},
    {0x3A, "", "TAB"},
    {0x3B, "template", "TEMPLATE"},
    {0x3C, "timer", "TIMER"},
    {0x3D, "u", "U"},
    {0x3E, "setvar", "VAR"},
    {0x3F, "wml", "WML"},
};

struct AttributeRow {
  std::uint8_t code;
  WmlAttribute attribute;
  WmlAttribute attributeOf10;
};

constexpr AttributeRow kAttributes[] = {
    {0x05, {"accept-charset", ""}, {"ACCEPT-CHARSET", ""}},
    {0x06, {"align", "bottom"}, {"ALIGN", "BOTTOM"}},
    {0x07, {"align", "center"}, {"ALIGN", "CENTER"}},
    {0x08, {"align", "left"}, {"ALIGN", "LEFT"}},
    {0x09, {"align", "middle"}, {"ALIGN", "MIDDLE"}},
    {0x0A, {"align", "right"}, {"ALIGN", "RIGHT"}},
    {0x0B, {"align", "top"}, {"ALIGN", "TOP"}},
    {0x0C, {"alt", ""}, {"ALT", ""}},
    {0x0D, {"content", ""}, {"CONTENT", ""}},
    {0x0E, {}, {"DEFAULT", ""}},
    {0x0F, {"domain", ""}, {"DOMAIN", ""}},
    {0x10, {"emptyok", "false"}, {"EMPTYOK", "FALSE"}},
    {0x11, {"emptyok", "true"}, {"EMPTYOK", "TRUE"}},
    {0x12, {"format", ""}, {"FORMAT", ""}},
    {0x13, {"height", ""}, {"HEIGHT", ""}},
    {0x14, {"hspace", ""}, {"HSPACE", ""}},
    {0x15, {"ivalue", ""}, {"IDEFAULT", ""}},
    {0x16, {"iname", ""}, {"IKEY", ""}},
    {0x17, {}, {"KEY", ""}},
    {0x18, {"label", ""}, {"LABEL", ""}},
    {0x19, {"localsrc", ""}, {"LOCALSRC", ""}},
    {0x1A, {"maxlength", ""}, {"MAXLENGTH", ""}},
    {0x1B, {"method", "get"}, {"METHOD", "GET"}},
    {0x1C, {"method", "post"}, {"METHOD", "POST"}},
    {0x1D, {"mode", "nowrap"}, {"MODE", "NOWRAP"}},
    {0x1E, {"mode", "wrap"}, {"MODE", "WRAP"}},
    {0x1F, {"multiple", "false"}, {"MULTIPLE", "FALSE"}},
    {0x20, {"multiple", "true"}, {"MULTIPLE", "TRUE"}},
    {0x21, {"name", ""}, {"NAME", ""}},
    {0x22, {"newcontext", "false"}, {"NEWCONTEXT", "FALSE"}},
    {0x23, {"newcontext", "true"}, {"NEWCONTEXT", "TRUE"}},
    {0x24, {"onpick", ""}, {"ONCLICK", ""}},
    {0x25, {"onenterbackward", ""}, {"ONENTERBACKWARD", ""}},
    {0x26, {"onenterforward", ""}, {"ONENTERFORWARD", ""}},
    {0x27, {"ontimer", ""}, {"ONTIMER", ""}},
    {0x28, {"optional", "false"}, {"OPTIONAL", "FALSE"}},
    {0x29, {"optional", "true"}, {"OPTIONAL", "TRUE"}},
    {0x2A, {"path", ""}, {"PATH", ""}},
    {0x2B, {}, {"POSTDATA", ""}},
    {0x2C, {}, {"PUBLIC", "FALSE"}},
    {0x2D, {}, {"PUBLIC", "TRUE"}},
    {0x2E, {"scheme", ""}, {"SCHEME", ""}},
    {0x2F, {"sendreferer", "false"}, {"SENDREFERER", "FALSE"}},
    {0x30, {"sendreferer", "true"}, {"SENDREFERER", "TRUE"}},
    {0x31, {"size", ""}, {"SIZE", ""}},
    {0x32, {"src", ""}, {"SRC", ""}},
    {0x33, {"ordered", "true"}, {"STYLE", "LIST"}},
    {0x34, {"ordered", "false"}, {"STYLE", "SET"}},
    {0x35, {"tabindex", ""}, {"TABINDEX", ""}},
    {0x36, {"title", ""}, {"TITLE", ""}},
    {0x37, {"type", ""}, {"TYPE", ""}},
    {0x38, {"type", "accept"}, {"TYPE", "ACCEPT"}},
    {0x39, {"type", "delete"}, {"TYPE", "DELETE"}},
    {0x3A, {"type", "help"}, {"TYPE", "HELP"}},
    {0x3B, {"type", "password"}, {"TYPE", "PASSWORD"}},
    {0x3C, {"type", "onpick"}, {"TYPE", "ONCLICK"}},
    {0x3D, {"type", "onenterbackward"}, {"TYPE", "ONENTERBACKWARD"}},
    {0x3E, {"type", "onenterforward"}, {"TYPE", "ONENTERFORWARD"}},
    {0x3F, {"type", "ontimer"}, {"TYPE", "ONTIMER"}},
    {0x45, {"type", "options"}, {"TYPE", "OPTIONS"}},
    {0x46, {"type", "prev"}, {"TYPE", "PREV"}},
    {0x47, {"type", "reset"}, {"TYPE", "RESET"}},
    {0x48, {"type", "text"}, {"TYPE", "TEXT"}},
    {0x49, {"type", "vnd."}, {"TYPE", "vnd."}},
    {0x4A, {"href", ""}, {"URL", ""}},
    {0x4B, {"href", "http://"}, {"URL", "http://"}},
    {0x4C, {"href", "https://"}, {"URL", "https://"}},
    {0x4D, {"value", ""}, {"VALUE", ""}},
    {0x4E, {"vspace", ""}, {"VSPACE", ""}},
    {0x4F, {"width", ""}, {"WIDTH", ""}},
    {0x50, {"xml:lang", ""}, {"xml:lang", ""}},
    {0x52, {"align", ""}, {}},
    {0x53, {"columns", ""}, {}},
    {0x54, {"class", ""}, {}},
    {0x55, {"id", ""}, {}},
    {0x56, {"forua", "false"}, {}},
    {0x57, {"forua", "true"}, {}},
    {0x58, {"src", "http://"}, {}},
    {0x59, {"src", "https://"}, {}},
    {0x5A, {"http-equiv", ""}, {}},
    {0x5B, {"http-equiv", "Content-Type"}, {}},
    {0x5C, {"content", "application/vnd.wap.wmlc;charset="}, {}},
    {0x5D, {"http-equiv", "Expires"}, {}},
    {0x5E, {"accesskey", ""}, {}},
    {0x5F, {"enctype", ""}, {}},
    {0x60, {"enctype", "application/x-www-form-urlencoded"}, {}},
    {0x61, {"enctype", "multipart/form-data"}, {}},
    {0x62, {"xml:space", "preserve"}, {}},
    {0x63, {"xml:space", "default"}, {}},
    {0x64, {"cache-control", "no-cache"}, {}},
};

struct ValueRow {
  std::uint8_t code;
  std::string_view value;
  std::string_view valueOf10;
};

constexpr ValueRow kValues[] = {
    {0x85, ".com/", ".com/"},
    {0x86, ".edu/", ".edu/"},
    {0x87, ".net/", ".net/"},
    {0x88, ".org/", ".org/"},
    {0x89, "accept", "ACCEPT"},
    {0x8A, "bottom", "BOTTOM"},
    {0x8B, "clear", "CLEAR"},
    {0x8C, "delete", "DELETE"},
    {0x8D, "help", "HELP"},
    {0x8E, "http://", "http://"},
    {0x8F, "http://www.", "http://www."},
    {0x90, "https://", "https://"},
    {0x91, "https://www.", "https://www."},
    {0x92, "", "LIST"},
    {0x93, "middle", "MIDDLE"},
    {0x94, "nowrap", "NOWRAP"},
    {0x95, "onpick", "ONCLICK"},
    {0x96, "onenterbackward", "ONENTERBACKWARD"},
    {0x97, "onenterforward", "ONENTERFORWARD"},
    {0x98, "ontimer", "ONTIMER"},
    {0x99, "options", "OPTIONS"},
    {0x9A, "password", "PASSWORD"},
    {0x9B, "reset", "RESET"},
    {0x9C, "", "SET"},
    {0x9D, "text", "TEXT"},
    {0x9E, "top", "TOP"},
    {0x9F, "unknown", "UNKNOWN"},
    {0xA0, "wrap", "WRAP"},
    {0xA1, "www.", "www."},
};

struct DocumentTypeRow {
  std::uint32_t number;
  WmlDocumentType type;
};

constexpr DocumentTypeRow kDocumentTypes[] = {
    {0x0002, {"-//WAPFORUM//DTD WML 1.0//EN", "http://www.wapforum.org/DTD/wml.xml", true}},
    {0x0004, {"-//WAPFORUM//DTD WML 1.1//EN", "http://www.wapforum.org/DTD/wml_1.1.xml", false}},
    {0x0009, {"-//WAPFORUM//DTD WML 1.2//EN", "http://www.wapforum.org/DTD/wml12.dtd", false}},
    {0x000A, {"-//WAPFORUM//DTD WML 1.3//EN", "http://www.wapforum.org/DTD/wml13.dtd", false}},
    {0x1108, {"-//PHONE.COM//DTD WML 1.1//EN", "http://www.phone.com/dtd/wml11.dtd", false}},
    {0x110D, {"-//PHONE.COM//DTD WML 1.3//EN", "http://www.openwave.com/dtd/wml13.dtd", false}},
};

template <typename Row>
const Row *FindRow(const Row *begin, const Row *end, WbxmlName name) {
  if (name.page != 0) return nullptr;
  const Row *row = std::lower_bound(
      begin, end, name.code, [](const Row &entry, std::uint8_t code) { return entry.code < code; });
  return row != end && row->code == name.code ? row : nullptr;
}

}  // namespace

std::string_view FindWmlTag(WbxmlName name, bool wml10) {
  const TagRow *row = FindRow(std::begin(kTags), std::end(kTags), name);
  if (row == nullptr) return {};
  return wml10 && !row->nameOf10.empty() ? row->nameOf10 : row->name;
}

WmlAttribute FindWmlAttribute(WbxmlName name, bool wml10) {
  const AttributeRow *row = FindRow(std::begin(kAttributes), std::end(kAttributes), name);
  if (row == nullptr) return {};
  return wml10 && !row->attributeOf10.name.empty() ? row->attributeOf10 : row->attribute;
}

std::string_view FindWmlValue(WbxmlName name, bool wml10) {
  const ValueRow *row = FindRow(std::begin(kValues), std::end(kValues), name);
  if (row == nullptr) return {};
  return wml10 ? row->valueOf10 : row->value;
}

std::optional<WmlDocumentType> FindWmlDocumentType(const WbxmlHeader &header) {
  for (const DocumentTypeRow &row : kDocumentTypes) {
    const bool same = header.publicId == 0 ? row.type.publicId == header.publicName
                                           : row.number == header.publicId;
    if (same) return row.type;
  }
  return std::nullopt;
}

}  // namespace vs_wml
