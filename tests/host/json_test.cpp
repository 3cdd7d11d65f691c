// SPDX-License-Identifier: MIT
//
// JSON of what a deck holds, and of decks that are larger than what is held of it.
#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include "host/writers/json_text.h"
#include "written.h"

namespace vs_wml::test {
namespace {

TEST(JsonWriter, SaysWhatIsNotUsual) {
  const std::string blue = "\"underline\":true,\"color\":\"#0000ff\"";
  const struct {
    const char *content;  ///< of the deck
    std::string part;     ///< stands in its line
  } cases[] = {
      {"<card/>", "\"cards\":[{\"blocks\":[]}],\"warnings\":[]}\n"},
      {"<card id='i' title='T' newcontext='true' ordered='false'/>",
       "[{\"id\":\"i\",\"title\":\"T\",\"newContext\":true,\"ordered\":false,\"blocks\":[]}]"},
      {"<card ordered='true' newcontext='false'/>", "[{\"blocks\":[]}]"},
      {"<head><access path='/p'/><meta http-equiv='h' content='c'/></head><card/>",
       "\"access\":{\"path\":\"/p\"},\"meta\":[{\"httpEquiv\":\"h\",\"content\":\"c\"}],"},
      {"<head><access/></head><card/>", "\"access\":{},\"cards\""},
      {"<card><p>&quot;\\&#9;/é<b>b</b><i>i</i><u>u</u></p>",
       "\"runs\":[{\"text\":\"\\\"\\\\ /é\"},{\"text\":\"b\",\"bold\":true},"
       "{\"text\":\"i\",\"italic\":true},{\"text\":\"u\",\"underline\":true}]}"},
      {"<card><p>a<big>b</big><small>c</small></p>",
       "[{\"text\":\"a\"},{\"text\":\"b\",\"size\":20},{\"text\":\"c\",\"size\":8}]"},
      {"<card><pre>a\tb\n</pre>",
       "{\"type\":\"paragraph\",\"preformatted\":true,\"runs\":[{\"text\":\"a\\tb\",\"size\":10}]"
       "}"},
      {"<card><p align='right'>a<br/>b</p><p align='center'>c</p>",
       "[{\"type\":\"paragraph\",\"align\":\"right\",\"runs\":[{\"text\":\"a\"}]},"
       "{\"type\":\"paragraph\",\"align\":\"right\",\"continues\":true,\"runs\":[{\"text\":\"b\"}]"
       "},{\"type\":\"paragraph\",\"align\":\"center\",\"runs\":[{\"text\":\"c\"}]}]"},
      {"<card><p align='center'><table columns='2' align='LR' title='T'><tr><td>a<td>b<br/>c<tr>"
       "<td>d</table>",
       "\"rows\":[[{\"runs\":[{\"text\":\"a\"}]},{\"align\":\"right\",\"runs\":[{\"text\":"
       "\"b\\nc\"}]}],[{\"runs\":[{\"text\":\"d\"}]},{\"align\":\"right\",\"runs\":[]}]]}"},
      {"<card><p><a href='u' title='t'>a</a></p>",
       "[{\"text\":\"a\"," + blue +
           ",\"link\":1}],\"links\":[{\"number\":1,\"target\":\"u\",\"title\":\"t\"}]}"},
      {"<card><p><img src='s' alt=''/><img src='t'/></p>",
       "[{\"image\":{\"source\":\"s\",\"alternative\":\"\"}},{\"image\":{\"source\":\"t\"}}]"},
      {"<card><p><input name='n' emptyok='false'/></p>",
       "[{\"text\":\"[n: ____]\",\"field\":{\"kind\":\"input\",\"name\":\"n\",\"type\":\"text\","
       "\"value\":\"\",\"emptyAllowed\":false}}]}"},
      {"<card><p><select name='n' multiple='true'><option value='v'>L</select></p>",
       "\"field\":{\"kind\":\"select\",\"name\":\"n\",\"multiple\":true,\"options\":[{\"label\":"
       "\"L\",\"value\":\"v\"}]}}]}"},
      {"<card ontimer='t'><timer value='25'/>",
       "\"actions\":[{\"kind\":\"event\",\"type\":\"ontimer\",\"label\":\"After 2.5 s\",\"delay\":"
       "2.5,\"task\":\"go\",\"target\":\"t\",\"method\":\"get\"}]"},
      {"<card><p><b>x", "\"warnings\":[]}\n"},
      {"<card><p><b c='x>y</b>",
       "\"warnings\":[\"line 1: the value of an attribute has no closing quote\"]}\n"},
  };
  for (const auto &item : cases) {
    std::string written;
    Output output([&](std::string_view piece) { written += piece; });
    ReadDeck(PrepareDeck("d", "<wml>" + std::string(item.content) + "</wml>", {}),
             *MakeJsonWriter(output));
    EXPECT_NE(written.find(item.part), std::string::npos) << item.content << '\n' << written;
  }
}

TEST(JsonText, CutsFractions) {
  const struct {
    std::uint64_t value;
    std::uint64_t divisor;
    const char *text;
  } cases[] = {
      {0, 10, "0.0"}, {5, 10, "0.5"},   {50, 10, "5.0"},    {1, 15, "0.06"},
      {3, 15, "0.2"}, {29, 15, "1.93"}, {1200, 15, "80.0"}, {4294967295U, 10, "429496729.5"}};
  for (const auto &[value, divisor, text] : cases) {
    std::string written;
    Output output([&](std::string_view piece) { written += piece; });
    JsonText(output).Fraction(value, divisor);
    output.Flush();
    EXPECT_EQ(written, text);
  }
}

// Long strings are written in pieces, which escapes may fall between.
TEST(JsonText, EscapesAnywhereInLongStrings) {
  for (const std::size_t before : {0U, 1U, 16383U, 16384U, 40000U}) {
    const std::string plain(before, 'x');
    std::string written;
    Output output([&](std::string_view piece) { written += piece; });
    JsonText json(output);
    json.BeginArray();
    json.String(plain + "\"\x01\n" + plain);
    json.Number(7);
    json.EndArray();
    output.Flush();
    EXPECT_EQ(written, "[\"" + plain + "\\\"\\u0001\\n" + plain + "\",7]");
  }
}

// Written in pieces: nothing is lost between them.
TEST(JsonWriter, LinesOfLargeDecksAreWhole) {
  constexpr std::size_t kMany = 3000;
  std::string content;
  for (std::size_t i = 0; i < kMany; ++i) content += "<p>paragraph " + std::to_string(i) + "</p>";
  content += "<table columns='1'>";
  for (std::size_t i = 0; i < kMany; ++i) content += "<tr><td>row " + std::to_string(i);
  content += "</table>";
  const std::string line = Written(Format::kJson, content);
  EXPECT_EQ(line.find('\n'), line.size() - 1);
  rapidjson::Document document;
  ASSERT_FALSE(document.Parse(line.c_str()).HasParseError());
  const auto &blocks = document["cards"][0]["blocks"];
  ASSERT_EQ(blocks.Size(), kMany + 1);
  const auto &rows = blocks[kMany]["rows"];
  ASSERT_EQ(rows.Size(), kMany);
  for (rapidjson::SizeType i = 0; i < kMany; ++i) {
    EXPECT_EQ(blocks[i]["runs"][0]["text"].GetString(), "paragraph " + std::to_string(i));
    EXPECT_EQ(rows[i][0]["runs"][0]["text"].GetString(), "row " + std::to_string(i));
  }
}

}  // namespace
}  // namespace vs_wml::test
