// SPDX-License-Identifier: MIT
//
// JSON of what a deck holds, and of decks that are larger than what is held of it.
#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <string>

#include "host/writers/json_text.h"
#include "written.h"

namespace vs_wml::test {
namespace {

// The line of a deck with that content.
std::string LineOf(const std::string &content) {
  std::string written;
  Output output([&](std::string_view piece) { written += piece; });
  ReadDeck(PrepareDeck("d", "<wml>" + content + "</wml>", {}), *MakeJsonWriter(output));
  return written;
}

struct JsonCase {
  const char *content;  ///< of the deck
  std::string part;     ///< stands in its line
};

class Json : public testing::TestWithParam<JsonCase> {};

TEST_P(Json, Says) {
  const std::string line = LineOf(GetParam().content);
  EXPECT_NE(line.find(GetParam().part), std::string::npos) << GetParam().content << '\n' << line;
}

const JsonCase kDocument[] = {
    {"<card/>",
     "{\"format\":2,\"source\":\"d\",\"charset\":\"UTF-8\",\"charsetFrom\":\"utf-8\",\"cards\":[{"
     "\"blocks\":[],\"text\":\"\"}],\"warnings\":[]}\n"},
    {"<card id='i' title='T' newcontext='true' ordered='false' xml:lang='sv'/>",
     "[{\"id\":\"i\",\"title\":\"T\",\"language\":\"sv\",\"newContext\":true,\"ordered\":false,"
     "\"blocks\""},
    {"<card ordered='true' newcontext='false'/>", "[{\"blocks\":[]"},
    {"<head><access path='/p'/><meta http-equiv='h' content='c' forua='true' scheme=''/></head>"
     "<card/>",
     "\"access\":[{\"path\":\"/p\"}],\"meta\":[{\"httpEquiv\":\"h\",\"content\":\"c\",\"scheme\":"
     "\"\",\"forUserAgent\":\"true\"}],"},
    {"<head><access/></head><card/>", "\"access\":[{}],\"cards\""},
    {"<card/>lost\n<card/> too",
     "\"warnings\":[{\"line\":1,\"message\":\"text outside of the cards is left out\",\"text\":"
     "\"lost\"},{\"line\":2,\"message\":\"text outside of the cards is left out\",\"text\":\"too\"}"
     "]"},
    {"<card><p><b c='x>y</b>",
     "\"warnings\":[{\"line\":1,\"message\":\"the value of an attribute has no closing quote\"}]"},
};
INSTANTIATE_TEST_SUITE_P(Document, Json, testing::ValuesIn(kDocument));

const JsonCase kBlocks[] = {
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
     "\"b\\nc\"}]}],[{\"runs\":[{\"text\":\"d\"}]}]]}"},
    {"<card><p><img src='s$v' alt='' vspace='2'/><img src='t' localsrc='l'/></p></card>",
     "[{\"image\":{\"source\":\"s$v\",\"alternative\":\"\",\"attributes\":{\"vspace\":\"2\"}}},"
     "{\"image\":{\"source\":\"t\",\"localSource\":\"l\"}}]"},
    {"<card><p>$a $$b $(a:e) <input name='c' value='1'/>$c</p></card>",
     "\"variables\":[{\"written\":\"$a\"},{\"written\":\"$(a:e)\"},{\"written\":\"$c\",\"read\":"
     "\"1\"}],\"blocks\":[{\"type\":\"paragraph\",\"runs\":[{\"text\":\"{a} $b {a} \"}"},
    // A word of the plain text is never glued to the next one.
    {"<card><do label='L'><prev/></do><p>a<b>b</b><img src='i' alt='P'/>c<br/>d<table columns='2'>"
     "<tr><td>e<td>f<tr><td>g</table><input name='n' title='T' value='v'/>h<p>i",
     "\"text\":\"ab P c\\nd\\ne\\tf\\ng\\nT v h\\ni\\nL\""},
};
INSTANTIATE_TEST_SUITE_P(Blocks, Json, testing::ValuesIn(kBlocks));

const JsonCase kActions[] = {
    {"<card><p><a href='u' title='t' accesskey='1'>a</a></p>",
     "\"links\":[{\"title\":\"t\",\"accessKey\":\"1\",\"target\":\"u\"}],\"cards\":[{\"blocks\":[{"
     "\"type\":\"paragraph\",\"runs\":[{\"text\":\"a\",\"link\":0}]}]"},
    {"<card><p><a href='u'/><anchor>x<prev/></anchor>",
     "\"links\":[{\"empty\":true,\"target\":\"u\"},{\"kind\":\"anchor\",\"task\":\"prev\"}]"},
    {"<card><a href='u'/>", "\"runs\":[{\"link\":0}]"},
    // The tool's own words are not the deck's.
    {"<card><do type='prev'><prev/></do>",
     "\"actions\":[{\"kind\":\"do\",\"type\":\"prev\",\"task\":\"prev\"}],\"cards\":[{\"actions\":["
     "0],\"blocks\":[],\"text\":\"\"}]"},
    // The reference stays, and the value stands beside it.
    {"<card><input name='n' value='v w'/><do><go href='?n=$n&amp;o=$o'><postfield name='n' "
     "value='$(n)'/><setvar name='s' value='$$'/></go></do>",
     "\"target\":\"?n=$n&o=$o\",\"postFields\":[{\"name\":\"n\",\"value\":\"$(n)\",\"valueRead\":"
     "\"v w\"}],\"setVariables\":[{\"name\":\"s\",\"value\":\"$$\",\"valueRead\":\"$\"}]"},
    {"<card ontimer='t'><timer name='n' value='25'/>",
     "\"actions\":[{\"kind\":\"event\",\"type\":\"ontimer\",\"task\":\"go\",\"target\":\"t\"}],"
     "\"cards\":[{\"timer\":{\"name\":\"n\",\"value\":\"25\"},\"actions\":[0]"},
    {"<card><onevent type='onenterforward'><refresh><setvar name='a' value='1'/></refresh>"
     "<go href='u' sendreferer='true' method='POST' enctype='e' accept-charset='c' "
     "cache-control='no-cache'/></onevent>",
     "{\"kind\":\"event\",\"type\":\"onenterforward\",\"task\":\"refresh\",\"setVariables\":[{"
     "\"name\":\"a\",\"value\":\"1\"}],\"more\":[{\"task\":\"go\",\"target\":\"u\",\"method\":"
     "\"post\",\"encoding\":\"e\",\"acceptCharset\":\"c\",\"cacheControl\":\"no-cache\","
     "\"sendReferer\":\"true\"}]}"},
    // A template's actions are said once; cards say which they replace.
    {"<template><do type='a'><prev/></do><do type='b'><prev/></do></template><card/><card>"
     "<do type='b'><noop/></do></card>",
     "\"templateActions\":[0,1],\"actions\":[{\"kind\":\"do\",\"type\":\"a\",\"task\":\"prev\"},{"
     "\"kind\":\"do\",\"type\":\"b\",\"task\":\"prev\"},{\"kind\":\"do\",\"type\":\"b\",\"shadows\""
     ":1,\"task\":\"noop\"}],\"cards\":[{\"blocks\":[],\"text\":\"\"},{\"actions\":[2]"},
};
INSTANTIATE_TEST_SUITE_P(Actions, Json, testing::ValuesIn(kActions));

const JsonCase kFields[] = {
    {"<card><p><input name='n' emptyok='false' tabindex='2'/></p>",
     "\"fields\":[{\"kind\":\"input\",\"name\":\"n\",\"emptyAllowed\":false,\"tabIndex\":\"2\"}],"
     "\"cards\":[{\"blocks\":[{\"type\":\"paragraph\",\"runs\":[{\"field\":0}]}]"},
    {"<card><fieldset title='F'><fieldset title='G'><input/>",
     "\"fieldsets\":[{\"title\":\"F\"},{\"title\":\"G\",\"outer\":0}],\"fields\":[{\"kind\":"
     "\"input\",\"fieldset\":1}]"},
    {"<card><p><select name='n' iname='i' ivalue='1' multiple='true'><option value='v'>L</select>",
     "{\"kind\":\"select\",\"name\":\"n\",\"multiple\":true,\"indexName\":\"i\",\"indexValue\":"
     "\"1\",\"options\":[{\"label\":\"L\",\"value\":\"v\",\"selected\":true}]}"},
    // An option that leads somewhere stays one.
    {"<card><p><select name='n'><optgroup title='G'><option value='v' onpick='u'>L $x</option>"
     "</optgroup></select></p></card>",
     "\"actions\":[{\"kind\":\"pick\",\"task\":\"go\",\"target\":\"u\"}],\"groups\":[{\"title\":"
     "\"G\"}],\"fields\":[{\"kind\":\"select\",\"name\":\"n\",\"options\":[{\"label\":\"L $x\","
     "\"value\":\"v\",\"group\":0,\"selected\":true,\"action\":0}]}],\"cards\":[{\"blocks\":[{"
     "\"type\":\"paragraph\",\"runs\":[{\"field\":0}]}],\"text\":\"G L {x}\"}]"},
};
INSTANTIATE_TEST_SUITE_P(Fields, Json, testing::ValuesIn(kFields));

const JsonCase kRest[] = {
    {"<card><p>a</p><p mode='nowrap' class='c'>b</p><x:y z='1'>c</x:y><br/><br clear='all'/>",
     "\"elements\":[{\"element\":\"p\",\"number\":2,\"attributes\":{\"mode\":\"nowrap\",\"class\":"
     "\"c\"}},{\"element\":\"x:y\",\"attributes\":{\"z\":\"1\"}},{\"element\":\"br\",\"number\":2,"
     "\"attributes\":{\"clear\":\"all\"}}]"},
    {"<card><a href='u' id='i'>a</a><do id='j'/><input maxlength='x'/>",
     "\"elements\":[{\"element\":\"a\",\"link\":0,\"attributes\":{\"id\":\"i\"}},{\"element\":"
     "\"do\",\"action\":0,\"attributes\":{\"id\":\"j\"}},{\"element\":\"input\",\"field\":0,"
     "\"attributes\":{\"maxlength\":\"x\"}}]"},
    {"<card><p a\\b='1' c\x01='2'/>",
     "\"elements\":[{\"element\":\"p\",\"number\":1,\"attributes\":{\"a\\\\b\":\"1\",\"c\":\"2\"}}"
     "]"},
    // What stands where it means nothing.
    {"<setvar name='a' value='b'/><card><option value='c'/><p align='up'/><postfield/>",
     "\"elements\":[{\"element\":\"setvar\",\"number\":1,\"attributes\":{\"name\":\"a\",\"value\":"
     "\"b\"}}],\"cards\":[{\"elements\":[{\"element\":\"option\",\"number\":1,\"attributes\":{"
     "\"value\":\"c\"}},{\"element\":\"p\",\"number\":1,\"attributes\":{\"align\":\"up\"}},{"
     "\"element\":\"postfield\",\"number\":1}]"},
    {"<card><p id='a' id='b'/>",
     "{\"line\":1,\"message\":\"an attribute is given twice; the first one counts\",\"text\":"
     "\"id='b\"}"},
};
INSTANTIATE_TEST_SUITE_P(Rest, Json, testing::ValuesIn(kRest));

TEST(JsonWriter, ListsTheLinksOfADeckThatIsNotAdaptedBehindTheCards) {
  DeckOptions options;
  options.raw = true;
  std::string written;
  Output output([&](std::string_view piece) { written += piece; });
  ReadDeck(PrepareDeck("d",
                       "<wml><card><p><a href=u>a<br/>b</a><a href=v>c</a></p></card>"
                       "</wml>",
                       options),
           *MakeJsonWriter(output));
  EXPECT_NE(written.find("\"link\":1}]}],\"text\":\"a\\nbc\"}],\"links\":[{\"target\":\"u\"},{"
                         "\"target\":\"v\"}],\"warnings\":[]}"),
            std::string::npos)
      << written;
}

TEST(JsonWriter, TellsWhereADocumentIsFrom) {
  DeckOptions options;
  options.digest = true;
  std::string written;
  Output output([&](std::string_view piece) { written += piece; });
  const auto writer = MakeJsonWriter(output);
  for (const char *name : {"a\n\"\xC3\xA5", "a\xFF"}) {
    ReadDeck(PrepareDeck(name, "<wml/>", options), *writer);
  }
  EXPECT_NE(
      written.find("\"source\":\"a\\n\\\"å\",\"xxh128\":\"a59520cf31ea51e3448003f8903204f8\""),
      std::string::npos)
      << written;
  EXPECT_NE(written.find("\"source\":\"a\uFFFD\",\"sourceBase64\":\"Yf8=\""), std::string::npos)
      << written;
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
