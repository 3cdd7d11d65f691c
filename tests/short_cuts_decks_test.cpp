// The short cuts tell every host of a long deck what the road beside them tells it.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "bench/deck.h"
#include "tests/support/two_builds.h"

namespace vs_wml::test {
namespace {

TEST(ShortCuts, TellOfDecksWhatTheRoadTells) {
  for (std::size_t kind = 0; kind < kDeckNames.size(); ++kind) {
    const std::string deck = MakeDeck(DeckKind(kind), 20000, 1);
    for (const Plan &host : PlansFor(1151)) {
      EXPECT_EQ(Difference(host, deck), "") << kDeckNames[kind] << ", " << host.chunk;
    }
  }
}

}  // namespace
}  // namespace vs_wml::test
