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

/// Reads attribute values with their references and variables replaced. What is written
/// more than once (values of variables, a template's actions) is paid from a budget, so
/// that a small document does not grow into a big one.
class ValueReader {
 public:
  ValueReader(DeckSurvey &survey, std::size_t budget) : survey_(survey), budget_(budget) {}

  /// The value of an attribute, empty when it is missing.
  std::string Text(const Token &token, std::string_view attribute);
  /// As Text; variables in it are percent-encoded unless they say otherwise.
  std::string Target(const Token &token, std::string_view attribute);
  /// A number, 0 when the value is missing or none.
  std::uint32_t Number(const Token &token, std::string_view attribute);
  /// "true" or "false"; `missing` for everything else.
  bool Flag(const Token &token, std::string_view attribute, bool missing);
  /// `name` and `value`, with the variable that the value names.
  NameValue Pair(const Token &token);
  /// ` attribute="value"` when the value is one word of letters, digits, '.' and '%',
  /// which the filter can take as it is; else empty.
  static std::string Word(const Token &token, std::string_view attribute);

  /// What a reference in text shows; kVerbatim is usual.
  std::string Show(const VariableReference &reference);
  /// Takes `size` from the budget; false when there is not so much left.
  bool Spend(std::size_t size);

 private:
  std::string Substituted(std::string text, Conversion usual);

  DeckSurvey &survey_;
  std::size_t budget_;
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_DECK_VALUE_READER_H
