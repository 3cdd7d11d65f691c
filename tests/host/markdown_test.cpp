// SPDX-License-Identifier: MIT
//
// Markdown that reads as the deck does: marks that count, characters that do not.
#include <gtest/gtest.h>

#include "written.h"

namespace vs_wml::test {
namespace {

TEST(Markdown, IsReadAsTheDeckIs) {
  const struct {
    const char *content;
    const char *markdown;
  } cases[] = {
      // Marks of emphasis count only beside the right characters.
      {"<p><b>a</b>b <i>c</i></p>", "**a**b *c*\n"},
      {"<p><b>Name:</b> x</p>", "**Name:** x\n"},
      {"<p><b>Name:</b>x</p>", "<b>Name:</b>x\n"},
      {"<p>x<b>(y)</b></p>", "x<b>(y)</b>\n"},
      {"<p>x<b>“y”</b>, <i>é</i>à</p>", "x<b>“y”</b>, *é*à\n"},
      {"<p>東<b>京</b>都<b>、</b>x</p>", "東**京**都<b>、</b>x\n"},
      {"<p><b>x</b><i>y</i></p>", "**x**<i>y</i>\n"},
      {"<p><b>a </b><i> b</i></p>", "**a** *b*\n"},
      {"<p><b><i>x.</i></b>y</p>", "<b><i>x.</i></b>y\n"},
      {"<p>x<a href='u'><b>(y)</b></a>z</p>", "x[**(y)**](u)z\n"},
      // What would mean something at the start of a line or anywhere.
      {"<p># 1<br/>- 2<br/>3. 4<br/>5) 6<br/>+ 7<br/>=</p>",
       "\\# 1\\\n\\- 2\\\n3\\. 4\\\n5\\) 6\\\n\\+ 7\\\n\\=\n"},
      {"<p>`a` *b* _c_ [d](e) &lt;f&gt; &amp;amp; ~g~ \\h</p>",
       "\\`a\\` \\*b\\* \\_c\\_ \\[d\\](e) \\<f\\> \\&amp; \\~g\\~ \\\\h\n"},
      {"<pre># a\n  **b**</pre>", "    # a\n      **b**\n"},
      // Tables.
      {"<table columns='2' align='LR'><tr><td>a|b<br/>c</td><td>d</td></tr><tr><td>e</td></tr>"
       "</table>",
       "| a\\|b<br>c | d |\n| --- | ---: |\n| e |  |\n"},
      // Targets: references and brackets in them are characters of the target.
      {"<p><a href='a b'>x</a> <a href='f(1)'>y</a> <a href='?a=1&amp;amp;b=&lt;2&gt;'>z</a></p>",
       "[x](<a b>) [y](<f(1)>) [z](?a=1\\&amp;b=%3C2%3E)\n"},
      {"<p><a href='javascript&amp;#58;x'>x</a> <a href='javascript:y'>y</a></p>",
       "[x](javascript\\&#58;x) y\n"},
      {"<p><img src='data:image/svg+xml,x' alt='a]b'/></p>", "![a\\]b](#)\n"},
      {"<p>12<br/>.5<br/>7x<br/>=a<br/>:b<br/>a# 1.</p>",
       "12\\\n.5\\\n7x\\\n\\=a\\\n\\:b\\\na# 1.\n"},
      {"<p><b># x</b><br/><b>1.</b></p>", "**# x**\\\n**1.**\n"},
      {"<p>a</p><pre>b</pre><pre>c\n\nd</pre><p>e<br/>f</p>",
       "a\n\n    b\n\n    c\n\n    d\n\ne\\\nf\n"},
      {"<p>a</p><table columns='1'><tr><td>b</td></tr></table><p>c<br/>d</p>",
       "a\n\n| b |\n| --- |\n\nc\\\nd\n"},
      {"<table columns='2' align='CR'><tr><td>- a</td><td># b</td></tr></table>",
       "| - a | # b |\n| :---: | ---: |\n"},
      {"<p><b><img src='u' alt='a'/>.</b><a href='v'><b>b.</b></a><i>c.</i><img src='w'/></p>",
       "![a](u)**.**[**b.**](v)*c.*![w](w)\n"},
      {"<p><i>x.</i><a href='javascript:y'>z</a> <i>x.</i><a href='y'>z</a></p>",
       "<i>x.</i>z *x.*[z](y)\n"},
      {"<p><a href='a'>b</a><a href='a'>c</a><a href=''>d</a> <a href='a\\b|c'>e</a></p>",
       "[b](a)[c](a)[d](<>) [e](a\\\\b\\|c)\n"},
      {"<p><a href='?A&amp;Zz09#;b'>x</a> <a href='?&amp;a-b;'>y</a> <a href='?&amp;;'>z</a></p>",
       "[x](?A\\&Zz09#;b) [y](?&a-b;) [z](?\\&;)\n"},
      {"<p>a</p></card><card title='# T *'><p>b</p></card><card><p>c</p>",
       "a\n\n## # T \\*\n\nb\n\n---\n\nc\n"},
  };
  for (const auto &item : cases)
    EXPECT_EQ(Written(Format::kMarkdown, item.content), item.markdown) << item.content;
}

}  // namespace
}  // namespace vs_wml::test
