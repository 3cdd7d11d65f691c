// SPDX-License-Identifier: MIT
#include "host/deck/action_collector.h"

#include <set>
#include <utility>

#include "host/text/ascii.h"

namespace vs_wml {
namespace {

constexpr std::string_view kEvents[] = {"onenterforward", "onenterbackward", "ontimer"};

// What an action of a template costs each card that has it, besides its label.
constexpr std::size_t kTemplateCost = 64;

void GoTo(Task &task, std::string target) {
  task.kind = TaskKind::kGo;
  task.target = std::move(target);
  task.method = "get";
}

}  // namespace

// Actions are large: they are made where they stay.
Action &ActionCollector::Add(ActionKind kind) {
  Action &action = parts_.actions.emplace_back();
  action.kind = kind;
  return action;
}

// A key or an event belongs to the card or the template that it stands in.
void ActionCollector::Register(std::size_t action) {
  (inTemplate_ ? templateActions_ : cardActions_).push_back(action);
}

std::size_t ActionCollector::AddLink(const Token &token) {
  Action &link = Add(ActionKind::kLink);
  link.title = values_.Text(token, "title");
  GoTo(link.task, values_.Target(token, "href"));
  return Last();
}

std::size_t ActionCollector::AddPick(std::string target) {
  GoTo(Add(ActionKind::kPick).task, std::move(target));
  return Last();
}

std::size_t ActionCollector::Begin(TaskOwner owner, ActionKind kind, const Token &token) {
  Action &action = Add(kind);
  action.title = values_.Text(token, "title");
  action.names = std::make_unique<ActionNames>();
  action.names->label = Collapsed(values_.Text(token, "label"));
  if (kind == ActionKind::kDo || kind == ActionKind::kEvent) {
    action.names->type = Lowered(Trim(values_.Text(token, "type")));
    action.names->name = values_.Text(token, "name");
  }
  const std::size_t index = Last();
  if (kind == ActionKind::kDo || kind == ActionKind::kEvent) Register(index);
  owners_.push_back({owner, index});
  ++ownerCount_[static_cast<std::size_t>(owner)];
  return index;
}

void ActionCollector::End(TaskOwner owner) {
  task_ = kNoIndex;
  if (ownerCount_[static_cast<std::size_t>(owner)] == 0) return;
  TaskOwner closed{};
  do {
    closed = owners_.back().owner;
    owners_.pop_back();
    --ownerCount_[static_cast<std::size_t>(closed)];
  } while (closed != owner);
}

void ActionCollector::BeginTask(TaskKind kind, const Token &token) {
  task_ = kNoIndex;
  if (owners_.empty()) {
    warnings_.Add("a task stands outside of any action", token.offset);
    return;
  }
  Task &task = parts_.actions[owners_.back().action].task;
  if (task.kind != TaskKind::kUnset) {
    warnings_.Add("an action has more than one task; the first one counts", token.offset);
    return;
  }
  task_ = owners_.back().action;
  task.kind = kind;
  if (kind != TaskKind::kGo) return;
  task.target = values_.Target(token, "href");
  task.method = Lowered(values_.Text(token, "method"));
  if (task.method.empty()) task.method = "get";
  task.multipart = values_.Text(token, "enctype") == "multipart/form-data";
}

void ActionCollector::AddPostField(const Token &token) {
  if (task_ != kNoIndex) parts_.actions[task_].task.postFields.push_back(values_.Pair(token));
}

void ActionCollector::AddVariable(const Token &token) {
  if (task_ != kNoIndex) parts_.actions[task_].task.variables.push_back(values_.Pair(token));
}

void ActionCollector::AddAttributeEvents(const Token &token) {
  for (const std::string_view event : kEvents) {
    if (token.Find(event) == nullptr) continue;
    Action &action = Add(ActionKind::kEvent);
    action.names = std::make_unique<ActionNames>();
    action.names->type = event;
    GoTo(action.task, values_.Target(token, event));
    Register(Last());
  }
}

void ActionCollector::SetTimer(const Token &token) {
  timer_ = values_.Number(token, "value");
}

void ActionCollector::BeginCard() {
  inTemplate_ = false;
  owners_.clear();
  ownerCount_ = {};
  task_ = kNoIndex;
  cardActions_.clear();
  timer_ = 0;
}

// What a card's action has in common with the one of the template that it replaces.
std::string ActionCollector::ShadowKey(const Action &action) {
  const ActionNames &names = NamesOf(action);
  if (action.kind == ActionKind::kEvent) return "event " + names.type;
  return "do " + (names.name.empty() ? names.type : names.name);
}

void ActionCollector::EndCard(DeckCard &card) {
  std::set<std::string> own;
  for (const std::size_t index : cardActions_) {
    Action &action = parts_.actions[index];
    if (!templateActions_.empty()) own.insert(ShadowKey(action));
    if (NamesOf(action).type == "ontimer") action.delay = timer_;
    card.actions.push_back(index);
  }
  for (const std::size_t index : templateActions_) {
    const Action &action = parts_.actions[index];
    const std::size_t cost = kTemplateCost + ActionLabel(action).size() + ShadowKey(action).size();
    if (!values_.Spend(cost)) {
      warnings_.Add("the template has too many actions to show them in every card", 0);
      break;
    }
    if (own.count(ShadowKey(action)) == 0) card.actions.push_back(index);
  }
  cardActions_.clear();
}

}  // namespace vs_wml
