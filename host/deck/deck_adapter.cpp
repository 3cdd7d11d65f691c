// SPDX-License-Identifier: MIT
#include "host/deck/deck_adapter.h"

#include <algorithm>
#include <array>
#include <map>
#include <utility>

#include "host/deck/action_collector.h"
#include "host/deck/deck_survey.h"
#include "host/deck/field_collector.h"
#include "host/deck/markup_reader.h"
#include "host/deck/references.h"
#include "host/deck/value_reader.h"
#include "host/deck/variables.h"
#include "host/platform/charset.h"
#include "host/serve/served_writer.h"
#include "host/text/ascii.h"
#include "host/text/plain_text.h"
#include "host/text/utf8.h"
#include "host/text/warnings.h"
#include "vs_wml.h"

namespace vs_wml {
namespace {

// What variables and templates may add to a document.
constexpr std::size_t kBudgetFactor = 4;
constexpr std::size_t kBudgetBase = 1U << 16U;

// An action that leads nowhere is nothing to show.
bool IsShown(const Action &action) {
  const TaskKind kind = action.task.kind;
  if (kind == TaskKind::kGo || kind == TaskKind::kPrevious) return true;
  return kind == TaskKind::kRefresh && action.kind != ActionKind::kEvent;
}

class DeckAdapter {
 public:
  DeckAdapter(std::string_view document, const AdapterOptions &options)
      : document_(document),
        warnings_(document),
        survey_(document, options.variables),
        values_(survey_, kBudgetFactor * document.size() + kBudgetBase),
        writer_(document.size() + document.size() / 4),
        actions_(adapted_.parts, values_, warnings_),
        fields_(adapted_.parts, values_) {}

  AdaptedDeck Run();

 private:
  using Handler = void (DeckAdapter::*)(const Token &token);
  enum class Place : std::uint8_t {
    kDeck,  // anywhere
    kCard,  // in a card
    kText   // in a card, but not in an option
  };
  struct Element {
    std::string_view name;
    Place place;
    Handler begin;  // null: nothing to do
    Handler end;    // null: nothing to do
    std::uint64_t key = NameKey(name);
  };
  static const Element kElements[];
  static constexpr std::size_t kIndexBits = 7;
  static constexpr std::size_t kIndexSize = std::size_t{1} << kIndexBits;
  static const std::array<std::uint8_t, kIndexSize> kElementIndex;

  static constexpr std::size_t SlotOf(std::uint64_t nameKey);
  static const Element *FindElement(const Token &tag);
  void Take(const Token &token);
  void Start(const Element &element, const Token &token);
  void End(const Element &element, const Token &token);

  // Text.
  [[gnu::noinline]] bool HasCardFor(const Token &token);
  void Characters(const Token &token);
  void Reference(std::string_view text, std::size_t &at);
  void Variable(std::string_view text, std::size_t &at);
  void Write(std::string_view text);
  void WritePlain(std::string_view text);
  void WriteCharacter(char32_t character);

  // The deck and its cards.
  bool EnsureCard() { return inCard_ || OpenOnlyCard(); }
  bool OpenOnlyCard();
  void OpenCard(DeckCard card, std::size_t offset);
  void CloseCard();
  void ConnectFields(const DeckCard &card);
  void ShowActions(const DeckCard &card);
  void BeginDeck(const Token &) { inDeck_ = true; }
  void EndDeck(const Token &) { CloseCard(); }
  void BeginHead(const Token &) { inHead_ = !inCard_; }
  void EndHead(const Token &) { inHead_ = false; }
  void BeginTemplate(const Token &token);
  void EndTemplate(const Token &);
  void BeginCard(const Token &token);
  void EndCard(const Token &) { CloseCard(); }
  void TakeAccess(const Token &token);
  void TakeMeta(const Token &token);

  // Text elements.
  template <Style style>
  void BeginStyle(const Token &) {
    writer_.OpenStyle(style);
  }
  template <Style style>
  void EndStyle(const Token &) {
    writer_.CloseStyle(style);
  }
  void BeginParagraph(const Token &token);
  void EndParagraph(const Token &) { writer_.EndParagraph(); }
  void LineBreak(const Token &) { writer_.LineBreak(); }
  void TakeImage(const Token &token);
  void BeginTable(const Token &token);
  void EndTable(const Token &);
  void BeginRow(const Token &);
  void EndRow(const Token &);
  void BeginCell(const Token &);
  void EndCell(const Token &);

  // Links, actions and their tasks.
  void BeginLink(const Token &token);
  void BeginAnchor(const Token &token);
  void EndLink(const Token &);
  void EndAnchor(const Token &token);
  void BeginDo(const Token &token);
  void EndDo(const Token &) { actions_.End(TaskOwner::kDo); }
  void BeginEvent(const Token &token);
  void EndEvent(const Token &) { actions_.End(TaskOwner::kEvent); }
  template <TaskKind kind>
  void BeginTask(const Token &token) {
    actions_.BeginTask(kind, token);
  }
  void EndTask(const Token &) { actions_.EndTask(); }
  void TakePostField(const Token &token) { actions_.AddPostField(token); }
  void TakeVariable(const Token &token) { actions_.AddVariable(token); }
  void TakeTimer(const Token &token) { actions_.SetTimer(token); }

  // Forms.
  void TakeInput(const Token &token);
  void BeginSelect(const Token &token);
  void EndSelect(const Token &);
  void BeginGroup(const Token &token) { fields_.BeginGroup(token); }
  void EndGroup(const Token &) { fields_.EndGroup(); }
  void BeginOption(const Token &token);
  void EndOption(const Token &) { fields_.EndOption(); }
  void BeginFieldset(const Token &token);
  void EndFieldset(const Token &) { fields_.EndFieldset(); }
  void ShowField(std::size_t index);

  std::string_view document_;
  Warnings warnings_;
  DeckSurvey survey_;
  AdaptedDeck adapted_;
  ValueReader values_;
  ServedWriter writer_;
  ActionCollector actions_;
  FieldCollector fields_;

  bool inDeck_ = false;
  bool inHead_ = false;
  bool inTemplate_ = false;
  bool inCard_ = false;
  std::size_t cardAction_ = 0;      // the first action of the card
  std::string align_;               // of the paragraph in force, an attribute value
  std::uint32_t tableDepth_ = 0;    // 1: in a table; more: in tables in its cells
  std::size_t table_ = 0;           // tables so far
  std::vector<std::size_t> links_;  // actions of the open links, kNoIndex: one without target
};

constexpr DeckAdapter::Element DeckAdapter::kElements[] = {
    {"a", Place::kText, &DeckAdapter::BeginLink, &DeckAdapter::EndLink},
    {"access", Place::kDeck, &DeckAdapter::TakeAccess, nullptr},
    {"anchor", Place::kText, &DeckAdapter::BeginAnchor, &DeckAdapter::EndAnchor},
    {"b", Place::kText, &DeckAdapter::BeginStyle<Style::kB>, &DeckAdapter::EndStyle<Style::kB>},
    {"big", Place::kText, &DeckAdapter::BeginStyle<Style::kBig>,
     &DeckAdapter::EndStyle<Style::kBig>},
    {"br", Place::kText, &DeckAdapter::LineBreak, nullptr},
    {"card", Place::kDeck, &DeckAdapter::BeginCard, &DeckAdapter::EndCard},
    {"do", Place::kDeck, &DeckAdapter::BeginDo, &DeckAdapter::EndDo},
    {"em", Place::kText, &DeckAdapter::BeginStyle<Style::kEm>, &DeckAdapter::EndStyle<Style::kEm>},
    {"fieldset", Place::kText, &DeckAdapter::BeginFieldset, &DeckAdapter::EndFieldset},
    {"go", Place::kDeck, &DeckAdapter::BeginTask<TaskKind::kGo>, &DeckAdapter::EndTask},
    {"head", Place::kDeck, &DeckAdapter::BeginHead, &DeckAdapter::EndHead},
    {"i", Place::kText, &DeckAdapter::BeginStyle<Style::kI>, &DeckAdapter::EndStyle<Style::kI>},
    {"img", Place::kCard, &DeckAdapter::TakeImage, nullptr},
    {"input", Place::kCard, &DeckAdapter::TakeInput, nullptr},
    {"meta", Place::kDeck, &DeckAdapter::TakeMeta, nullptr},
    {"noop", Place::kDeck, &DeckAdapter::BeginTask<TaskKind::kNothing>, &DeckAdapter::EndTask},
    {"onevent", Place::kDeck, &DeckAdapter::BeginEvent, &DeckAdapter::EndEvent},
    {"optgroup", Place::kCard, &DeckAdapter::BeginGroup, &DeckAdapter::EndGroup},
    {"option", Place::kCard, &DeckAdapter::BeginOption, &DeckAdapter::EndOption},
    {"p", Place::kText, &DeckAdapter::BeginParagraph, &DeckAdapter::EndParagraph},
    {"postfield", Place::kDeck, &DeckAdapter::TakePostField, nullptr},
    {"pre", Place::kText, &DeckAdapter::BeginStyle<Style::kPre>,
     &DeckAdapter::EndStyle<Style::kPre>},
    {"prev", Place::kDeck, &DeckAdapter::BeginTask<TaskKind::kPrevious>, &DeckAdapter::EndTask},
    {"refresh", Place::kDeck, &DeckAdapter::BeginTask<TaskKind::kRefresh>, &DeckAdapter::EndTask},
    {"select", Place::kCard, &DeckAdapter::BeginSelect, &DeckAdapter::EndSelect},
    {"setvar", Place::kDeck, &DeckAdapter::TakeVariable, nullptr},
    {"small", Place::kText, &DeckAdapter::BeginStyle<Style::kSmall>,
     &DeckAdapter::EndStyle<Style::kSmall>},
    {"strong", Place::kText, &DeckAdapter::BeginStyle<Style::kStrong>,
     &DeckAdapter::EndStyle<Style::kStrong>},
    {"table", Place::kText, &DeckAdapter::BeginTable, &DeckAdapter::EndTable},
    {"td", Place::kText, &DeckAdapter::BeginCell, &DeckAdapter::EndCell},
    {"template", Place::kDeck, &DeckAdapter::BeginTemplate, &DeckAdapter::EndTemplate},
    {"th", Place::kText, &DeckAdapter::BeginCell, &DeckAdapter::EndCell},
    {"timer", Place::kDeck, &DeckAdapter::TakeTimer, nullptr},
    {"tr", Place::kText, &DeckAdapter::BeginRow, &DeckAdapter::EndRow},
    {"u", Place::kText, &DeckAdapter::BeginStyle<Style::kU>, &DeckAdapter::EndStyle<Style::kU>},
    {"wml", Place::kDeck, &DeckAdapter::BeginDeck, &DeckAdapter::EndDeck},
};

// Where the index has the element of a name; the multiplier gives each a slot of its own.
constexpr std::size_t DeckAdapter::SlotOf(std::uint64_t nameKey) {
  constexpr std::uint64_t kMultiplier = 0xDE95A88E1B8DEAC9U;
  return (nameKey * kMultiplier) >> (64U - kIndexBits);
}

// Positions in kElements from 1 on, 0 for a free slot.
constexpr std::array<std::uint8_t, DeckAdapter::kIndexSize> DeckAdapter::kElementIndex = [] {
  std::array<std::uint8_t, kIndexSize> index{};
  for (std::size_t element = 0; element < std::size(kElements); ++element) {
    std::uint8_t &entry = index[SlotOf(kElements[element].key)];
    if (entry != 0) throw "two elements in one slot";
    entry = static_cast<std::uint8_t>(element + 1);
  }
  return index;
}();

AdaptedDeck DeckAdapter::Run() {
  writer_.BeginDeck();
  MarkupReader reader(document_, &warnings_);
  for (Token token; reader.Next(token);) Take(token);
  CloseCard();
  writer_.EndDeck();
  adapted_.served = std::move(writer_).Take();
  adapted_.warnings = warnings_.Take();
  return std::move(adapted_);
}

inline const DeckAdapter::Element *DeckAdapter::FindElement(const Token &tag) {
  const std::uint8_t entry = kElementIndex[SlotOf(tag.nameKey)];
  if (entry == 0) return nullptr;
  const Element &element = kElements[entry - 1];
  if (element.key != tag.nameKey) return nullptr;
  const bool whole = tag.name.size() < sizeof element.key;
  return whole || IsLowered(tag.name, element.name) ? &element : nullptr;
}

inline void DeckAdapter::Take(const Token &token) {
  if (token.kind == TokenKind::kText) {
    Characters(token);
  } else if (token.kind == TokenKind::kLiteral) {
    if (!IsBlank(token.text) && HasCardFor(token)) Write(token.text);
  } else if (const Element *element = FindElement(token)) {
    token.kind == TokenKind::kStartTag ? Start(*element, token) : End(*element, token);
  }
}

void DeckAdapter::Start(const Element &element, const Token &token) {
  if (element.begin == nullptr) return;
  if (element.place != Place::kDeck && !EnsureCard()) return;
  if (element.place == Place::kText && fields_.InOption()) {
    if (element.name == "br") fields_.AddOptionText(" ");
    return;
  }
  (this->*element.begin)(token);
  if (token.empty) End(element, token);
}

void DeckAdapter::End(const Element &element, const Token &token) {
  if (element.end == nullptr) return;
  if (element.place != Place::kDeck && !inCard_) return;
  if (element.place == Place::kText && fields_.InOption()) return;
  (this->*element.end)(token);
}

// ------------------------------------------------------------------------- text

// Whether text has a card to stand in; phones show no other. Saved headers are not missed.
bool DeckAdapter::HasCardFor(const Token &token) {
  if (inDeck_ && EnsureCard()) return true;
  if (token.offset != 0 || !HasSavedHeaders(token.text)) {
    warnings_.Add("text outside of the cards is left out", token.offset);
  }
  return false;
}

void DeckAdapter::Characters(const Token &token) {
  const std::string_view text = token.text;
  if (!inCard_ && (IsBlank(text) || !HasCardFor(token))) return;
  // Blanks between the options of a list are not text.
  if (fields_.InSelect() && !fields_.InOption() && IsBlank(text)) return;
  if (token.plain) {
    WritePlain(text);
    return;
  }
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t plain = PlainLength(text.substr(at));
    if (plain != 0) WritePlain(text.substr(at, plain));
    at += plain;
    if (at == text.size()) break;
    if (text[at] == '&') {
      Reference(text, at);
    } else if (text[at] == '$') {
      Variable(text, at);
    } else {
      // A control character may be two bytes long, the first of them 0xC2.
      const std::string_view special = text.substr(at, text[at] == '\xC2' ? 2 : 1);
      Write(special);
      at += special.size();
    }
  }
}

void DeckAdapter::WritePlain(std::string_view text) {
  if (fields_.InOption()) {
    fields_.AddOptionText(text);
  } else {
    writer_.PlainText(text, static_cast<std::size_t>(document_.end() - text.begin()));
  }
}

// Text with anything in it that may need care but references and variables.
void DeckAdapter::Write(std::string_view text) {
  if (fields_.InOption()) {
    fields_.AddOptionText(text);
  } else {
    writer_.Text(text);
  }
}

// A character that a reference stands for.
void DeckAdapter::WriteCharacter(char32_t character) {
  const bool blank = character == U'\t' || character == U'\n' || character == U'\r';
  if (blank || fields_.InOption()) {
    if (!blank && IsControl(character)) return;
    std::string text;
    AppendUtf8(text, character);
    Write(text);
  } else if (character == U' ') {
    writer_.FixedBlank();
  } else if (!IsControl(character)) {
    writer_.Character(character);
  }
}

void DeckAdapter::Reference(std::string_view text, std::size_t &at) {
  const std::string_view rest = text.substr(at);
  const CharacterReference reference = ReadReference(rest, ReferencePlace::kText);
  if (reference.length != 0) {
    at += reference.length;
    WriteCharacter(reference.character);
    return;
  }
  // The filter knows more names, and shows those that it does not know as they are.
  const std::size_t length = NamedReferenceLength(rest);
  if (length != 0 && !fields_.InSelect()) {
    writer_.NamedReference(rest.substr(0, length));
  } else {
    Write(rest.substr(0, std::max<std::size_t>(length, 1)));
  }
  at += std::max<std::size_t>(length, 1);
}

void DeckAdapter::Variable(std::string_view text, std::size_t &at) {
  const VariableReference reference = ReadVariable(text.substr(at));
  at += std::max<std::size_t>(reference.length, 1);
  Write(reference.name.empty() ? "$" : values_.Show(reference));
}

// ------------------------------------------------------------ the deck, its cards

// Content needs a card: a deck without any is shown as one.
bool DeckAdapter::OpenOnlyCard() {
  if (inHead_ || inTemplate_ || survey_.HasCards()) return false;
  if (adapted_.parts.cards.empty()) {
    warnings_.Add("the deck has no card; it is shown as one", 0);
  }
  OpenCard({}, 0);
  return true;
}

void DeckAdapter::OpenCard(DeckCard card, std::size_t offset) {
  if (inCard_) {
    warnings_.Add("a card does not end", offset);
    CloseCard();
  }
  inCard_ = true;
  inHead_ = false;
  inTemplate_ = false;
  align_.clear();
  tableDepth_ = 0;
  links_.clear();
  adapted_.parts.cards.push_back(std::move(card));
  cardAction_ = adapted_.parts.actions.size();
  actions_.BeginCard();
  writer_.BeginCard();
}

void DeckAdapter::CloseCard() {
  if (!inCard_) return;
  if (fields_.InSelect()) EndSelect({});
  fields_.EndCard();
  DeckCard &card = adapted_.parts.cards.back();
  actions_.EndCard(card);
  writer_.CloseAll();
  ConnectFields(card);
  ShowActions(card);
  writer_.EndCard();
  inCard_ = false;
}

// A post field whose value is a variable sends what is typed into the variable's field.
void DeckAdapter::ConnectFields(const DeckCard &card) {
  std::map<std::string_view, Field *> fields;
  for (const std::size_t index : card.fields) {
    Field &field = adapted_.parts.fields[index];
    fields.try_emplace(field.name, &field);
  }
  std::deque<Action> &actions = adapted_.parts.actions;
  for (std::size_t index = cardAction_; index < actions.size(); ++index) {
    for (NameValue &pair : actions[index].task.postFields) {
      const auto found = fields.find(pair.variable);
      if (pair.variable.empty() || found == fields.end()) continue;
      Field &field = *found->second;
      if (field.action != kNoIndex) continue;
      field.action = index;
      field.sentName = pair.name;
      pair.fromField = true;
    }
  }
}

// What the phone's keys, its menu and its timer do, below the text.
void DeckAdapter::ShowActions(const DeckCard &card) {
  bool first = true;
  for (const ActionKind kind : {ActionKind::kDo, ActionKind::kEvent}) {
    for (const std::size_t index : card.actions) {
      const Action &action = adapted_.parts.actions[index];
      if (action.kind != kind || !IsShown(action)) continue;
      if (first) {
        writer_.Paragraph({});
      } else {
        writer_.LineBreak();
      }
      first = false;
      writer_.Marker({ServedKind::kAction, index}, ActionLabel(action));
    }
  }
}

void DeckAdapter::BeginTemplate(const Token &token) {
  inHead_ = false;
  if (inCard_) return;
  inTemplate_ = true;
  actions_.BeginTemplate();
  actions_.AddAttributeEvents(token);
}

void DeckAdapter::EndTemplate(const Token &) {
  inTemplate_ = false;
  actions_.EndTemplate();
}

void DeckAdapter::BeginCard(const Token &token) {
  DeckCard card;
  card.id = values_.Text(token, "id");
  card.title = Collapsed(values_.Text(token, "title"));
  card.newContext = values_.Flag(token, "newcontext", false);
  card.ordered = values_.Flag(token, "ordered", true);
  inDeck_ = true;
  OpenCard(std::move(card), token.offset);
  actions_.AddAttributeEvents(token);
}

void DeckAdapter::TakeAccess(const Token &token) {
  DeckParts &deck = adapted_.parts;
  deck.hasAccess = true;
  deck.accessDomain = values_.Text(token, "domain");
  deck.accessPath = values_.Text(token, "path");
}

void DeckAdapter::TakeMeta(const Token &token) {
  adapted_.parts.metas.push_back({values_.Text(token, "name"), values_.Text(token, "http-equiv"),
                                  values_.Text(token, "content")});
}

// ----------------------------------------------------------------- text elements

void DeckAdapter::BeginParagraph(const Token &token) {
  align_ = ValueReader::Word(token, "align");
  writer_.Paragraph(align_);
}

void DeckAdapter::TakeImage(const Token &token) {
  Picture picture;
  picture.source = values_.Target(token, "src");
  picture.localSource = values_.Text(token, "localsrc");
  picture.hasAlternative = token.Find("alt") != nullptr;
  picture.alternative = Collapsed(values_.Text(token, "alt"));
  if (fields_.InOption()) {
    fields_.AddOptionText(picture.alternative);
    return;
  }
  if (picture.source.empty() && picture.localSource.empty() && !picture.hasAlternative) return;
  if (writer_.Preformatted()) {
    writer_.Text(picture.alternative);
    return;
  }
  adapted_.parts.pictures.push_back(std::move(picture));
  std::string attributes;
  for (const std::string_view name : {"align", "width", "height"}) {
    attributes += ValueReader::Word(token, name);
  }
  writer_.Image(adapted_.parts.pictures.size() - 1, attributes);
}

// A table in a table is shown as the lines of the cell that it stands in.
void DeckAdapter::BeginTable(const Token &token) {
  if (token.empty) return;
  if (tableDepth_++ != 0) {
    warnings_.Add("a table stands in a table", token.offset);
    writer_.LineBreak();
    return;
  }
  std::size_t columns = values_.Number(token, "columns");
  if (columns == 0 || columns > VW_MAX_COLUMNS) {
    columns = std::max<std::size_t>(survey_.TableColumns(table_), 1);
  }
  ++table_;
  writer_.OpenTable(columns, ValueReader::Word(token, "align") +
                                 ServedAttribute("title", values_.Text(token, "title")));
}

void DeckAdapter::EndTable(const Token &) {
  if (tableDepth_ == 0 || --tableDepth_ != 0) return;
  writer_.CloseTable();
}

void DeckAdapter::BeginRow(const Token &) {
  if (tableDepth_ == 1) writer_.OpenRow();
  if (tableDepth_ > 1) writer_.LineBreak();
}

void DeckAdapter::EndRow(const Token &) {
  if (tableDepth_ == 1) writer_.CloseRow();
}

void DeckAdapter::BeginCell(const Token &) {
  if (tableDepth_ == 1) writer_.OpenCell();
  if (tableDepth_ != 1) writer_.Text(" ");
}

void DeckAdapter::EndCell(const Token &) {
  if (tableDepth_ == 1) writer_.CloseCell();
}

// ------------------------------------------------------------- links and actions

void DeckAdapter::BeginLink(const Token &token) {
  if (token.Find("href") == nullptr) {
    links_.push_back(kNoIndex);
    return;
  }
  links_.push_back(actions_.AddLink(token));
  writer_.OpenLink(links_.back());
}

void DeckAdapter::BeginAnchor(const Token &token) {
  links_.push_back(actions_.Begin(TaskOwner::kAnchor, ActionKind::kAnchor, token));
  writer_.OpenLink(links_.back());
}

void DeckAdapter::EndAnchor(const Token &token) {
  if (!links_.empty() && writer_.InLink() && !writer_.LinkHasContent() &&
      links_.back() != kNoIndex) {
    writer_.Text(ActionLabel(adapted_.parts.actions[links_.back()]));
  }
  actions_.End(TaskOwner::kAnchor);
  EndLink(token);
}

void DeckAdapter::EndLink(const Token &) {
  if (links_.empty()) return;
  if (links_.back() != kNoIndex) {
    writer_.CloseLink();
    const auto outer = std::find_if(links_.rbegin() + 1, links_.rend(),
                                    [](std::size_t link) { return link != kNoIndex; });
    if (outer != links_.rend()) writer_.OpenLink(*outer);
  }
  links_.pop_back();
}

void DeckAdapter::BeginDo(const Token &token) {
  if (!inCard_ && !inTemplate_ && !EnsureCard()) return;
  actions_.Begin(TaskOwner::kDo, ActionKind::kDo, token);
}

void DeckAdapter::BeginEvent(const Token &token) {
  if (!inCard_ && !inTemplate_ && !EnsureCard()) return;
  const ActionKind kind = fields_.InOption() ? ActionKind::kPick : ActionKind::kEvent;
  const std::size_t action = actions_.Begin(TaskOwner::kEvent, kind, token);
  if (kind == ActionKind::kPick) fields_.SetPick(action);
}

// ------------------------------------------------------------------------- forms

void DeckAdapter::TakeInput(const Token &token) {
  ShowField(fields_.AddInput(token));
}

void DeckAdapter::ShowField(std::size_t index) {
  writer_.Marker({ServedKind::kField, index}, FieldText(adapted_.parts.fields[index]));
}

void DeckAdapter::BeginSelect(const Token &token) {
  if (fields_.InSelect()) EndSelect(token);
  fields_.BeginSelect(token);
}

// A list whose options lead somewhere is a menu: its options are links.
void DeckAdapter::EndSelect(const Token &) {
  if (!fields_.InSelect()) return;
  const std::size_t index = fields_.EndSelect();
  const Field &field = adapted_.parts.fields[index];
  const auto leads = [&](const FieldOption &option) {
    return option.action != kNoIndex && IsShown(adapted_.parts.actions[option.action]);
  };
  if (std::none_of(field.options.begin(), field.options.end(), leads)) {
    ShowField(index);
    return;
  }
  for (const FieldOption &option : field.options) {
    writer_.Paragraph(align_);
    if (!leads(option)) {
      writer_.Text(option.label);
      continue;
    }
    Action &action = adapted_.parts.actions[option.action];
    if (!action.names) action.names = std::make_unique<ActionNames>();
    action.names->label = option.label;
    writer_.Marker({ServedKind::kAction, option.action}, option.label);
  }
  writer_.Paragraph(align_);
}

void DeckAdapter::BeginOption(const Token &token) {
  if (!fields_.InSelect()) return;
  fields_.BeginOption(token);
  if (token.Find("onpick") != nullptr) {
    fields_.SetPick(actions_.AddPick(values_.Target(token, "onpick")));
  }
}

void DeckAdapter::BeginFieldset(const Token &token) {
  const std::string title = fields_.BeginFieldset(token);
  if (title.empty()) return;
  writer_.Paragraph(align_);
  writer_.OpenStyle(Style::kB);
  writer_.Text(title);
  writer_.CloseStyle(Style::kB);
  writer_.LineBreak();
}

}  // namespace

AdaptedDeck AdaptDeck(std::string_view document, const AdapterOptions &options) {
  return DeckAdapter(document, options).Run();
}

}  // namespace vs_wml
