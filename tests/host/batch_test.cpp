// SPDX-License-Identifier: MIT
//
// What is read out of a deck depends on the deck alone: not on those that were read before it in
// the same thread, nor on those that other threads read. VS_WML_MUTATED_DECKS says how many decks
// are tried, 1000 when it does not.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <random>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "host/deck.h"
#include "host/platform/charsets.h"
#include "host/reader.h"
#include "host/text/output.h"
#include "host/wmlc/wmlc.h"
#include "host/writer.h"

namespace vs_wml::test {
namespace {

using namespace std::string_literals;

constexpr std::size_t kThreads = 4;

// Texts whose bytes mean most in sets with states and pairs.
const std::string kTexts[] = {
    "plain &eacute; $(v) \xE9\x83\x65\xB0\xA1", "\x1B$B%F%9%H\x1B(B abc \x1B$(D0!\x1B(B",
    "\x1B$)C\x0E!\x7F\x0F abc \x0E\x30\x21", "\xEF\xBB\xBF\xE6\x97\xA5 \x81\x30\x81\x30"};

// Names that the system's converters know and documents may not use.
const std::string kUnlisted[] = {"x11-compound-text", "hz-gb-2312", "utf-7", "scsu", "lmbcs-1"};

class MutatedDecks {
 public:
  std::string Next() {
    const std::string name = Pick(8) == 0 ? kUnlisted[Pick(std::size(kUnlisted))]
                                          : std::string(kCharsets[Pick(kCharsetCount)].name);
    const std::string content = "<wml><card id='c' title='t'><p>" +
                                kTexts[Pick(std::size(kTexts))] +
                                "<a href='#c'>l</a></p></card></wml>";
    const std::string compiled = "\x03\x04"s + static_cast<char>(Pick(0x80)) +
                                 "\0\x7F\x67\x60\x03"s + kTexts[Pick(std::size(kTexts))] +
                                 "\0\x02\x84\x21\x42v\0\x01\x01\x01"s;
    std::string deck =
        Pick(4) == 0 ? compiled : "<?xml version='1.0' encoding='" + name + "'?>" + content;
    for (std::size_t left = Pick(6); left != 0; --left) {
      deck[Pick(deck.size())] = static_cast<char>(Pick(256));
    }
    return deck;
  }

 private:
  std::size_t Pick(std::size_t count) { return random_() % count; }

  std::mt19937 random_{7};
};

// The deck as JSON, or why there is none.
std::string Answer(const std::string &deck) {
  std::string written;
  try {
    Output output([&](std::string_view piece) { written += piece; });
    const auto writer = MakeWriter(Format::kJson, output, {});
    ReadDeck(PrepareDeck("deck", deck, {}), *writer);
  } catch (const std::exception &failure) {
    written += failure.what();
  }
  return written;
}

std::size_t CountOfDecks() {
  const char *count = std::getenv("VS_WML_MUTATED_DECKS");
  return count == nullptr ? 1000 : std::strtoul(count, nullptr, 10);
}

TEST(Batch, EachDeckReadsAsIfItWereAlone) {
  std::vector<std::string> decks(CountOfDecks());
  MutatedDecks mutated;
  std::generate(decks.begin(), decks.end(), [&] { return mutated.Next(); });
  ASSERT_FALSE(decks.empty());
  std::vector<std::string> alone(decks.size());
  for (std::size_t i = 0; i < decks.size(); ++i) {
    std::thread([&] { alone[i] = Answer(decks[i]); }).join();
  }
  for (std::size_t i = 0; i < decks.size(); ++i) ASSERT_EQ(Answer(decks[i]), alone[i]) << i;
  for (std::size_t i = decks.size(); i-- != 0;) ASSERT_EQ(Answer(decks[i]), alone[i]) << i;

  std::vector<std::string> together(decks.size());
  std::atomic<std::size_t> next = 0;
  std::vector<std::thread> threads;
  for (std::size_t count = 0; count < kThreads; ++count) {
    threads.emplace_back([&] {
      for (std::size_t i = next++; i < decks.size(); i = next++) together[i] = Answer(decks[i]);
    });
  }
  for (std::thread &thread : threads) thread.join();
  for (std::size_t i = 0; i < decks.size(); ++i) ASSERT_EQ(together[i], alone[i]) << i;
}

}  // namespace
}  // namespace vs_wml::test
