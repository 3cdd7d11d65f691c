/// \file
/// Actions and their tasks, collected while a deck is read.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_DECK_ACTION_COLLECTOR_H
#define VS_WML_HOST_DECK_ACTION_COLLECTOR_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include "host/deck/deck_parts.h"
#include "host/deck/markup_reader.h"
#include "host/deck/value_reader.h"
#include "host/text/warnings.h"

namespace vs_wml {

/// The elements that a task can stand in.
enum class TaskOwner : std::uint8_t { kAnchor, kDo, kEvent };
inline constexpr std::size_t kTaskOwnerCount = 3;

class ActionCollector {
 public:
  ActionCollector(DeckParts &parts, ValueReader &values, Warnings &warnings)
      : parts_(parts), values_(values), warnings_(warnings) {}

  /// `a`; returns the index of its action.
  PartIndex AddLink(const Token &token);
  /// `option` with an `onpick` attribute.
  PartIndex AddPick(const std::string_view *target);

  /// `anchor`, `do` and `onevent`; returns the index of the action. Tasks go to the
  /// innermost open one.
  PartIndex Begin(TaskOwner owner, ActionKind kind, const Token &token);
  void End(TaskOwner owner);

  /// `go`, `prev`, `refresh`, `noop`; false when it stands outside of any action.
  bool BeginTask(TaskKind kind, const Token &token);
  void EndTask() { task_ = nullptr; }
  /// `postfield` and `setvar`; false when it stands in no task.
  bool AddPostField(const Token &token);
  bool AddVariable(const Token &token);

  /// Events that are attributes of a `card` or a `template`.
  void AddAttributeEvents(const Token &token);

  void BeginTemplate() { inTemplate_ = true; }
  void EndTemplate() { inTemplate_ = false; }
  void BeginCard();
  /// Gives `card` its actions, those that take the place of the template's marked.
  void EndCard(DeckCard &card);

 private:
  struct Owner {
    TaskOwner owner;
    PartIndex action;
  };

  Action &Add(ActionKind kind);
  PartIndex Last() const { return static_cast<PartIndex>(parts_.actions.size() - 1); }
  void Register(PartIndex action);
  static TaskDetails &DetailsOf(Task &task);
  void ReadGo(Task &task, const Token &token);
  NameValue Pair(const Token &token);
  void IndexTemplate();

  DeckParts &parts_;
  ValueReader &values_;
  Warnings &warnings_;
  std::vector<Owner> owners_;
  std::array<std::size_t, kTaskOwnerCount> ownerCount_{};
  Task *task_ = nullptr;  // the open one
  bool inTemplate_ = false;
  /// The template's actions, by what cards replace them by.
  std::map<std::pair<ActionKind, std::string_view>, PartIndex> templateIndex_;
  std::size_t indexed_ = 0;  // of them so far
};

/// What a card's action has in common with the one of the template that it replaces: the name
/// of a key, else its type; the type of an event.
std::string_view ShadowName(const Action &action);

}  // namespace vs_wml

#endif  // VS_WML_HOST_DECK_ACTION_COLLECTOR_H
