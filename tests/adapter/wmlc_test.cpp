// SPDX-License-Identifier: MIT
#include "host/adapter/wmlc.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

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

}  // namespace
}  // namespace vs_wml
