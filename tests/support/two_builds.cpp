// SPDX-License-Identifier: MIT
#include "tests/support/two_builds.h"

#include <algorithm>

namespace vs_wml::test {
namespace {

constexpr std::size_t kSavedStops = 3;

/// Unclosed tables are read ahead: a document may ask for so many times its length.
constexpr std::uint64_t kBudget = 16;

class Reading {
 public:
  Reading(const Plan &plan, std::string_view document, const Library &library)
      : plan_(plan), source_(document, plan.chunk), session_(source_, host_, library) {
    source_.faults = plan.faults;
    source_.budget = kBudget * (document.size() + 2048);
    host_.storing = plan.storing;
    host_.watch = [this] { seen_.positions.push_back(session_.Tell()); };
    host_.answerBreak = [this](std::uint32_t) { return plan_.stops >> (breaks_++ % 8) & 1u; };
  }

  Seen Run() {
    session_.Open(plan_.identity);
    session_.Section();
    if (plan_.patchesFirst) Patch();
    ReadToEnd();
    if (plan_.goesBack) {
      const std::size_t stops = std::min(seen_.saves.size(), kSavedStops);
      for (std::size_t i = 0; i < stops; ++i) {
        session_.Restore(seen_.saves[i]);
        ReadToEnd();
      }
    }
    seen_.complete = source_.bytes < source_.budget;
    seen_.calls = host_.Text();
    seen_.announced = host_.Announced();
    return std::move(seen_);
  }

 private:
  void Patch() {
    SavedState state = session_.Save();
    for (const Plan::Patch &patch : plan_.patches) {
      state.block[patch.offset % state.block.size()] = patch.value;
    }
    session_.Restore(state);
  }

  /// Every stop answers a break, and there is not more than one for each byte.
  void ReadToEnd() {
    for (std::size_t reads = 0; reads <= 2 * std::size_t{source_.length} + 2; ++reads) {
      const bool finished = session_.Read();
      seen_.saves.push_back(session_.Save());
      if (finished) return;
      if (reads == 0 && !plan_.patchesFirst) Patch();
    }
  }

  const Plan &plan_;
  BlockSource source_;
  Host host_;
  Session session_;
  Seen seen_;
  std::uint32_t breaks_ = 0;
};

/// The lines of two texts from the first that differs.
std::string Lines(const std::string &text, const std::string &other) {
  const std::size_t at =
      static_cast<std::size_t>(std::ranges::mismatch(text, other).in1 - text.begin());
  const std::size_t line = text.rfind('\n', at) + 1;
  return text.substr(line <= at ? line : 0, 400);
}

std::string DifferentTexts(const std::string &taken, const std::string &road) {
  return "with the short cuts:\n" + Lines(taken, road) + "\nwithout them:\n" + Lines(road, taken);
}

std::string Line(std::uint32_t position) {
  return "at " + std::to_string(position) + '\n';
}

std::string Line(const SavedState &state) {
  std::string line = "a save block at " + std::to_string(state.position) + ':';
  for (const std::uint8_t byte : state.block) line += ' ' + std::to_string(byte);
  return line + '\n';
}

template <typename Item>
std::string DifferentItems(const std::vector<Item> &taken, const std::vector<Item> &road) {
  std::string texts[2];
  for (const Item &item : taken) texts[0] += Line(item);
  for (const Item &item : road) texts[1] += Line(item);
  return DifferentTexts(texts[0], texts[1]);
}

}  // namespace

std::vector<Plan> PlansFor(std::int16_t identity) {
  std::vector<Plan> hosts;
  for (const std::uint32_t chunk : {0u, 1u, 37u}) {
    for (const int stops : {0x00, 0x24, 0xFF}) {
      hosts.push_back({.identity = identity,
                       .chunk = chunk,
                       .stops = static_cast<std::uint8_t>(stops),
                       .goesBack = stops != 0,
                       .storing = stops == 0});
    }
  }
  return hosts;
}

Seen ReadAs(const Plan &plan, std::string_view document, const Library &library) {
  return Reading(plan, document, library).Run();
}

const Library &RoadLibrary() {
  static const Library library = LoadLibrary(VS_WML_ROAD_LIBRARY);
  return library;
}

std::string Difference(const Plan &plan, std::string_view document) {
  const Seen taken = ReadAs(plan, document, LinkedLibrary());
  const Seen road = ReadAs(plan, document, RoadLibrary());
  if (!taken.complete || !road.complete) return "";
  if (taken.calls != road.calls) return DifferentTexts(taken.calls, road.calls);
  if (taken.announced != road.announced) return DifferentTexts(taken.announced, road.announced);
  if (taken.positions != road.positions) return DifferentItems(taken.positions, road.positions);
  return taken.saves == road.saves ? "" : DifferentItems(taken.saves, road.saves);
}

}  // namespace vs_wml::test
