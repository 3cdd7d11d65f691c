// SPDX-License-Identifier: MIT
#include "host/served_bytes.h"

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
  };
  for (const TextCase &item : kCases) {
    EXPECT_EQ(MakeServedBytes(item.from), item.to) << item.from;
  }
}

TEST(ServedBytes, ReferencesInTargetsAreResolved) {
  const TextCase kCases[] = {{"a?b=1&amp;c=2&d=3", "a?b=1&c=2&d=3"},
                             {"&lt;&gt;&quot;&apos;&#38;&eacute;", "<>\"'&é"},
                             {"&amp;amp;", "&amp;"},
                             {"x&#7;y", "xy"}};
  for (const TextCase &item : kCases) EXPECT_EQ(ResolveReferences(item.from), item.to);
}

}  // namespace
}  // namespace vs_wml
