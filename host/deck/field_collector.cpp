// SPDX-License-Identifier: MIT
#include "host/deck/field_collector.h"

#include <charconv>
#include <set>
#include <utility>

#include "host/deck/references.h"
#include "host/text/ascii.h"

namespace vs_wml {
namespace {

// Calls `use` with each part of a list separated by ';'.
template <typename Use>
void ForEachPart(std::string_view list, Use use) {
  while (!list.empty()) {
    const std::size_t end = list.find(';');
    use(Trim(list.substr(0, end)));
    if (end == std::string_view::npos) break;
    list.remove_prefix(end + 1);
  }
}

}  // namespace

std::size_t FieldCollector::Add(Field field) {
  if (!fieldsets_.empty()) field.fieldset = fieldsets_.back();
  parts_.fields.push_back(std::move(field));
  if (!parts_.cards.empty()) parts_.cards.back().fields.push_back(parts_.fields.size() - 1);
  return parts_.fields.size() - 1;
}

std::size_t FieldCollector::AddInput(const Token &token) {
  Field field;
  field.name = values_.Text(token, "name");
  field.title = Collapsed(values_.Text(token, "title"));
  field.type = Lowered(values_.Text(token, "type"));
  if (field.type.empty()) field.type = "text";
  field.format = values_.Text(token, "format");
  field.value = values_.Text(token, "value");
  field.size = values_.Number(token, "size");
  field.length = values_.Number(token, "maxlength");
  field.emptyAllowed = values_.Flag(token, "emptyok", field.format.empty());
  return Add(std::move(field));
}

void FieldCollector::BeginSelect(const Token &token) {
  Field field;
  field.kind = FieldKind::kSelect;
  field.name = values_.Text(token, "name");
  if (field.name.empty()) field.name = values_.Text(token, "iname");
  field.title = Collapsed(values_.Text(token, "title"));
  field.multiple = values_.Flag(token, "multiple", false);
  defaultValues_ = values_.Text(token, "value");
  defaultIndexes_ = values_.Text(token, "ivalue");
  groups_.clear();
  select_ = Add(std::move(field));
}

std::size_t FieldCollector::EndSelect() {
  EndOption();
  MarkDefault(parts_.fields[select_]);
  return std::exchange(select_, kNoIndex);
}

// Positions count more than values; a list for one choice starts with the first.
void FieldCollector::MarkDefault(Field &field) const {
  std::set<std::string_view> values;
  std::set<std::size_t> indexes;
  ForEachPart(defaultIndexes_, [&](std::string_view part) {
    std::size_t index = 0;
    std::from_chars(part.data(), part.data() + part.size(), index);
    if (index >= 1 && index <= field.options.size()) indexes.insert(index - 1);
  });
  if (indexes.empty()) ForEachPart(defaultValues_, [&](auto part) { values.insert(part); });
  bool marked = false;
  for (std::size_t i = 0; i < field.options.size(); ++i) {
    FieldOption &option = field.options[i];
    if (marked && !field.multiple) break;
    option.selected =
        indexes.count(i) != 0 || (!option.value.empty() && values.count(option.value) != 0);
    marked |= option.selected;
  }
  if (!marked && !field.multiple && !field.options.empty()) field.options[0].selected = true;
}

void FieldCollector::BeginGroup(const Token &token) {
  if (!InSelect()) return;
  EndOption();
  Field &field = parts_.fields[select_];
  field.groups.push_back(Collapsed(values_.Text(token, "title")));
  groups_.push_back(field.groups.size() - 1);
}

void FieldCollector::EndGroup() {
  EndOption();
  if (!groups_.empty()) groups_.pop_back();
}

void FieldCollector::BeginOption(const Token &token) {
  if (!InSelect()) return;
  EndOption();
  std::vector<FieldOption> &options = parts_.fields[select_].options;
  option_ = &options.emplace_back();
  option_->value = values_.Text(token, "value");
  optionTitle_ = Collapsed(values_.Text(token, "title"));
  if (!groups_.empty()) option_->group = groups_.back();
}

void FieldCollector::AddOptionText(std::string_view text) {
  AppendClean(option_->label, text);
}

void FieldCollector::SetPick(std::size_t action) {
  option_->action = action;
}

void FieldCollector::EndOption() {
  if (option_ == nullptr) return;
  option_->label = Collapsed(option_->label);
  if (option_->label.empty()) option_->label = optionTitle_;
  if (option_->label.empty()) option_->label = option_->value;
  option_ = nullptr;
}

std::string FieldCollector::BeginFieldset(const Token &token) {
  parts_.fieldsets.push_back(Collapsed(values_.Text(token, "title")));
  fieldsets_.push_back(parts_.fieldsets.size() - 1);
  return parts_.fieldsets.back();
}

void FieldCollector::EndFieldset() {
  if (!fieldsets_.empty()) fieldsets_.pop_back();
}

void FieldCollector::EndCard() {
  fieldsets_.clear();
  groups_.clear();
}

}  // namespace vs_wml
