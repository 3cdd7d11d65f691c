// SPDX-License-Identifier: MIT
//
// What looks at many bytes at once, against the same a byte at a time.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>

#include "host/deck/markup_reader.h"
#include "host/text/byte_scan.h"
#include "host/text/plain_text.h"
#include "host/text/text_buffer.h"
#include "host/text/utf8.h"

namespace vs_wml {
namespace {

// The bytes before, at and behind every border that is compared with, and a few letters.
constexpr std::string_view kBytes(
    "\0\x08\t\n\v\f\r\x0E\x1F !\"#$%&';<=>?\\`az{~\x7F\x80\xBF\xC1\xC2\xC3\xFF", 34);

TEST(Bytes, APlainTextEndsAtTheFirstSpecialByte) {
  const auto isPlain = [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20) return c == '\t' || c == '\n' || c == '\r';
    return byte != 0x7F && byte != 0xC2 && std::string_view("<>&$").find(c) == std::string::npos;
  };
  for (std::size_t length = 0; length <= 50; ++length) {
    for (std::size_t at = 0; at < length; ++at) {
      for (const char byte : kBytes) {
        std::string text = std::string(length, 'x') + '<';
        text[at] = byte;
        const std::size_t expected = isPlain(byte) ? length : at;
        ASSERT_EQ(PlainLength(text), expected)
            << length << ' ' << at << ' ' << static_cast<int>(byte);
        std::string copy(text.size(), '.');
        const auto isAngle = [](auto c) { return (c == '<') | (c == '>'); };
        const std::size_t copied = CopyBefore(text, copy.data(), isAngle);
        ASSERT_EQ(copied, text.find_first_of("<>"));
        ASSERT_EQ(copy.substr(0, copied), text.substr(0, copied));
      }
    }
    EXPECT_EQ(PlainLength(std::string(length, 'x')), length);
  }
}

TEST(Bytes, CharactersAreCountedAndPassedOver) {
  const std::string_view characters[] = {"a", "é", "日", "😀"};
  std::mt19937 random(1);
  for (int round = 0; round < 300; ++round) {
    std::string text;
    std::vector<std::size_t> starts;
    for (std::size_t left = random() % 40; left != 0; --left) {
      starts.push_back(text.size());
      text += characters[random() % 4];
    }
    starts.push_back(text.size());
    ASSERT_EQ(CountCharacters(text), starts.size() - 1) << text;
    for (std::size_t from = 0; from < starts.size(); ++from) {
      for (std::size_t count = 0; count <= starts.size(); ++count) {
        const std::size_t end = std::min(from + count, starts.size() - 1);
        ASSERT_EQ(SkipCharacters(text, starts[from], count), starts[end]) << text;
      }
    }
  }
}

TEST(Bytes, NamesAreReadWholeWhereverTheyStand) {
  const auto isNamePart = [](char c) {
    return std::string_view(" \t\r\n=/><\"'").find(c) == std::string_view::npos;
  };
  for (std::size_t length = 1; length <= 12; ++length) {
    for (std::size_t at = 1; at <= length; ++at) {
      for (const char byte : kBytes) {
        std::string name(length, 'B');
        if (at < length) name[at] = byte;
        const std::string document = '<' + name + std::string(at == length ? 1 : 10, '>');
        MarkupReader reader(document, nullptr);
        Token token;
        ASSERT_TRUE(reader.Next(token)) << document;
        const std::string_view whole =
            at < length && !isNamePart(byte) ? std::string_view(name).substr(0, at) : name;
        ASSERT_EQ(token.name, whole) << document;
        ASSERT_EQ(token.nameKey, NameKey(whole)) << document;
      }
    }
  }
  EXPECT_EQ(NameKey("Card"), NameKey("cARD"));
  EXPECT_EQ(NameKey("postfield"), NameKey("postfiel")) << "only the first eight letters";
  for (const char *other : {"h1", "x-own", "", "\xC3\xA9"}) EXPECT_EQ(NameKey(other), 0U) << other;
}

TEST(Bytes, ABufferHoldsWhatWasAdded) {
  const std::string source(300000, 's');
  std::mt19937 random(2);
  TextBuffer buffer;
  std::string expected;
  for (int round = 0; round < 20000; ++round) {
    const std::size_t length = random() % (round % 1000 == 0 ? 200000 : 60);
    const std::size_t begin = random() % (source.size() - length + 1);
    const std::string_view text = std::string_view(source).substr(begin, length);
    switch (random() % 4) {
      case 0:
        buffer.AddFrom(text, source.size() - begin);
        break;
      case 1:
        buffer.AddFrom(text, length);
        break;
      case 2:
        buffer.Add(text);
        break;
      default:
        for (const char c : text) {
          if (!buffer.TryAdd(c)) buffer.Add(c);
        }
    }
    buffer.Add('|');
    expected += text;
    expected += '|';
  }
  EXPECT_EQ(buffer.View(), expected);
  buffer.Truncate(7);
  EXPECT_EQ(std::move(buffer).Take(), expected.substr(0, 7));
}

}  // namespace
}  // namespace vs_wml
