// SPDX-License-Identifier: MIT
//
// Documents made ready: compiled ones, those with byte-order marks, those served as they are.
#include "host/deck.h"

#include <gtest/gtest.h>

#include "host/wmlc/wmlc.h"
#include "recorder.h"

namespace vs_wml::test {
namespace {

using namespace std::string_literals;

// A compiled deck with a card of that text, in the character set of that MIB number.
std::string Compiled(const std::string &charset, const std::string &text) {
  return "\x03\x04" + charset + "\0\x7F\x67\x60\x03"s + text + "\0\x01\x01\x01"s;
}

TEST(Deck, CompiledIsInItsOwnCharacterSetUnlessToldOtherwise) {
  const struct {
    const char *what;
    std::string bytes;
    const char *option;
    const char *charset;
    CharsetOrigin origin;
    const char *text;
    std::size_t warnings = 0;
  } cases[] = {
      {"Latin 1", Compiled("\x04", "\xE5"), "", "ISO-8859-1", CharsetOrigin::kCompiled, "å"},
      {"told", Compiled("\x04", "\xE5"), "koi8-r", "koi8-r", CharsetOrigin::kOption, "Е"},
      {"two bytes", Compiled("\x91\x4B", "\xE5"), "", "windows-1251", CharsetOrigin::kCompiled,
       "е"},
      {"UTF-8", Compiled("\x6A", "\xC3\xA5"), "", "UTF-8", CharsetOrigin::kCompiled, "å"},
      {"ill-formed", Compiled("\x6A", "\xC3"), "", "UTF-8", CharsetOrigin::kCompiled, "\uFFFD", 1},
      {"unknown", Compiled("\x7F", "\xC3\xA5"), "", "UTF-8", CharsetOrigin::kValidUtf8, "å", 1},
      {"none", Compiled(std::string(1, '\0'), "a"), "", "UTF-8", CharsetOrigin::kValidUtf8, "a"},
  };
  for (const auto &item : cases) {
    SCOPED_TRACE(item.what);
    DeckOptions options;
    options.charset = item.option;
    const Deck deck = PrepareDeck("x", item.bytes, options);
    EXPECT_EQ(deck.info.charset, item.charset);
    EXPECT_EQ(deck.info.charsetOrigin, item.origin);
    EXPECT_EQ(deck.info.warnings.size(), item.warnings);
    EXPECT_EQ(deck.bytes, "<wml><card><p>"s + item.text + "</card></wml>");
  }
  EXPECT_THROW(PrepareDeck("x", Compiled("\x04", "x").substr(0, 8), {}), BrokenWmlc);
}

TEST(Deck, HasNoByteOrderMark) {
  const std::string document = "<wml><card>x</card></wml>";
  std::string wide;
  for (const char c : document) wide += {c, '\0'};
  const struct {
    std::string bytes;
    const char *charset;
  } cases[] = {{"\xEF\xBB\xBF" + document, "UTF-8"},
               {"\xFF\xFE" + wide, "UTF-16LE"},
               {"\xFE\xFF\0"s + wide.substr(0, wide.size() - 1), "UTF-16BE"},
               {document, "UTF-8"}};
  for (const bool raw : {false, true}) {
    for (const auto &item : cases) {
      DeckOptions options;
      options.raw = raw;
      const Deck deck = PrepareDeck("x", item.bytes, options);
      EXPECT_EQ(deck.info.charset, item.charset);
      EXPECT_EQ(deck.bytes, document);
      EXPECT_TRUE(deck.servedAsUtf8);
      EXPECT_EQ(deck.info.adapted, !raw);
    }
  }
}

TEST(Deck, OfAnIdentityIsLeftAlone) {
  DeckOptions options;
  options.identity = 1160;
  for (const std::string &bytes :
       {""s, "\xEF\xBB\xBF<wml>&#228;"s, Compiled("\x04", "x"), "no markup"s}) {
    const Deck deck = PrepareDeck("x", bytes, options);
    EXPECT_EQ(deck.bytes, bytes);
    EXPECT_EQ(deck.identity, 1160);
    EXPECT_FALSE(deck.servedAsUtf8);
    EXPECT_FALSE(deck.info.adapted);
    EXPECT_EQ(deck.info.charset, "identity 1160");
  }
  for (long identity = -1; identity < 70000; ++identity) {
    const bool served = identity == 1151 || (identity >= 1154 && identity <= 1163);
    EXPECT_EQ(IsFilterIdentity(identity), served) << identity;
  }
}

TEST(Deck, CountsWhatItsCharacterSetDoesNotEncode) {
  const auto warnings = [](const std::string &text, const char *charset) {
    DeckOptions options;
    options.charset = charset;
    return PrepareDeck("x", "<wml><card>" + text + "</card></wml>", options).info.warnings;
  };
  EXPECT_TRUE(warnings("\xC3\xA5", "utf-8").empty());
  ASSERT_EQ(warnings("\xC3 \xE5x\xFF", "utf-8").size(), 1U);
  EXPECT_EQ(WarningText(warnings("\xC3 \xE5x\xFF", "utf-8")[0]),
            "3 places are not well-formed in the character set");
  EXPECT_TRUE(warnings("&#xFFFD;", "utf-8").empty());
}

// What the server said is known from who asked it, or else from headers saved in front.
TEST(Deck, TakesWhatTheServerSaid) {
  const std::string saved =
      "HTTP/1.0 200 OK\r\nContent-Type: text/vnd.wap.wml; charset=koi8-r\r\n"
      "content-location: http://h/saved\r\n\r\n";
  const std::string deck = "<wml><card><p>\xE5</p></card></wml>";
  const struct {
    std::string bytes;
    const char *contentType;
    const char *url;
    const char *said;  ///< content type, address, character set
  } cases[] = {
      {deck, "", "", "||windows-1252"},
      {deck, "text/vnd.wap.wml;Charset=\"windows-1251\"", "http://h/x\n",
       "text/vnd.wap.wml;Charset=\"windows-1251\"|http://h/x|windows-1251"},
      {deck, "text/html", "", "text/html||windows-1252"},
      {saved + deck, "", "", "text/vnd.wap.wml; charset=koi8-r|http://h/saved|koi8-r"},
      {saved + deck, "a/b; charset=windows-1251", "http://h/y",
       "a/b; charset=windows-1251|http://h/y|windows-1251"},
      {"<?xml version='1.0' encoding='iso-8859-5'?>" + deck, "a/b; charset=koi8-r", "",
       "a/b; charset=koi8-r||iso-8859-5"},
  };
  for (const auto &item : cases) {
    DeckOptions options;
    options.contentType = item.contentType;
    options.url = item.url;
    const DeckInfo info = PrepareDeck("x", item.bytes, options).info;
    EXPECT_EQ(info.contentType + '|' + info.url + '|' + info.charset, item.said);
  }
}

// A tag is found in any case, and whatever stands before it.
TEST(Deck, IsWmlWhenItHasADeckOrACard) {
  for (const char *document : {"<wml>", "<WmL>", "text <card>", "<html><Card/>", "<<wml", "<a<wml>",
                               "<!DOCTYPE html><wml>"}) {
    EXPECT_NO_THROW(PrepareDeck("x", document, {})) << document;
  }
  for (const char *document : {"wml", "< wml>", "<wm", "<car d>", "</wml>", "<xwml>"}) {
    EXPECT_THROW(PrepareDeck("x", document, {}), NotWml) << document;
  }
}

TEST(Deck, HasItsTargetsResolved) {
  const auto log = [](const char *base, bool raw) {
    DeckOptions options;
    options.base = base;
    options.raw = raw;
    return Blocks(
        "<wml><card><p><a href='x'>a</a><a href='y?$v'>b</a><img src='i' alt=''/></p></card></wml>",
        options);
  };
  EXPECT_EQ(log("", false), "{|\nPl [1:x]a [2:y?{v}]b <i|>\n}\n.");
  EXPECT_EQ(log("http://h/d/e", false),
            "{|\nPl [1:http://h/d/x]a [2:y?{v}]b <http://h/d/i|>\n}\n.");
  EXPECT_EQ(log("http://h/d/e", true), "{|\nPl [1:'x']a [2:'y?$v']b <'i'|>\n}\n.");
  EXPECT_THROW(log("d/e", false), std::invalid_argument);
}

}  // namespace
}  // namespace vs_wml::test
