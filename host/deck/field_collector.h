/// \file
/// Fields of forms, collected while a deck is read.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_DECK_FIELD_COLLECTOR_H
#define VS_WML_HOST_DECK_FIELD_COLLECTOR_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "host/deck/deck_parts.h"
#include "host/deck/markup_reader.h"
#include "host/deck/value_reader.h"

namespace vs_wml {

class FieldCollector {
 public:
  FieldCollector(DeckParts &parts, ValueReader &values) : parts_(parts), values_(values) {}

  /// `input`; returns the index of the field.
  PartIndex AddInput(const Token &token);

  void BeginSelect(const Token &token);
  bool InSelect() const { return select_ != kNoIndex; }
  /// Ends the open list and marks its default; returns the index of the field.
  PartIndex EndSelect();

  /// Groups hold the options that follow, until they end.
  void BeginGroup(const Token &token);
  void EndGroup();

  void BeginOption(const Token &token);
  bool InOption() const { return option_ != nullptr; }
  /// Text of the open option.
  void AddOptionText(std::string_view text);
  /// A reference to a variable in it.
  void AddOptionVariable(std::string_view written) { optionText_ += written; }
  /// The action of the open option.
  void SetPick(PartIndex action) { option_->action = action; }
  void EndOption();

  /// `fieldset`; returns its title, empty when it has none.
  std::string_view BeginFieldset(const Token &token);
  void EndFieldset();
  void EndCard();

 private:
  void MarkDefault(const Field &field);
  PartIndex Add(Field field);
  static FieldDetails &DetailsOf(Field &field);
  void ReadFocus(Field &field, const Token &token);
  PartIndex AddTitled(PartList<Group> &groups, std::vector<PartIndex> &open, const Token &token);

  DeckParts &parts_;
  ValueReader &values_;
  PartIndex select_ = kNoIndex;    // the open list
  FieldOption *option_ = nullptr;  // the open option, the last one of the open list
  std::string optionText_;         // of the open option, dollars doubled
  std::vector<PartIndex> groups_;
  std::vector<PartIndex> fieldsets_;
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_DECK_FIELD_COLLECTOR_H
