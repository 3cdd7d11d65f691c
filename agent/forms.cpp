// SPDX-License-Identifier: MIT
#include "agent/forms.h"

#include <algorithm>
#include <charconv>
#include <string>

#include "agent/input_mask.h"
#include "agent/tasks.h"
#include "host/text/ascii.h"

namespace vs_wml {
namespace {

// A select of the card that is shown.
struct Select {
  const DeckParts &parts;
  const Field &field;

  std::uint32_t OptionCount() const { return field.optionCount; }
  const FieldOption &Option(std::uint32_t position) const {
    return parts.options[field.firstOption + position - 1];
  }
  std::string_view IndexName() const {
    return field.details ? field.details->indexName : std::string_view();
  }
};

const std::string *Find(std::string_view name, const ContextVariables &variables) {
  const auto found = variables.find(name);
  return name.empty() || found == variables.end() ? nullptr : &found->second;
}

void Add(std::uint32_t position, Choices &choices) {
  const auto at = std::lower_bound(choices.begin(), choices.end(), position);
  if (at == choices.end() || *at != position) choices.insert(at, position);
}

template <typename Take>
void ForEachPart(std::string_view list, Take take) {
  while (!list.empty()) {
    const std::size_t end = std::min(list.find(';'), list.size());
    take(Trim(list.substr(0, end)));
    list.remove_prefix(std::min(end + 1, list.size()));
  }
}

// The positions in a list such as "1;3": those that are none are left out, and a select of one
// choice takes the first.
Choices ValidPositions(std::string_view list, const Select &select) {
  Choices choices;
  ForEachPart(list, [&](std::string_view part) {
    std::uint32_t position = 0;
    const auto [end, error] = std::from_chars(part.data(), part.data() + part.size(), position);
    const bool isNumber = error == std::errc() && end == part.data() + part.size();
    if (!isNumber || position == 0 || position > select.OptionCount()) return;
    if (select.field.multiple || choices.empty()) Add(position, choices);
  });
  return choices;
}

// The first options that have the values of a list.
Choices PositionsOfValues(std::string_view list, const Select &select,
                          const ContextVariables &variables) {
  Choices choices;
  const auto addValue = [&](std::string_view value) {
    for (std::uint32_t position = 1; position <= select.OptionCount(); ++position) {
      const Value &option = select.Option(position).value;
      if (EvaluateShort(option, variables) != value) continue;
      Add(position, choices);
      return;
    }
  };
  if (select.field.multiple) {
    ForEachPart(list, addValue);
  } else {
    addValue(list);
  }
  return choices;
}

// WAP-191, 11.6.2: the variable of the position, its default, the variable of the value, its
// default; then nothing, or the first option where one must be chosen.
Choices DefaultChoices(const Select &select, const ContextVariables &variables) {
  const auto evaluated = [&](const Value &value) { return EvaluateShort(value, variables); };
  Choices choices;
  if (const std::string *index = Find(select.IndexName(), variables)) {
    choices = ValidPositions(*index, select);
  }
  if (choices.empty() && select.field.details) {
    choices = ValidPositions(evaluated(select.field.details->indexValue), select);
  }
  if (const std::string *value = Find(select.field.name, variables); value && choices.empty()) {
    choices = PositionsOfValues(*value, select, variables);
  }
  if (choices.empty() && !select.field.value.IsEmpty()) {
    choices = PositionsOfValues(evaluated(select.field.value), select, variables);
  }
  if (choices.empty() && !select.field.multiple && select.OptionCount() != 0) choices = {1};
  return choices;
}

void SetVariables(const Select &select, const Choices &choices, ContextVariables &variables) {
  std::string values;
  std::string positions;
  for (const std::uint32_t position : choices) {
    const std::string value = EvaluateShort(select.Option(position).value, variables);
    if (!value.empty() && !values.empty()) values += ';';
    values += value;
    positions += (positions.empty() ? "" : ";") + std::to_string(position);
  }
  if (choices.empty()) positions = "0";
  if (values.size() > kLongestValue) values.clear();
  if (IsVariableName(select.field.name)) Assign(select.field.name, values, variables);
  if (IsVariableName(select.IndexName())) Assign(select.IndexName(), positions, variables);
}

// A value that the field does not take counts as none.
void InitialiseInput(const Field &field, ContextVariables &variables) {
  if (!IsVariableName(field.name)) return;
  if (const std::string *value = Find(field.name, variables)) {
    if (FitField(field, *value) == *value) return;
    Assign(field.name, {}, variables);
  }
  const std::string preset = EvaluateShort(field.value, variables);
  if (const auto fitted = FitField(field, preset)) Assign(field.name, *fitted, variables);
}

const Field &FieldAt(std::size_t field, const BrowserState &state) {
  const HistoryEntry &shown = state.history.back();
  return shown.deck->FieldsOf(shown.card)[field];
}

}  // namespace

void InitialiseFields(BrowserState &state) {
  const HistoryEntry &shown = state.history.back();
  const std::size_t count = shown.deck->Card(shown.card).fieldCount;
  state.choices.resize(count);
  for (std::size_t index = 0; index < count; ++index) {
    const Field &field = FieldAt(index, state);
    if (field.kind == FieldKind::kInput) {
      InitialiseInput(field, state.variables);
      continue;
    }
    const Select select{shown.deck->Parts(), field};
    const bool isNamed = !field.name.empty() || !select.IndexName().empty();
    Choices &choices = state.choices[index];
    if (isNamed || choices.empty()) choices = DefaultChoices(select, state.variables);
    SetVariables(select, choices, state.variables);
  }
}

bool Enter(std::size_t index, std::string_view text, BrowserState &state) {
  const Field &field = FieldAt(index, state);
  const auto fitted = FitField(field, text);
  if (!fitted || !IsVariableName(field.name)) return false;
  Assign(field.name, *fitted, state.variables);
  return true;
}

std::vector<const Action *> Choose(std::size_t index, std::span<const std::uint32_t> options,
                                   BrowserState &state) {
  const DeckParts &parts = state.history.back().deck->Parts();
  const Select select{parts, FieldAt(index, state)};
  Choices chosen;
  for (const std::uint32_t option : options) {
    if (!select.field.multiple) chosen.clear();
    Add(option, chosen);
  }
  Choices &choices = state.choices[index];
  // An option of many is picked when it changes, one of one choice also when it is taken again.
  Choices picked = chosen;
  if (select.field.multiple) {
    picked.clear();
    std::set_symmetric_difference(chosen.begin(), chosen.end(), choices.begin(), choices.end(),
                                  std::back_inserter(picked));
  }
  choices = chosen;
  SetVariables(select, choices, state.variables);
  std::vector<const Action *> actions;
  for (const std::uint32_t position : picked) {
    const PartIndex action = select.Option(position).action;
    if (action != kNoIndex) actions.push_back(&parts.actions[action]);
  }
  return actions;
}

}  // namespace vs_wml
