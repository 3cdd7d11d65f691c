// Plays any bytes as a deck with any events: nothing hangs or crashes, and an agent that is saved
// and restored after every event goes on as one that is not.
//
// The input: a count, so many events of two bytes each, and a deck.
//
// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include "agent/agent.h"

namespace {

using vs_wml::Agent;

void Require(bool condition, const char *what) {
  if (condition) return;
  std::fprintf(stderr, "%s\n", what);
  std::abort();
}

vs_wml::ResponseEvent Answer(std::uint8_t argument, std::string_view deck) {
  vs_wml::ResponseEvent response;
  response.status = argument % 8 == 7 ? 302 : argument % 8 == 6 ? 404 : 200;
  response.location = argument % 16 == 15 ? "elsewhere" : "";
  response.body = deck;
  return response;
}

vs_wml::Event EventOf(std::uint8_t kind, std::uint8_t argument, std::string_view deck) {
  switch (kind % 9) {
    case 0:
      return vs_wml::FollowEvent{argument};
    case 1:
      return vs_wml::PressEvent{argument};
    case 2:
      return vs_wml::EnterEvent{argument % 16U, std::string(argument / 16U, 'a')};
    case 3:
      return vs_wml::ChooseEvent{argument % 16U, {argument / 16U}};
    case 4:
      return vs_wml::BackEvent{};
    case 5:
      return vs_wml::WaitEvent{argument};
    case 6:
      return vs_wml::CancelEvent{};
    case 7:
      return vs_wml::OpenEvent{"http://a.example/" + std::to_string(argument % 4)};
    default:
      return Answer(argument, deck);
  }
}

// The effects of an event, nothing when it cannot be.
std::optional<vs_wml::Effects> Take(Agent &agent, const vs_wml::Event &event) {
  try {
    return agent.Step(event);
  } catch (const vs_wml::EventError &) {
    return std::nullopt;
  }
}

void Play(std::string_view events, std::string_view deck) {
  Agent agent;
  Agent restored;
  const auto both = [&](const vs_wml::Event &event) {
    const auto effects = Take(agent, event);
    const auto others = Take(restored, event);
    Require(effects.has_value() == others.has_value(), "one agent refuses what the other takes");
    const std::string saved = agent.Save();
    Require(restored.Save() == saved, "the restored agent goes another way");
    restored = Agent::Restore(saved);
    Require(restored.Save() == saved, "the state changes when it is restored");
    if (agent.HasCard()) {
      Require(agent.View().text == restored.View().text, "the restored card shows something else");
    }
    return effects;
  };
  both(vs_wml::OpenEvent{"http://a.example/d.wml"});
  both(Answer(0, deck));
  for (std::size_t at = 0; at + 1 < events.size(); at += 2) {
    const auto effects = both(EventOf(static_cast<std::uint8_t>(events[at]),
                                      static_cast<std::uint8_t>(events[at + 1]), deck));
    if (effects && effects->fetch) both(Answer(static_cast<std::uint8_t>(events[at]), deck));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view input(reinterpret_cast<const char *>(data) + 1, size - 1);
  const std::size_t events = std::min<std::size_t>({input.size(), 2U * (data[0] % 32U)});
  Play(input.substr(0, events), input.substr(events));
  return 0;
}
