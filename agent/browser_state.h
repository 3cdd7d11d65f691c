/// \file
/// All that a user agent remembers: plain records, copied to undo a task that failed.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_AGENT_BROWSER_STATE_H
#define VS_WML_AGENT_BROWSER_STATE_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "agent/loaded_deck.h"

namespace vs_wml {

/// Assignments in the order in which they are made.
using Assignments = std::vector<std::pair<std::string, std::string>>;

/// What is asked of the network.
struct Request {
  std::string method = "GET";
  std::string url;          ///< absolute, without fragment
  std::string contentType;  ///< of the body; empty with GET
  std::string body;
  std::optional<std::string> referer;  ///< an absolute address
  std::string accept;  ///< character sets for the answer, `accept-charset`; empty: any
  bool fresh = false;  ///< no copy from a cache (`cache-control="no-cache"`)

  bool operator==(const Request &) const = default;
};

/// A card in the history.
struct HistoryEntry {
  std::shared_ptr<const Request> request;  ///< what the deck was asked for with
  std::string fragment;                    ///< empty: none
  std::size_t card = 0;                    ///< index into the deck's cards
  /// The deck as it was read, shared by the entries that show its cards; null when it was let go
  /// of, and has to be asked for again.
  std::shared_ptr<const LoadedDeck> deck;
};

struct RunningTimer {
  std::uint32_t left = 0;  ///< tenths of a second
};

/// The choices of a `select`: positions from 1 on, ascending.
using Choices = std::vector<std::uint32_t>;

/// What a failed task leaves as it was.
struct BrowserState {
  ContextVariables variables;
  std::deque<HistoryEntry> history;  ///< the last one is shown
  std::vector<Choices> choices;      ///< of the card's fields; empty for an input
  std::optional<RunningTimer> timer;
  /// Whether the card's timer and fields have been set up: not while the task that entering it
  /// is bound to is done (WAP-191, 12.5.1).
  bool started = false;
};

enum class Entry : std::uint8_t {
  kOpen,     ///< an address that a person gave: a new context
  kForward,  ///< `go`
  kBackward  ///< `prev`
};

/// A deck that is waited for.
struct PendingEntry {
  Entry entry = Entry::kForward;
  Request request;
  std::string fragment;
  Assignments assignments;
  std::string from;              ///< address of the deck whose task it is; empty: none
  std::uint32_t redirects = 0;   ///< followed so far
  std::uint32_t tasks = 0;       ///< done since the last thing that a person did or time brought
  std::uint32_t tenthsLeft = 0;  ///< of the time that is passing
};

}  // namespace vs_wml

#endif  // VS_WML_AGENT_BROWSER_STATE_H
