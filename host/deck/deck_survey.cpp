// SPDX-License-Identifier: MIT
#include "host/deck/deck_survey.h"

#include <algorithm>
#include <utility>

#include "host/deck/markup_reader.h"
#include "host/deck/references.h"
#include "host/text/ascii.h"
#include "vs_wml.h"

namespace vs_wml {
namespace {

class Surveyor {
 public:
  explicit Surveyor(Variables &variables) : variables_(variables) {}

  void Take(const Token &token) {
    if (token.kind == TokenKind::kStartTag) {
      Start(token);
    } else if (token.kind == TokenKind::kEndTag && EqualIgnoringCase(token.name, "table")) {
      if (tableDepth_ != 0) --tableDepth_;
    }
  }

  bool hasCards = false;
  std::vector<std::uint16_t> tableColumns;

 private:
  void Start(const Token &token) {
    const auto is = [&](std::string_view name) { return EqualIgnoringCase(token.name, name); };
    if (is("card")) {
      hasCards = true;
      tableDepth_ = 0;
    } else if (is("setvar") || is("input")) {
      NoteValue(token);
    } else if (is("table") && !token.empty) {
      if (tableDepth_++ != 0) return;
      tableColumns.push_back(0);
      cells_ = 0;
    } else if (is("tr")) {
      if (tableDepth_ == 1) cells_ = 0;
    } else if ((is("td") || is("th")) && tableDepth_ == 1) {
      cells_ = std::min<std::uint16_t>(static_cast<std::uint16_t>(cells_ + 1), VW_MAX_COLUMNS);
      tableColumns.back() = std::max(tableColumns.back(), cells_);
    }
  }

  void NoteValue(const Token &token) {
    const std::string_view *name = token.Find("name");
    const std::string_view *value = token.Find("value");
    if (name == nullptr || value == nullptr) return;
    // Values in values: what is known so far. The length of a value is bounded, so
    // that values made of values do not grow without end.
    std::size_t budget = Variables::kLongestValue;
    variables_.Suggest(
        DecodeAttribute(*name),
        variables_.Substitute(DecodeAttribute(*value), Conversion::kVerbatim, budget));
  }

  Variables &variables_;
  std::uint32_t tableDepth_ = 0;
  std::uint16_t cells_ = 0;
};

}  // namespace

void DeckSurvey::Read() {
  if (read_) return;
  read_ = true;
  MarkupReader reader(document_, nullptr);
  Surveyor surveyor(variables_);
  for (Token token; reader.Next(token);) surveyor.Take(token);
  hasCards_ = surveyor.hasCards;
  tableColumns_ = std::move(surveyor.tableColumns);
}

bool DeckSurvey::HasCards() {
  Read();
  return hasCards_;
}

std::size_t DeckSurvey::TableColumns(std::size_t table) {
  Read();
  return table < tableColumns_.size() ? tableColumns_[table] : 0;
}

const Variables &DeckSurvey::KnownVariables() {
  Read();
  return variables_;
}

}  // namespace vs_wml
