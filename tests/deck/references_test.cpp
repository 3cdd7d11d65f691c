// SPDX-License-Identifier: MIT
//
// Character references as people write them.
#include "host/deck/references.h"

#include <gtest/gtest.h>

#include "host/text/utf8.h"

namespace vs_wml {
namespace {

// The character of the reference at the start, and what follows it; "" for none.
std::string Read(std::string_view text, ReferencePlace place) {
  const CharacterReference reference = ReadReference(text, place);
  if (reference.length == 0) return "";
  std::string result;
  AppendUtf8(result, reference.character);
  return result.append("|").append(text.substr(reference.length));
}

TEST(References, OfNumbersAreTheirCharacters) {
  const struct {
    const char *text;
    const char *read;
  } cases[] = {
      {"&#65;b", "A|b"},
      {"&#65b", "A|b"},
      {"&#65", "A|"},
      {"&#0065;", "A|"},
      {"&#x41;g", "A|g"},
      {"&#X4a;", "J|"},
      {"&#x4Ag", "J|g"},
      {"&#x41", "A|"},
      {"&#xe4;", "ä|"},
      {"&#e4;", "ä|"},
      {"&#4e;", "N|"},
      {"&#4e", "\x04|e"},
      {"&#65ef ", "A|ef "},
      {"&#", ""},
      {"&#;", ""},
      {"&#x", ""},
      {"&#x;", ""},
      {"&#g;", ""},
      {"&#-1;", ""},
      // What is no character, and what windows-1252 makes of it.
      {"&#0;", "\uFFFD|"},
      {"&#x10FFFF;", "\U0010FFFF|"},
      {"&#x110000;", "\uFFFD|"},
      {"&#1114111;", "\U0010FFFF|"},
      {"&#1114112;", "\uFFFD|"},
      {"&#99999999999999999999999;", "\uFFFD|"},
      {"&#4294967361;", "\uFFFD|"},  // 2^32 + 65
      {"&#x100000041;", "\uFFFD|"},
      {"&#127;", "\x7F|"},
      {"&#128;", "€|"},
      {"&#129;", "\uFFFD|"},
      {"&#159;", "Ÿ|"},
      {"&#160;", "\u00A0|"},
      // Surrogates.
      {"&#xD7FF;", "\uD7FF|"},
      {"&#xE000;", "\uE000|"},
      {"&#xD800;", "\uFFFD|"},
      {"&#xDFFF;&#xD800;", "\uFFFD|&#xD800;"},
      {"&#xD83D;&#xDE00;x", "😀|x"},
      {"&#xD83D&#56832x", "😀|x"},
      {"&#xDBFF;&#xDFFF;", "\U0010FFFF|"},
      {"&#xD800;&#xDC00;", "\U00010000|"},
      {"&#xD83D; &#xDE00;", "\uFFFD| &#xDE00;"},
      {"&#xD83D;&#xE000;", "\uFFFD|&#xE000;"},
      {"&#xD83D;&#65;", "\uFFFD|&#65;"},
      {"&#xD83D;&#", "\uFFFD|&#"},
  };
  for (const auto &item : cases) {
    EXPECT_EQ(Read(item.text, ReferencePlace::kText), item.read) << item.text;
    EXPECT_EQ(Read(item.text, ReferencePlace::kAttribute), item.read) << item.text;
  }
}

TEST(References, OfNamesDependOnTheirPlace) {
  const struct {
    const char *text;
    const char *inText;
    const char *inAttribute;
  } cases[] = {
      {"&lt;x", "<|x", "<|x"},
      {"&ltx", "<|x", ""},
      {"&amp", "&|", ""},
      {"&amp=1", "&|=1", ""},
      {"&quot;", "\"|", "\"|"},
      {"&apos;", "'|", "'|"},
      {"&gt;", ">|", ">|"},
      {"&LT;", "", ""},
      {"&eacute;x", "é|x", "é|x"},
      {"&eacute x", "é| x", ""},
      {"&eacute", "é|", ""},
      {"&Eacute;", "É|", "É|"},
      {"&EACUTE;", "", ""},
      {"&eacutex;", "", ""},
      {"&frac12;", "½|", "½|"},
      {"&thetasym;", "ϑ|", "ϑ|"},
      {"&thetasymx;", "", ""},
      {"&no;", "", ""},
      {"&;", "", ""},
      {"& lt;", "", ""},
      {"&", "", ""},
  };
  for (const auto &item : cases) {
    EXPECT_EQ(Read(item.text, ReferencePlace::kText), item.inText) << item.text;
    EXPECT_EQ(Read(item.text, ReferencePlace::kAttribute), item.inAttribute) << item.text;
  }
}

TEST(References, HaveTheFormOfAName) {
  const struct {
    const char *text;
    std::size_t length;
  } cases[] = {{"&a;", 3},   {"&abcdefgh;", 10}, {"&abcdefghi;", 0}, {"&a1;x", 4},
               {"&1a;", 0},  {"&a", 0},          {"&a b;", 0},       {"&;", 0},
               {"&a-b;", 0}, {"&abcdefgh", 0},   {"&AZ09;", 6}};
  for (const auto &item : cases)
    EXPECT_EQ(NamedReferenceLength(item.text), item.length) << item.text;
}

TEST(References, InAttributesGiveCleanText) {
  const struct {
    const char *raw;
    const char *value;
  } cases[] = {
      {"", ""},
      {"a&amp;b&c=d&", "a&b&c=d&"},
      {"&&amp;&lt;&lt", "&&<&lt"},
      {"a\tb\r\nc d", "a b  c d"},
      {"&#9;&#10;&#32;", "   "},
      {"a\x01\x1F\x7F"
       "b&#1;&#127;c",
       "abc"},
      {"\xC2\x80\xC2\x9F\xC2\xA0\xC3\x80", "\u00A0À"},
      {"&#xA0;&#133;", "\u00A0…"},
      {"a\xC2", "a\xC2"},
      {"\xC2&amp;", "\xC2&"},
  };
  for (const auto &item : cases) EXPECT_EQ(DecodeAttribute(item.raw), item.value) << item.raw;
}

}  // namespace
}  // namespace vs_wml
