/// \file
/// Values of attributes, ready for use.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_DECK_VALUE_READER_H
#define VS_WML_HOST_DECK_VALUE_READER_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "host/deck/deck_parts.h"
#include "host/deck/deck_survey.h"
#include "host/deck/markup_reader.h"
#include "host/deck/variables.h"

namespace vs_wml {

/// Reads values of attributes with their references and variables replaced. A raw value is
/// null where there is none. What is written more than once (values of variables, a
/// template's actions) is paid from a budget, so that a small document does not grow into a
/// big one.
class ValueReader {
 public:
  /// Values are kept in `texts`.
  ValueReader(DeckSurvey &survey, TextArena &texts, std::size_t budget)
      : survey_(survey), texts_(texts), budget_(budget) {}

  /// What follows stands in the next card.
  void EnterCard() { ++card_; }

  /// A value that has no variables.
  std::string_view Plain(const std::string_view *raw);
  std::string_view Lowered(const std::string_view *raw);
  /// A value that may have variables.
  Value Text(const std::string_view *raw);
  /// As Text, trimmed, each run of white space in it one space.
  Value Line(const std::string_view *raw);
  /// An address: variables in it are percent-encoded unless they say otherwise.
  Value Target(const std::string_view *raw);
  /// A text that was collected, with its references to variables.
  Value Collected(std::string_view written);
  /// A number, 0 when the value is missing or none.
  static std::uint32_t Number(const std::string_view *raw);
  /// "true" or "false"; `missing` for everything else.
  static bool Flag(const std::string_view *raw, bool missing);
  /// ` name="value"` when the value is one word of letters, digits, '.' and '%', which the
  /// filter can take as it is; else empty.
  static std::string Word(const Token &token, std::string_view name);

  /// What a reference in text shows; kVerbatim is usual.
  std::string Show(const VariableReference &reference);
  /// Takes `size` from the budget; false when there is not so much left.
  bool Spend(std::size_t size);

 private:
  Value Make(std::string_view written, Conversion usual);

  DeckSurvey &survey_;
  TextArena &texts_;
  std::size_t budget_;
  std::size_t card_ = 0;
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_DECK_VALUE_READER_H
