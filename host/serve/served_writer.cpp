// SPDX-License-Identifier: MIT
#include "host/serve/served_writer.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <utility>

#include "host/text/ascii.h"
#include "host/text/plain_text.h"
#include "host/text/utf8.h"

namespace vs_wml {
namespace {

constexpr std::string_view kScheme = "unwml:";
constexpr std::string_view kKinds = "afp";
constexpr std::string_view kCellEnd = "</td>";
constexpr std::string_view kRowEnd = "</tr>";
static_assert(kCellEnd.size() == kRowEnd.size());

// A tag with what is behind it in memory, see TextBuffer::AddFrom.
using Tag = std::array<char, 32>;

constexpr Tag StyleTag(std::string_view start, std::string_view name) {
  Tag tag{};
  std::copy(name.begin(), name.end(), std::copy(start.begin(), start.end(), tag.begin()));
  tag[start.size() + name.size()] = '>';
  return tag;
}

struct StyleTags {
  Tag start;
  Tag end;
  std::size_t nameLength;
};

constexpr StyleTags TagsOf(std::string_view name) {
  return {StyleTag("<", name), StyleTag("</", name), name.size()};
}

constexpr std::array<StyleTags, kStyleCount> kStyleTags = {
    TagsOf("b"),   TagsOf("big"),   TagsOf("em"),     TagsOf("i"),
    TagsOf("pre"), TagsOf("small"), TagsOf("strong"), TagsOf("u")};

void WriteStyleStart(TextBuffer &served, Style style) {
  const auto &[start, end, nameLength] = kStyleTags[static_cast<std::size_t>(style)];
  served.AddFrom({start.data(), nameLength + 2}, start.size());
}

void WriteStyleEnd(TextBuffer &served, Style style) {
  const auto &[start, end, nameLength] = kStyleTags[static_cast<std::size_t>(style)];
  served.AddFrom({end.data(), nameLength + 3}, end.size());
}

void AddSpecial(TextBuffer &served, char c) {
  switch (c) {
    case '<':
      served.Add("&lt;");
      break;
    case '>':  // in text, "/>" would end an element of the filter's
      served.Add("&gt;");
      break;
    case '&':
      served.Add("&amp;");
      break;
    case '$':
      served.Add("$$");
      break;
    default:
      served.Add(c);
  }
}

// Control characters are left out, white space excepted: some switch the filter's character
// set, others a terminal's.
void AddEscaped(TextBuffer &served, std::string_view text) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    const std::size_t plain = PlainLength(text.substr(at));
    served.Add(text.substr(at, plain));
    at += plain;
    if (at == text.size()) return;
    const auto byte = static_cast<unsigned char>(text[at]);
    const bool highControl =
        byte == 0xC2 && at + 1 < text.size() && static_cast<unsigned char>(text[at + 1]) < 0xA0;
    if (highControl) ++at;
    if (highControl || (byte < 0x20 && !IsWhiteSpace(text[at])) || byte == 0x7F) continue;
    AddSpecial(served, text[at]);
  }
}

void AddNumber(TextBuffer &served, std::size_t number) {
  std::array<char, std::numeric_limits<std::size_t>::digits10 + 1> digits;
  const auto end = std::to_chars(digits.begin(), digits.end(), number).ptr;
  served.Add({digits.begin(), end});
}

void AddTarget(TextBuffer &served, const ServedReference &reference) {
  served.Add(kScheme);
  served.Add(static_cast<char>(reference.kind));
  served.Add(':');
  AddNumber(served, reference.index);
}

}  // namespace

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

void ServedWriter::BeginCard(std::size_t card) {
  served_.Add("<card>");
  tags_.cards.push_back({served_.Size(), card});
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
  served_.Truncate(served_.Size() - std::exchange(whiteSpace_, 0));
}

void ServedWriter::EndCard() {
  CloseStructure(Element::kCard);
}

void ServedWriter::Text(std::string_view text) {
  AddEscaped(served_, BeginText(text));
}

void ServedWriter::PlainText(std::string_view text, std::size_t readable) {
  const std::string_view rest = BeginText(text);
  served_.AddFrom(rest, readable - (text.size() - rest.size()));
}

// What is to be written of the text behind its white space, and what comes before content.
std::string_view ServedWriter::BeginText(std::string_view text) {
  const std::size_t length = LengthWithoutWhiteSpace(text);
  if (length == 0) {
    whiteSpace_ += text.size();
    return text;
  }
  if (OutsideCells()) EnsureCell();
  const std::size_t blanks = text.size() - length;
  if (paragraphEnded_ || link_ != kNoIndex) {
    const std::size_t first = SkipWhiteSpace(text, 0);
    served_.Add(text.substr(0, first));
    BeforeContent();
    text.remove_prefix(first);
  }
  whiteSpace_ = blanks;
  return text;
}

void ServedWriter::Character(char32_t character) {
  BeforeContent();
  if (character < 0x80) {
    AddSpecial(served_, static_cast<char>(character));
  } else {
    std::string bytes;
    AppendUtf8(bytes, character);
    served_.Add(bytes);
  }
}

void ServedWriter::NamedReference(std::string_view reference) {
  BeforeContent();
  served_.Add(reference);
}

void ServedWriter::OpenStyle(Style style) {
  if (styleDepth_[static_cast<std::size_t>(style)]++ != 0) return;
  if (style == Style::kPre) StartParagraph();  // none can start inside
  whiteSpace_ = 0;
  Push(Element::kStyle, style);
  WriteStyleStart(served_, style);
}

void ServedWriter::CloseStyle(Style style) {
  std::uint32_t &depth = styleDepth_[static_cast<std::size_t>(style)];
  if (depth == 0) return;
  if (depth == 1) {
    whiteSpace_ = 0;
    if (!CloseInline(Element::kStyle, style)) return;
  }
  --depth;
}

void ServedWriter::Paragraph(std::string_view attributes) {
  whiteSpace_ = 0;
  paragraphEnded_ = false;
  served_.Add("<p");
  served_.Add(attributes);
  served_.Add('>');
}

void ServedWriter::LineBreak() {
  StartParagraph();
  whiteSpace_ = 0;
  served_.Add("<br/>");
}

void ServedWriter::Image(std::size_t picture, std::string_view attributes) {
  BeforeContent();
  served_.Add("<img src=\"");
  AddTarget(served_, {ServedKind::kPicture, picture});
  served_.Add('"');
  served_.Add(attributes);
  served_.Add("/>");
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
    whiteSpace_ = 0;
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
  whiteSpace_ = 0;
  WriteMarker(reference, text);
}

void ServedWriter::WriteMarker(const ServedReference &reference, std::string_view text) {
  WriteLinkStart(reference);
  AddEscaped(served_, text);
  served_.Add("</a>");
}

void ServedWriter::OpenTable(std::size_t columns, std::string_view attributes, std::string title,
                             std::string align) {
  paragraphEnded_ = false;
  InterruptLink();
  whiteSpace_ = 0;
  served_.Add("<table columns=\"");
  AddNumber(served_, columns);
  served_.Add('"');
  served_.Add(attributes);
  served_.Add('>');
  tags_.tables.push_back({served_.Size(), std::move(title), std::move(align), {}});
  Push(Element::kTable);
  columns_ = columns;
}

void ServedWriter::OpenRow() {
  CloseRow();
  BeforeWhiteSpace([this] {
    LeaveOutPartEnd();
    served_.Add("<tr>");
  });
  Push(Element::kRow);
  rowCells_ = 0;
}

void ServedWriter::OpenCell() {
  CloseCell();
  if (!IsOpen(Element::kRow)) OpenRow();
  if (rowCells_ == columns_ && ResumeCell()) return;
  ++rowCells_;
  BeforeWhiteSpace([this] {
    LeaveOutPartEnd();
    served_.Add("<td>");
  });
  Push(Element::kCell);
}

void ServedWriter::CloseTable() {
  CloseStructure(Element::kTable);
  for (const Deferred &entry : deferred_) WriteMarker(entry.reference, entry.text);
  deferred_.clear();
}

// White space stays at the end of what is served, so that it can be left out there.
template <typename Write>
void ServedWriter::BeforeWhiteSpace(Write write) {
  if (whiteSpace_ == 0) {
    write();
    return;
  }
  const std::size_t words = served_.Size() - whiteSpace_;
  const std::string blanks(served_.View().substr(words));
  served_.Truncate(words);
  write();
  served_.Add(blanks);
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
  if (OutsideCells()) EnsureCell();
  StartParagraph();
  whiteSpace_ = 0;
  if (link_ == kNoIndex) return;
  linkHasContent_ = true;
  if (IsOpen(Element::kLink)) return;
  WriteLinkStart({ServedKind::kAction, link_});
  Push(Element::kLink);
}

// Content outside of the cells of a table would not be shown.
void ServedWriter::EnsureCell() {
  if (!IsOpen(Element::kRow) || !ResumeCell()) OpenCell();
}

// Goes on in the row's last cell, if nothing else was written behind it.
bool ServedWriter::ResumeCell() {
  if (rowCells_ == 0 || served_.Size() - whiteSpace_ != partEnd_) return false;
  BeforeWhiteSpace([this] { LeaveOutPartEnd(); });
  if (whiteSpace_ == 0) served_.Add(' ');
  Push(Element::kCell);
  return true;
}

// Takes the end of a cell or a row back, if nothing was written behind it.
void ServedWriter::LeaveOutPartEnd() {
  if (served_.Size() != partEnd_) return;
  served_.Truncate(partEnd_ - kCellEnd.size());
  partEnd_ = 0;
}

void ServedWriter::AddPartEnd(std::string_view tag) {
  LeaveOutPartEnd();
  served_.Add(tag);
  partEnd_ = served_.Size();
}

void ServedWriter::WriteLinkStart(const ServedReference &reference) {
  served_.Add("<a href=\"");
  AddTarget(served_, reference);
  served_.Add("\">");
}

void ServedWriter::WriteEnd(const Open &open) {
  switch (open.element) {
    case Element::kStyle:
      WriteStyleEnd(served_, open.style);
      break;
    case Element::kLink:
      served_.Add("</a>");
      break;
    case Element::kTable:
      LeaveOutPartEnd();
      served_.Add("</table>");
      break;
    case Element::kRow:
      tags_.tables.back().rowCells.push_back(static_cast<std::uint8_t>(rowCells_));
      AddPartEnd(kRowEnd);
      break;
    case Element::kCell:
      AddPartEnd(kCellEnd);
      break;
    case Element::kCard:
      served_.Add("</card>");
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
  BeforeWhiteSpace([&] { CloseAndReopen(first); });
  return true;
}

// Closes what is open from `first` on, and opens the styles behind the first again.
void ServedWriter::CloseAndReopen(std::size_t first) {
  for (std::size_t i = open_.size(); i > first; --i) WriteEnd(open_[i - 1]);
  --openCount_[static_cast<std::size_t>(open_[first].element)];
  std::size_t kept = first;
  for (std::size_t i = first + 1; i < open_.size(); ++i) {
    const Open inner = open_[i];
    if (inner.element == Element::kStyle) {
      WriteStyleStart(served_, inner.style);
      open_[kept++] = inner;
    } else {
      --openCount_[static_cast<std::size_t>(inner.element)];
    }
  }
  open_.resize(kept);
}

// Closes an element of the structure with all that is open in it. White space is
// written inside, except that none is needed between the parts of a table.
void ServedWriter::CloseStructure(Element element) {
  if (!IsOpen(element)) return;
  paragraphEnded_ = false;
  whiteSpace_ = 0;
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
