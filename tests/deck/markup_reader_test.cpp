// SPDX-License-Identifier: MIT
//
// Text and tags of documents as people write them.
#include "host/deck/markup_reader.h"

#include <gtest/gtest.h>

#include <string>

namespace vs_wml {
namespace {

// Tokens in brackets: "[text]", "[L:literal]", "[<name a=value/>]", "[</name>]"; behind them
// the number of kinds of warnings, when there are any.
std::string Tokens(std::string_view document) {
  Warnings warnings(document);
  MarkupReader reader(document, &warnings);
  std::string log;
  Token token;
  while (reader.Next(token)) {
    log += '[';
    switch (token.kind) {
      case TokenKind::kText:
        log += token.text;
        break;
      case TokenKind::kLiteral:
        log.append("L:").append(token.text);
        break;
      case TokenKind::kStartTag:
        log.append("<").append(token.name);
        for (const Attribute &attribute : token.attributes) {
          log.append(" ").append(attribute.name).append("=").append(attribute.value);
        }
        log += token.empty ? "/>" : ">";
        break;
      case TokenKind::kEndTag:
        log.append("</").append(token.name).append(">");
        break;
      case TokenKind::kEnd:
        log += "end";
    }
    log += ']';
  }
  EXPECT_EQ(token.kind, TokenKind::kEnd);
  if (const auto kinds = warnings.Take(); !kinds.empty()) log += std::to_string(kinds.size());
  return log;
}

TEST(MarkupReader, SplitsTextAndTags) {
  const struct {
    const char *document;
    const char *tokens;
  } cases[] = {
      {"", ""},
      {"a", "[a]"},
      {"<b>", "[<b>]"},
      {"a<b>c</b>d", "[a][<b>][c][</b>][d]"},
      // What is markup and what is text.
      {"a < b", "[a < b]"},
      {"<", "[<]"},
      {"a<", "[a<]"},
      {"</", "[</]"},
      {"</ b>", "[</ b>]"},
      {"</1>", "[</1>]"},
      {"<1>", "[<1>]"},
      {"<<b>", "[<][<b>]"},
      {"<_b><\xC3\xA5>", "[<_b>][<\xC3\xA5>]"},
      {"<->", "[<->]"},
      {"< b>", "[<b>]"},
      {"<\tBr / >", "[<Br>]"},
      {"< br/>", "[<br/>]"},
      {"< b/>", "[<b/>]"},
      {"< b1>", "[< b1>]"},
      {"< b c>", "[< b c>]"},
      {"< >", "[< >]"},
      {"< / >", "[< / >]"},
      {"< bcdefghijklmno>x", "[<bcdefghijklmno>][x]"},
      {"< bcdefghijklmnop>x", "[< bcdefghijklmnop>x]"},
      // Names.
      {"<b:c-d.e>", "[<b:c-d.e>]"},
      {"<b\nc>", "[<b c=>]"},
      {"<b=c>", "[<b c=>]"},
      {"<b\"c'd>", "[<b c= d=>]"},
      {"</b c='>d>", "[</b>][d>]"},
      {"</b/>", "[</b>]"},
      // Attributes.
      {"<b c='d' e=\"f\" g=h>", "[<b c=d e=f g=h>]"},
      {"<b c = 'd'>", "[<b c=d>]"},
      {"<b c\n=\td>", "[<b c=d>]"},
      {"<b c='d'e='f'>", "[<b c=d e=f>]"},
      {"<b c='' d=\"\" e=>", "[<b c= d= e=>]"},
      {"<b c= d>", "[<b c=d>]"},
      {"<b c='\"' d=\"'\">", "[<b c=\" d='>]"},
      {"<b c='>' d='<e>'>", "[<b c=> d=<e>>]"},
      {"<b = c>", "[<b c=>]"},
      {"<b c=d=e>", "[<b c=d=e>]"},
      {"<b c=d'e>", "[<b c=d'e>]"},
      {"<b c=&amp; c=2>", "[<b c=&amp; c=2>]"},
      // Slashes.
      {"<b/>", "[<b/>]"},
      {"<b />", "[<b/>]"},
      {"<b / >", "[<b>]"},
      {"<b/c>", "[<b c=>]"},
      {"<b c=d/>", "[<b c=d/>]"},
      {"<b c=d/ >", "[<b c=d/>]"},
      {"<b c=/>", "[<b c=/>]"},
      {"<b c=d/e/>", "[<b c=d/e/>]"},
      {"<a href=d/>", "[<a href=d/>]"},
      {"<A HREF=d/>", "[<A HREF=d/>]"},
      {"<b c='d'/>", "[<b c=d/>]"},
      // Tags that do not end.
      {"<b", "[<b>]1"},
      {"<b c", "[<b c=>]1"},
      {"<b c=", "[<b c=>]1"},
      {"<b c=d", "[<b c=d>]1"},
      {"<b c <d>", "[<b c=>][<d>]1"},
      {"<b c=d<e>", "[<b c=d>][<e>]1"},
      {"</b", "[</b>]1"},
      {"</b <c>", "[</b>][<c>]1"},
      // Quotes that nobody closes.
      {"<b c='d>e", "[<b c=d>][e]1"},
      {"<b c='>e", "[<b c=>][e]1"},
      {"<b c='d>e<f g='h'>", "[<b c=d>][e][<f g=h>]1"},
      {"<b c=\"d>e<f g='h'>", "[<b c=d>][e][<f g=h>]1"},
      {"<b c='d>' e>", "[<b c=d> e=>]"},
      {"<b c='<'/>", "[<b c=</>]"},
      {"<b c='d'f>", "[<b c=d f=>]"},
      {"<b c='<'", "[<b c=<>]1"},
  };
  for (const auto &item : cases) EXPECT_EQ(Tokens(item.document), item.tokens) << item.document;
}

TEST(MarkupReader, PassesOverWhatIsNoText) {
  const struct {
    const char *document;
    const char *tokens;
  } cases[] = {
      // Comments.
      {"a<!--b-->c", "[a][c]"},
      {"<!---->c", "[c]"},
      {"<!--->c", "[c]1"},
      {"<!-- - -- b -- >c", "[c]"},
      {"<!-- b --!>c", "[c]"},
      {"<!-- b --! >c", "[c]"},
      {"<!-- b --!!>c-->d", "[d]"},
      {"<!-- <b> --->c", "[c]"},
      {"<!-- b>c", "[c]1"},
      {"<!-- b", "1"},
      {"<!-- b --", "1"},
      {"<!-- b>c<!-- d>e", "[c][e]1"},
      // Declarations.
      {"<!DOCTYPE wml>a", "[a]"},
      {"<!DOCTYPE wml [<!ENTITY b '>'>]>a", "[a]"},
      {"<!DOCTYPE wml [ ] ] >a", "[a]"},
      {"<!DOCTYPE wml [<!ENTITY b '>'>a", "['>a]1"},
      {"<!x", ""},
      {"<!>a", "[a]"},
      {"<!x>[a]>", "[[a]>]"},
      // Instructions and server-side code.
      {"<?xml version='1.0'?>a", "[a]"},
      {"<?php if (a > b) ?>a", "[a]"},
      {"<?php a>b", "[b]1"},
      {"<?php", "1"},
      {"<?"
       "?>a",
       "[a]"},
      {"<?>a", "[a]1"},
      {"<%%>a", "[a]1"},
      {"<%= a > b %>c", "[c]1"},
      {"<% a>b", "[b]2"},
      // Literal text.
      {"<![CDATA[a<b>]]>c", "[L:a<b>][c]"},
      {"<![CDATA[]]>c", "[L:][c]"},
      {"<![CDATA[a]]b]]]>c", "[L:a]]b]][c]"},
      {"<![CDATA[a<b>c", "[a][<b>][c]1"},
      {"<![cdata[a]]>b", "[b]"},
  };
  for (const auto &item : cases) EXPECT_EQ(Tokens(item.document), item.tokens) << item.document;
}

TEST(MarkupReader, TellsWhereTokensStandAndFindsAttributesInAnyCase) {
  Token token;
  MarkupReader reader("<b XML:lang='1' Id='2' ID='3' idx='4'>", nullptr);
  ASSERT_TRUE(reader.Next(token));
  EXPECT_EQ(*token.Find("xml:lang"), "1");
  EXPECT_EQ(*token.Find("id"), "2");
  EXPECT_EQ(token.Find("i"), nullptr);
  EXPECT_EQ(token.offset, 0U);
  MarkupReader texts("<!---->a<b>", nullptr);
  ASSERT_TRUE(texts.Next(token));
  EXPECT_EQ(token.offset, 7U);
  ASSERT_TRUE(texts.Next(token));
  EXPECT_EQ(token.offset, 8U);
}

}  // namespace
}  // namespace vs_wml
