/// \file
/// What has to be known of a deck before it is adapted.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_ADAPTER_DECK_SURVEY_H
#define VS_WML_HOST_ADAPTER_DECK_SURVEY_H

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "host/adapter/variables.h"

namespace vs_wml {

struct DeckSurvey {
  bool hasCards = false;
  /// For each table that is not nested, in order: the most cells that a row has.
  std::vector<std::uint16_t> tableColumns;
};

/// Reads a document through once. The values that it gives to variables (`setvar`, the
/// default of an `input`) are noted in `variables`.
DeckSurvey SurveyDeck(std::string_view document, Variables &variables);

}  // namespace vs_wml

#endif  // VS_WML_HOST_ADAPTER_DECK_SURVEY_H
