// SPDX-License-Identifier: MIT
#include "host/serve/served_bytes.h"

#include <gtest/gtest.h>

namespace vs_wml {
namespace {

struct TextCase {
  const char *from;
  const char *to;
};

TEST(ServedBytes, HoldNothingThatTheFilterWouldLose) {
  const TextCase kCases[] = {
      {"plain <b>text</b> é 日", "plain <b>text</b> é 日"},
      {"&#233;&#xE9;&eacute;&euro;&#x1F600;&#128512;", "ééé€😀😀"},
      {"&#xD83D;&#xDE00; &#xD83D; &#55357;x", "😀 \xEF\xBF\xBD \xEF\xBF\xBDx"},
      {"&#150;&#0;&#x110000;&#99999999999;", "–\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
      {"&#00060;&#x0000026;&#65;&#34;&#39;", "&lt;&amp;A&quot;&apos;"},
      {"&#36;&#32;&#47;", "&#36;&#32;&#47;"},
      {"&amp;&lt;&nosuch;&nbsp;& &#;&#x;&", "&amp;&lt;&nosuch;\xC2\xA0& &#;&#x;&"},
      {"a\x01\x0E\x0F\x1B\x7F z\t\n\r", "a z\t\n\r"},
      {"a\xC2\x9B\xC2\xA0z", "a\xC2\xA0z"},
      {"<meta content='charset=big5'/>< META >", "<met_ content='charset=big5'/>< MET_ >"},
      {"<metal><met", "<met_l><met"},
      {"<\t\r\nmeta>< ", "<\t\r\nmet_>< "},
      {"&#9;&#10;&#13;&#11;&#127;&#128;&#159;&#160;", "\t\n\r\uFFFD\uFFFD€Ÿ\u00A0"},
      {"&#xD7FF;&#xE000;&#xD800;&#xDBFF;&#xDC00;&#xDFFF;",
       "\xED\x9F\xBF"
       "\uE000\uFFFD\U0010FC00\uFFFD"},
      {"&#xD800;&#xDC00;&#xDBFF;&#xDFFF;&#xD83D;&#x41;&#xD83D;&#xE000;&#xD83D;&bad;",
       "\U00010000\U0010FFFF\uFFFDA\uFFFD\uE000\uFFFD&bad;"},
      {"&#x10FFFF;&#xaAfF;&#XFa;&#x0g;&#1a;&#233 &#xE9", "\U0010FFFF\uAAFFú\uFFFDg;\uFFFDa;é é"},
      {"&#233", "é"},
      {"a\xC2", "a\xC2"},
      {"\xC2\x80\xC2\x9F\xC2\xA0", "\xC2\xA0"},
  };
  for (const TextCase &item : kCases) {
    EXPECT_EQ(MakeServedBytes(item.from), item.to) << item.from;
  }
}

TEST(ServedBytes, ReferencesInTargetsAreResolved) {
  const TextCase kCases[] = {{"a?b=1&amp;c=2&d=3", "a?b=1&c=2&d=3"},
                             {"&lt;&gt;&quot;&apos;&#38;&eacute;", "<>\"'&é"},
                             {"&amp;amp;", "&amp;"},
                             {"x&#7;y", "xy"},
                             {"&amp&lt &", "&amp&lt &"}};
  for (const TextCase &item : kCases) EXPECT_EQ(ResolveReferences(item.from), item.to);
}

}  // namespace
}  // namespace vs_wml
