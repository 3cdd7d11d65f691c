/// \file
/// What lies ahead in a deck while it is adapted.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_DECK_DECK_SURVEY_H
#define VS_WML_HOST_DECK_DECK_SURVEY_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "host/deck/variables.h"

namespace vs_wml {

/// Reads a document through when something is asked for first, and not at all when
/// nothing is.
class DeckSurvey {
 public:
  /// `document` has to outlive the survey; `given` are the user's values of variables. With
  /// `onlyGiven`, all others are empty, whatever the document says.
  DeckSurvey(std::string_view document, const std::map<std::string, std::string> &given,
             bool onlyGiven = false)
      : document_(document), variables_(given, onlyGiven), onlyGiven_(onlyGiven) {}

  bool HasCards();
  /// The most cells that a row of a table has, 0 when there is no such table; those that
  /// are not nested are counted from 0.
  std::size_t TableColumns(std::size_t table);
  /// With the values that the document gives (`setvar`, the default of an `input`).
  const Variables &KnownVariables();

 private:
  void Read();

  std::string_view document_;
  Variables variables_;
  bool onlyGiven_;
  bool read_ = false;
  bool hasCards_ = false;
  std::vector<std::uint16_t> tableColumns_;
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_DECK_DECK_SURVEY_H
