// SPDX-License-Identifier: MIT
#include "host/writers/trace.h"

#include <array>
#include <cstdio>
#include <iterator>
#include <span>

#include "host/platform/charsets.h"

namespace vs_wml {
namespace {

// A run of characters longer than this goes on in the next line.
constexpr std::size_t kLineCharacters = 80;

struct Name {
  std::uint32_t value;
  std::string_view name;
};

constexpr Name kBreaks[] = {{SO_BREAK_PARAGRAPH, "paragraph"},
                            {SO_BREAK_DOCUMENT, "document"},
                            {SO_BREAK_ROW, "row"},
                            {SO_BREAK_CELL, "cell"}};
constexpr Name kControlCodes[] = {{SO_CONTROL_TAB, "tab"}, {SO_CONTROL_CARD, "card"}};
constexpr Name kFamilies[] = {{SO_FAMILY_NATIONAL, "national"},
                              {SO_FAMILY_ROMAN, "roman"},
                              {SO_FAMILY_HELVETICA, "helvetica"},
                              {SO_FAMILY_COURIER, "courier"}};
constexpr Name kAttributes[] = {
    {PROP_ATTR_BOLD, "bold"}, {PROP_ATTR_ITALIC, "italic"}, {PROP_ATTR_UNDERLINE, "underline"}};
constexpr Name kSwitch[] = {{0, "off"}, {1, "on"}};
constexpr Name kAlignments[] = {{PROP_ALIGN_LEFT, "left"},
                                {PROP_ALIGN_RIGHT, "right"},
                                {PROP_ALIGN_CENTER, "center"},
                                {PROP_ALIGN_JUSTIFIED, "justified"}};
constexpr Name kLayouts[] = {{PROP_LAYOUT_PREFORMATTED, "preformatted"},
                             {PROP_LAYOUT_ORDINARY, "ordinary"}};
constexpr Name kTableAlignments[] = {
    {SO_TABLE_LEFT, "left"}, {SO_TABLE_RIGHT, "right"}, {SO_TABLE_CENTER, "center"}};
std::string_view FindName(std::span<const Name> names, std::uint32_t value) {
  for (const Name &name : names) {
    if (name.value == value) return name.name;
  }
  return {};
}

std::string Hex(std::uint32_t value, int digits) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "%0*X", digits, static_cast<unsigned>(value));
  return text.data();
}

void AppendCharacter(std::string &text, std::uint32_t character) {
  const bool plain = character >= 0x20 && character < 0x7F && character != '"' && character != '\\';
  if (plain) {
    text += static_cast<char>(character);
  } else {
    text.append("\\{").append(Hex(character, 2)).append("}");
  }
}

std::string Element(std::string_view name, std::size_t index) {
  return std::string(name) + '[' + std::to_string(index) + ']';
}

/// A line under construction; every method appends an argument.
class Line {
 public:
  explicit Line(std::string_view routine) : text_(routine) {}

  const std::string &Text() const { return text_; }
  Line &Number(std::uint32_t value) { return Word(std::to_string(value)); }
  Line &Code(std::uint32_t value) { return Word("0x" + Hex(value, 1)); }
  Line &Named(std::span<const Name> names, std::uint32_t value) {
    const std::string_view name = FindName(names, value);
    return name.empty() ? Code(value) : Word(name);
  }
  Line &Quoted(const char *string) {
    std::string text;
    for (; *string != '\0'; ++string) AppendCharacter(text, static_cast<unsigned char>(*string));
    return Word('"' + text + '"');
  }
  Line &Field(std::string_view name, std::uint32_t value) {
    return Word(std::string(name) + '=' + std::to_string(value));
  }
  Line &Color(std::string_view name, std::uint32_t value) {
    return Word(std::string(name) + "=0x" + Hex(value, 6));
  }
  Line &NamedField(std::string_view name, std::span<const Name> names, std::uint32_t value) {
    const std::string_view text = FindName(names, value);
    return Word(std::string(name) + '=' +
                (text.empty() ? "0x" + Hex(value, 1) : std::string(text)));
  }
  /// Shows the value of something constant only if it is not what it ought to be.
  Line &Constant(std::string_view name, std::uint32_t value, std::uint32_t expected) {
    if (value == expected) return *this;
    return Word(std::string(name) + "!=0x" + Hex(value, 1));
  }
  Line &Constants(std::string_view name, std::span<const std::uint32_t> values) {
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (values[i] != 0) Constant(Element(name, i), values[i], 0);
    }
    return *this;
  }
  Line &Word(std::string_view word) {
    text_.append(1, ' ').append(word);
    return *this;
  }

 private:
  std::string text_;
};

std::string SideText(const SideDescription &side) {
  std::string text = std::to_string(side.width) + "/0x" + Hex(side.color, 6);
  if (side.hidden == 1) {
    text += "/hidden";
  } else if (side.hidden != 0) {
    text += "/hidden!=0x" + Hex(side.hidden, 1);
  }
  for (std::size_t i = 0; i < std::size(side.reserved); ++i) {
    if (side.reserved[i] != 0) {
      text += '/' + Element("reserved", i) + "!=0x" + Hex(side.reserved[i], 1);
    }
  }
  return text;
}

/// Four sides that are alike, as they nearly always are, are written once.
void AppendSides(Line &line, const SideDescription &left, const SideDescription &right,
                 const SideDescription &top, const SideDescription &bottom) {
  const std::string first = SideText(left);
  if (first == SideText(right) && first == SideText(top) && first == SideText(bottom)) {
    line.Word("sides=" + first);
    return;
  }
  line.Word("left=" + first).Word("right=" + SideText(right));
  line.Word("top=" + SideText(top)).Word("bottom=" + SideText(bottom));
}

}  // namespace

void Trace::Flush() {
  if (characters_.empty()) return;
  out_ << "SOEmitChar \"" << characters_ << "\"\n";
  characters_.clear();
}

void Trace::Note(std::string_view line) {
  Flush();
  out_ << line << '\n';
}

void Trace::EmitChar(std::uint32_t character) {
  AppendCharacter(characters_, character);
  if (characters_.size() >= kLineCharacters) Flush();
}

void Trace::EmitControlCode(std::uint32_t code) {
  Note(Line("SOEmitControlCode").Named(kControlCodes, code).Text());
}

void Trace::SetCharSize(std::uint32_t halfPoints) {
  Note(Line("SOSetCharSize").Number(halfPoints).Text());
}

void Trace::EmitBreak(std::uint32_t kind, std::uint32_t zero) {
  Note(Line("SOEmitBreak").Named(kBreaks, kind).Constant("zero", zero, 0).Text());
}

void Trace::DeclareSection(std::uint32_t zero0, std::uint32_t zero1, std::uint32_t zero2) {
  Note(Line("SODeclareSection")
           .Constant("zero0", zero0, 0)
           .Constant("zero1", zero1, 0)
           .Constant("zero2", zero2, 0)
           .Text());
}

void Trace::AbortStream(std::uint32_t zero) {
  Note(Line("SOAbortStream").Constant("zero", zero, 0).Text());
}

void Trace::SelectFontNumber(std::uint32_t fontNumber) {
  Note(Line("SOSelectFontNumber").Number(fontNumber).Text());
}

void Trace::SelectFontName(std::uint32_t one, const char *name) {
  Note(Line("SOSelectFontName").Quoted(name).Constant("one", one, 1).Text());
}

void Trace::OpenFontList() {
  Note(Line("SOOpenFontList").Text());
}

void Trace::AddFontListEntry(std::uint32_t fontNumber, std::uint32_t family, const char *name) {
  Note(Line("SOAddFontListEntry").Number(fontNumber).Named(kFamilies, family).Quoted(name).Text());
}

void Trace::CloseFontList() {
  Note(Line("SOCloseFontList").Text());
}

void Trace::OpenTable() {
  Note(Line("SOOpenTable").Text());
}

void Trace::CloseTable() {
  Note(Line("SOCloseTable").Text());
}

void Trace::InsertGraphic(const GraphicRecord &graphic) {
  Line line("SOInsertGraphic");
  line.Field("reference", graphic.referenceId);
  line.Word(graphic.sizeMode == SO_GRAPHIC_SIZED ? "sized" : "unsized");
  line.Field("width", graphic.width).Field("height", graphic.height);
  if (graphic.flags == SO_GRAPHIC_HAS_ALT) {
    line.Field("alternative", graphic.alternative);
  } else {
    line.Constant("flags", graphic.flags, 0)
        .Constant("alternative", graphic.alternative, 0xFFFFFFFF);
  }
  AppendSides(line, graphic.left, graphic.right, graphic.top, graphic.bottom);
  if (graphic.sizeMode != SO_GRAPHIC_SIZED) {
    line.Constant("sizeMode", graphic.sizeMode, SO_GRAPHIC_UNSIZED);
  }
  line.Constant("size", graphic.size, sizeof(GraphicRecord)).Constant("count", graphic.count, 1);
  line.Constant("displayWidth", graphic.displayWidth, graphic.width);
  line.Constant("displayHeight", graphic.displayHeight, graphic.height);
  line.Constant("reserved0", graphic.reserved0, 0).Constants("reserved1", graphic.reserved1);
  line.Constant("reserved2", graphic.reserved2, 0xFFFFFFFF);
  line.Constants("reserved3", graphic.reserved3);
  Note(line.Text());
}

void Trace::OpenLink(std::uint32_t code, std::uint32_t number, const VwLinkRecord &link) {
  Line line("SOOpenLink");
  line.Number(number).Field("reference", link.referenceId);
  if (link.flags == SO_LINK_HAS_TITLE) {
    line.Word("title");
  } else {
    line.Constant("flags", link.flags, 0);
  }
  line.Constant("code", code, SO_LINK_CODE);
  Note(line.Text());
}

void Trace::CloseLink(std::uint32_t code, std::uint32_t number) {
  Note(Line("SOCloseLink").Number(number).Constant("code", code, SO_LINK_CODE).Text());
}

void Trace::StoreString(const std::uint16_t *string, std::uint32_t code, std::uint32_t length,
                        std::uint32_t index) {
  std::string text;
  for (std::uint32_t i = 0; i < length; ++i) AppendCharacter(text, string[i]);
  Line line("SOStoreString");
  line.Word('"' + text + '"').Word("->").Number(index);
  line.Constant("code", code, SO_STRING_CODE).Constant("terminator", string[length], 0);
  Note(line.Text());
}

void Trace::DescribeRow(const RowDescription &row) {
  Line line("SODescribeRow");
  line.Field("columns", row.columnCount).NamedField("align", kTableAlignments, row.alignment);
  line.Field("inset", row.inset).Constant("one", row.one, 1).Constants("reserved", row.reserved);
  Note(line.Text());
}

void Trace::SetTextColor(std::uint32_t zero, std::uint32_t color) {
  Note(Line("SOSetTextColor").Word("0x" + Hex(color, 6)).Constant("zero", zero, 0).Text());
}

void Trace::SwitchCharset(std::uint32_t hostCharset) {
  const std::string_view name = NameOfHostCharset(hostCharset);
  Line line("SOSwitchCharset");
  Note((name.empty() ? line.Code(hostCharset) : line.Word(name)).Text());
}

void Trace::OpenReference(std::uint32_t id) {
  Note(Line("SOOpenReference").Word("->").Number(id).Text());
}

void Trace::DescribeCell(const CellDescription &cell) {
  Line line("SODescribeCell");
  line.Field("width", cell.width).Color("shade", cell.cellShade).Color("table", cell.tableShade);
  AppendSides(line, cell.left, cell.right, cell.top, cell.bottom);
  line.Constant("size", cell.size, sizeof(CellDescription)).Constants("reserved0", cell.reserved0);
  line.Constant("reserved1", cell.reserved1, 0).Constants("reserved2", cell.reserved2);
  line.Constant("constant1", cell.constant1, 13).Constant("constant2", cell.constant2, 255);
  Note(line.Text());
}

void Trace::SetProperty(std::uint32_t code, std::uint32_t a, std::uint32_t b, std::uint32_t c) {
  Line line("SOSetProperty");
  const auto rest = [&](std::uint32_t expectedA, std::uint32_t expectedB, std::uint32_t expectedC) {
    line.Constant("a", a, expectedA).Constant("b", b, expectedB).Constant("c", c, expectedC);
  };
  switch (code) {
    case PROP_CHAR_ATTRIBUTE:
      line.Named(kAttributes, a).Named(kSwitch, b);
      rest(a, b, 0);
      break;
    case PROP_ALIGNMENT:
      line.Word("alignment").Named(kAlignments, a);
      rest(a, 0, 0);
      break;
    case PROP_ALIGNMENT_DONE:
      line.Word("alignment-done");
      rest(0, 0, 2);
      break;
    case PROP_SECTION_END:
      line.Word("section-end");
      rest(136, 0, 0);
      break;
    case PROP_LAYOUT:
      line.Word("layout").Named(kLayouts, a);
      rest(a, 0, 0);
      break;
    case PROP_REFERENCE_TARGET:
      line.Word("reference-target").Field("string", b);
      rest(128, b, 0);
      break;
    case PROP_REFERENCE_END:
      line.Word("reference-end");
      rest(0, 0, 0);
      break;
    default:
      line.Code(code).Code(a).Code(b).Code(c);
  }
  Note(line.Text());
}

}  // namespace vs_wml
