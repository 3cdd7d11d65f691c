// SPDX-License-Identifier: MIT
#include "host/wmlc/wmlc.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "host/deck.h"

namespace vs_wml {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

// <wml><card title="t">abc $(x)<br/></card></wml>, "abc" from the string table; the charset
// is ISO 8859-1.
constexpr std::string_view kDeck =
    "\x03\x04\x04\x04"
    "abc\0"
    "\x7F\xE7\x36\x03t\0\x01\x83\0\x03 \xE5\0\x42x\0\x26\x01\x01"sv;

// A number of seven bits a byte.
std::string Number(std::size_t value) {
  std::string bytes(1, static_cast<char>(value & 0x7FU));
  while ((value >>= 7U) != 0) bytes.insert(bytes.begin(), static_cast<char>(value | 0x80U));
  return bytes;
}

// A header of version 1.3 and WML 1.1, with a table of strings.
std::string Header(std::string_view strings = {}, std::size_t charset = 106,
                   std::size_t publicId = 4) {
  return "\x03" + Number(publicId) + Number(charset) + Number(strings.size()) +
         std::string(strings);
}

// The markup behind the document type.
std::string Body(std::string_view deck) {
  const std::string wml = DecodeWmlc(deck).wml;
  const std::size_t type = wml.find("<!DOCTYPE");
  const std::size_t end = wml.find('>', type == std::string::npos ? 0 : type);
  return wml.substr(end + 1);
}

// The reason why a deck is refused, "" when it is decoded.
std::string Refusal(std::string_view deck) {
  try {
    DecodeWmlc(deck);
  } catch (const BrokenWmlc &failure) {
    return failure.what();
  }
  return "";
}

TEST(Wmlc, IsRecognised) {
  const std::string name = "-//WAPFORUM//DTD WML 1.1//EN\0"s;
  const struct {
    std::string bytes;
    bool compiled;
  } cases[] = {
      {std::string(kDeck), true},
      {"", false},
      {"\x03", false},
      {"<?xml version='1.0'?>", false},
      {"\x03\x05\x04\x00"s, false},                  // a service indication
      {"\x04\x04\x04\x00"s, false},                  // version 1.4
      {"\x03\x04\x04\x7F"s, false},                  // its string table is cut off
      {"\x03\x04\x90\x80\x80\x80\x00\x00"s, false},  // a number of 33 bits
      {"\x03\x00\x00\x04\x04"s + "abc\0"s, false},
      {"\x01\x00\x00\x6A\x1D"s + name, true},
      {"\x01\x00\x7F\x6A\x1D"s + name, false},  // the name lies behind the table
      {"\x03\x02\x6A\x00"s, true},
      {"\x03\x09\x6A\x00"s, true},
      {"\x03\x0A\x6A\x00"s, true},
      {"\x03\xA2\x08\x6A\x00"s, true},
      {"\x03\x01\x6A\x00\x7F"s, true},  // an unknown document type, but the root is WML's
      {"\x03\x01\x6A\x00\x45"s, false},
      {"\x00\x04\x00\x7F"s, true},  // version 1.0 has no character set
      {"\x00\x04\x00\x45"s, false},
  };
  for (const auto &item : cases) {
    EXPECT_EQ(IsWmlc(item.bytes), item.compiled) << testing::PrintToString(item.bytes);
  }
}

TEST(Wmlc, IsDecoded) {
  const DecodedWmlc deck = DecodeWmlc(kDeck);
  EXPECT_EQ(deck.charset, "ISO-8859-1");
  EXPECT_EQ(deck.wml,
            "<?xml version=\"1.0\"?><!DOCTYPE wml PUBLIC \"-//WAPFORUM//DTD WML 1.1//EN\" "
            "\"http://www.wapforum.org/DTD/wml_1.1.xml\">"
            "<wml><card title=\"t\">abc \xC3\xA5$(x:noesc)<br/></card></wml>");
  EXPECT_TRUE(deck.warnings.empty());
}

TEST(Wmlc, EveryTokenBecomesMarkup) {
  const struct {
    std::string_view body;
    std::string_view markup;
  } cases[] = {
      {"\x3F"sv, "<wml/>"},
      {"\x7F\x01"sv, "<wml></wml>"},
      {"\x7F\x60\x20\x01\x01"sv, "<wml><p><p/></p></wml>"},
      {"\x7F\x00\x00\x20\x01"sv, "<wml><p/></wml>"},
      // Strings, whose dollar signs may be references of the source.
      {"\x7F\x03"
       "a<&>\"$(x) $$\0\x01"sv,
       "<wml>a&lt;&amp;&gt;\"$(x) $$</wml>"},
      {"\x7F\x83\x00\x83\x01\x83\x04\x01"sv, "<wml>abcbcde</wml>"},
      {"\x7F\xC3\x02xy\xC3\x00\x01"sv, "<wml>xy</wml>"},
      // Characters.
      {"\x7F\x02\x26\x02\x81\x20\x02\x24\x01"sv, "<wml>&#38;&#160;$$</wml>"},
      {"\x7F\x02\xC3\xFF\x7F\x01"sv, "<wml>&#1114111;</wml>"},
      // Variables; where they are tokens, dollar signs are text.
      {"\x7F\x40x\0\x41y\0\x42z\0\x01"sv, "<wml>$(x:escape)$(y:unesc)$(z:noesc)</wml>"},
      {"\x7F\x80\x00\x81\x00\x82\x04\x01"sv, "<wml>$(abc:escape)$(abc:unesc)$(de:noesc)</wml>"},
      {"\x7F\x03$US 5$$\0\x42z\0\x01"sv, "<wml>$$US 5$$$$$(z:noesc)</wml>"},
      {"\x7F\x42x)y\0\x01"sv, "<wml>$$(x)y)</wml>"},
      // Attributes.
      {"\xBF\x05\x01"sv, "<wml accept-charset=\"\"/>"},
      {"\xFF\x05\x01\x60\x01\x01"sv, "<wml accept-charset=\"\"><p></p></wml>"},
      {"\xBF\x4B\x03x?a=\"<&\0\x85\x42v\0\x02\x26\x36\x01"sv,
       "<wml href=\"http://x?a=&quot;&lt;&amp;.com/$(v:noesc)&#38;\" title=\"\"/>"},
      {"\xBF\x00\x00\x36\x83\x00\xC3\x01z\x01"sv, "<wml title=\"abcz\"/>"},
      // Literals.
      {"\x04\x00"sv, "<abc/>"},
      {"\x44\x00\x44\x04\x01\x01"sv, "<abc><de></de></abc>"},
      {"\x84\x00\x04\x04\x03v\0\x01"sv, "<abc de=\"v\"/>"},
      {"\xC4\x00\x05\x01\x04\x04\x01"sv, "<abc accept-charset=\"\"><de/></abc>"},
      // Processing instructions.
      {"\x43\x04\x00\x03x?>y\0\x01\x7F\x43\x4B\x03z\0\x01\x01\x43\x04\x04\x01"sv,
       "<?abc x? >y?><wml><?href http://z?></wml><?de ?>"},
      {"\x00\x00\x43\x00\x00\x04\x00\x01\x7F\x01\x00\x00"sv, "<?abc ?><wml></wml>"},
  };
  for (const auto &item : cases) {
    EXPECT_EQ(Body(Header("abc\0de"sv) + std::string(item.body)), item.markup)
        << testing::PrintToString(item.body);
  }
}

TEST(Wmlc, HasTheNamesOfItsVersion) {
  const std::string body = "\xFF\x17\x03n\0\x21\x03v\0\x01\xAB\x4B\x03x\0\x01\x3A\x60\x01\x01"s;
  EXPECT_EQ(Body(Header({}, 106, 2) + body),
            "<WML KEY=\"n\" NAME=\"v\"><GO URL=\"http://x\"/><TAB/><p></p></WML>");
  EXPECT_EQ(Body(Header({}, 106, 4) + body),
            "<wml unknown=\"n\" name=\"v\"><go href=\"http://x\"/><unknown/><p></p></wml>");
}

TEST(Wmlc, WarnsOfWhatIsNoWml) {
  const struct {
    std::string_view body;
    std::string_view markup;
    const char *warning;
  } cases[] = {
      {"\x7F\x45\x03x\0\x01\x05\x01"sv, "<wml><unknown>x</unknown><unknown/></wml>",
       "byte 11: the code of an element"},
      {"\x7F\x00\x01\x20\x01"sv, "<wml><unknown/></wml>", "byte 13: the code of an element"},
      {"\xBF\x7F\x03x\0\x01"sv, "<wml unknown=\"x\"/>", "byte 11: the code of an attribute"},
      {"\xBF\x36\xB0\x01"sv, "<wml title=\"\xEF\xBF\xBD\"/>", "byte 12: the code of a part"},
      {"\x7F\xC0\x01"sv, "<wml></wml>", "byte 11: an extension token"},
      {"\x7F\x04\x03\x01"sv, "<wml><_a_/></wml>", "byte 11: a name"},
      {"\x7F\x42\0\x01"sv, "<wml>$$()</wml>", "byte 11: the name of a variable"},
      {"\x7F\x01\x7F\x01"sv, "<wml></wml>", "byte 12: what follows the end"},
      {"\x7F\x01\0\0\0"sv, "<wml></wml>", nullptr},
  };
  for (const auto &item : cases) {
    const std::string deck = Header("ab\0 a="sv) + std::string(item.body);
    SCOPED_TRACE(testing::PrintToString(item.body));
    const DecodedWmlc decoded = DecodeWmlc(deck);
    if (item.warning == nullptr) {
      EXPECT_TRUE(decoded.warnings.empty());
      continue;
    }
    ASSERT_EQ(decoded.warnings.size(), 1U);
    EXPECT_NE(decoded.warnings[0].find(item.warning), std::string::npos) << decoded.warnings[0];
  }
}

TEST(Wmlc, ReadsItsCharacterSet) {
  const auto text = [](std::size_t charset, std::string_view string) {
    return Body(Header({}, charset) + "\x7F\x03" + std::string(string) + "\x01");
  };
  EXPECT_EQ(text(4, "\x80\0"sv), "<wml>\xE2\x82\xAC</wml>");
  EXPECT_EQ(text(17, "\x83\x5C\0"sv), "<wml>ソ</wml>");
  EXPECT_EQ(text(39, "\x1B$B%<%-\x1B(B\0"sv), "<wml>ゼキ</wml>");
  EXPECT_EQ(text(2026, "\xA4\xA4\0"sv), "<wml>中</wml>");
  EXPECT_EQ(text(106, "\xC3\x28\0"sv), "<wml>\xEF\xBF\xBD(</wml>");
  // Two zeros end a string of 16 bits a character; a byte of a character may be zero.
  for (const std::size_t charset : {1000U, 1013U, 1015U}) {
    EXPECT_EQ(text(charset, "\x01\0\0&\x4E\x2D\0\0"sv), "<wml>Ā&amp;中</wml>") << charset;
  }
  EXPECT_EQ(text(1014, "\0\x01&\0\x2D\x4E\0\0"sv), "<wml>Ā&amp;中</wml>");
  EXPECT_EQ(text(1018, "\0\0\x01\0\0\0\0&\0\0\0\0"sv), "<wml>Ā&amp;</wml>");
  EXPECT_EQ(Body(Header("\0a\0b\0\0\0c"sv, 1015) + "\x7F\x83\x00\x83\x02\x83\x06\x01"s),
            "<wml>abbc</wml>");
}

TEST(Wmlc, FindsItsCharacterSet) {
  const std::string body = "\x7F\x03 \x83\x65\x83\x58\x83\x67\0\x01"s;
  EXPECT_EQ(DecodeWmlc(Header({}, 4) + body, "Shift_JIS").wml.substr(115), "<wml> テスト</wml>");
  // Number 0 and version 1.0 leave it open.
  const std::string utf8 = "\x7F\x03\xC3\xA5\0\x01"s;
  for (const std::string &header : {Header({}, 0), "\x00\x04\x00"s}) {
    const DecodedWmlc deck = DecodeWmlc(header + utf8);
    EXPECT_EQ(deck.charsetOrigin, CharsetOrigin::kValidUtf8);
    EXPECT_NE(deck.wml.find("<wml>å</wml>"), std::string::npos);
    EXPECT_TRUE(deck.warnings.empty());
  }
  const DecodedWmlc meta =
      DecodeWmlc(Header({}, 9999) + "\x7F\xB0\x0D\x03text/vnd.wap.wml; charset=shift_jis\0\x01"s +
                 body.substr(1));
  EXPECT_EQ(meta.charsetOrigin, CharsetOrigin::kMeta);
  EXPECT_NE(meta.wml.find("テスト"), std::string::npos);
  EXPECT_EQ(meta.warnings.size(), 1U);
}

TEST(Wmlc, NamesTheByteOfDamage) {
  const struct {
    std::string_view body;
    const char *reason;
  } cases[] = {
      {""sv, "byte 10: it ends in the middle"},
      {"\x7F"sv, "byte 11: it ends in the middle"},
      {"\x01"sv, "byte 10: nothing is open that could end"},
      {"\x7F\x60\x01"sv, "byte 13: it ends in the middle"},
      {"\x00"sv, "byte 11: it ends in the middle"},
      {"\x03x\0"sv, "byte 10: text stands in front of the root"},
      {"\x7F\x02\x90\x80\x80\x80\x00\x01"sv, "byte 12: a number is cut off or has more"},
      {"\x7F\x02\x80\x80\x80\x80\x80\x00\x01"sv, "byte 12: a number is cut off or has more"},
      {"\x7F\x02\x81"sv, "byte 12: a number is cut off or has more than 32 bits"},
      {"\x7F\x02\xC4\x80\x00\x01"sv, "byte 12: character number 1114112 is no character"},
      {"\x7F\x02\x8F\xFF\xFF\xFF\x7F\x01"sv, "byte 12: character number 4294967295 is no"},
      {"\x7F\x03xy\x01"sv, "byte 12: a string has no end"},
      {"\x7F\x40x\x01"sv, "byte 12: a string has no end"},
      {"\x7F\x83\x06\x01"sv, "byte 12: string 6 lies behind the string table"},
      {"\x04\x87\x7F"sv, "byte 11: string 1023 lies behind the string table"},
      {"\x7F\xC3\x04xy\x01"sv, "byte 13: data of 4 bytes is cut off"},
      {"\x43\x01\x7F\x01"sv, "byte 10: an instruction has no name"},
      {"\x43\x05\x06\x01\x7F\x01"sv, "byte 12: an instruction has a second name"},
      {"\xBF\x05"sv, "byte 12: it ends in the middle"},
      {"\xBF\x03x\0\x01"sv, "byte 11: a value stands in front of the first attribute"},
      {"\xBF\x05\x43\x01"sv, "byte 12: token 0x43 stands among attributes"},
      {"\xBF\x05\x84\x00\x01"sv, "byte 12: token 0x84 stands among attributes"},
  };
  for (const auto &item : cases) {
    const std::string reason = Refusal(Header("abc\0de"sv) + std::string(item.body));
    EXPECT_NE(reason.find("compiled deck is damaged at "s + item.reason), std::string::npos)
        << testing::PrintToString(item.body) << ": " << reason;
  }
  EXPECT_NE(Refusal("\x04\x04\x6A\0\x3F"sv), "");
}

TEST(Wmlc, SurvivesTruncationAndDamage) {
  for (std::size_t length = 0; length < kDeck.size(); ++length) {
    EXPECT_NE(Refusal(kDeck.substr(0, length)), "") << length;
  }
  for (std::size_t at = 0; at < kDeck.size(); ++at) {
    for (int value = 0; value < 256; ++value) {
      std::string damaged(kDeck);
      damaged[at] = static_cast<char>(value);
      Refusal(damaged);
    }
  }
}

// Sixteen bytes, and a character number of 32 bits.
TEST(Wmlc, ACharacterNumberBeyondUnicodeIsRefused) {
  const std::string deck = "\x03\x04\x6A\x00\x7F\x67\x60\x02\x8F\xFF\xFF\xFF\x7F\x01\x01\x01"s;
  ASSERT_EQ(deck.size(), 16U);
  EXPECT_THROW(PrepareDeck("deck", deck, {}), BrokenWmlc);
}

TEST(Wmlc, LongAndDeepDecksAreDecoded) {
  const std::size_t count = 800000;
  EXPECT_EQ(Body(Header() + '\x7F' + std::string(count, '\x20') + '\x01').size(), 11 + 4 * count);
  EXPECT_EQ(Body(Header() + std::string(count, '\x60') + std::string(count, '\x01')).size(),
            7 * count);
}

TEST(Wmlc, StandsForABoundedText) {
  const auto repeated = [](std::size_t length, std::size_t times, std::string_view token) {
    std::string deck = Header(std::string(length, 'x') + '\0') + "\x7F\x67";
    for (std::size_t i = 0; i < times; ++i) deck += token;
    return deck + "\x01\x01";
  };
  EXPECT_EQ(Refusal(repeated(1000, 60, "\x83\0"sv)), "");
  EXPECT_NE(Refusal(repeated(60000, 100000, "\x83\0"sv)).find("64 times"), std::string::npos);
  EXPECT_NE(Refusal(repeated(60000, 100000, "\x04\0"sv)).find("64 times"), std::string::npos);
  EXPECT_NE(Refusal(repeated(60000, 100000, "\x82\0"sv)).find("64 times"), std::string::npos);
  // One token a byte, none of which stands for more than the bound.
  const std::string attributes = "\xBF" + std::string(100000, '\x60') + "\x01";
  EXPECT_EQ(Refusal(Header() + attributes), "");
}

}  // namespace
}  // namespace vs_wml
