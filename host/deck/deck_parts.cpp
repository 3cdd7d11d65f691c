// SPDX-License-Identifier: MIT
#include "host/deck/deck_parts.h"

#include <string_view>

namespace vs_wml {
namespace {

struct TypeName {
  std::string_view type;
  const char *name;
};

constexpr TypeName kDoNames[] = {{"accept", "OK"},   {"prev", "Back"},       {"help", "Help"},
                                 {"reset", "Reset"}, {"options", "Options"}, {"delete", "Delete"}};

std::string EventLabel(const Action &event) {
  const std::string &type = NamesOf(event).type;
  if (type == "onenterforward") return "On entry";
  if (type == "onenterbackward") return "On return";
  if (type != "ontimer") return type;
  if (event.delay == 0) return "On timer";
  std::string label = "After " + std::to_string(event.delay / 10);
  if (event.delay % 10 != 0) label += '.' + std::to_string(event.delay % 10);
  return label + " s";
}

std::string OptionsText(const Field &field) {
  std::string text;
  std::size_t group = kNoIndex;
  for (const FieldOption &option : field.options) {
    if (option.group != group && option.group != kNoIndex) {
      text += " " + field.groups[option.group] + ":";
    }
    group = option.group;
    const char *mark = field.multiple ? (option.selected ? " [x] " : " [ ] ")
                                      : (option.selected ? " (*) " : " ( ) ");
    text += mark + option.label;
  }
  return text;
}

}  // namespace

const char *UsualActionName(const std::string &type) {
  for (const TypeName &entry : kDoNames) {
    if (entry.type == type) return entry.name;
  }
  return nullptr;
}

const ActionNames &NamesOf(const Action &action) {
  static const ActionNames kNone;
  return action.names ? *action.names : kNone;
}

std::string ActionLabel(const Action &action) {
  const auto &[type, name, label] = NamesOf(action);
  if (!label.empty()) return label;
  if (action.kind == ActionKind::kEvent) return EventLabel(action);
  if (!action.title.empty()) return action.title;
  if (const char *usual = UsualActionName(type)) return usual;
  if (!type.empty() && type != "unknown") return type;
  if (!name.empty()) return name;
  if (action.task.kind == TaskKind::kPrevious) return "Back";
  return action.task.target.empty() ? "OK" : action.task.target;
}

std::string FieldText(const Field &field) {
  const std::string &label = field.title.empty() ? field.name : field.title;
  const std::string value = field.value.empty()        ? "____"
                            : field.type == "password" ? "****"
                                                       : field.value;
  if (label.empty() && !field.value.empty()) return "[" + value + ']';
  std::string text = "[" + label + ":";
  text += field.kind == FieldKind::kSelect ? OptionsText(field) : ' ' + value;
  return text + ']';
}

}  // namespace vs_wml
