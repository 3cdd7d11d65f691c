// SPDX-License-Identifier: MIT
#include "host/deck/action_collector.h"

#include <algorithm>
#include <memory>

#include "host/text/ascii.h"

namespace vs_wml {
namespace {

constexpr std::string_view kEvents[] = {"onenterforward", "onenterbackward", "ontimer"};

// The details of an action, made if need be.
ActionDetails &MakeDetails(Action &action) {
  if (!action.details) action.details = std::make_unique<ActionDetails>();
  return *action.details;
}

}  // namespace

std::string_view ShadowName(const Action &action) {
  const ActionDetails &details = vs_wml::DetailsOf(action);
  return action.kind == ActionKind::kDo && !details.name.empty() ? details.name : details.type;
}

// Actions are large: they are made where they stay.
Action &ActionCollector::Add(ActionKind kind) {
  Action &action = parts_.actions.emplace_back();
  action.kind = kind;
  action.number = action.IsLink()
                      ? parts_.linkCount++
                      : static_cast<PartIndex>(parts_.actions.size() - 1 - parts_.linkCount);
  return action;
}

// A key or an event belongs to the card or the template that it stands in.
void ActionCollector::Register(PartIndex action) {
  (inTemplate_ ? parts_.templateActions : parts_.cardActions).push_back(action);
}

PartIndex ActionCollector::AddLink(const Token &token) {
  Action &link = Add(ActionKind::kLink);
  link.task.kind = TaskKind::kGo;
  for (const Attribute &attribute : token.attributes) {
    const auto is = [&](std::string_view name) { return IsLowered(attribute.name, name); };
    if (is("href")) {
      if (!link.task.target.IsGiven()) link.task.target = values_.Target(&attribute.value);
    } else if (is("title")) {
      MakeDetails(link).title = values_.Text(token.Find("title"));
    } else if (is("accesskey")) {
      MakeDetails(link).accessKey = values_.Plain(token.Find("accesskey"));
    } else if (is("tabindex")) {
      MakeDetails(link).tabIndex = values_.Plain(token.Find("tabindex"));
    }
  }
  return Last();
}

PartIndex ActionCollector::AddPick(const std::string_view *target) {
  Task &task = Add(ActionKind::kPick).task;
  task.kind = TaskKind::kGo;
  task.target = values_.Target(target);
  return Last();
}

PartIndex ActionCollector::Begin(TaskOwner owner, ActionKind kind, const Token &token) {
  Action &action = Add(kind);
  const PartIndex index = Last();
  if (!token.attributes.empty()) {
    ActionDetails &details = MakeDetails(action);
    details.title = values_.Text(token.Find("title"));
    details.accessKey = values_.Plain(token.Find("accesskey"));
    details.tabIndex = values_.Plain(token.Find("tabindex"));
    if (kind == ActionKind::kAnchor) {
      if (const std::string_view *href = token.Find("href"); href != nullptr) {
        action.task.kind = TaskKind::kGo;
        action.task.target = values_.Target(href);
      }
    } else {
      details.type = values_.Lowered(token.Find("type"));
      details.name = values_.Plain(token.Find("name"));
      details.label = values_.Line(token.Find("label"));
      details.optional = values_.Lowered(token.Find("optional"));
    }
  }
  if (kind == ActionKind::kDo || kind == ActionKind::kEvent) Register(index);
  owners_.push_back({owner, index});
  ++ownerCount_[static_cast<std::size_t>(owner)];
  return index;
}

void ActionCollector::End(TaskOwner owner) {
  task_ = nullptr;
  if (ownerCount_[static_cast<std::size_t>(owner)] == 0) return;
  TaskOwner closed{};
  do {
    closed = owners_.back().owner;
    owners_.pop_back();
    --ownerCount_[static_cast<std::size_t>(closed)];
  } while (closed != owner);
}

bool ActionCollector::BeginTask(TaskKind kind, const Token &token) {
  task_ = nullptr;
  if (owners_.empty()) {
    warnings_.Add("a task stands outside of any action", token.offset);
    return false;
  }
  Action &action = parts_.actions[owners_.back().action];
  task_ = &action.task;
  if (action.task.kind != TaskKind::kUnset) {
    warnings_.Add("an action has more than one task; the first one counts", token.offset);
    task_ = &MakeDetails(action).more.emplace_back();
  }
  task_->kind = kind;
  if (kind == TaskKind::kGo) ReadGo(*task_, token);
  return true;
}

TaskDetails &ActionCollector::DetailsOf(Task &task) {
  if (!task.details) task.details = std::make_unique<TaskDetails>();
  return *task.details;
}

void ActionCollector::ReadGo(Task &task, const Token &token) {
  for (const Attribute &attribute : token.attributes) {
    const auto is = [&](std::string_view name) { return IsLowered(attribute.name, name); };
    const std::string_view *value = &attribute.value;
    if (is("href") || is("url")) {
      if (!task.target.IsGiven()) task.target = values_.Target(token.Find("href", "url"));
    } else if (is("method")) {
      DetailsOf(task).method = values_.Lowered(value);
    } else if (is("enctype")) {
      DetailsOf(task).encoding = values_.Plain(value);
    } else if (is("accept-charset")) {
      DetailsOf(task).acceptCharset = values_.Plain(value);
    } else if (is("cache-control")) {
      DetailsOf(task).cacheControl = values_.Plain(value);
    } else if (is("sendreferer")) {
      DetailsOf(task).sendReferer = values_.Lowered(value);
    } else if (is("postdata")) {
      DetailsOf(task).postData = values_.Text(value);
    }
  }
}

NameValue ActionCollector::Pair(const Token &token) {
  return {values_.Text(token.Find("name")), values_.Text(token.Find("value"))};
}

bool ActionCollector::AddPostField(const Token &token) {
  if (task_ == nullptr) return false;
  DetailsOf(*task_).postFields.push_back(Pair(token));
  return true;
}

bool ActionCollector::AddVariable(const Token &token) {
  if (task_ == nullptr) return false;
  DetailsOf(*task_).variables.push_back(Pair(token));
  return true;
}

void ActionCollector::AddAttributeEvents(const Token &token) {
  for (const std::string_view event : kEvents) {
    const std::string_view *target = token.Find(event);
    if (target == nullptr) continue;
    Action &action = Add(ActionKind::kEvent);
    MakeDetails(action).type = event;
    action.task.kind = TaskKind::kGo;
    action.task.target = values_.Target(target);
    Register(Last());
  }
}

void ActionCollector::BeginCard() {
  inTemplate_ = false;
  owners_.clear();
  ownerCount_ = {};
  task_ = nullptr;
}

void ActionCollector::IndexTemplate() {
  for (; indexed_ < parts_.templateActions.size(); ++indexed_) {
    const PartIndex index = parts_.templateActions[indexed_];
    const Action &action = parts_.actions[index];
    templateIndex_.try_emplace({action.kind, ShadowName(action)}, index);
  }
}

void ActionCollector::EndCard(DeckCard &card) {
  card.actionCount = static_cast<PartIndex>(parts_.cardActions.size()) - card.firstAction;
  if (parts_.templateActions.empty()) return;
  IndexTemplate();
  for (const PartIndex index : parts_.ActionsOf(card)) {
    Action &action = parts_.actions[index];
    const auto found = templateIndex_.find({action.kind, ShadowName(action)});
    if (found != templateIndex_.end()) MakeDetails(action).shadows = found->second;
  }
}

}  // namespace vs_wml
