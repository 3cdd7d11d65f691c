/// \file
/// The state of a user agent as JSON.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_AGENT_SAVED_STATE_H
#define VS_WML_AGENT_SAVED_STATE_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "agent/browser_state.h"

namespace vs_wml {

/// All of an agent.
struct SavedState {
  BrowserState state;
  std::optional<PendingEntry> pending;
  std::optional<BrowserState> before;
  std::uint64_t requestCount = 0;
  std::optional<Request> lastRequest;
};

/// Equal states give equal texts. Each deck stands there once.
std::string WriteState(const SavedState &saved);

/// Throws std::runtime_error with the reason when the text is no state, or one of a version that
/// is not known.
SavedState ReadState(std::string_view json);

}  // namespace vs_wml

#endif  // VS_WML_AGENT_SAVED_STATE_H
