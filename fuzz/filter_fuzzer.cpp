// Reads any document as any host: a header says how, the rest is the document.
//
// SPDX-License-Identifier: MIT
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "tests/support/heap_probe.h"
#include "tests/support/session.h"

using namespace vs_wml::test;

namespace {

constexpr std::size_t kHeaderSize = 5;
constexpr std::size_t kSavedStops = 3;

/// How a document is read; the bytes of the header in this order.
struct Plan {
  std::int16_t identity;
  std::uint8_t chunk;   ///< bytes for each read of the host, 0: a whole block
  std::uint8_t stops;   ///< bit n: the breaks n, n + 8, n + 16, ... are answered with SO_STOP
  bool restores;        ///< the first stops are gone back to at the end
  std::uint8_t failAt;  ///< the allocation that fails, 0: none
};

/// Unclosed tables are read ahead: a document may ask for so many times its length.
constexpr std::uint64_t kBudget = 8;

void Fail(const char *what) {
  std::fprintf(stderr, "broken rule: %s\n", what);
  std::abort();
}

void Check(const Host &host) {
  if (!host.checker.Fault().empty()) Fail(host.checker.Fault().c_str());
}

/// Reads to the end. With `stops`, the states at the first stops are kept there.
void ReadToEnd(Session &session, Host &host, std::size_t length,
               std::vector<std::pair<SavedState, CallChecker>> *stops) {
  for (std::size_t reads = 0;; ++reads) {
    const std::uint64_t calls = host.calls;
    if (session.Read()) return;
    if (host.calls == calls) return;  // no memory for a read
    Check(host);
    if (reads > 2 * length + 2) Fail("the document does not end");
    if (stops != nullptr && stops->size() < kSavedStops) {
      stops->emplace_back(session.Save(), host.checker);
    }
  }
}

struct Told {
  std::string text;
  std::string announced;
  bool complete;  ///< within the budget, so that it does not depend on the block size
  bool operator==(const Told &) const = default;
};

Told Run(const Plan &plan, std::string_view document) {
  BlockSource source(document, plan.chunk);
  source.budget = kBudget * (document.size() + 2048);
  Host host;
  std::uint32_t breaks = 0;
  host.answerBreak = [&](std::uint32_t) -> std::uint32_t {
    return plan.stops >> (breaks++ % 8) & 1;
  };
  HeapProbe heap(plan.failAt);
  std::vector<std::pair<SavedState, CallChecker>> stops;
  {
    Session session(source, host);
    session.Open(plan.identity);
    session.Section();
    ReadToEnd(session, host, document.size(), plan.restores ? &stops : nullptr);
    Check(host);
    for (const auto &[state, checker] : stops) {
      host.checker = checker;
      session.Restore(state);
      ReadToEnd(session, host, document.size(), nullptr);
      Check(host);
    }
  }
  if (heap.blocks != 0) Fail("memory is not freed");
  return {host.Text(), host.Announced(), source.bytes < source.budget};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  if (size < kHeaderSize) return 0;
  Plan plan{kIdentities[data[0] % std::size(kIdentities)], data[1], data[2], (data[3] & 1) != 0,
            data[4]};
  const std::string_view document(reinterpret_cast<const char *>(data) + kHeaderSize,
                                  size - kHeaderSize);
  const Told told = Run(plan, document);
  if (plan.failAt != 0) return 0;
  plan.chunk = plan.chunk == 1 ? 0 : 1;
  const Told again = Run(plan, document);
  if (told.complete && again.complete && told != again) {
    std::fputs(told.text.c_str(), stderr);
    std::fputs("---- but with blocks of another size\n", stderr);
    std::fputs(again.text.c_str(), stderr);
    Fail("the calls depend on the block size");
  }
  return 0;
}
