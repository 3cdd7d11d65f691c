// SPDX-License-Identifier: MIT
#include "host/deck/field_collector.h"

#include <charconv>
#include <memory>
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

PartIndex FieldCollector::Add(Field field) {
  if (!fieldsets_.empty()) field.fieldset = fieldsets_.back();
  parts_.fields.push_back(std::move(field));
  return static_cast<PartIndex>(parts_.fields.size() - 1);
}

FieldDetails &FieldCollector::DetailsOf(Field &field) {
  if (!field.details) field.details = std::make_unique<FieldDetails>();
  return *field.details;
}

void FieldCollector::ReadFocus(Field &field, const Token &token) {
  if (const auto *key = token.Find("accesskey"); key != nullptr) {
    DetailsOf(field).accessKey = values_.Plain(key);
  }
  if (const auto *index = token.Find("tabindex"); index != nullptr) {
    DetailsOf(field).tabIndex = values_.Plain(index);
  }
}

PartIndex FieldCollector::AddInput(const Token &token) {
  Field field;
  if (!token.attributes.empty()) {
    field.name = values_.Plain(token.Find("name", "key"));
    field.title = values_.Line(token.Find("title"));
    field.type = values_.Lowered(token.Find("type"));
    if (const auto *format = token.Find("format"); format != nullptr) {
      DetailsOf(field).format = values_.Plain(format);
    }
    field.value = values_.Text(token.Find("value", "default"));
    field.size = ValueReader::Number(token.Find("size"));
    field.length = ValueReader::Number(token.Find("maxlength"));
    field.emptyAllowed = ValueReader::Flag(token.Find("emptyok"), field.Format().empty());
    ReadFocus(field, token);
  }
  return Add(std::move(field));
}

void FieldCollector::BeginSelect(const Token &token) {
  Field field;
  field.kind = FieldKind::kSelect;
  field.name = values_.Plain(token.Find("name", "key"));
  field.title = values_.Line(token.Find("title"));
  field.value = values_.Text(token.Find("value", "default"));
  field.multiple = ValueReader::Flag(token.Find("multiple"), false);
  field.firstOption = static_cast<PartIndex>(parts_.options.size());
  if (const auto *name = token.Find("iname", "ikey"); name != nullptr) {
    DetailsOf(field).indexName = values_.Plain(name);
  }
  if (const auto *value = token.Find("ivalue", "idefault"); value != nullptr) {
    DetailsOf(field).indexValue = values_.Text(value);
  }
  ReadFocus(field, token);
  groups_.clear();
  select_ = Add(std::move(field));
}

PartIndex FieldCollector::EndSelect() {
  EndOption();
  Field &field = parts_.fields[select_];
  field.optionCount = static_cast<PartIndex>(parts_.options.size()) - field.firstOption;
  MarkDefault(field);
  return std::exchange(select_, kNoIndex);
}

// Positions count more than values; a list for one choice starts with the first.
void FieldCollector::MarkDefault(const Field &field) {
  std::set<std::string_view> values;
  std::set<std::size_t> indexes;
  if (field.details) {
    ForEachPart(field.details->indexValue.shown, [&](std::string_view part) {
      std::size_t index = 0;
      std::from_chars(part.data(), part.data() + part.size(), index);
      if (index >= 1 && index <= field.optionCount) indexes.insert(index - 1);
    });
  }
  if (indexes.empty()) ForEachPart(field.value.shown, [&](auto part) { values.insert(part); });
  bool marked = false;
  for (PartIndex i = 0; i < field.optionCount; ++i) {
    FieldOption &option = parts_.options[field.firstOption + i];
    if (marked && !field.multiple) break;
    option.selected =
        indexes.count(i) != 0 || (!option.value.IsEmpty() && values.count(option.value.shown) != 0);
    marked |= option.selected;
  }
  if (!marked && !field.multiple && field.optionCount != 0) {
    parts_.options[field.firstOption].selected = true;
  }
}

PartIndex FieldCollector::AddTitled(PartList<Group> &groups, std::vector<PartIndex> &open,
                                    const Token &token) {
  const PartIndex outer = open.empty() ? kNoIndex : open.back();
  groups.push_back({values_.Line(token.Find("title")), outer});
  open.push_back(static_cast<PartIndex>(groups.size() - 1));
  return open.back();
}

void FieldCollector::BeginGroup(const Token &token) {
  EndOption();
  AddTitled(parts_.groups, groups_, token);
}

void FieldCollector::EndGroup() {
  EndOption();
  if (!groups_.empty()) groups_.pop_back();
}

void FieldCollector::BeginOption(const Token &token) {
  EndOption();
  option_ = &parts_.options.emplace_back();
  option_->value = values_.Text(token.Find("value"));
  option_->title = values_.Line(token.Find("title"));
  if (!groups_.empty()) option_->group = groups_.back();
}

void FieldCollector::AddOptionText(std::string_view text) {
  std::size_t dollar = 0;
  while ((dollar = text.find('$')) != std::string_view::npos) {
    AppendClean(optionText_, text.substr(0, dollar + 1));
    optionText_ += '$';
    text.remove_prefix(dollar + 1);
  }
  AppendClean(optionText_, text);
}

void FieldCollector::EndOption() {
  if (option_ == nullptr) return;
  option_->label = values_.Collected(optionText_);
  optionText_.clear();
  option_ = nullptr;
}

std::string_view FieldCollector::BeginFieldset(const Token &token) {
  return parts_.fieldsets[AddTitled(parts_.fieldsets, fieldsets_, token)].title.shown;
}

void FieldCollector::EndFieldset() {
  if (!fieldsets_.empty()) fieldsets_.pop_back();
}

void FieldCollector::EndCard() {
  fieldsets_.clear();
  groups_.clear();
}

}  // namespace vs_wml
