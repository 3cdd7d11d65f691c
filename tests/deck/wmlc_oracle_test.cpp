// SPDX-License-Identifier: MIT
//
// Compiled decks read as another decoder, libwbxml, reads them. It is not asked where it is
// known to be wrong: it gives WML 1.0 the names of later versions, refuses unknown parts of
// values, converts no character set, takes a document type without a number for none, leaves
// out processing instructions, and breaks names that markup cannot have.
#include <gtest/gtest.h>
#include <wbxml/wbxml.h>

#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <string_view>

#include "host/deck/references.h"
#include "host/text/utf8.h"
#include "host/wmlc/wmlc.h"

namespace vs_wml {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

struct Free {
  void operator()(WB_UTINY *bytes) const { std::free(bytes); }
};
using Bytes = std::unique_ptr<WB_UTINY, Free>;

std::string Compiled(std::string wml, bool withTable) {
  WBXMLConvXML2WBXML *converter = nullptr;
  wbxml_conv_xml2wbxml_create(&converter);
  wbxml_conv_xml2wbxml_enable_preserve_whitespaces(converter);
  if (!withTable) wbxml_conv_xml2wbxml_disable_string_table(converter);
  WB_UTINY *bytes = nullptr;
  WB_ULONG length = 0;
  const WBXMLError error =
      wbxml_conv_xml2wbxml_run(converter, reinterpret_cast<WB_UTINY *>(wml.data()),
                               static_cast<WB_ULONG>(wml.size()), &bytes, &length);
  wbxml_conv_xml2wbxml_destroy(converter);
  const Bytes owner(bytes);
  EXPECT_EQ(error, WBXML_OK) << wbxml_errors_string(error);
  return {reinterpret_cast<const char *>(bytes), length};
}

// What libwbxml reads, "" when it refuses the deck.
std::string Expected(std::string deck) {
  WBXMLConvWBXML2XML *converter = nullptr;
  wbxml_conv_wbxml2xml_create(&converter);
  wbxml_conv_wbxml2xml_set_gen_type(converter, WBXML_GEN_XML_COMPACT);
  wbxml_conv_wbxml2xml_enable_preserve_whitespaces(converter);
  WB_UTINY *bytes = nullptr;
  WB_ULONG length = 0;
  const WBXMLError error =
      wbxml_conv_wbxml2xml_run(converter, reinterpret_cast<WB_UTINY *>(deck.data()),
                               static_cast<WB_ULONG>(deck.size()), &bytes, &length);
  wbxml_conv_wbxml2xml_destroy(converter);
  const Bytes owner(bytes);
  return error == WBXML_OK ? std::string(reinterpret_cast<const char *>(bytes), length) : "";
}

// Markup without its prolog, elements without content as `<a/>`, references resolved.
std::string Normal(std::string_view wml) {
  const std::size_t type = wml.find("<!DOCTYPE");
  std::string tags(wml.substr(std::min(wml.find('>', type) + 1, wml.size())));
  for (std::size_t at = tags.find("></"); at != std::string::npos; at = tags.find("></", at + 1)) {
    const bool opens = tags[tags.rfind('<', at) + 1] != '/' && tags[at - 1] != '/';
    if (opens) tags.replace(at, tags.find('>', at + 1) + 1 - at, "/>");
  }
  std::string text;
  for (std::string_view rest = tags; !rest.empty();) {
    const CharacterReference reference = rest.front() == '&'
                                             ? ReadReference(rest, ReferencePlace::kAttribute)
                                             : CharacterReference{};
    if (reference.length != 0) {
      AppendUtf8(text, reference.character);
    } else {
      text += rest.front();
    }
    rest.remove_prefix(std::max<std::size_t>(reference.length, 1));
  }
  return text;
}

void ExpectSame(const std::string &deck) {
  EXPECT_EQ(Normal(DecodeWmlc(deck).wml), Normal(Expected(deck))) << testing::PrintToString(deck);
}

TEST(WmlcOracle, KnowsTheSameCodes) {
  for (const char version : {'\x04', '\x09', '\x0A'}) {
    const std::string header = "\x03"s + version + "\x6A\0"s;
    for (int code = 5; code < 0x40; ++code) {
      ExpectSame(header + "\x7F" + static_cast<char>(code) + "\x01");
      ExpectSame(header + "\x7F" + static_cast<char>(code | 0x40) + "\x03x\0\x01\x01"s);
    }
    for (int code = 5; code < 0x80; ++code) {
      if (code >= 0x40 && code <= 0x44) continue;
      ExpectSame(header + "\xBF" + static_cast<char>(code) + "\x03x\0\x01"s);
    }
    for (int code = 0x85; code <= 0xA1; ++code) {
      if (code == 0x92 || code == 0x9C) continue;
      ExpectSame(header + "\xBF\x36" + static_cast<char>(code) + "\x01");
    }
  }
}

const char *const kDecks[] = {
    "<card id='a' title='News &amp; more'><p>Hello, <b>world</b>!<br/>&#8364; 5 &lt; $$6 "
    "$(name:escape) $x</p></card>",
    "<head><access domain='a.example' path='/x'/><meta name='k' content='v' forua='true'/></head>"
    "<template><do type='prev' label='Back'><prev/></do></template>"
    "<card newcontext='true' ontimer='#b' onenterforward='http://www.example.com/'>"
    "<timer name='t' value='50'/><p align='center' mode='nowrap'>"
    "<a href='https://www.example.org/a?b=c&amp;d=$(e:unesc)' accesskey='1'>link</a>"
    "<anchor title='t'>go<go href='http://example.net/' method='post' sendreferer='true' "
    "accept-charset='utf-8'><postfield name='n' value='$(v)'/><setvar name='s' value='1'/></go>"
    "</anchor></p></card>",
    "<card id='form'><onevent type='onpick'><refresh><setvar name='q' value='w'/></refresh>"
    "</onevent><p><select name='n' iname='i' ivalue='1' multiple='true'><optgroup title='g'>"
    "<option value='1' onpick='#x'>One</option></optgroup></select><input type='password' name='p' "
    "format='4N' maxlength='4' emptyok='false' size='4' tabindex='2'/><fieldset title='f'>text"
    "</fieldset></p><p><table columns='2' align='LR'><tr><td>1</td><td><img src='http://a.com/b' "
    "alt='c' localsrc='d' vspace='1' hspace='2' width='3' height='4'/></td></tr></table></p>"
    "<pre>a\n  b</pre></card>",
    "<card><p>repeated string repeated string repeated string</p><p>repeated string</p>"
    "<p class='repeated string'>repeated string 日本語 ÆØÅ</p></card>"};

TEST(WmlcOracle, CompiledDecksComeBackTheSame) {
  for (const char *version : {"1.1", "1.2", "1.3"}) {
    for (const char *deck : kDecks) {
      const std::string wml = "<?xml version='1.0'?><!DOCTYPE wml PUBLIC '-//WAPFORUM//DTD WML "s +
                              version + "//EN' 'wml.dtd'><wml>" + deck + "</wml>";
      for (const bool withTable : {false, true}) {
        const std::string compiled = Compiled(wml, withTable);
        ASSERT_TRUE(IsWmlc(compiled));
        ExpectSame(compiled);
        std::string source = Normal(wml);
        for (char &c : source) c = c == '\'' ? '"' : c;
        EXPECT_EQ(Normal(DecodeWmlc(compiled).wml), source);
      }
    }
  }
}

/// Writes well-formed decks at random.
class RandomDeck {
 public:
  explicit RandomDeck(unsigned seed) : random_(seed) {}

  std::string Make() {
    deck_ =
        "\x03\x04\x6A\x09"
        "abc\0d&e<\0"s;
    Element(0, 0x3F);
    return deck_;
  }

 private:
  unsigned Pick(unsigned count) { return static_cast<unsigned>(random_() % count); }
  void Add(unsigned byte) { deck_ += static_cast<char>(byte); }

  void Text() {
    switch (Pick(7)) {
      case 0:
        deck_ += "\x03 a'>b\0"s;
        break;
      case 1:
        deck_ += Pick(2) == 0 ? "\x83\x00"s : "\x83\x05"s;
        break;
      case 2:
        deck_ += "\x02\x84\x21"s;
        break;
      case 3:
        Add(0x40 + Pick(3));
        deck_ += "v\0"s;
        break;
      case 4:
        Add(0x80 + Pick(3));
        Add(Pick(3));
        break;
      case 5:
        deck_ += "\xC3\x03opq";
        break;
      default:
        deck_ += "\x03x\0"s;
    }
  }

  void Attributes() {
    for (unsigned left = 1 + Pick(3); left != 0; --left) {
      if (Pick(6) == 0) {
        deck_ += "\x04\x00"s;
      } else {
        Add(0x05 + Pick(0x3B));
      }
      for (unsigned values = Pick(3); values != 0; --values) {
        Pick(3) == 0 ? Add(0x85 + Pick(13)) : Text();
      }
    }
    Add(0x01);
  }

  void Element(unsigned depth, unsigned code) {
    const bool attributes = Pick(3) == 0;
    const bool content = depth == 0 || Pick(2) == 0;
    Add(code | (attributes ? 0x80U : 0U) | (content ? 0x40U : 0U));
    if (code == 0x04) Add(Pick(3));
    if (attributes) Attributes();
    if (!content) return;
    for (unsigned left = Pick(5); left != 0; --left) {
      if (depth == 4 || Pick(3) == 0) {
        Text();
      } else {
        Element(depth + 1, Pick(8) == 0 ? 0x04 : 0x1B + Pick(0x25));
      }
    }
    Add(0x01);
  }

  std::mt19937 random_;
  std::string deck_;
};

TEST(WmlcOracle, RandomDecksReadTheSame) {
  RandomDeck random(1);
  for (int i = 0; i < 2000 && !HasFailure(); ++i) ExpectSame(random.Make());
}

}  // namespace
}  // namespace vs_wml
