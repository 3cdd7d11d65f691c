// SPDX-License-Identifier: MIT
#include "host/deck/deck_parts.h"

#include <charconv>
#include <set>

#include "host/deck/variables.h"
#include "host/text/ascii.h"

namespace vs_wml {
namespace {

struct TypeName {
  std::string_view type;
  std::string_view name;
};

constexpr TypeName kDoNames[] = {{"accept", "OK"},   {"prev", "Back"},       {"help", "Help"},
                                 {"reset", "Reset"}, {"options", "Options"}, {"delete", "Delete"}};

constexpr std::uint32_t kTimerUnitsPerSecond = 10;

constexpr bool IsContinuation(char c) {
  return (static_cast<unsigned char>(c) & 0xC0U) == 0x80;
}

// Tenths of a second, 0 when the timer does not say a number.
std::uint32_t DelayOf(const Timer *timer) {
  if (timer == nullptr) return 0;
  const std::string_view digits = Trim(timer->value.shown);
  std::uint32_t delay = 0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), delay);
  return result.ptr == digits.data() + digits.size() ? delay : 0;
}

std::string EventLabel(const Action &event, const Timer *timer) {
  const std::string_view type = DetailsOf(event).type;
  if (type == "onenterforward") return "On entry";
  if (type == "onenterbackward") return "On return";
  if (type != "ontimer") return std::string(type);
  const std::uint32_t delay = DelayOf(timer);
  if (delay == 0) return "On timer";
  std::string label = "After " + std::to_string(delay / kTimerUnitsPerSecond);
  const std::uint32_t rest = delay % kTimerUnitsPerSecond;
  if (rest != 0) label += '.' + std::to_string(rest);
  return label + " s";
}

// A group that is come back to is named by the start of its title.
void AddGroup(std::string &text, std::string_view title, bool again) {
  constexpr std::size_t kShort = 32;
  std::size_t length = title.size();
  if (again && length > kShort) {
    length = kShort;
    while (length != 0 && IsContinuation(title[length])) --length;
  }
  text.append(" ").append(title.substr(0, length));
  text += length == title.size() ? ":" : "...:";
}

void AddOptions(std::string &text, const DeckParts &parts, const Field &field) {
  std::set<PartIndex> groups;  // so far
  PartIndex group = kNoIndex;
  for (PartIndex index = 0; index < field.optionCount; ++index) {
    const FieldOption &option = parts.options[field.firstOption + index];
    if (option.group != group && option.group != kNoIndex) {
      const bool again = !groups.insert(option.group).second;
      AddGroup(text, parts.groups[option.group].title.shown, again);
    }
    group = option.group;
    text += field.multiple ? (option.selected ? " [x] " : " [ ] ")
                           : (option.selected ? " (*) " : " ( ) ");
    text += option.Label();
  }
}

}  // namespace

std::string_view SoleVariable(const Value &value) {
  if (value.ReadsAsWritten()) return {};
  const VariableReference reference = ReadVariable(value.written);
  return reference.length == value.written.size() ? reference.name : std::string_view();
}

std::span<const NameValue> Task::PostFields() const {
  if (!details) return {};
  return details->postFields;
}

std::span<const NameValue> Task::Variables() const {
  if (!details) return {};
  return details->variables;
}

bool Task::Posts() const {
  return details && (details->method == "post" || details->postData.IsGiven());
}

bool Task::IsMultipart() const {
  return details && EqualIgnoringCase(details->encoding, "multipart/form-data");
}

std::string_view FieldOption::Label() const {
  if (!label.IsEmpty()) return label.shown;
  return title.IsEmpty() ? value.shown : title.shown;
}

std::string_view Field::Variable() const {
  return name.empty() && details ? details->indexName : name;
}

std::string_view Field::Label() const {
  return title.IsEmpty() ? Variable() : title.shown;
}

std::span<const PartIndex> DeckParts::ActionsOf(const DeckCard &card) const {
  return std::span(cardActions).subspan(card.firstAction, card.actionCount);
}

std::string_view UsualActionName(std::string_view type) {
  for (const TypeName &entry : kDoNames) {
    if (entry.type == type) return entry.name;
  }
  return {};
}

const ActionDetails &DetailsOf(const Action &action) {
  static const ActionDetails kNone;
  return action.details ? *action.details : kNone;
}

std::string_view SaidLabel(const Action &action) {
  const ActionDetails &details = DetailsOf(action);
  return details.label.IsEmpty() ? details.title.shown : details.label.shown;
}

std::string ActionLabel(const Action &action, const Timer *timer) {
  const ActionDetails &details = DetailsOf(action);
  if (action.kind == ActionKind::kEvent) return EventLabel(action, timer);
  if (const std::string_view said = SaidLabel(action); !said.empty()) return std::string(said);
  if (const std::string_view usual = UsualActionName(details.type); !usual.empty()) {
    return std::string(usual);
  }
  if (!details.type.empty() && details.type != "unknown") return std::string(details.type);
  if (!details.name.empty()) return std::string(details.name);
  if (action.task.kind == TaskKind::kPrevious) return "Back";
  return action.task.target.IsEmpty() ? "OK" : std::string(action.task.target.shown);
}

std::string FieldText(const DeckParts &parts, const Field &field) {
  const std::string_view label = field.Label();
  if (field.kind == FieldKind::kSelect) {
    std::string text = "[" + std::string(label) + ':';
    AddOptions(text, parts, field);
    return text + ']';
  }
  const std::string_view value = field.value.IsEmpty()      ? "____"
                                 : field.type == "password" ? "****"
                                                            : field.value.shown;
  std::string text = "[";
  if (!label.empty() || field.value.IsEmpty()) text.append(label).append(": ");
  return text.append(value) + ']';
}

}  // namespace vs_wml
