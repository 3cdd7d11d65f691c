/// \file
/// Actions and their tasks, collected while a deck is read.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_DECK_ACTION_COLLECTOR_H
#define VS_WML_HOST_DECK_ACTION_COLLECTOR_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
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
  std::size_t AddLink(const Token &token);
  /// `option` with an `onpick` attribute.
  std::size_t AddPick(std::string target);

  /// `anchor`, `do` and `onevent`; returns the index of the action. Tasks go to the
  /// innermost open one.
  std::size_t Begin(TaskOwner owner, ActionKind kind, const Token &token);
  void End(TaskOwner owner);

  /// `go`, `prev`, `refresh`, `noop`.
  void BeginTask(TaskKind kind, const Token &token);
  void EndTask() { task_ = kNoIndex; }
  void AddPostField(const Token &token);
  void AddVariable(const Token &token);

  /// Events that are attributes of a `card` or a `template`.
  void AddAttributeEvents(const Token &token);
  void SetTimer(const Token &token);

  void BeginTemplate() { inTemplate_ = true; }
  void EndTemplate() { inTemplate_ = false; }
  void BeginCard();
  /// Puts the card's actions and those of the template that it does not replace into
  /// `card`.
  void EndCard(DeckCard &card);

 private:
  struct Owner {
    TaskOwner owner;
    std::size_t action;
  };

  Action &Add(ActionKind kind);
  std::size_t Last() const { return parts_.actions.size() - 1; }
  void Register(std::size_t action);
  static std::string ShadowKey(const Action &action);

  DeckParts &parts_;
  ValueReader &values_;
  Warnings &warnings_;
  std::vector<Owner> owners_;
  std::array<std::size_t, kTaskOwnerCount> ownerCount_{};
  std::size_t task_ = kNoIndex;  // the action whose task is open
  bool inTemplate_ = false;
  std::vector<std::size_t> templateActions_;
  std::vector<std::size_t> cardActions_;
  std::uint32_t timer_ = 0;
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_DECK_ACTION_COLLECTOR_H
