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
     "{|\nPl a\nT /l b,r c\\nd, /l *be,r,\nPl f\n}\n."},
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

}  // namespace
}  // namespace vs_wml::test
