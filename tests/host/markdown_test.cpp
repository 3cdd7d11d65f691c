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
       "\\`a\\` \\*b\\* \\_c\\_ \\[d](e) &lt;f> &amp;amp; \\~g\\~ \\\\h\n"},
      {"<pre># a\n  **b**</pre>", "    # a\n      **b**\n"},
      // Tables.
      {"<table columns='2' align='LR'><tr><td>a|b<br/>c</td><td>d</td></tr><tr><td>e</td></tr>"
       "</table>",
       "| a\\|b<br>c | d |\n| --- | ---: |\n| e |\n"},
      // Targets: references and brackets in them are characters of the target.
      {"<p><a href='a b'>x</a> <a href='f(1)'>y</a> <a href='?a=1&amp;amp;b=&lt;2&gt;'>z</a></p>",
       "[x](a%20b) [y](f\\(1\\)) [z](?a=1&amp;amp;b=%3C2%3E)\n"},
      {"<p><a href='javascript&amp;#58;x'>x</a> <a href='javascript:y'>y</a></p>",
       "[x](javascript&amp;#58;x) y (javascript:y)\n"},
      {"<p><img src='data:image/svg+xml,x' alt='a]b'/></p>", "\\[a]b]\n"},
      {"<p>12<br/>.5<br/>7x<br/>=a<br/>:b<br/>a# 1.</p>", "12\\\n.5\\\n7x\\\n=a\\\n:b\\\na# 1.\n"},
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
       "<i>x.</i>z (javascript:y) *x.*[z](y)\n"},
      {"<p><a href='a'>b</a><a href='a'>c</a><a href=''>d</a> <a href='a\\b|c'>e</a></p>",
       "[b](a)[c](a)d [e](a%5Cb%7Cc)\n"},
      {"<p><a href='?A&amp;Zz09#;b'>x</a> <a href='?&amp;a-b;'>y</a> <a href='?&amp;;'>z</a></p>",
       "[x](?A&amp;Zz09#;b) [y](?&a-b;) [z](?&amp;;)\n"},
      // What means nothing where it stands is left alone.
      {"<p>5 * 3, a_b, 4 < 5 &amp; 6, $1, {n}, x!</p>", "5 * 3, a_b, 4 < 5 & 6, $1, {n}, x!\n"},
      {"<p>-5 °C<br/>3.5 km<br/>+1<br/>A. B.</p>", "-5 °C\\\n3.5 km\\\n+1\\\nA. B.\n"},
      // An address that viewers make a link of takes all up to a blank, marks and breaks, too.
      {"<p>see www.a.example/x_y?b=1<br/>http://a.example/[b</p>",
       "see www.a.example/x_y?b=1  \nhttp\\://a.example/\\[b\n"},
      {"<p>www.a.example<b>/x</b></p>", "www\\.a.example<b>/x</b>\n"},
      // Preformatted text that has links and pictures.
      {"<pre>a\n<a href='?b=1&amp;c'>&lt;d&gt;</a>\n <img src='e' alt='f'/>\n</pre><p>g</p>",
       "    a\n\n<pre><a href=\"?b=1&amp;c\">&lt;d&gt;</a>\n f</pre>\n\ng\n"},
      // What is sent, assigned, and cannot be followed.
      {"<p><anchor>a<go href='u' method='post'><postfield name='n' value='1'/>"
       "<setvar name='x' value='17'/></go></anchor></p>",
       "[a](u) (POST, n=1, x:=17)\n"},
      {"<p><anchor>a<prev><setvar name='x' value='2'/></prev></anchor> "
       "<anchor>b<refresh/></anchor> <a href='#none'>c</a> <a href='u?q=$q'>d</a></p>",
       "a (back, x:=2) b (refresh) c (#none) d (u?q={q})\n"},
      // Pictures of others are links.
      {"<p><img src='http://h/a.png' alt='a'/><a href='u'><img src='//h/b.png' alt='b'/></a></p>",
       "[a](http://h/a.png)[\\[b\\]](u)\n"},
      {"</card><card id='c' title='T'><p>x <a href='#c'>y</a></p></card><card id='c'>",
       "<a id=\"c\"></a>\n\n## T\n\nx [y](#c)\n\n---\n"},
      {"<p>a</p></card><card title='# T *'><p>b</p></card><card><p>c</p>",
       "a\n\n## # T \\*\n\nb\n\n---\n\nc\n"},
  };
  for (const auto &item : cases)
    EXPECT_EQ(Written(Format::kMarkdown, item.content), item.markdown) << item.content;
}

}  // namespace
}  // namespace vs_wml::test
