// SPDX-License-Identifier: MIT
#include "agent/agent.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "agent/address.h"
#include "agent/forms.h"
#include "agent/saved_state.h"
#include "agent/tasks.h"
#include "host/deck/variables.h"
#include "host/text/ascii.h"
#include "host/text/utf8.h"

namespace vs_wml {
namespace {

// More than any deck that means well: tasks that follow each other without a person or time in
// between, redirects, ends of timers while one stretch of time passes.
constexpr std::uint32_t kMostTasks = 100;
constexpr std::uint32_t kMostRedirects = 10;
constexpr std::uint32_t kMostTimerEnds = 300'000;
constexpr std::size_t kMostHistory = 100;
constexpr std::size_t kMostDecks = 8;  // of the history that are kept

bool IsRedirect(const ResponseEvent &response) {
  const int status = response.status;
  const bool moves =
      status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
  return moves && !response.location.empty();
}

constexpr std::string_view kFailureNames[] = {"not-found", "not-wml", "access", "redirects",
                                              "loop"};

// A task that cannot be done.
struct TaskFailure {
  Failure failure;
};

// The time that a timer's value says, 0 when it says none.
std::uint32_t ParseTenths(std::string_view value) {
  std::uint32_t tenths = 0;
  value = Trim(value);
  const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), tenths);
  return error == std::errc() && end == value.data() + value.size() ? tenths : 0;
}

[[noreturn]] void Fail(FailureKind kind, std::string reason) {
  throw TaskFailure{{kind, std::move(reason)}};
}

}  // namespace

std::string_view NameOf(FailureKind kind) {
  return kFailureNames[static_cast<std::size_t>(kind)];
}

// One step: what an event does to the agent, and what it asks of the host.
struct Agent::Run {
  Agent &agent;
  Effects effects;
  std::uint32_t tasks = 0;       // done one after the other so far
  std::uint32_t tenthsLeft = 0;  // of the time that is passing

  BrowserState &State() { return agent.state_; }
  const HistoryEntry &Shown() { return State().history.back(); }
  const LoadedDeck &Deck() { return *Shown().deck; }

  void operator()(const OpenEvent &event);
  void operator()(const FollowEvent &event);
  void operator()(const PressEvent &event);
  void operator()(const EnterEvent &event);
  void operator()(const ChooseEvent &event);
  void operator()(const BackEvent &event);
  void operator()(const WaitEvent &event);
  void operator()(const ResponseEvent &event);
  void operator()(const CancelEvent &event);

  void RequireCard();
  void Do(const Action &action);
  void DoInstead(const Action &action);
  void DoTask(const Action &action);
  void Go(const Task &task);
  void Back(Assignments assignments);
  void Refresh(const Task &task);
  Assignments LeaveCard(ContextVariables &variables);
  void Ask(PendingEntry entry);
  void Arrive(const PendingEntry &entry, std::shared_ptr<const Request> request,
              std::shared_ptr<const LoadedDeck> deck);
  void EnterCard(Entry entry, HistoryEntry destination, const Assignments &assignments);
  void StartCard();
  void StartTimer();
  void PassTime();
  void EndTimer();
  void Fails(Failure failure);
  void ForgetDecks();
};

Effects Agent::Step(const Event &event) {
  Run run{*this, {}};
  std::visit(run, event);
  if (!pending_) before_.reset();
  if (run.effects.show) view_.reset();
  if (state_.timer && !pending_) run.effects.timer = state_.timer->left;
  return std::move(run.effects);
}

const CardView &Agent::View() const {
  if (!HasCard()) throw EventError("no card is shown");
  if (!view_) view_ = MakeCardView(state_);
  return *view_;
}

void Agent::Show(BlockSink &sink) const {
  if (!HasCard()) throw EventError("no card is shown");
  ShowCard(state_, sink);
}

std::string Agent::Save() const {
  return WriteState({state_, pending_, before_, requestCount_, lastRequest_});
}

Agent Agent::Restore(std::string_view json) {
  Agent agent;
  try {
    SavedState saved = ReadState(json);
    agent.state_ = std::move(saved.state);
    agent.pending_ = std::move(saved.pending);
    agent.before_ = std::move(saved.before);
    agent.requestCount_ = saved.requestCount;
    agent.lastRequest_ = std::move(saved.lastRequest);
  } catch (const std::runtime_error &refused) {
    throw StateError(refused.what());
  }
  return agent;
}

// ------------------------------------------------------------------------ events

void Agent::Run::operator()(const OpenEvent &event) {
  SplitAddress url = SplitFragment(event.url);
  if (!MayBeDeck(url.address)) {
    effects.external = event.url;
    return;
  }
  if (!IsAbsoluteAddress(url.address)) throw EventError("the address is not absolute");
  PendingEntry entry;
  entry.entry = Entry::kOpen;
  entry.request.url = ResolveAddress(url.address, url.address);
  entry.fragment = RepairUtf8(url.fragment);
  Ask(std::move(entry));
}

void Agent::Run::RequireCard() {
  if (!agent.HasCard()) throw EventError("no card is shown");
}

// What a person does takes the place of what is waited for.
void Agent::Run::DoInstead(const Action &action) {
  agent.pending_.reset();
  agent.before_.reset();
  if (!State().started) StartCard();
  Do(action);
}

void Agent::Run::operator()(const FollowEvent &event) {
  RequireCard();
  const std::vector<CardLink> &links = agent.View().links;
  if (event.link >= links.size()) throw EventError("there is no such link");
  const Action *action = links[event.link].action;
  const std::shared_ptr<const LoadedDeck> deck = Shown().deck;  // lives as long as its actions
  DoInstead(*action);
}

void Agent::Run::operator()(const PressEvent &event) {
  RequireCard();
  const std::vector<const Action *> keys = Deck().KeysOf(Shown().card);
  if (event.key >= keys.size()) throw EventError("there is no such key");
  const std::shared_ptr<const LoadedDeck> deck = Shown().deck;
  DoInstead(*keys[event.key]);
}

void Agent::Run::operator()(const EnterEvent &event) {
  RequireCard();
  const DeckFields fields = Deck().FieldsOf(Shown().card);
  if (event.field >= fields.size() || fields[event.field].kind != FieldKind::kInput) {
    throw EventError("there is no such input");
  }
  try {
    effects.show = Enter(event.field, RepairUtf8(event.text), State());
  } catch (const ValueTooLong &) {  // refused, as by a length
  }
}

void Agent::Run::operator()(const ChooseEvent &event) {
  RequireCard();
  const DeckFields fields = Deck().FieldsOf(Shown().card);
  if (event.field >= fields.size() || fields[event.field].kind != FieldKind::kSelect) {
    throw EventError("there is no such select");
  }
  for (const std::uint32_t option : event.options) {
    if (option == 0 || option > fields[event.field].optionCount) {
      throw EventError("there is no such option");
    }
  }
  effects.show = true;
  const std::shared_ptr<const LoadedDeck> deck = Shown().deck;  // lives as long as its actions
  const std::size_t depth = State().history.size();
  for (const Action *action : Choose(event.field, event.options, State())) {
    DoInstead(*action);
    const bool stays = Shown().deck == deck && State().history.size() == depth;
    if (!stays || agent.pending_) return;
  }
}

void Agent::Run::operator()(const BackEvent & /*event*/) {
  RequireCard();
  Action back;
  back.task.kind = TaskKind::kPrevious;
  DoInstead(back);
}

void Agent::Run::operator()(const WaitEvent &event) {
  if (agent.pending_) return;
  tenthsLeft = event.tenths;
  PassTime();
}

void Agent::Run::operator()(const CancelEvent & /*event*/) {
  agent.pending_.reset();
  if (agent.HasCard() && !State().started) StartCard();
}

void Agent::Run::operator()(const ResponseEvent &event) {
  if (!agent.pending_) throw EventError("no response is waited for");
  PendingEntry entry = *std::exchange(agent.pending_, std::nullopt);
  tasks = entry.tasks;
  tenthsLeft = entry.tenthsLeft;
  try {
    if (IsRedirect(event)) {
      if (++entry.redirects > kMostRedirects) {
        Fail(FailureKind::kRedirects, "more than " + std::to_string(kMostRedirects) + " redirects");
      }
      SplitAddress next = SplitFragment(ResolveAddress(entry.request.url, event.location));
      if (next.address.empty()) next.address = entry.request.url;
      if (!next.fragment.empty()) entry.fragment = next.fragment;
      if (!MayBeDeck(next.address) || !IsAbsoluteAddress(next.address)) {
        Fail(FailureKind::kNotFound, "redirected to " + next.address);
      }
      // Only 307 and 308 keep what is posted (RFC 9110, 15.4).
      if (event.status < 307) {
        entry.request.method = "GET";
        entry.request.contentType.clear();
        entry.request.body.clear();
      }
      entry.request.url = std::move(next.address);
      Ask(std::move(entry));
      return;
    }
    if (event.status < 200 || event.status > 299) {
      Fail(FailureKind::kNotFound, event.status == 0 ? "no answer from " + entry.request.url
                                                     : "status " + std::to_string(event.status) +
                                                           " from " + entry.request.url);
    }
    std::shared_ptr<const LoadedDeck> deck;
    try {
      deck = std::make_shared<const LoadedDeck>(entry.request.url, event.body, event.contentType);
    } catch (const std::runtime_error &refused) {
      Fail(FailureKind::kNotWml, refused.what());
    }
    Arrive(entry, std::make_shared<const Request>(entry.request), std::move(deck));
  } catch (const TaskFailure &failed) {
    Fails(failed.failure);
  }
  PassTime();
}

// ------------------------------------------------------------------------- tasks

void Agent::Run::Do(const Action &action) {
  try {
    DoTask(action);
  } catch (const TaskFailure &failed) {
    Fails(failed.failure);
  } catch (const ValueTooLong &failed) {
    Fails({FailureKind::kLoop, failed.what()});
  }
}

// The card and the variables stay as they were before the first of the tasks that led here, when
// they lead on without end; else as before the one that failed.
void Agent::Run::Fails(Failure failure) {
  if (failure.kind == FailureKind::kLoop && agent.before_) {
    State() = *std::exchange(agent.before_, std::nullopt);
    effects.show = true;
  }
  if (agent.HasCard() && !State().started) StartCard();
  tenthsLeft = 0;
  effects.failure = std::move(failure);
}

void Agent::Run::DoTask(const Action &action) {
  const Task &task = action.task;
  switch (task.kind) {
    case TaskKind::kGo:
      Go(task);
      break;
    case TaskKind::kPrevious: {
      ContextVariables variables = State().variables;
      Assignments assignments = LeaveCard(variables);
      for (auto &pair : EvaluateAssignments(task, variables)) {
        assignments.push_back(std::move(pair));
      }
      Back(std::move(assignments));
      break;
    }
    case TaskKind::kRefresh:
      Refresh(task);
      break;
    default:
      break;
  }
}

// The variable of a timer that runs holds what is left of it when the card is left (WAP-191,
// 11.7).
Assignments Agent::Run::LeaveCard(ContextVariables &variables) {
  const auto &timer = Deck().Card(Shown().card).timer;
  if (!State().timer || timer == nullptr || !IsVariableName(timer->name)) return {};
  Assignments assignments = {{std::string(timer->name), std::to_string(State().timer->left)}};
  Assign(assignments, variables);
  return assignments;
}

void Agent::Run::Go(const Task &task) {
  ContextVariables variables = State().variables;
  PendingEntry entry;
  entry.assignments = LeaveCard(variables);
  for (auto &pair : EvaluateAssignments(task, variables)) {
    entry.assignments.push_back(std::move(pair));
  }
  const std::string written = EvaluateTarget(task, variables);
  const bool inDeck = written.empty() || written.front() == '#';
  SplitAddress target =
      SplitFragment(inDeck ? Deck().Url() + written : ResolveAddress(Deck().Url(), written));
  if (!MayBeDeck(target.address) || !IsAbsoluteAddress(target.address)) {
    effects.external =
        target.fragment.empty() ? target.address : target.address + '#' + target.fragment;
    return;
  }
  entry.request = MakeRequest(task, std::move(target.address), Deck().Url(), variables);
  entry.fragment = std::move(target.fragment);
  if (inDeck && !entry.request.fresh && entry.request.method == "GET" &&
      task.PostFields().empty()) {
    Arrive(entry, Shown().request, Shown().deck);
  } else {
    entry.from = Deck().Url();
    Ask(std::move(entry));
  }
}

void Agent::Run::Back(Assignments assignments) {
  const std::size_t depth = State().history.size();
  if (depth < 2) return;
  HistoryEntry destination = State().history[depth - 2];
  if (destination.deck) {
    EnterCard(Entry::kBackward, std::move(destination), assignments);
    return;
  }
  PendingEntry entry;
  entry.entry = Entry::kBackward;
  entry.request = *destination.request;
  entry.fragment = destination.fragment;
  entry.assignments = std::move(assignments);
  Ask(std::move(entry));
}

void Agent::Run::Refresh(const Task &task) {
  ContextVariables variables = State().variables;
  LeaveCard(variables);
  Assign(EvaluateAssignments(task, variables), variables);
  State().variables = std::move(variables);
  StartCard();
  effects.show = true;
}

// ---------------------------------------------------------------------- entering

void Agent::Run::Ask(PendingEntry entry) {
  entry.tasks = tasks;
  entry.tenthsLeft = tenthsLeft;
  tenthsLeft = 0;
  ++agent.requestCount_;
  agent.lastRequest_ = entry.request;
  effects.fetch = entry.request;
  agent.pending_ = std::move(entry);
}

// A deck that was gone for is here.
void Agent::Run::Arrive(const PendingEntry &entry, std::shared_ptr<const Request> request,
                        std::shared_ptr<const LoadedDeck> deck) {
  if (entry.entry == Entry::kForward && !entry.from.empty() && !deck->Admits(entry.from)) {
    Fail(FailureKind::kAccess, deck->Url() + " does not admit decks of " + entry.from);
  }
  HistoryEntry destination;
  destination.request = std::move(request);
  destination.card = deck->FindCard(entry.fragment);
  destination.fragment = entry.fragment;
  destination.deck = std::move(deck);
  try {
    EnterCard(entry.entry, std::move(destination), entry.assignments);
  } catch (const ValueTooLong &tooLong) {
    Fail(FailureKind::kLoop, tooLong.what());
  }
}

// The order of WAP-191, 12.5.1 and 12.5.2: assignments, a new context, the history, the event
// that entering is, the timer, the card.
void Agent::Run::EnterCard(Entry entry, HistoryEntry destination, const Assignments &assignments) {
  const std::size_t card = destination.card;
  const std::shared_ptr<const LoadedDeck> deck = destination.deck;
  const bool backward = entry == Entry::kBackward;
  const Action *event = deck->FindEvent(card, backward ? "onenterbackward" : "onenterforward");
  ContextVariables variables = State().variables;
  Assign(assignments, variables);
  if (event != nullptr && !agent.before_) agent.before_ = State();
  BrowserState &state = State();
  const bool isNew = entry == Entry::kOpen || (!backward && deck->Card(card).newContext);
  state.variables = isNew ? ContextVariables() : std::move(variables);
  if (isNew) state.history.clear();
  const bool isOther = state.history.empty() || state.history.back().deck != deck;
  if (backward) {
    state.history.pop_back();
    state.history.back() = std::move(destination);
  } else {
    if (state.history.size() == kMostHistory) state.history.pop_front();
    state.history.push_back(std::move(destination));
  }
  if (isOther) ForgetDecks();
  state.timer.reset();
  state.choices.clear();
  state.started = false;
  effects.show = true;
  if (event == nullptr) {
    StartCard();
    return;
  }
  if (++tasks > kMostTasks) {
    Fail(FailureKind::kLoop,
         "more than " + std::to_string(kMostTasks) + " tasks lead to each other");
  }
  DoTask(*event);
  if (!State().started && !agent.pending_) StartCard();  // it led nowhere
}

void Agent::Run::StartCard() {
  State().started = true;
  StartTimer();
  InitialiseFields(State());
}

void Agent::Run::StartTimer() {
  BrowserState &state = State();
  state.timer.reset();
  const auto &timer = Deck().Card(Shown().card).timer;
  if (timer == nullptr) return;
  std::string value;
  const bool isNamed = IsVariableName(timer->name);
  if (const auto found = state.variables.find(timer->name);
      isNamed && found != state.variables.end()) {
    value = found->second;
  } else {
    value = EvaluateShort(timer->value, state.variables);
    if (isNamed) Assign(timer->name, value, state.variables);
  }
  if (const std::uint32_t tenths = ParseTenths(value); tenths != 0) {
    state.timer = RunningTimer{tenths};
  }
}

// The oldest decks of the history go, those that are far back.
void Agent::Run::ForgetDecks() {
  std::vector<const LoadedDeck *> kept;
  std::deque<HistoryEntry> &history = State().history;
  for (auto entry = history.rbegin(); entry != history.rend(); ++entry) {
    if (!entry->deck) continue;
    if (std::find(kept.begin(), kept.end(), entry->deck.get()) != kept.end()) continue;
    if (kept.size() == kMostDecks) {
      entry->deck.reset();
    } else {
      kept.push_back(entry->deck.get());
    }
  }
}

// -------------------------------------------------------------------------- time

void Agent::Run::PassTime() {
  for (std::uint32_t ends = 0; tenthsLeft != 0 && State().timer && !agent.pending_;) {
    RunningTimer &timer = *State().timer;
    const std::uint32_t passed = std::min(timer.left, tenthsLeft);
    timer.left -= passed;
    tenthsLeft -= passed;
    if (timer.left != 0) return;
    if (++ends > kMostTimerEnds) {
      Fails({FailureKind::kLoop, "more than " + std::to_string(kMostTimerEnds) + " timers end"});
      return;
    }
    agent.before_.reset();
    tasks = 0;
    EndTimer();
  }
}

void Agent::Run::EndTimer() {
  const std::shared_ptr<const LoadedDeck> deck = Shown().deck;
  const std::size_t card = Shown().card;
  State().timer.reset();
  if (const std::string_view name = deck->Card(card).timer->name; IsVariableName(name)) {
    Assign(name, "0", State().variables);
  }
  effects.show = true;
  if (const Action *event = deck->FindEvent(card, "ontimer")) Do(*event);
}

}  // namespace vs_wml
