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
  std::size_t AddInput(const Token &token);

  void BeginSelect(const Token &token);
  bool InSelect() const { return select_ != kNoIndex; }
  /// Ends the open list and marks its default; returns the index of the field.
  std::size_t EndSelect();

  /// Groups hold the options that follow, until they end.
  void BeginGroup(const Token &token);
  void EndGroup();

  void BeginOption(const Token &token);
  bool InOption() const { return option_ != nullptr; }
  /// Text of the open option.
  void AddOptionText(std::string_view text);
  /// The action of the open option.
  void SetPick(std::size_t action);
  void EndOption();

  /// `fieldset`; returns its title, empty when it has none.
  std::string BeginFieldset(const Token &token);
  void EndFieldset();
  void EndCard();

 private:
  void MarkDefault(Field &field) const;
  std::size_t Add(Field field);

  DeckParts &parts_;
  ValueReader &values_;
  std::size_t select_ = kNoIndex;  // the open list
  FieldOption *option_ = nullptr;  // the open option, the last one of the open list
  std::string defaultValues_;      // of the open list: default values, separated by ';'
  std::string defaultIndexes_;     // of the open list: default positions from 1 on
  std::string optionTitle_;        // of the open option
  std::vector<std::size_t> groups_;
  std::vector<std::size_t> fieldsets_;
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_DECK_FIELD_COLLECTOR_H
