// SPDX-License-Identifier: MIT
#include "agent/card_view.h"

#include "agent/tasks.h"
#include "host/reader.h"
#include "host/text/ascii.h"

namespace vs_wml {
namespace {

// Collects the text of a card, and the labels of its links.
class ViewSink : public BlockSink {
 public:
  ViewSink(CardView &view, const LoadedDeck &deck, std::size_t card)
      : view_(view), deck_(deck), firstAction_(deck.Card(card).firstPart) {}

  void BeginDocument(const DeckInfo & /*deck*/) override {}
  void BeginCard(const Card & /*card*/) override {}
  void TakeParagraph(const Paragraph &paragraph) override {
    view_.text += ' ';
    Take(paragraph.content);
  }
  void TakeTable(const Table &table) override {
    for (const Row &row : table.rows) {
      for (const Cell &cell : table.CellsOf(row)) {
        view_.text += ' ';
        Take(table.ContentOf(cell));
      }
    }
  }
  void EndCard() override {}
  void EndDocument(const DeckInfo & /*deck*/) override {}

 private:
  void Take(const Content &content) {
    for (const Run &run : content.runs) TakeRun(content, run);
  }

  void TakeRun(const Content &content, const Run &run) {
    const Link *link = run.link != kNone ? &content.links[run.link] : nullptr;
    if (link != nullptr && link->field != nullptr) return;
    const std::string_view text = run.image != kNone
                                      ? std::string_view(content.images[run.image].alternative)
                                      : content.TextOf(run);
    view_.text += text;
    if (link != nullptr && link->action != nullptr) LinkOf(*link).label += text;
  }

  // A link that goes on over several blocks is one.
  CardLink &LinkOf(const Link &link) {
    if (view_.links.empty() || link.actionIndex != last_) {
      if (!view_.links.empty()) view_.links.back().label += ' ';
      last_ = link.actionIndex;
      view_.links.push_back({{}, &deck_.Parts().actions[firstAction_ + link.actionIndex]});
    }
    return view_.links.back();
  }

  CardView &view_;
  const LoadedDeck &deck_;
  std::size_t firstAction_;
  std::size_t last_ = kNoIndex;
};

CardKey KeyOf(const Action &action, const ContextVariables &variables) {
  const ActionDetails &details = DetailsOf(action);
  CardKey key;
  key.type = details.type;
  key.name = details.name.empty() ? details.type : details.name;
  key.label = Collapsed(EvaluateShort(details.label, variables));
  if (key.label.empty()) key.label = key.name;
  key.action = &action;
  return key;
}

CardField FieldOf(std::size_t index, const Field &field, const BrowserState &state) {
  const LoadedDeck &deck = *state.history.back().deck;
  CardField shown;
  shown.field = &field;
  shown.variable = field.Variable();
  shown.title = EvaluateShort(field.title, state.variables);
  if (field.kind == FieldKind::kInput) {
    const auto found = state.variables.find(field.name);
    if (found != state.variables.end()) shown.value = found->second;
    return shown;
  }
  if (index < state.choices.size()) shown.choices = state.choices[index];
  for (PartIndex option = 0; option < field.optionCount; ++option) {
    const FieldOption &offered = deck.Parts().options[field.firstOption + option];
    std::string label = Collapsed(EvaluateShort(offered.label, state.variables));
    if (label.empty()) label = Collapsed(EvaluateShort(offered.title, state.variables));
    shown.options.push_back(std::move(label));
  }
  return shown;
}

}  // namespace

void ShowCard(const BrowserState &state, BlockSink &sink) {
  const HistoryEntry &shown = state.history.back();
  ReadDeck(shown.deck->Show(shown.card, state.variables), sink);
}

CardView MakeCardView(const BrowserState &state) {
  const HistoryEntry &shown = state.history.back();
  const LoadedDeck &deck = *shown.deck;
  CardView view;
  view.url = deck.Url() + (shown.fragment.empty() ? "" : '#' + shown.fragment);
  view.id = deck.Card(shown.card).id;
  view.title = Collapsed(EvaluateShort(deck.Card(shown.card).title, state.variables));
  ViewSink sink(view, deck, shown.card);
  ShowCard(state, sink);
  view.text = Collapsed(view.text);
  for (CardLink &link : view.links) link.label = Collapsed(link.label);
  for (const Action *key : deck.KeysOf(shown.card)) {
    view.keys.push_back(KeyOf(*key, state.variables));
  }
  const DeckFields fields = deck.FieldsOf(shown.card);
  for (std::size_t index = 0; index < fields.size(); ++index) {
    view.fields.push_back(FieldOf(index, fields[index], state));
  }
  return view;
}

}  // namespace vs_wml
