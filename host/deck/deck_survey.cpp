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

constexpr std::size_t kBudgetFactor = 4;

class Surveyor {
 public:
  Surveyor(Variables &variables, std::size_t budget) : variables_(variables), budget_(budget) {}

  void Take(const Token &token) {
    if (token.kind == TokenKind::kStartTag) {
      Start(token);
      if (token.empty && !EqualIgnoringCase(token.name, "table")) End(token);
    } else if (token.kind == TokenKind::kEndTag) {
      End(token);
    }
  }

  bool HasCards() const { return card_ != 0; }
  std::vector<std::uint16_t> tableColumns;

 private:
  void Start(const Token &token) {
    const auto is = [&](std::string_view name) { return EqualIgnoringCase(token.name, name); };
    if (is("card")) {
      ++card_;
      tableDepth_ = 0;
      onEntry_ = false;
    } else if (is("onevent")) {
      const std::string_view *type = token.Find("type");
      inEntryEvent_ = type != nullptr && EqualIgnoringCase(Trim(*type), "onenterforward");
      onEntry_ = false;
    } else if (is("refresh")) {
      onEntry_ = std::exchange(inEntryEvent_, false);
    } else if (is("setvar") || is("var")) {
      NoteValue(token, onEntry_ ? card_ : 0);
    } else if (is("input")) {
      NoteValue(token, card_);
    } else if (is("timer") || is("select")) {
      Unsettle(token.Find("name", "key"));
      Unsettle(token.Find("iname", "ikey"));
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

  void End(const Token &token) {
    const auto is = [&](std::string_view name) { return EqualIgnoringCase(token.name, name); };
    if (is("table")) {
      if (tableDepth_ != 0) --tableDepth_;
    } else if (is("onevent")) {
      inEntryEvent_ = false;
      onEntry_ = false;
    } else if (is("refresh")) {
      onEntry_ = false;
    }
  }

  void NoteValue(const Token &token, std::size_t card) {
    const std::string_view *name = token.Find("name", "key");
    const std::string_view *value = token.Find("value", "default");
    if (name == nullptr || value == nullptr) return;
    // Values in values: what is known so far. The length of a value is bounded, so
    // that values made of values do not grow without end.
    std::size_t budget = std::min(budget_, Variables::kLongestValue);
    budget_ -= budget;
    const auto [shown, resolved] =
        variables_.Substitute(DecodeAttribute(*value), Conversion::kVerbatim, card, budget);
    budget_ += budget;
    variables_.Suggest(DecodeAttribute(*name), shown, resolved ? card : 0);
  }

  void Unsettle(const std::string_view *name) {
    if (name != nullptr) variables_.Unsettle(DecodeAttribute(*name));
  }

  Variables &variables_;
  std::size_t budget_;         // what values in values may still add
  std::size_t card_ = 0;       // cards so far
  bool inEntryEvent_ = false;  // in an event of entering the card, before its first task
  bool onEntry_ = false;       // in the `refresh` of such an event
  std::uint32_t tableDepth_ = 0;
  std::uint16_t cells_ = 0;
};

}  // namespace

void DeckSurvey::Read() {
  if (read_) return;
  read_ = true;
  MarkupReader reader(document_, nullptr);
  Surveyor surveyor(variables_, kBudgetFactor * document_.size());
  for (Token token; reader.Next(token);) surveyor.Take(token);
  hasCards_ = surveyor.HasCards();
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
  if (!onlyGiven_) Read();
  return variables_;
}

}  // namespace vs_wml
