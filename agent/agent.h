/// \file
/// A user agent for WML: decks as phones played them (WAP-191, sections 9 to 12).
///
/// SPDX-License-Identifier: MIT
///
/// The agent is a state machine. A host tells it what happens (a person follows a link, time
/// passes, a response arrives) and is told what to do (ask the network, show the card). It does no
/// I/O, reads no clock, starts no thread and has no state outside of its object.
#ifndef VS_WML_AGENT_AGENT_H
#define VS_WML_AGENT_AGENT_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "agent/browser_state.h"
#include "agent/card_view.h"

namespace vs_wml {

/// An address as typed by a person: a new context without history, and no referer.
struct OpenEvent {
  std::string url;  ///< absolute
};
struct FollowEvent {
  std::size_t link = 0;  ///< index into CardView::links
};
struct PressEvent {
  std::size_t key = 0;  ///< index into CardView::keys
};
/// Replaces what an input holds. A text that its format or length refuses leaves it as it was.
struct EnterEvent {
  std::size_t field = 0;  ///< index into CardView::fields
  std::string text;
};
/// Makes exactly these options of a select chosen.
struct ChooseEvent {
  std::size_t field = 0;               ///< index into CardView::fields
  std::vector<std::uint32_t> options;  ///< from 1 on
};
/// The phone's own key back.
struct BackEvent {};
struct WaitEvent {
  std::uint32_t tenths = 0;  ///< of a second
};
/// What the network answers to Effects::fetch.
struct ResponseEvent {
  int status = 200;         ///< of HTTP; 0: there was no answer
  std::string contentType;  ///< empty: not said
  std::string location;     ///< where a redirect leads
  std::string body;
};
/// Gives up waiting for a response; the card stays.
struct CancelEvent {};

using Event = std::variant<OpenEvent, FollowEvent, PressEvent, EnterEvent, ChooseEvent, BackEvent,
                           WaitEvent, ResponseEvent, CancelEvent>;

enum class FailureKind : std::uint8_t {
  kNotFound,   ///< no answer, or a status other than success
  kNotWml,     ///< what came is no deck
  kAccess,     ///< the deck does not admit the one that leads to it
  kRedirects,  ///< too many
  kLoop        ///< tasks that lead to each other, or values that grow, without end
};

struct Failure {
  FailureKind kind = FailureKind::kNotFound;
  std::string reason;  ///< for people

  bool operator==(const Failure &) const = default;
};

/// "not-found", "not-wml", "access", "redirects", "loop".
std::string_view NameOf(FailureKind kind);

/// What a host has to do after a step.
struct Effects {
  /// To be asked for; its answer is a ResponseEvent. Replaces a request that is still waited for.
  std::optional<Request> fetch;
  /// The card, or what it shows, is another.
  bool show = false;
  /// Tenths of a second after which a WaitEvent has something to do; nothing when no timer runs.
  std::optional<std::uint32_t> timer;
  /// Why the last task was not done. The card and the variables are as they were.
  std::optional<Failure> failure;
  /// An address that is no deck's, such as that of a telephone number, a mailbox or a script;
  /// nothing was done about it.
  std::optional<std::string> external;
};

/// An event that cannot be: an index out of range, an answer that nobody waits for.
class EventError : public std::invalid_argument {
 public:
  using std::invalid_argument::invalid_argument;
};

/// Saved state that is none, or of another version.
class StateError : public std::invalid_argument {
 public:
  using std::invalid_argument::invalid_argument;
};

/// A browser context with a deck in it. Not thread-safe; agents are independent of each other.
class Agent {
 public:
  Agent() = default;

  /// Throws EventError, which leaves the agent as it was. While a response is waited for, an
  /// OpenEvent, a BackEvent or another task takes its place.
  Effects Step(const Event &event);

  /// Whether a card is shown: not before the first deck has arrived.
  bool HasCard() const { return !state_.history.empty(); }
  /// The card as it is shown. Valid until the next step. Throws EventError when there is none.
  const CardView &View() const;
  /// Hands the card to a sink, block by block.
  void Show(BlockSink &sink) const;

  const ContextVariables &Variables() const { return state_.variables; }
  const std::deque<HistoryEntry> &History() const { return state_.history; }
  const std::optional<RunningTimer> &Timer() const { return state_.timer; }
  bool IsWaiting() const { return pending_.has_value(); }
  /// Requests made so far, and the last of them.
  std::uint64_t RequestCount() const { return requestCount_; }
  const std::optional<Request> &LastRequest() const { return lastRequest_; }

  /// The whole state as JSON; equal states give equal texts.
  std::string Save() const;
  /// Throws StateError.
  static Agent Restore(std::string_view json);

 private:
  struct Run;  // one step

  BrowserState state_;
  std::optional<PendingEntry> pending_;
  /// The state before the first of the tasks that are being done one after the other.
  std::optional<BrowserState> before_;
  std::uint64_t requestCount_ = 0;
  std::optional<Request> lastRequest_;
  mutable std::optional<CardView> view_;
};

}  // namespace vs_wml

#endif  // VS_WML_AGENT_AGENT_H
