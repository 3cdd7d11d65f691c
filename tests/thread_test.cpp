// Instances in different threads share nothing that changes.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "tests/support/session.h"

namespace vs_wml::test {
namespace {

constexpr std::string_view kDocument =
    "<wml><head><meta http-equiv='content-type' content='charset=euc-kr'/></head><card title=t>"
    "<p align=center>\xC7\xD1 <pre>a\tb</pre>&eacute;<table columns=2><tr><td>\xC7\xD1<td>b"
    "</table><a href=x>y</a></card></wml>";

TEST(Threads, TellWhatOneThreadAloneTells) {
  std::vector<std::string> alone;
  for (const std::int16_t identity : kIdentities) {
    alone.push_back(ReadDocument(kDocument, identity));
  }
  constexpr std::size_t kThreads = 8;
  std::vector<std::vector<std::string>> told(kThreads);
  {
    std::vector<std::jthread> threads;
    for (std::size_t t = 0; t < kThreads; ++t) {
      threads.emplace_back([&told, t] {
        for (int round = 0; round < 5; ++round) {
          told[t].clear();
          for (std::size_t i = 0; i < std::size(kIdentities); ++i) {
            // Every thread begins with another identity.
            const std::size_t which = (i + t) % std::size(kIdentities);
            told[t].push_back(ReadDocument(kDocument, kIdentities[which]));
          }
        }
      });
    }
  }
  for (std::size_t t = 0; t < kThreads; ++t) {
    for (std::size_t i = 0; i < alone.size(); ++i) {
      EXPECT_EQ(told[t][i], alone[(i + t) % alone.size()]) << "thread " << t;
    }
  }
}

}  // namespace
}  // namespace vs_wml::test
