// SPDX-License-Identifier: MIT
#include "host/deck/deck_adapter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>

#include "host/serve/served_writer.h"

namespace vs_wml {
namespace {

constexpr std::string_view kBefore = "<wml><card>";
constexpr std::string_view kAfter = "</card></wml>";

// What is served for the content of the one card of a deck.
std::string ServedContent(const std::string &content, const AdapterOptions &options = {}) {
  std::string served =
      AdaptDeck(std::string(kBefore) + content + std::string(kAfter), options).served;
  EXPECT_TRUE(served.starts_with(kBefore) && served.ends_with(kAfter)) << served;
  served.resize(served.size() - kAfter.size());
  return served.substr(kBefore.size());
}

struct ContentCase {
  const char *content;
  const char *served;
};

class Content : public testing::TestWithParam<ContentCase> {};

TEST_P(Content, IsServed) {
  EXPECT_EQ(ServedContent(GetParam().content), GetParam().served) << GetParam().content;
}

constexpr ContentCase kMarkup[] = {
    {"a<!-- it's -- here, <b> and \" -->b", "ab"},
    {"a<!-- one -- >b<!--two--!>c", "abc"},
    {"a<!-- no end <b>b</b>", "ab"},
    {"a<?php echo '>' ?>b<%= $x %>c", "abc"},
    {"<![CDATA[<b> & $x]]>", "&lt;b&gt; &amp; $$x"},
    {"<![CDATA[a<br/>b", "a<br/>b"},
    {"1 < 2 > 0 & <3 </ >", "1 &lt; 2 &gt; 0 &amp; &lt;3 &lt;/ &gt;"},
    {"a< br />b", "a<br/>b"},
    {"<vendor:x y='z'>in</vendor:x>", "in"},
    {"<P ALIGN=center>a<BR>b", "<p align=\"center\">a<br/>b"},
    {"<p align='\"'>a</p>b<p>c</p>", "<p>a<p>b<p>c"},
    {"<b><b>x</b>y</b>z", "<b>xy</b>z"},
    {"<b>1<i>2</b>3</i>4", "<b>1<i>2</i></b><i>3</i>4"},
    {"</b>x</td></a></do>", "x"},
    {"<b/>x<big>y", "<b></b>x<big>y</big>"},
    {"<b x=\"1>bold</b> <i y=\"2\">i</i>", "<b>bold</b> <i>i</i>"},
    {"<b x='1>bold", "<b>bold</b>"},
    {"<img src=a.wbmp width=\"8\" height=\"1&quot;\" alt=\">\"/>",
     "<img src=\"unwml:p:0\" width=\"8\"/>"},
    {"</p><pre>a\n  b</pre>", "<p><pre>a\n  b</pre>"},
    {"<pre>a<img src='i' alt='A'/>b</pre>", "<pre>aAb</pre>"},
    {"a<img/>b<img src=''/>c", "abc"},
    {"a</br>b<br></br>c<br/></br>d", "a<br/>b<br/>c<br/><br/>d"},
    {"<p align=\u201Cright\u201D>a<b x=\u2018>b</b>", "<p align=\"right\">a<b>b</b>"},
};
INSTANTIATE_TEST_SUITE_P(Markup, Content, testing::ValuesIn(kMarkup));

constexpr ContentCase kCharacters[] = {
    {"&#229;&#xE5;&aring;&#0229;", "åååå"},
    {"&#128512;&#55357;&#56832;&#xD83D;", "😀😀\uFFFD"},
    {"&#146;&#150;", "’–"},
    {"&#e4;&#12ab &#;&#x;", "äab &amp;#;&amp;#x;"},
    {"&lt;&gt;&amp&quot;&apos;&nbsp;", "&lt;&gt;&amp;\"'\u00A0"},
    {"a&#32; &#10;&#0;&#27;b", "a&#32; \n\uFFFDb"},
    {"&alpha;&vepsilon;&unknown;&averylongname; &x",
     "α&vepsilon;&unknown;&amp;averylongname; &amp;x"},
    {"a\x0E\x1B$(B\x7F\xC2\x85z", "a$$(Bz"},
    {"$$ $5 $ $( $(a b) $(x:y)", "$$ $$5 $$ $$( $$(a b) $$(x:y)"},
    {"$(&#x59;) $&#89;z&amp; &#36;(a.b) $a&#98;", "{Y} {Yz}&amp; {a.b} {ab}"},
    {"$&nbsp;$(&nbsp;) $a&nbsp;", "$$\u00A0$$(\u00A0) {a}\u00A0"},
    {"$_a1 $(_b) $1 $(a $(a: $(a:e", "{_a1} {_b} $$1 $$(a $$(a: $$(a:e"},
    {"$x $(x) $(x:e) $x:escape", "{x} {x} {x} {x}:escape"},
};
INSTANTIATE_TEST_SUITE_P(Characters, Content, testing::ValuesIn(kCharacters));

constexpr ContentCase kLinks[] = {
    {"<a href=\"x?a=b&amp;c\" title='t'> go </a>on", " <a href=\"unwml:a:0\">go</a> on"},
    {"<a href=dir/>text</a>", "<a href=\"unwml:a:0\">text</a>"},
    {"<a>no target</a>", "no target"},
    {"<a href='1'></a>x", "<a href=\"unwml:a:0\">1</a>x"},
    {"<a href='1' title='T'/>x", "<a href=\"unwml:a:0\">T</a>x"},
    {"<a href='1'>a<a href='2'>b</a>c</a>d",
     "<a href=\"unwml:a:0\">a</a><a href=\"unwml:a:1\">b</a><a href=\"unwml:a:0\">c</a>d"},
    {"<a href='1'>a<b>b</a>c</b>", "<a href=\"unwml:a:0\">a<b>b</b></a><b>c</b>"},
    {"<anchor> <go href='x'/> text </anchor>.", "  <a href=\"unwml:a:0\">text</a> ."},
    {"<anchor href='u'>x</anchor>", "<a href=\"unwml:a:0\">x</a>"},
    // WML 1.0: the task stands in the link.
    {"<A TITLE='t'><GO URL='u'/>x</A>y", "<a href=\"unwml:a:0\">x</a>y"},
    {"<A>x<GO URL='u'/></A>y<A>z</A>", "<a href=\"unwml:a:0\">x</a>yz"},
    {"<anchor title='t'><prev/></anchor>", "<a href=\"unwml:a:0\">t</a>"},
    {"<anchor><go href='x'>inside</go></anchor>", "<a href=\"unwml:a:0\">inside</a>"},
    {"<do type='prev'><prev/></do>text", "text<p><a href=\"unwml:a:0\">Back</a>"},
    {"<do type='accept' label='A &amp; B'><p>odd</p><go href='x'/></do>",
     "<p>odd<p><a href=\"unwml:a:0\">A &amp; B</a>"},
    {"<do type='accept'><noop/></do>text", "text"},
    {"<timer value='15'/><onevent type='ontimer'><go href='#x'/></onevent>t",
     "t<p><a href=\"unwml:a:0\">After 1.5 s</a>"},
};
INSTANTIATE_TEST_SUITE_P(Links, Content, testing::ValuesIn(kLinks));

constexpr ContentCase kForms[] = {
    {"Name: <input name='n' value='v'/>", "Name: <a href=\"unwml:f:0\">[n: v]</a>"},
    {"<input name='n' type='password' value='secret'/>", "<a href=\"unwml:f:0\">[n: ****]</a>"},
    {"<a href='x'>a<input name='n'/>b</a>",
     "<a href=\"unwml:a:0\">a</a><a href=\"unwml:f:0\">[n: ____]</a><a href=\"unwml:a:0\">b</a>"},
    {"<select name='s' ivalue='2'>\n<option value='1'>o<b>n</b>e</option><option>t &#60;"
     "</option></select>",
     "<a href=\"unwml:f:0\">[s: ( ) one (*) t &lt;]</a>"},
    {"<select multiple='true' title='T' value='b;c'><option value='a'>A<optgroup title='G'>"
     "<option value='b'/><option value='c' title='C'/></optgroup></select>",
     "<a href=\"unwml:f:0\">[T: [ ] A G: [x] b [x] C]</a>"},
    {"<select><option onpick='#a'>A</option><option>B</option>stray</select>",
     "stray<a href=\"unwml:f:0\">[: (*) A ( ) B]</a><p><a href=\"unwml:a:0\">A</a><p>"},
    {"<select name='s'><option>a<img src='i' alt='A'/></option></select>",
     "<a href=\"unwml:f:0\">[s: (*) aA]</a>"},
    {"<select><option>A<onevent type='onpick'><go href='#a'/></onevent></option></select>",
     "<a href=\"unwml:f:0\">[: (*) A]</a><p><a href=\"unwml:a:0\">A</a><p>"},
    {"<input title='a\x01\x7F\xC2\x9B&#9;b'/><select name='s'><option>c\x02\xC2\x9B"
     "d</option></select>",
     "<a href=\"unwml:f:0\">[a b: ____]</a><a href=\"unwml:f:1\">[s: (*) cd]</a>"},
    {"<p>x<fieldset title='F'>y</fieldset>", "<p>x<p><b>F</b><br/>y"},
};
INSTANTIATE_TEST_SUITE_P(Forms, Content, testing::ValuesIn(kForms));

constexpr ContentCase kTables[] = {
    {"<table><tr><td>a</td><td>b</td></tr><tr><td>c</td></tr></table>",
     "<table columns=\"2\"><tr><td>a<td>b<tr><td>c</table>"},
    {"<TABLE COLUMNS='1'><TR><TD>a</TABLE><table columns='65'><tr><td>b<td>c</table>",
     "<table columns=\"1\"><tr><td>a</table><table columns=\"2\"><tr><td>b<td>c</table>"},
    {"<table><tr><td>a<table><tr><td>b</table>c</td></tr></table>",
     "<table columns=\"1\"><tr><td>a<br/><br/> bc</table>"},
    {"<table columns='2'><input name='i'/><tr><td><b>x</td><td>y</b></table>",
     "<table columns=\"2\"><tr><td><b>x</b><td>y</table>"
     "<a href=\"unwml:f:0\">[i: ____]</a>"},
    {"<a href='l'>a<table columns='1'><tr><td>b</a></td></tr></table>c",
     "<a href=\"unwml:a:0\">a</a><table columns=\"1\"><tr><td><a href=\"unwml:a:0\">b</a>"
     "</table>c"},
    // White space goes into the next part.
    {"<table columns='2'> <tr> <td>a</td> <td>b</td> </tr> <tr><td>c</td></tr> </table>",
     "<table columns=\"2\"><tr><td>  a<td> b</td> <tr><td> c</tr> </table>"},
    // Cells have an end tag where something else than another cell follows them.
    {"<table columns='2'><tr><td>a</td><br/><td>b</td></tr><p>",
     "<table columns=\"2\"><tr><td>a</td><br/><td>b</tr><p></table>"},
    // More cells than columns.
    {"<table columns='1' align='C' title='\"T\"'><td>a<td>b<tr><th>c</table>d",
     "<table columns=\"1\" align=\"C\"><tr><td>a b<tr><td>c</table>d"},
    {"<table columns='2'><tr><td/><td><u>b</td> <td>c</u></td><td/><td>e</td></tr></table>",
     "<table columns=\"2\"><tr><td><td><u>b</u> c  e</table>"},
    {"<table columns='1'><tr><td>a</td><br/><td>b</td></table>",
     "<table columns=\"1\"><tr><td>a</td><br/><td>b</table>"},
    // Content outside of cells.
    {"<table>a</table>", "<table columns=\"1\"><tr><td>a</table>"},
    {"<table columns='2'>a<tr>b<td>c</td>d<td>e</td> f</tr> g<tr><td>h</td></tr>i</table>",
     "<table columns=\"2\"><tr><td>a<tr><td>b<td>c d e  f<tr><td> g<tr><td>h<tr><td>i</table>"},
    {"<table columns='1'><a href='l'>a</a><tr>&#66;</tr><tr>&bogus;</tr><img alt='c'/></table>",
     "<table columns=\"1\"><tr><td><a href=\"unwml:a:0\">a</a><tr><td>B<tr><td>&bogus;"
     "<tr><td><img src=\"unwml:p:0\"/></table>"},
};
INSTANTIATE_TEST_SUITE_P(Tables, Content, testing::ValuesIn(kTables));

struct DocumentCase {
  const char *document;
  const char *served;
};

class Document : public testing::TestWithParam<DocumentCase> {};

TEST_P(Document, IsServed) {
  EXPECT_EQ(AdaptDeck(GetParam().document).served, GetParam().served) << GetParam().document;
}

constexpr DocumentCase kDocuments[] = {
    {"HTTP/1.1 200 OK\r\nX: it's\r\n\r\n<?xml version='1.0'?><!DOCTYPE wml [<!ENTITY a \">\">]>"
     "<wml><head>h&#65;<meta name='n' content='c'/></head><card>x</card></wml>",
     "<wml><card>x</card></wml>"},
    {"<wml><card>a<card>b</card>between</wml>", "<wml><card>a</card><card>b</card></wml>"},
    {"<wml><head><card>a", "<wml><card>a</card></wml>"},
    {"<wml><p>no card</p></wml>", "<wml><card><p>no card</card></wml>"},
    {"<wml><x>lost</x><card/></wml>", "<wml><card></card></wml>"},
    {"<wml><template><do type='prev' label='B'><prev/></do><do name='n' type='help'><go href='h'/>"
     "</do></template><card>1</card><card><do type='options' name='n'><noop/></do>2</card></wml>",
     "<wml><card>1<p><a href=\"unwml:a:0\">B</a><br/><a href=\"unwml:a:1\">Help</a></card>"
     "<card>2<p><a href=\"unwml:a:0\">B</a></card></wml>"},
    {"", "<wml></wml>"},
    {"<wml><card>x</card", "<wml><card>x</card></wml>"},
};
INSTANTIATE_TEST_SUITE_P(Documents, Document, testing::ValuesIn(kDocuments));

TEST(DeckAdapter, WarnsOfWhatItLeavesOut) {
  const struct {
    const char *document;
    const char *warning;
  } cases[] = {
      {"<wml>\n<card>a</card>\nbetween<card>b</card> </wml>\n",
       "line 3: text outside of the cards"},
      {"<wml><head>\n<title>t</title></head><card/></wml>", "line 2: text outside of the cards"},
      {"<wml><card/><![CDATA[a]]></wml>", "line 1: text outside of the cards"},
      {"From: a\n\n<wml><card/></wml>", "line 1: text outside of the cards"},
      {" <wml> <card/> </wml> ", ""},
      {"HTTP/1.1 200 OK\n\n<wml><card/></wml>", ""},
      {"content-type: text/vnd.wap.wml\n\n<wml><card/></wml>", ""},
  };
  for (const auto &item : cases) {
    const AdaptedDeck deck = AdaptDeck(item.document);
    const std::string warning = deck.warnings.empty() ? "" : WarningText(deck.warnings.front());
    EXPECT_EQ(warning.substr(0, warning.find(" is left out")), item.warning) << item.document;
    EXPECT_LE(deck.warnings.size(), 1U) << item.document;
  }
}

TEST(DeckAdapter, GivesVariablesTheirValues) {
  AdapterOptions options;
  options.variables = {
      {"given", "1 & 2"}, {"hex", "a%C3%A5%zz"}, {"bad", "%9B"}, {"plain", "-._~/"}};
  EXPECT_EQ(ServedContent("<setvar name='given' value='no'/>$given $(given:e) $(hex:u) $(bad:u) "
                          "$(plain:e)",
                          options),
            "1 &amp; 2 1%20%26%202 aå%zz %9B -._~%2F");
  // Those that entering the card sets, and no others.
  const std::string entry = "<onevent type='onenterforward'><refresh>";
  const std::string end = "</refresh></onevent>";
  EXPECT_EQ(
      ServedContent(entry + "<setvar name='a' value='x y'/><setvar name='b' value='$(a:e)'/>" +
                    end + "<input name='i' value='v'/>$a $b $i"),
      "<a href=\"unwml:f:0\">[i: v]</a>x y x%20y v"
      "<p><a href=\"unwml:a:0\">On entry</a>");
  EXPECT_EQ(ServedContent("<input name='i' value='1'/><do><refresh><setvar name='i' value='2'/>"
                          "</refresh></do>$i"),
            "<a href=\"unwml:f:0\">[i: 1]</a>{i}<p><a href=\"unwml:a:0\">OK</a>");
  EXPECT_EQ(ServedContent("<do><go href='#a'><setvar name='a' value='1'/></go></do>$a"),
            "{a}<p><a href=\"unwml:a:0\">#a</a>");
  EXPECT_EQ(ServedContent("<timer name='t' value='9'/><input name='t' value='9'/>$t"),
            "<a href=\"unwml:f:0\">[t: 9]</a>{t}");
  EXPECT_EQ(ServedContent("&lt;$a&$$&amp;$$a$b$<input name='a' value='known later'/>"),
            "&lt;known later&amp;$$&amp;$$a{b}$$<a href=\"unwml:f:0\">[a: known later]</a>");
  EXPECT_EQ(ServedContent("</card><card><input name='a' value='1'/></card><card>$a"),
            "</card><card><a href=\"unwml:f:0\">[a: 1]</a></card><card>{a}");
}

TEST(DeckAdapter, TellsTheParts) {
  const AdaptedDeck deck = AdaptDeck(
      "<wml><head><access domain='d' path='/p'/><meta http-equiv='h' content='c'/></head>"
      "<card id='c1' title=' A &#229;\n ' newcontext='true' ordered='false' ontimer='#c2'>"
      "<timer value='7'/>"
      "<do type='accept' label='Send'><go href='s?a=$(x)&amp;b=1' method='POST'>"
      "<postfield name='f' value='$(x)'/><setvar name='y' value='z'/></go></do>"
      "<input name='x' format='*N' maxlength='5' size='3' emptyok='true'/>"
      "<img localsrc='smiley' alt='' src=''/></card></wml>",
      {{{"x", "&"}}});
  const DeckParts &parts = deck.parts;
  ASSERT_EQ(parts.cards.size(), 1U);
  const DeckCard &card = parts.cards[0];
  EXPECT_EQ(card.id, "c1");
  EXPECT_EQ(card.title.shown, "A å");
  EXPECT_TRUE(card.newContext);
  EXPECT_FALSE(card.ordered);
  ASSERT_EQ(card.actionCount, 2U);
  const Action &timer = parts.actions[parts.ActionsOf(card)[0]];
  EXPECT_EQ(DetailsOf(timer).type, "ontimer");
  ASSERT_TRUE(card.timer);
  EXPECT_EQ(card.timer->value.shown, "7");
  EXPECT_EQ(timer.task.target.shown, "#c2");
  const Action &send = parts.actions[parts.ActionsOf(card)[1]];
  EXPECT_EQ(send.task.target.shown, "s?a=%26&b=1");
  EXPECT_EQ(send.task.target.written, "s?a=$(x)&b=1");
  EXPECT_TRUE(send.task.Posts());
  ASSERT_EQ(send.task.PostFields().size(), 1U);
  EXPECT_EQ(send.task.PostFields()[0].value.shown, "&");
  EXPECT_EQ(SoleVariable(send.task.PostFields()[0].value), "x");
  ASSERT_EQ(send.task.Variables().size(), 1U);
  EXPECT_EQ(card.fieldCount, 1U);
  EXPECT_EQ(parts.fields[0].length, 5U);
  EXPECT_EQ(parts.fields[0].size, 3U);
  EXPECT_EQ(parts.fields[0].Format(), "*N");
  EXPECT_TRUE(parts.fields[0].emptyAllowed);
  ASSERT_EQ(parts.pictures.size(), 1U);
  EXPECT_EQ(parts.pictures[0].localSource.shown, "smiley");
  EXPECT_TRUE(parts.pictures[0].alternative.IsGiven());
  ASSERT_EQ(parts.accesses.size(), 1U);
  EXPECT_EQ(parts.accesses[0].domain, "d");
  ASSERT_EQ(parts.metas.size(), 1U);
  EXPECT_EQ(parts.metas[0].httpEquiv, "h");
}

TEST(DeckAdapter, WarnsOnceWithTheLine) {
  const AdaptedDeck deck = AdaptDeck("<wml>\n<card>\n<b x='1<br/><b x='1<br/></card></wml>");
  ASSERT_EQ(deck.warnings.size(), 2U);
  EXPECT_EQ(WarningText(deck.warnings[0]),
            "line 3: the value of an attribute has no closing quote");
}

// Each pattern, repeated, made some earlier design read or write the rest again and again.
TEST(DeckAdapter, StaysLinear) {
  const char *const kPatterns[] = {"<b x='<b x=\"",
                                   "<!--",
                                   "<![CDATA[",
                                   "<!x [",
                                   "<?",
                                   "<b x=\"<",
                                   "<a href='x'>",
                                   "&#1",
                                   "<select><option>",
                                   "<table><tr><td>",
                                   "<fieldset title='f'>",
                                   "<b><i><u><big></b></i></u></big>",
                                   "</a>",
                                   "<-- ",
                                   "<do type='x'>",
                                   "$(",
                                   "<!---- "};
  for (const std::string_view pattern : kPatterns) {
    std::string document = "<wml><template><do><prev/></do></template><card>";
    while (document.size() < 200000) document += pattern;
    EXPECT_LT(AdaptDeck(document).served.size(), 32 * document.size()) << pattern;
  }
}

TEST(DeckAdapter, KeepsGrowthInBounds) {
  // Variables that hold each other, long values used often, and a template in many cards.
  std::string variables = "<wml><card><setvar name='v0' value='" + std::string(1000, 'x') + "'/>";
  for (int i = 1; i < 50; ++i) {
    const std::string before = "$(v" + std::to_string(i - 1) + ")";
    variables += "<setvar name='v" + std::to_string(i) + "' value='" + before + before + "'/>";
  }
  for (int i = 0; i < 20000; ++i) variables += "$v0";
  EXPECT_LT(AdaptDeck(variables).served.size(), 8 * variables.size() + (1U << 17U));

  std::string cards = "<wml><template>";
  for (int i = 0; i < 2000; ++i) cards += "<do name='" + std::to_string(i) + "'><prev/></do>";
  cards += "</template>";
  for (int i = 0; i < 2000; ++i) cards += "<card>x</card>";
  const AdaptedDeck deck = AdaptDeck(cards);
  EXPECT_LT(deck.served.size(), 8 * cards.size() + (1U << 17U));
  EXPECT_FALSE(deck.warnings.empty());
}

TEST(ServedTarget, IsRecognised) {
  const auto reference = ParseServedTarget("unwml:f:12");
  ASSERT_TRUE(reference);
  EXPECT_EQ(reference->kind, ServedKind::kField);
  EXPECT_EQ(reference->index, 12U);
  for (const char *other : {"", "unwml:", "unwml:a:", "unwml:x:1", "unwml:a:1x", "unwml:a:-1",
                            "unwml:a:99999999999999999999", "http://a/unwml:a:1"}) {
    EXPECT_FALSE(ParseServedTarget(other)) << other;
  }
}

}  // namespace
}  // namespace vs_wml
