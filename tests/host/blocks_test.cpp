// SPDX-License-Identifier: MIT
//
// What the builder makes of the filter's calls.
#include <gtest/gtest.h>

#include "recorder.h"

namespace vs_wml::test {
namespace {

struct BlockCase {
  const char *name;
  const char *markup;  ///< inside of <wml>
  const char *blocks;
};

const BlockCase kCases[] = {
    {"Cards", "<card id='a' title='A &amp; &#x42;'><p>x</p></card><card title='b'/><card/>",
     "{a|A & B\nPl x\n}\n{|b\n}\n{|\n}\n."},
    {"TitleOnly", "<card title='t'></card>", "{|t\n}\n."},
    {"TitleOfLines", "<card title='a\nb'><p>x</p></card>", "{|a b\nPl x\n}\n."},
    {"LinesAndParagraphs", "<card><p align='center'>a<br/>b</p><p>c</p></card>",
     "{|\nPc a\nLc b\nPl c\n}\n."},
    {"EmptyLines", "<card><p><br/>a<br/><br/>b<br/></p><p><br/></p><p>c</p></card>",
     "{|\nPl a\nLl\nLl b\nPl c\n}\n."},
    {"Styles", "<card><p>a<b>b<i>c</i></b><u>d</u><big>e</big><small>f</small></p></card>",
     "{|\nPl a *bb *b*ic *ud *40e *16f\n}\n."},
    {"Preformatted", "<card><p>a</p><pre>b  c\n\n d</pre><p>e</p></card>",
     "{|\nPl a\nFl *20b  c\nFl\nFl *20 d\nPl e\n}\n."},
    {"Links",
     "<card><p><a href='x.wml?a=1&amp;b=2' title='t'>go</a> <a href='#c'>on</a></p></card>",
     "{|\nPl [1:x.wml?a=1&b=2|t]go   [2:#c]on\n}\n."},
    {"LinkOverLines", "<card><p><a href='x'>a<br/>b</a>c</p></card>",
     "{|\nPl [1:x]a\nLl [1:x]b c\n}\n."},
    {"SecondLinkOverLines", "<card><p><a href='x'>a</a><a href='y'>b<br/>c<br/>d</a>e</p></card>",
     "{|\nPl [1:x]a [2:y]b\nLl [2:y]c\nLl [2:y]d e\n}\n."},
    {"TitledImages",
     "<card><p><a href='x' title='t'><img src='a' alt='A'/><img src='b' alt='B'/></a>"
     "<a href='y' title='u'><img src='c' alt='C'/></a></p></card>",
     "{|\nPl [1:x|t]<a|A> [1:x|t]<b|B> [2:y|u]<c|C>\n}\n."},
    {"Images", "<card><p><img src='a.wbmp' alt='A'/><a href='x'><img src='b?c=d'/></a></p></card>",
     "{|\nPl <a.wbmp|A> [1:x]<b?c=d|>\n}\n."},
    {"Tables",
     "<card><p>a<table columns='2' align='LR'><tr><td>b </td><td>c<br/>d<br/></td></tr>"
     "<tr><td><b>e</b></td></tr></table>f</p></card>",
     "{|\nPl a\nT /l b,r c\\nd, /l *be,\nPl f\n}\n."},
    {"RaggedRows",
     "<card><table columns='3'><tr><td>a<tr><td/><td>b</td><td/></tr><tr/><tr><td/><td/></table>",
     "{|\nT /l a, /l,l b,l, /l, /l,l,\n}\n."},
    {"ManyColumns",
     "<card><table columns='18' align='RRRRRRRRRRRRRRRRRC'><tr><td/><td/><td/><td/><td/><td/><td/>"
     "<td/><td/><td/><td/><td/><td/><td/><td/><td/><td>q</td><td>r",
     "{|\nT /r,r,r,r,r,r,r,r,r,r,r,r,r,r,r,r,r q,c r,\n}\n."},
    {"UnclosedTable", "<card><p><table columns='1'><tr><td>a", "{|\nT /l a,\n}\n."},
    {"CardInTable", "<card><table columns='1'><tr><td>a<card id='b'><p>c</p></card>",
     "{|\nT /l a,\n}\n{b|\nPl c\n}\n."},
    {"WithoutCards", "a &eacute; <p>b</p>", "{|\nPl a é\nPl b\n}\n."},
};

TEST(Blocks, AreWhatTheMarkupSays) {
  for (const BlockCase &item : kCases) {
    SCOPED_TRACE(item.name);
    EXPECT_EQ(Blocks(std::string("<wml>") + item.markup), item.blocks);
  }
}

// Decks that are served as they are: all that is shown is what the filter tells, which keeps
// apostrophes around values and ends some of them at an equals sign.
const BlockCase kRawCases[] = {
    {"Links", "<card><p><a href='x?a=1&amp;b=2' title='t &lt;'>a</a><a href=\"y\">b</a>",
     "{|\nPl [1:'x?a|t <]a [2:y]b\n}\n."},
    {"QuotedTargets", "<card><p><A HREF = 'a b>c'>x</A><a title=t\nhref=\"it's\">y</a>",
     "{|\nPl [1:'a]x [2:it's|t]y\n}\n."},
    {"OtherTags", "<card><p><ab href='1'/><a/>x</a><a href='2'\t>y</a><a\nhref=3>z</a>",
     "{|\nPl x [1:'2']y [2:3]z\n}\n."},
    {"Images",
     "<card><p><img src='a' alt='A&#9;&#x1b;B'/><img src=\"b\" alt=''/><img src='c'/>"
     "<IMG alt=D src=d >",
     "{|\nPl <'a'|A \uFFFDB> <b|> <'c'/|> <d|D>\n}\n."},
    {"LongTargets", "<card><p><a href='a=b=c'>x</a><img alt='e=f' src='g=h'/>",
     "{|\nPl [1:'a]x <'g|e=f>\n}\n."},
    {"References", "<card><p>&eacute;&#233;&#9;&#8364;&euro;&#128512;&#xD83D;&#xDE00;&#60;",
     "{|\nPl éé €€😀😀<\n}\n."},
    {"Bytes", "<card title='\xC3\xA9'><p>\xC3\xA9\xE6\x97\xA5\xF0\x9F\x98\x80<b>\xC2\xA0</b>",
     "{|é\nPl é日😀 *b\u00A0\n}\n."},
    {"Lines", "<card><p>a\n\tb<pre>c\td\n e</pre>", "{|\nPl a b\nFl *20c\td\nFl *20 e\n}\n."},
    {"Table", "<card><table columns='2' align='CR'><tr><td>a<td>b<br/>c<tr><td>d</table>e",
     "{|\nT /l a,l b\\nc, /l d,\nPl e\n}\n."},
    {"Cells", "<card><table columns='1'><tr><td>a<card title='b'>c",
     "{|\nT /l a,\n}\n{|b\nPl c\n}\n."},
    {"Cards", "<card id='a' title='A'><p>x</card><card id='b'><card title='C&amp;'>z",
     "{|A\nPl x\n}\n{|\n}\n{|C&\nPl z\n}\n."},
};

TEST(Blocks, OfRawDecksAreWhatTheFilterTells) {
  DeckOptions options;
  options.raw = true;
  for (const BlockCase &item : kRawCases) {
    SCOPED_TRACE(item.name);
    EXPECT_EQ(Blocks(std::string("<wml>") + item.markup, options), item.blocks);
  }
}

// Characters of a deck that is read in an identity of the filter, whatever they are made of.
TEST(Blocks, OfAnIdentityHaveItsCharacters) {
  const struct {
    std::int16_t identity;
    const char *content;
    const char *blocks;
  } cases[] = {
      {1151, "a\xE9\x80\x95 &#233;&#8364;", "{|\nPl aé• é€\n}\n."},
      {1151, "&#xD83D;&#xDE00; x &#xDE00;", "{|\nPl 😀 x �\n}\n."},
      {1151, "&#xDBFF;&#xDFFF;&#xD800;&#xDC00;&#xD7FF;&#xE000;",
       "{|\nPl \U0010FFFF\U00010000\uD7FF\uE000\n}\n."},
      {1151, "&#xD83D;x&#xDE00;y&#xD83D; &#xD83D;&#xD83D;&#xDE00;",
       "{|\nPl \uFFFDx\uFFFDy\uFFFD \uFFFD😀\n}\n."},
      {1151, "&#xD83D;<b>&#xDE00;</b>&#xD83D;<br/>&#xDE00;&#xD83D;",
       "{|\nPl \uFFFD *b\uFFFD \uFFFD\nLl \uFFFD\uFFFD\n}\n."},
      {1151, "<pre>&#xD83D;\t&#xDE00;</pre><table columns=1><tr><td>&#xD83D;<br/>&#xDE00;</table>",
       "{|\nFl *20\uFFFD\t\uFFFD\nT /l \uFFFD\\n\uFFFD,\n}\n."},
      {1160, "&#xD83D;&#xDE00;&#xD83D;\xB1&#xDE00;", "{|\nPl 😀\uFFFDｱ\uFFFD\n}\n."},
      {1151, "<a href='\xE9' title='\xE8'>\xE7</a><img src='\xE9' alt='\xE8'/>",
       "{|\nPl [1:'é'|è]ç <'é'|è>\n}\n."},
      {1160, "\xB1\x93\xFA\x96\x7B<b>\x8C\xEA</b>\xB2", "{|\nPl ｱ日本 *b語 ｲ\n}\n."},
      {1160, "<a href='\x93\xFA'>\x96\x7B</a>&eacute;<img src='x'/>",
       "{|\nPl [1:'']本 é <'x'/|>\n}\n."},
      {1157, "\xCF\xF0&#1088;<table columns=1><tr><td>\xE8\xE2</table>",
       "{|\nPl Прр\nT /l ив,\n}\n."},
  };
  for (const auto &item : cases) {
    DeckOptions options;
    options.identity = item.identity;
    EXPECT_EQ(Blocks(std::string("<wml><card><p>") + item.content, options), item.blocks)
        << item.content;
  }
}

}  // namespace
}  // namespace vs_wml::test
