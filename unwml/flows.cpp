// SPDX-License-Identifier: MIT
#include "flows.h"

#include <cstddef>
#include <iostream>
#include <stdexcept>

#include "agent/flow.h"
#include "files.h"
#include "host/text/printable.h"
#include "messages.h"
#include "options.h"

namespace unwml {
namespace {

using vs_wml::Printable;

// What a person needs to find the step that failed.
void TellPlace(const std::string &file, const vs_wml::FlowFailure &failure) {
  std::string place = file;
  if (failure.line != 0) place += ":" + std::to_string(failure.line);
  std::string shown = failure.card.empty() ? "no card is shown" : "shown: " + failure.card;
  if (!failure.request.empty()) shown += "; last request: " + failure.request;
  Tell(place, shown);
}

// Whether the flow holds.
bool Play(const std::string &file) {
  const vs_wml::Flow flow(ReadWhole(file, Origin::kNamed));
  const auto failure = flow.Play();
  if (!failure) {
    std::cout << "ok " << Printable(flow.Name()) << '\n';
    return true;
  }
  std::cout << "FAIL " << Printable(flow.Name()) << ": step " << failure->step << ": "
            << Printable(failure->what) << '\n';
  TellPlace(file, *failure);
  return false;
}

}  // namespace

int PlayFlows(const std::vector<std::string> &files) {
  std::size_t passed = 0;
  std::size_t failed = 0;
  bool allAreFlows = true;
  for (const std::string &file : files) {
    try {
      ++(Play(file) ? passed : failed);
    } catch (const vs_wml::FlowError &mistake) {
      Tell(file, std::string("no flow: ") + mistake.what());
      allAreFlows = false;
    } catch (const std::runtime_error &unreadable) {
      Tell(file, unreadable.what());
      allAreFlows = false;
    }
  }
  std::cout << passed << " passed, " << failed << " failed\n";
  if (!std::cout.flush()) return kSomeFailed;
  if (!allAreFlows) return kWrongUsage;
  return failed == 0 ? kAllRead : kSomeFailed;
}

}  // namespace unwml
