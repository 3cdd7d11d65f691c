// SPDX-License-Identifier: MIT
//
// Tags that are looked for backwards from their end, and their attributes.
#include "host/blocks/source_tag.h"

#include <gtest/gtest.h>

namespace vs_wml {
namespace {

std::string AttributeOf(const std::string &text, std::string_view attribute) {
  const SourceTag tag = SourceTag::EndingAt(text, text.size(), "card");
  return tag.Attribute(attribute).value_or(tag.Found() ? "(absent)" : "(no tag)");
}

TEST(SourceTag, HasTheAttributesOfTheLastTagOfItsName) {
  const struct {
    const char *text;
    const char *id;
  } cases[] = {
      {"<card id='a'>", "a"},
      {"<card id='a'><b id='x'>", "a"},
      {"<card id='a'>text<card id='b'>", "b"},
      {"<card id='a'><cards id='x'>", "a"},
      {"<card id='a'><card-x id='x'>", "a"},
      {"<card id='a'></card id='x'>", "a"},
      {"<card id='a'><card", "a"},
      {"x<CARD\tID = \"a\"/>", "a"},
      {"< \tcard\r\nid\n=\r\n'a'>", "a"},
      {"<CaRdZ id='x'><cArD iD='Z'>", "Z"},
      {"<card/id='a'>", "a"},
      {"<card>", "(absent)"},
      {"<card/>", "(absent)"},
      {"<card id>", "(absent)"},
      {"<card id/title='t'>", "(absent)"},
      {"<card title='id=x'>", "(absent)"},
      {"<card xid='x' id2='x'>", "(absent)"},
      {"<card id='a' id='b'>", "a"},
      {"<card title=t id=a>", "a"},
      {"<card title=\"it's\" id='say \"a\"'>", "say \"a\""},
      {"<card id=a/b>", "a/b"},
      {"<card id='a>", "a>"},
      {"<card id=>", ""},
      {"<card id=", ""},
      {"<card id=''x='y'>", ""},
      {"<card title='t'id='a'>", "a"},
      {"<card id='&amp;&#228;'>", "&ä"},
      {"<card title='<b>' id='a'>", "a"},
      {"card id='a'>", "(no tag)"},
      {"<card", "(no tag)"},
      {"<", "(no tag)"},
      {"", "(no tag)"},
  };
  for (const auto &item : cases) EXPECT_EQ(AttributeOf(item.text, "id"), item.id) << item.text;
}

TEST(SourceTag, EndsAtItsOffset) {
  const std::string text = "<card id='a'><card id='b'>";
  const auto id = [&](std::size_t offset) {
    return SourceTag::EndingAt(text, offset, "card").Attribute("id");
  };
  EXPECT_EQ(id(13), "a");
  EXPECT_EQ(id(14), "a");
  EXPECT_EQ(id(26), "b");
  EXPECT_EQ(id(1000), "b") << "a host's offset may lie behind the end";
}

// How far back, and past how many angle brackets, a tag is looked for.
TEST(SourceTag, IsLookedForWithinBounds) {
  const auto padded = [](std::size_t length) {
    const std::string begin = "<card id='a' title='";
    return "x" + begin + std::string(length - begin.size() - 2, '.') + "'>";
  };
  EXPECT_EQ(AttributeOf(padded(16384), "id"), "a");
  EXPECT_EQ(AttributeOf(padded(16385), "id"), "(no tag)");
  const auto bracketed = [](std::size_t count) {
    return "<card id='a' title='" + std::string(count, '<') + "'>";
  };
  EXPECT_EQ(AttributeOf(bracketed(16), "id"), "a");
  EXPECT_EQ(AttributeOf(bracketed(17), "id"), "(no tag)");
}

}  // namespace
}  // namespace vs_wml
