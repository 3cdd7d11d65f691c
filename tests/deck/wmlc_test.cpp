// SPDX-License-Identifier: MIT
#include "host/wmlc/wmlc.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "host/wmlc/wmlc_check.h"

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

TEST(Wmlc, IsRecognised) {
  EXPECT_TRUE(IsWmlc(kDeck));
  for (const std::string_view other :
       {""sv, "\x03"sv, "<?xml version='1.0'?>"sv, "\x03\x05\x04\x00"sv, "\x04\x04\x04\x00"sv,
        "\x03\x04\x04\x7F"sv,
        "\x03\x00\x00\x04\x04"
        "abc\0"sv}) {
    EXPECT_FALSE(IsWmlc(other)) << other;
  }
  for (int id = 1; id < 128; ++id) {
    const std::string deck = {'\x03', static_cast<char>(id), '\x6A', '\0'};
    EXPECT_EQ(IsWmlc(deck), id == 2 || id == 4 || id == 9 || id == 10) << id;
  }
  EXPECT_TRUE(IsWmlc("\x01\x00\x00\x6A\x1B-//WAPFORUM//DTD WML 1.1//EN\0"sv.substr(0, 33)));
}

TEST(Wmlc, IsDecoded) {
  const DecodedWmlc deck = DecodeWmlc(kDeck);
  EXPECT_EQ(deck.charset, "ISO-8859-1");
  EXPECT_NE(deck.wml.find("<card title=\"t\">abc \xE5$(x:noesc)<br/></card>"), std::string::npos)
      << deck.wml;
}

TEST(Wmlc, SurvivesTruncationAndDamage) {
  for (std::size_t length = 0; length < kDeck.size(); ++length) {
    EXPECT_THROW(DecodeWmlc(kDeck.substr(0, length)), BrokenWmlc) << length;
  }
  for (std::size_t at = 0; at < kDeck.size(); ++at) {
    for (int value = 0; value < 256; ++value) {
      std::string damaged(kDeck);
      damaged[at] = static_cast<char>(value);
      try {
        DecodeWmlc(damaged);
      } catch (const BrokenWmlc &) {
      }
    }
  }
}

TEST(Wmlc, RefusesWhatHasNoEnd) {
  const std::string header = "\x03\x04\x6A"s + '\0';
  EXPECT_THROW(DecodeWmlc(header + std::string(100000, '\x67') + std::string(100000, '\x01')),
               BrokenWmlc);
  // A table of 60,000 bytes, used 100,000 times.
  std::string bomb = "\x03\x04\x6A\x83\xD4\x60" + std::string(59999, 'x') + '\0' + "\x7F\x67";
  for (int i = 0; i < 100000; ++i) bomb += "\x83\0"sv;
  EXPECT_THROW(DecodeWmlc(bomb + "\x01\x01"), BrokenWmlc);
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

// Version 1.3, WML 1.1, UTF-8, and a table of strings.
std::string Header(std::string_view strings) {
  std::string header = "\x03\x04\x6A";
  for (int shift = 28; shift > 0; shift -= 7) {
    if (strings.size() >> shift != 0) header += static_cast<char>(strings.size() >> shift | 0x80);
  }
  header += static_cast<char>(strings.size() & 0x7F);
  return header.append(strings);
}

TEST(Wmlc, IsDecodedUpToItsBounds) {
  const auto nested = [](std::size_t depth) {
    return Header("") + '\x7F' + std::string(depth - 1, '\x67') + std::string(depth, '\x01');
  };
  EXPECT_EQ(Refusal(nested(200)), "");
  EXPECT_EQ(Refusal(nested(201)), "compiled deck nests too deep");

  const auto ofLength = [](std::size_t length) {
    const std::string begin = Header("") + "\x7F\x67\x03";
    const std::string_view end = "\0\x01\x01"sv;
    return begin + std::string(length - begin.size() - end.size(), 'x') + std::string(end);
  };
  EXPECT_EQ(Refusal(ofLength(1U << 20U)), "");
  EXPECT_EQ(Refusal(ofLength((1U << 20U) + 1)), "compiled deck is too long");

  // The root and 32 strings of the table come to 16 MiB.
  std::string full = Header(std::string(524255, 'x') + '\0') + '\x7F';
  for (int i = 0; i < 32; ++i) full += "\x83\0"sv;
  EXPECT_EQ(Refusal(full + '\x01'), "");
  EXPECT_EQ(Refusal(full + "\x02\x20\x01"), "compiled deck stands for too much text");
  EXPECT_EQ(Refusal(Header("") + '\x7F'), "compiled deck is damaged");
}

TEST(WmlcCheck, ReadsTheHeader) {
  const auto check = [](std::string_view bytes, bool valid, std::uint32_t publicId,
                        std::string_view publicName, std::uint32_t charset,
                        std::string_view strings) {
    const WmlcHeader header = ReadWmlcHeader(bytes);
    SCOPED_TRACE(testing::PrintToString(bytes));
    EXPECT_EQ(header.valid, valid);
    if (!valid) return;
    EXPECT_EQ(header.publicId, publicId);
    EXPECT_EQ(header.publicName, publicName);
    EXPECT_EQ(header.charset, charset);
    EXPECT_EQ(header.strings, strings);
    EXPECT_EQ(bytes.substr(header.length), "body");
    EXPECT_EQ(bytes.substr(header.charsetEnd, 1 + strings.size()),
              static_cast<char>(strings.size()) + std::string(strings));
    EXPECT_EQ(header.charsetEnd - header.charsetStart, charset < 128 ? 1U : 2U);
  };
  check("\x01\x04\x6A\0body"sv, true, 4, "", 106, "");
  check("\x03\x81\x0A\x91\x4C\x03xy\0body"sv, true, 138, "", 2252, "xy\0"sv);
  check("\x02\0\x02\x6A\x09xy\0zbody"sv, false, 0, "", 0, "");  // the table is cut off
  check("\x02\0\x03\x6A\x05xy\0zzbody"sv, true, 0, "zz", 106, "xy\0zz"sv);
  check("\x02\0\x00\x6A\x05xy\0zzbody"sv, true, 0, "xy", 106, "xy\0zz"sv);
  check("\x02\0\x05\x6A\x05xy\0zzbody"sv, true, 0, "", 106, "xy\0zz"sv);
  check("\x00\x04\x6A\0body"sv, false, 0, "", 0, "");
  check("\x04\x04\x6A\0body"sv, false, 0, "", 0, "");
  check("\x03\x04\x6A"sv, false, 0, "", 0, "");
}

TEST(WmlcCheck, MeasuresWhatTheTokensStandFor) {
  const struct {
    std::string_view body;
    std::size_t depth;  // 0: not well formed
    std::size_t text;
  } cases[] = {
      {""sv, 0, 0},
      {"\x01"sv, 0, 0},
      {"\x3F"sv, 1, 32},
      {"\x7F"sv, 0, 0},
      {"\x7F\x01"sv, 1, 32},
      {"\x7F\x01\x03 is not looked at"sv, 1, 32},
      {"\x7F\x60\x20\x01\x01"sv, 3, 96},
      {"\x7F\x20\x60\x01\x20\x01"sv, 2, 128},
      {"\x7F\x60\x01"sv, 0, 0},
      {"\x00\x05\x7F\x01"sv, 1, 32},  // a code page
      {"\x7F\x01\x00"sv, 1, 32},
      {"\x00"sv, 0, 0},
      {"\x7F\x02\x81\x00\x01"sv, 1, 64},  // a character
      {"\x7F\x02\x8F\xFF\xFF\xFF\x7F\x01"sv, 1, 64},
      {"\x7F\x02\x90\x80\x80\x80\x00\x01"sv, 0, 0},      // a number of 33 bits
      {"\x7F\x02\x80\x80\x80\x80\x80\x00\x01"sv, 0, 0},  // and one of six bytes
      {"\x7F\x02\x80\x80\x80\x80\x7F\x01"sv, 1, 64},
      {"\x7F\x02\x81"sv, 0, 0},
      {"\x7F\x03xy\0\x01"sv, 1, 66},  // strings
      {"\x7F\x03xy\x01"sv, 0, 0},
      {"\x7F\x03\x01"sv, 0, 0},
      {"\x7F\x40x\0\x41yz\0\x42\0\x01"sv, 1, 131},
      {"\x7F\x80\x00\x81\x01\x82\x04\x01"sv, 1, 135},  // of the table
      {"\x7F\x83\x05\x01"sv, 1, 65},
      {"\x7F\x83\x06\x83\x7F\x01"sv, 1, 96},
      {"\x7F\xC0\xC1\xC2\x01"sv, 1, 128},
      {"\x7F\xC3\x02xy\x01"sv, 1, 66},
      {"\x7F\xC3\x00\x01"sv, 1, 64},
      {"\x7F\xC3\x03xy\x01"sv, 0, 0},
      {"\x7F\xC3\x04xy\x01"sv, 0, 0},
      {"\x43\x05\x03x\0\x01\x7F\x01"sv, 1, 97},  // a processing instruction
      {"\xBF\x05\x85\x01"sv, 1, 96},             // attributes
      {"\xBF\x04\x00\x03xy\0\x00\x01\x05\x01"sv, 1, 133},
      {"\xBF\x43\x01"sv, 1, 64},
      {"\xBF\x05"sv, 0, 0},
      {"\xFF\x05\x01\x60\x01"sv, 0, 0},
      {"\xFF\x05\x01\x60\x01\x01"sv, 2, 96},
      {"\x04\x00"sv, 1, 67},  // elements with a name of the table
      {"\x44\x00\x01"sv, 1, 67},
      {"\x84\x00\x05\x01"sv, 1, 99},
      {"\xC4\x00\x05\x01\x04\x04\x01"sv, 2, 165},
  };
  const std::string header = Header("abc\0de"sv);
  for (const auto &item : cases) {
    const WmlcDemand demand = MeasureWmlc(header + std::string(item.body));
    SCOPED_TRACE(testing::PrintToString(item.body));
    EXPECT_EQ(demand.wellFormed, item.depth != 0);
    if (!demand.wellFormed || item.depth == 0) continue;
    EXPECT_EQ(demand.depth, item.depth);
    EXPECT_EQ(demand.text, item.text);
  }
  EXPECT_FALSE(MeasureWmlc("\x04\x04\x6A\0\x3F"sv).wellFormed);
}

}  // namespace
}  // namespace vs_wml
