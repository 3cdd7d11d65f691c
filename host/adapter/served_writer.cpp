// SPDX-License-Identifier: MIT
#include "host/adapter/served_writer.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "host/adapter/ascii.h"
#include "host/utf8.h"

namespace vs_wml {
namespace {

constexpr std::string_view kScheme = "unwml:";
constexpr std::string_view kKinds = "afp";

struct Tags {
  std::string_view start;
  std::string_view end;
};

constexpr std::array<Tags, kStyleCount> kStyleTags = {{{"<b>", "</b>"},
                                                       {"<big>", "</big>"},
                                                       {"<em>", "</em>"},
                                                       {"<i>", "</i>"},
                                                       {"<pre>", "</pre>"},
                                                       {"<small>", "</small>"},
                                                       {"<strong>", "</strong>"},
                                                       {"<u>", "</u>"}}};

enum class Place { kText, kAttribute };

// What is special in text is a dollar, in an attribute a quote.
void AppendSpecial(std::string &served, char c, Place place) {
  switch (c) {
    case '<':
      served += "&lt;";
      break;
    case '>':  // in text, "/>" would end an element of the filter's
      served += "&gt;";
      break;
    case '&':
      served += "&amp;";
      break;
    case '"':
      served += place == Place::kText ? "\"" : "&quot;";
      break;
    case '$':
      served += place == Place::kText ? "$$" : "$";
      break;
    default:
      served += c;
  }
}

// The bytes that are served as they are, wherever they stand.
constexpr auto kPlain = [] {
  std::array<bool, 256> plain{};
  for (std::size_t byte = 0x20; byte < plain.size(); ++byte) plain[byte] = byte != 0x7F;
  for (const char special : {'<', '>', '&', '"', '$'})
    plain[static_cast<unsigned char>(special)] = false;
  plain[0xC2] = false;  // may begin a control character
  return plain;
}();

// Control characters are left out, white space in text excepted: some switch the filter's
// character set, others a terminal's.
void AppendEscaped(std::string &served, std::string_view text, Place place) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    const std::size_t start = at;
    while (at < text.size() && kPlain[static_cast<unsigned char>(text[at])]) ++at;
    served += text.substr(start, at - start);
    if (at == text.size()) return;
    const auto byte = static_cast<unsigned char>(text[at]);
    const bool highControl =
        byte == 0xC2 && at + 1 < text.size() && static_cast<unsigned char>(text[at + 1]) < 0xA0;
    if (highControl) ++at;
    const bool keptControl = place == Place::kText && IsWhiteSpace(text[at]);
    if (highControl || (byte < 0x20 && !keptControl) || byte == 0x7F) continue;
    AppendSpecial(served, text[at], place);
  }
}

}  // namespace

std::string ServedTarget(const ServedReference &reference) {
  std::string target(kScheme);
  target += static_cast<char>(reference.kind);
  target += ':';
  target += std::to_string(reference.index);
  return target;
}

std::string ServedAttribute(std::string_view name, std::string_view value) {
  if (value.empty()) return {};
  std::string attribute = ' ' + std::string(name) + "=\"";
  AppendEscaped(attribute, value, Place::kAttribute);
  return attribute += '"';
}

std::optional<ServedReference> ParseServedTarget(std::string_view target) {
  const std::size_t digits = kScheme.size() + 2;
  if (target.size() <= digits || target.substr(0, kScheme.size()) != kScheme) return std::nullopt;
  const char kind = target[kScheme.size()];
  if (kKinds.find(kind) == std::string_view::npos || target[digits - 1] != ':') return std::nullopt;
  ServedReference reference;
  reference.kind = static_cast<ServedKind>(kind);
  const char *end = target.data() + target.size();
  const auto result = std::from_chars(target.data() + digits, end, reference.index);
  if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
  return reference;
}

void ServedWriter::BeginCard() {
  served_ += "<card>";
  Push(Element::kCard);
}

void ServedWriter::CloseAll() {
  CloseLink();
  CloseTable();
  for (std::size_t style = 0; style < kStyleCount; ++style) {
    if (styleDepth_[style] == 0) continue;
    styleDepth_[style] = 1;
    CloseStyle(static_cast<Style>(style));
  }
  whiteSpace_.clear();
}

void ServedWriter::EndCard() {
  CloseStructure(Element::kCard);
}

void ServedWriter::Text(std::string_view text) {
  const std::size_t end = LengthWithoutWhiteSpace(text);
  const std::string_view behind = text.substr(end);
  text = text.substr(0, end);
  if (!text.empty() && AnythingBeforeContent()) {
    const std::size_t first = SkipWhiteSpace(text, 0);
    whiteSpace_ += text.substr(0, first);
    text.remove_prefix(first);
    BeforeContent();
  }
  AppendEscaped(served_, text, Place::kText);
  if (!behind.empty()) whiteSpace_ += behind;
}

void ServedWriter::Character(char32_t character) {
  BeforeContent();
  if (character < 0x80) {
    AppendSpecial(served_, static_cast<char>(character), Place::kText);
  } else {
    AppendUtf8(served_, character);
  }
}

void ServedWriter::NamedReference(std::string_view reference) {
  BeforeContent();
  served_ += reference;
}

void ServedWriter::OpenStyle(Style style) {
  if (styleDepth_[static_cast<std::size_t>(style)]++ != 0) return;
  if (style == Style::kPre) StartParagraph();  // none can start inside
  FlushWhiteSpace();
  Push(Element::kStyle, style);
  served_ += kStyleTags[static_cast<std::size_t>(style)].start;
}

void ServedWriter::CloseStyle(Style style) {
  std::uint32_t &depth = styleDepth_[static_cast<std::size_t>(style)];
  if (depth == 0) return;
  if (depth == 1) {
    FlushWhiteSpace();
    if (!CloseInline(Element::kStyle, style)) return;
  }
  --depth;
}

void ServedWriter::Paragraph(std::string_view attributes) {
  FlushWhiteSpace();
  paragraphEnded_ = false;
  served_ += "<p";
  served_ += attributes;
  served_ += '>';
}

void ServedWriter::LineBreak() {
  StartParagraph();
  FlushWhiteSpace();
  served_ += "<br/>";
}

void ServedWriter::Image(std::size_t picture, std::string_view attributes) {
  BeforeContent();
  served_ += "<img src=\"" + ServedTarget({ServedKind::kPicture, picture}) + '"';
  served_ += attributes;
  served_ += "/>";
}

void ServedWriter::OpenLink(std::size_t action) {
  CloseLink();
  link_ = action;
  linkHasContent_ = false;
}

void ServedWriter::CloseLink() {
  if (link_ == kNoIndex) return;
  if (IsOpen(Element::kLink)) {
    CloseInline(Element::kLink, {});
  } else if (!linkHasContent_) {
    FlushWhiteSpace();
    WriteMarker({ServedKind::kAction, link_}, {});
  }
  link_ = kNoIndex;
}

void ServedWriter::InterruptLink() {
  if (IsOpen(Element::kLink)) CloseInline(Element::kLink, {});
}

void ServedWriter::Marker(const ServedReference &reference, std::string_view text) {
  if (InTable() && !InCell()) {
    deferred_.push_back({reference, std::string(text)});
    return;
  }
  InterruptLink();
  StartParagraph();
  FlushWhiteSpace();
  WriteMarker(reference, text);
}

void ServedWriter::WriteMarker(const ServedReference &reference, std::string_view text) {
  WriteLinkStart(reference);
  AppendEscaped(served_, text, Place::kText);
  served_ += "</a>";
}

void ServedWriter::OpenTable(std::size_t columns, std::string_view attributes) {
  paragraphEnded_ = false;
  InterruptLink();
  FlushWhiteSpace();
  served_ += "<table columns=\"" + std::to_string(columns) + '"';
  served_ += attributes;
  served_ += '>';
  Push(Element::kTable);
}

void ServedWriter::OpenRow() {
  CloseRow();
  served_ += "<tr>";
  Push(Element::kRow);
}

void ServedWriter::OpenCell() {
  CloseCell();
  if (!IsOpen(Element::kRow)) OpenRow();
  served_ += "<td>";
  Push(Element::kCell);
}

void ServedWriter::CloseTable() {
  CloseStructure(Element::kTable);
  for (const Deferred &entry : deferred_) WriteMarker(entry.reference, entry.text);
  deferred_.clear();
}

void ServedWriter::Push(Element element, Style style) {
  open_.push_back({element, style});
  ++openCount_[static_cast<std::size_t>(element)];
}

// The filter takes no notice of the end of a paragraph; what follows it starts another.
void ServedWriter::StartParagraph() {
  if (paragraphEnded_) Paragraph({});
}

void ServedWriter::BeforeContent() {
  StartParagraph();
  FlushWhiteSpace();
  if (link_ == kNoIndex) return;
  linkHasContent_ = true;
  if (IsOpen(Element::kLink)) return;
  WriteLinkStart({ServedKind::kAction, link_});
  Push(Element::kLink);
}

void ServedWriter::FlushWhiteSpace() {
  if (whiteSpace_.empty()) return;
  served_ += whiteSpace_;
  whiteSpace_.clear();
}

void ServedWriter::WriteLinkStart(const ServedReference &reference) {
  served_ += "<a href=\"";
  served_ += ServedTarget(reference);
  served_ += "\">";
}

void ServedWriter::WriteEnd(const Open &open) {
  switch (open.element) {
    case Element::kStyle:
      served_ += kStyleTags[static_cast<std::size_t>(open.style)].end;
      break;
    case Element::kLink:
      served_ += "</a>";
      break;
    case Element::kTable:
      served_ += "</table>";
      break;
    case Element::kRow:
      served_ += "</tr>";
      break;
    case Element::kCell:
      served_ += "</td>";
      break;
    case Element::kCard:
      served_ += "</card>";
      break;
  }
}

// Closes a style or the link, if it was opened in the same cell. Styles that were
// opened in it go on behind it; a link is opened again by its next content.
bool ServedWriter::CloseInline(Element element, Style style) {
  std::size_t first = open_.size();
  do {
    if (first == 0) return false;
    const Open &open = open_[--first];
    if (open.element == element && (element == Element::kLink || open.style == style)) break;
    if (open.element != Element::kStyle && open.element != Element::kLink) return false;
  } while (true);
  for (std::size_t i = open_.size(); i > first; --i) WriteEnd(open_[i - 1]);
  --openCount_[static_cast<std::size_t>(element)];
  std::size_t kept = first;
  for (std::size_t i = first + 1; i < open_.size(); ++i) {
    const Open inner = open_[i];
    if (inner.element == Element::kStyle) {
      served_ += kStyleTags[static_cast<std::size_t>(inner.style)].start;
      open_[kept++] = inner;
    } else {
      --openCount_[static_cast<std::size_t>(inner.element)];
    }
  }
  open_.resize(kept);
  return true;
}

// Closes an element of the structure with all that is open in it. White space is
// written inside, except that none is needed between the parts of a table.
void ServedWriter::CloseStructure(Element element) {
  if (!IsOpen(element)) return;
  paragraphEnded_ = false;
  FlushWhiteSpace();
  Open open{};
  do {
    open = open_.back();
    open_.pop_back();
    --openCount_[static_cast<std::size_t>(open.element)];
    WriteEnd(open);
    if (open.element == Element::kStyle) styleDepth_[static_cast<std::size_t>(open.style)] = 0;
  } while (open.element != element);
}

}  // namespace vs_wml
