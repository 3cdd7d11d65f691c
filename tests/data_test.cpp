// The constant tables: their order, ids and content, and the searches that rely on it.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>

#include "filter/attributes/length.h"
#include "filter/data/ascii.h"
#include "filter/data/name_lookup.h"
#include "filter/ground/instance.h"
#include "filter/input/charset.h"
#include "filter/lexer/reference.h"
#include "filter/tables/column_widths.h"
#include "host/platform/charsets.h"
#include "host/writers/trace.h"

namespace vs_wml::test {
namespace {

/// The tables as text, a row a line.
class TableText {
 public:
  template <typename Table, typename Line>
  void Add(const char *name, const Table &table, const Line &line) {
    text_ << '[' << name << "]\n" << std::hex;
    for (const auto &row : table) line(text_, row);
  }
  std::string Text() const { return text_.str(); }

 private:
  std::ostringstream text_;
};

void NameLine(std::ostream &out, const NameRecord &row) {
  out << row.name << ' ' << row.value << '\n';
}

void NumberLine(std::ostream &out, const NumberedName &row) {
  out << row.number << ' ' << row.name << '\n';
}

void EscapeLine(std::ostream &out, const EscapeRecord &row) {
  out << row.sequence << ' ' << row.action << '\n';
}

void UnitLine(std::ostream &out, std::uint16_t unit) {
  out << unit << '\n';
}

void StyleLine(std::ostream &out, const StyleRecord &row) {
  out << +row.templateId << " size " << +row.pointSize << " attributes " << row.charAttrs
      << " modes " << row.modeBits << " level " << row.level << " typeface " << +row.typeface
      << " paragraph " << +row.paraFlags << " reserved " << row.reserved << '\n';
}

std::string TablesAsText() {
  TableText text;
  text.Add("keywords", WmlInit.keywords, NumberLine);
  text.Add("units", WmlInit.units, NumberLine);
  text.Add("escapes", WmlInit.escapes, EscapeLine);
  text.Add("highControls", WmlInit.highControls, UnitLine);
  text.Add("colors", WmlInit.colors, NameLine);
  text.Add("widths", WmlInit.widths, UnitLine);
  text.Add("tags", WmlInit.tags, NameLine);
  text.Add("attributes", WmlInit.attributes, NameLine);
  text.Add("entities", WmlInit.entities, NameLine);
  text.Add("styleTemplates", WmlInit.styleTemplates, StyleLine);
  text.Add("charsetNames", WmlInit.charsetNames, NameLine);
  return text.Text();
}

// Numbers are hexadecimal. VS_WML_UPDATE_CASES=1 writes the file.
TEST(Tables, AreAsInTheirText) {
  const std::string text = TablesAsText();
  if (std::getenv("VS_WML_UPDATE_CASES") != nullptr) std::ofstream(VS_WML_TABLES_TEXT) << text;
  std::ostringstream golden;
  golden << std::ifstream(VS_WML_TABLES_TEXT).rdbuf();
  EXPECT_EQ(text, golden.str());
}

// One name stands twice, the second time out of order.
TEST(Tables, CharsetNamesAreSortedButForOne) {
  std::set<std::string> names;
  for (std::size_t i = 0; i < std::size(WmlInit.charsetNames); ++i) {
    const NameRecord &record = WmlInit.charsetNames[i];
    std::string name = record.name;
    strToLwr(name.data());
    if (!names.insert(name).second) {
      EXPECT_EQ(i, 69u);
      EXPECT_STREQ(record.name, "x-mac-ce");
      continue;
    }
    EXPECT_EQ(name, *names.rbegin()) << "sorted";
  }
}

std::string Upper(std::string text) {
  for (char &c : text) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
  return text;
}

TEST(Lookup, FindsEveryNameAndNothingElse) {
  for (const NameRecord &tag : WmlInit.tags) {
    const auto id = static_cast<std::uint8_t>(tag.value);
    EXPECT_EQ(&WmlInit.tags[id], &tag) << "a tag's row is its id";
    EXPECT_EQ(IDTag(tag.name), id);
    EXPECT_EQ(IDTag(Upper(tag.name).c_str()), id);
    EXPECT_EQ(IDTag((std::string(tag.name) + "z").c_str()), 0);
  }
  for (const NameRecord &attribute : WmlInit.attributes) {
    EXPECT_EQ(IDAttrib(attribute.name), attribute.value);
    EXPECT_EQ(IDAttrib(Upper(attribute.name).c_str()), attribute.value);
    EXPECT_EQ(IDAttrib((std::string(attribute.name) + "z").c_str()), 0);
  }
  for (const NameRecord &entity : WmlInit.entities) {
    EXPECT_LE(std::string(entity.name).size(), 8u);
    EXPECT_EQ(IDEntity(entity.name), entity.value);
    EXPECT_EQ(IDEntity((std::string(entity.name) + "\x7F").c_str()), 0);
  }
  for (const NameRecord &charset : WmlInit.charsetNames) {
    EXPECT_EQ(QueryCharsetTable(Upper(charset.name).c_str()), charset.value);
    EXPECT_EQ(QueryCharsetTable((std::string(charset.name) + ' ').c_str()), CHARSET_UTF8);
    EXPECT_FALSE(NameOfHostCharset(MapCSToSO(static_cast<std::uint16_t>(charset.value))).empty());
  }
  for (const char *name : {"", "AMP", "Amp", "euro", "blink", "utf-8", "\xFF"}) {
    EXPECT_EQ(IDTag(name), 0);
    EXPECT_EQ(IDAttrib(name), 0);
    EXPECT_EQ(IDEntity(name), 0);
    EXPECT_EQ(QueryCharsetTable(name), CHARSET_UTF8);
  }
}

TEST(Charsets, ThatHaveNoNameHaveHostCodesToo) {
  const struct {
    std::uint16_t id;
    std::uint32_t host;
  } codes[] = {{0x801F, 0x80050100}, {0x8022, 0x80080100}, {0x8023, 0x80090100},
               {0x8024, 0x800A0100}, {0x4003, 0x13A40000}, {0x401A, 0x15510000},
               {0x2007, 0x14B00000}, {0x1000, 0x14B00000}, {0, 0x14B00000},
               {0xFFFF, 0x14B00000}, {0x9002, 0x14B00000}, {0x8025, 0x14B00000}};
  for (const auto &[id, host] : codes) EXPECT_EQ(MapCSToSO(id), host) << std::hex << id;
}

TEST(References, CountFourDigitsAtMost) {
  const struct {
    const char *digits;
    std::uint16_t value;
  } numbers[] = {{"65", 65},        {"x41", 0x41},   {"X41", 0x41},      {"0x41", 0x41},
                 {"0065", 65},      {"12345", 1234}, {"x1F600", 0x1F60}, {"", 0},
                 {"x", 0},          {"0x", 0},       {"a9", 0},          {"12a4", 12},
                 {"xFFFF", 0xFFFF}, {"00065", 6},    {"0x00041", 4},     {"x0x41", 0x41}};
  for (const auto &[digits, value] : numbers) EXPECT_EQ(ReferenceValue(digits), value) << digits;
}

TEST(Lengths, AreTwipsPercentagesOrColours) {
  WmlProc proc{};
  proc.save.emPointSize = 12;
  const struct {
    const char *text;
    std::uint32_t unit;
    std::uint32_t value;
  } lengths[] = {
      {"100", UNIT_PIXELS, 1500},
      {"100", UNIT_NONE, 100},
      {"100", UNIT_TWIPS, 100},
      {"2in", UNIT_PIXELS, 2880},
      {"3CM", UNIT_PIXELS, 1700},
      {"10mm", UNIT_PIXELS, 566},
      {"2em", UNIT_PIXELS, 480},
      {"7en", UNIT_PIXELS, 7},
      {"3pi", UNIT_PIXELS, 360},
      {"5relative", UNIT_PIXELS, 5},
      {"50%", UNIT_PIXELS, 0xFFFFFFCE},
      {"3*", UNIT_NONE, 300},
      {"3*", UNIT_PIXELS, 4500},
      {"#FF0000", UNIT_PIXELS, 0xFF0000},
      {"##10", UNIT_PIXELS, 0},
      {"auto", UNIT_PIXELS, 10},
      {"\"12px", UNIT_PIXELS, 180},
      {"\"\"12", UNIT_PIXELS, 0},
      {"12px\"", UNIT_PIXELS, 180},
      {"12 px", UNIT_NONE, 12},
      {"-5", UNIT_PIXELS, 0},
      {"", UNIT_PIXELS, 0},
      {"1.5in", UNIT_PIXELS, 2160},
      {"2.5px", UNIT_PIXELS, 37},
      {"50.5%", UNIT_PIXELS, 0xFFFFFFCE},
      {"3.5*", UNIT_NONE, 350},
      {"1.257in", UNIT_PIXELS, 1800},
      {"5.", UNIT_PIXELS, 75},
      {"1.x", UNIT_PIXELS, 15},
      {"4294967297", UNIT_NONE, 1},  // numbers wrap
      {"1000cm", UNIT_NONE, 137431},
      {"4294967295.99cm", UNIT_NONE, 3985729645},
  };
  for (const auto &[text, unit, value] : lengths) {
    EXPECT_EQ(StrToLong(text, unit, &proc), value) << text << " in unit " << unit;
  }
}

TEST(ColumnWidths, AreSharedInThreeWays) {
  const struct {
    const char *what;
    std::vector<ColumnExtent> columns;
    std::vector<std::uint32_t> widths;
  } tables[] = {
      {"nothing measured", {{0, 0}, {0, 0}}, {0, 0}},
      {"everything fits", {{100, 1000}, {5, 7}}, {460, 3}},
      // 20346 units are 9359.16 twips, one below the page's 9360.
      {"just fits", {{1, 20346}}, {9359}},
      // 460 + 4600 * (9360 - 920) / (19320 - 920), and 460 + 13800 of the same.
      {"shared in proportion", {{1000, 11000}, {1000, 31000}}, {2570, 6790}},
      {"runs alone are too wide", {{20000, 30000}, {10000, 10000}}, {9200, 4600}},
      {"sums wrap", {{0, 0x80000000u}, {0, 0x80000000u}}, {0, 0}},
      {"runs wider than lines", {{40000, 1}, {0, 0}}, {0, 0}},
  };
  for (const auto &[what, columns, widths] : tables) {
    std::vector<std::uint32_t> result(columns.size());
    DistributeWidths(columns.data(), static_cast<std::uint16_t>(columns.size()), result.data());
    EXPECT_EQ(result, widths) << what;
  }
  // The page grows with the columns: 30 of a quarter inch are 10800 twips.
  const std::vector<ColumnExtent> many(30, {1, 780});
  std::vector<std::uint32_t> result(30);
  DistributeWidths(many.data(), 30, result.data());
  EXPECT_EQ(result, std::vector<std::uint32_t>(30, 358));
}

}  // namespace
}  // namespace vs_wml::test
