// SPDX-License-Identifier: MIT
#include "host/deck/deck_adapter.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>
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

constexpr std::string_view kAlignments[] = {"left", "center", "right"};

// What an action of a template costs each card that shows it, besides its label.
constexpr std::size_t kTemplateCost = 64;

// An action that does nothing is nothing to show, unless it is called something.
bool IsShown(const Action &action) {
  const TaskKind kind = action.task.kind;
  const bool idle = kind == TaskKind::kUnset || kind == TaskKind::kNothing;
  return !idle || !SaidLabel(action).empty();
}

class DeckAdapter {
 public:
  DeckAdapter(std::string_view document, const AdapterOptions &options)
      : document_(document),
        live_(options.live),
        warnings_(document),
        survey_(document, options.variables, options.live),
        values_(survey_, adapted_.parts.texts, kBudgetFactor * document.size() + kBudgetBase),
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
    /// The attributes that its part has a place for, see IsTaken.
    std::string_view attributes = {};
    std::uint64_t key = NameKey(name);
  };
  struct OpenLink {
    PartIndex action;   // kNoIndex: none
    PartIndex inForce;  // that of the innermost link with an action, this one included
    bool hasTasks;
  };
  static constexpr std::size_t kElementCount = 38;
  static const Element kElements[kElementCount];
  static constexpr std::size_t kIndexBits = 7;
  static constexpr std::size_t kIndexSize = std::size_t{1} << kIndexBits;
  static const std::array<std::uint8_t, kIndexSize> kElementIndex;

  static constexpr std::size_t SlotOf(std::uint64_t nameKey);
  static const Element *FindElement(const Token &tag);
  void Take(const Token &token);
  void Start(const Element &element, const Token &token);
  void End(const Element &element, const Token &token);

  // What no part has a place for.
  static bool IsTaken(std::string_view attributes, const Attribute &attribute);
  void KeepRest(const Element &element, const Token &token);
  void KeepUnknown(const Token &token);
  void KeepTag(const Token &token, std::string_view taken);
  bool IsRepeated(const Token &token, const Attribute &attribute) const;
  void Own(Remainder::Owner owner, PartIndex index);

  // Text.
  bool HasCardFor(const Token &token);
  void Characters(const Token &token);
  void Reference(std::string_view text, std::size_t &at);
  void Variable(std::string_view text, std::size_t &at);
  bool HiddenVariable(std::string_view text, std::size_t &at);
  void ShowVariable(std::string_view written);
  void Write(std::string_view text);
  void WritePlain(std::string_view text);
  void WriteCharacter(char32_t character);

  // The deck and its cards.
  bool EnsureCard() { return inCard_ || OpenOnlyCard(); }
  bool OpenOnlyCard();
  void OpenCard(DeckCard card, std::size_t offset);
  void CloseCard();
  void ConnectFields(const DeckCard &card);
  std::vector<PartIndex> ActionsInForce(const DeckCard &card);
  void ShowActions(const DeckCard &card);
  void BeginDeck(const Token &token);
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
  void LineBreak(const Token &token);
  void EndLineBreak(const Token &token);
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
  static bool HasTask(std::string_view link);
  void Enter(PartIndex action, bool hasTasks);
  void EndLink(const Token &);
  void BeginDo(const Token &token);
  void EndDo(const Token &) { actions_.End(TaskOwner::kDo); }
  void BeginEvent(const Token &token);
  void EndEvent(const Token &) { actions_.End(TaskOwner::kEvent); }
  template <TaskKind kind>
  void BeginTask(const Token &token) {
    taken_ = actions_.BeginTask(kind, token);
  }
  void EndTask(const Token &) { actions_.EndTask(); }
  void TakePostField(const Token &token) { taken_ = actions_.AddPostField(token); }
  void TakeVariable(const Token &token) { taken_ = actions_.AddVariable(token); }
  void TakeTimer(const Token &token);

  // Forms.
  void TakeInput(const Token &token);
  void BeginSelect(const Token &token);
  void EndSelect(const Token &);
  void BeginGroup(const Token &token);
  void EndGroup(const Token &) { fields_.EndGroup(); }
  void BeginOption(const Token &token);
  void EndOption(const Token &) { fields_.EndOption(); }
  void BeginFieldset(const Token &token);
  void EndFieldset(const Token &) { fields_.EndFieldset(); }
  void ShowField(PartIndex index);
  void ShowMenu(PartIndex index);
  bool Leads(const FieldOption &option) const;

  std::string_view document_;
  bool live_;
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
  bool taken_ = true;               // the element has a part, or nothing to keep
  std::size_t cardAction_ = 0;      // the first action of the card
  std::string align_;               // of the paragraph in force, an attribute value
  std::uint32_t tableDepth_ = 0;    // 1: in a table; more: in tables in its cells
  std::size_t table_ = 0;           // tables so far
  std::size_t lastBreak_ = 0;       // offset of the last line break
  std::size_t templateOffset_ = 0;  // of the template
  std::vector<OpenLink> links_;
  Remainder::Owner owner_ = Remainder::Owner::kElement;
  PartIndex ownerIndex_ = 0;
  std::uint32_t tags_ = 0;                         // of which something was kept
  std::set<std::string_view> cardVariables_;       // those in the card's text, as they are written
  std::array<PartIndex, kElementCount> counts_{};  // of each element in the card so far
};

constexpr DeckAdapter::Element DeckAdapter::kElements[kElementCount] = {
    {"a", Place::kText, &DeckAdapter::BeginLink, &DeckAdapter::EndLink,
     "href title accesskey tabindex"},
    {"access", Place::kDeck, &DeckAdapter::TakeAccess, nullptr, "domain path"},
    {"anchor", Place::kText, &DeckAdapter::BeginAnchor, &DeckAdapter::EndLink,
     "href title accesskey tabindex"},
    {"b", Place::kText, &DeckAdapter::BeginStyle<Style::kB>, &DeckAdapter::EndStyle<Style::kB>},
    {"big", Place::kText, &DeckAdapter::BeginStyle<Style::kBig>,
     &DeckAdapter::EndStyle<Style::kBig>},
    {"br", Place::kText, &DeckAdapter::LineBreak, &DeckAdapter::EndLineBreak},
    {"card", Place::kDeck, &DeckAdapter::BeginCard, &DeckAdapter::EndCard,
     "id name title ?newcontext ?ordered onenterforward onenterbackward ontimer xml:lang"},
    {"do", Place::kDeck, &DeckAdapter::BeginDo, &DeckAdapter::EndDo,
     "type name label title optional accesskey tabindex"},
    {"em", Place::kText, &DeckAdapter::BeginStyle<Style::kEm>, &DeckAdapter::EndStyle<Style::kEm>},
    {"fieldset", Place::kText, &DeckAdapter::BeginFieldset, &DeckAdapter::EndFieldset, "title"},
    {"go", Place::kDeck, &DeckAdapter::BeginTask<TaskKind::kGo>, &DeckAdapter::EndTask,
     "href url method enctype accept-charset cache-control sendreferer postdata"},
    {"head", Place::kDeck, &DeckAdapter::BeginHead, &DeckAdapter::EndHead},
    {"i", Place::kText, &DeckAdapter::BeginStyle<Style::kI>, &DeckAdapter::EndStyle<Style::kI>},
    {"img", Place::kCard, &DeckAdapter::TakeImage, nullptr, "src localsrc alt"},
    {"input", Place::kCard, &DeckAdapter::TakeInput, nullptr,
     "name key title type format value default #size #maxlength ?emptyok accesskey tabindex"},
    {"meta", Place::kDeck, &DeckAdapter::TakeMeta, nullptr, "name http-equiv content scheme forua"},
    {"noop", Place::kDeck, &DeckAdapter::BeginTask<TaskKind::kNothing>, &DeckAdapter::EndTask},
    {"onevent", Place::kDeck, &DeckAdapter::BeginEvent, &DeckAdapter::EndEvent, "type"},
    {"optgroup", Place::kCard, &DeckAdapter::BeginGroup, &DeckAdapter::EndGroup, "title"},
    {"option", Place::kCard, &DeckAdapter::BeginOption, &DeckAdapter::EndOption,
     "value title onpick onclick"},
    {"p", Place::kText, &DeckAdapter::BeginParagraph, &DeckAdapter::EndParagraph, "@align"},
    {"postfield", Place::kDeck, &DeckAdapter::TakePostField, nullptr, "name value"},
    {"pre", Place::kText, &DeckAdapter::BeginStyle<Style::kPre>,
     &DeckAdapter::EndStyle<Style::kPre>},
    {"prev", Place::kDeck, &DeckAdapter::BeginTask<TaskKind::kPrevious>, &DeckAdapter::EndTask},
    {"refresh", Place::kDeck, &DeckAdapter::BeginTask<TaskKind::kRefresh>, &DeckAdapter::EndTask},
    {"select", Place::kCard, &DeckAdapter::BeginSelect, &DeckAdapter::EndSelect,
     "name key title value default iname ikey ivalue idefault ?multiple accesskey tabindex"},
    {"setvar", Place::kDeck, &DeckAdapter::TakeVariable, nullptr, "name value"},
    {"small", Place::kText, &DeckAdapter::BeginStyle<Style::kSmall>,
     &DeckAdapter::EndStyle<Style::kSmall>},
    {"strong", Place::kText, &DeckAdapter::BeginStyle<Style::kStrong>,
     &DeckAdapter::EndStyle<Style::kStrong>},
    {"table", Place::kText, &DeckAdapter::BeginTable, &DeckAdapter::EndTable,
     "#columns !title align"},
    {"td", Place::kText, &DeckAdapter::BeginCell, &DeckAdapter::EndCell},
    {"template", Place::kDeck, &DeckAdapter::BeginTemplate, &DeckAdapter::EndTemplate,
     "onenterforward onenterbackward ontimer"},
    {"th", Place::kText, &DeckAdapter::BeginCell, &DeckAdapter::EndCell},
    {"timer", Place::kDeck, &DeckAdapter::TakeTimer, nullptr, "name key value default"},
    {"tr", Place::kText, &DeckAdapter::BeginRow, &DeckAdapter::EndRow},
    {"u", Place::kText, &DeckAdapter::BeginStyle<Style::kU>, &DeckAdapter::EndStyle<Style::kU>},
    {"var", Place::kDeck, &DeckAdapter::TakeVariable, nullptr, "name value"},
    {"wml", Place::kDeck, &DeckAdapter::BeginDeck, &DeckAdapter::EndDeck, "xml:lang"},
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
  adapted_.tags = writer_.TakeTags();
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
  } else if (token.kind == TokenKind::kStartTag) {
    KeepUnknown(token);
  }
}

void DeckAdapter::Start(const Element &element, const Token &token) {
  owner_ = Remainder::Owner::kElement;
  taken_ = element.place == Place::kDeck || EnsureCard();
  ++counts_[static_cast<std::size_t>(&element - kElements)];
  if (!taken_) {
    // It stands outside of the cards.
  } else if (element.place == Place::kText && fields_.InOption()) {
    taken_ = element.name == "br";
    if (taken_) fields_.AddOptionText(" ");
  } else if (element.begin != nullptr) {
    (this->*element.begin)(token);
  }
  if (!token.attributes.empty() || !taken_) KeepRest(element, token);
  if (token.empty) End(element, token);
}

void DeckAdapter::End(const Element &element, const Token &token) {
  if (element.end == nullptr) return;
  if (element.place != Place::kDeck && !inCard_) return;
  if (element.place == Place::kText && fields_.InOption()) return;
  (this->*element.end)(token);
}

// -------------------------------------------------------------------------- rest

// Whether a part has a place for an attribute. In the list of names, '#' stands before one
// that is a number, '?' before true or false, '@' before an alignment, and '!' before one whose
// variables would be lost.
bool DeckAdapter::IsTaken(std::string_view attributes, const Attribute &attribute) {
  while (!attributes.empty()) {
    const std::size_t length = std::min(attributes.find(' '), attributes.size());
    std::string_view name = attributes.substr(0, length);
    attributes.remove_prefix(std::min(length + 1, attributes.size()));
    const char kind = IsLetter(name[0]) ? 'a' : name[0];
    if (kind != 'a') name.remove_prefix(1);
    if (!IsLowered(attribute.name, name)) continue;
    const std::string_view value = Trim(attribute.value);
    switch (kind) {
      case '#':
        return std::all_of(value.begin(), value.end(), IsDigit) &&
               ValueReader::Number(&attribute.value) != 0;
      case '?':
        return EqualIgnoringCase(value, "true") || EqualIgnoringCase(value, "false");
      case '@':
        return std::any_of(std::begin(kAlignments), std::end(kAlignments),
                           [&](std::string_view known) { return IsLowered(value, known); });
      case '!':
        return value.find('$') == std::string_view::npos;
      default:
        return true;
    }
  }
  return false;
}

void DeckAdapter::Own(Remainder::Owner owner, PartIndex index) {
  owner_ = owner;
  ownerIndex_ = index;
}

void DeckAdapter::KeepRest(const Element &element, const Token &token) {
  if (owner_ == Remainder::Owner::kElement) {
    ownerIndex_ = counts_[static_cast<std::size_t>(&element - kElements)];
  }
  KeepTag(token, taken_ ? element.attributes : std::string_view());
}

void DeckAdapter::KeepUnknown(const Token &token) {
  taken_ = false;
  Own(Remainder::Owner::kElement, 0);
  KeepTag(token, {});
}

// Whether a tag has an attribute of that name before.
bool DeckAdapter::IsRepeated(const Token &token, const Attribute &attribute) const {
  for (const Attribute &entry : token.attributes) {
    if (&entry == &attribute) return false;
    if (EqualIgnoringCase(entry.name, attribute.name)) return true;
  }
  return false;
}

// Keeps the attributes that are not taken, or the element alone when it has none.
void DeckAdapter::KeepTag(const Token &token, std::string_view taken) {
  constexpr std::size_t kManyAttributes = 32;
  PartList<Remainder> &remainders =
      inCard_ ? adapted_.parts.remainders : adapted_.parts.outsideRemainders;
  const std::size_t before = remainders.size();
  const auto nameOf = [&](std::string_view raw) {
    return adapted_.parts.texts.Keep(WithoutControls(Lowered(raw)));
  };
  const auto keep = [&](std::string_view name, std::string_view value) {
    if (remainders.size() == before) ++tags_;
    const std::string_view element =
        remainders.size() == before ? nameOf(token.name) : remainders.back().element;
    remainders.push_back({owner_, ownerIndex_, tags_, element, name, value});
  };
  std::set<std::string> names;  // when they are many
  for (const Attribute &attribute : token.attributes) {
    const bool many = token.attributes.size() > kManyAttributes;
    if (many ? !names.insert(Lowered(attribute.name)).second : IsRepeated(token, attribute)) {
      warnings_.AddLoss(
          "an attribute is given twice; the first one counts",
          {attribute.name.data(),
           attribute.value.data() == nullptr
               ? attribute.name.size()
               : static_cast<std::size_t>(attribute.value.end() - attribute.name.begin())});
    } else if (!IsTaken(taken, attribute)) {
      keep(nameOf(attribute.name), values_.Plain(&attribute.value));
    }
  }
  if (!taken_ && remainders.size() == before) keep({}, {});
}

// ------------------------------------------------------------------------- text

// Whether text has a card to stand in; phones show no other. Saved headers are not missed.
bool DeckAdapter::HasCardFor(const Token &token) {
  if (inDeck_ && EnsureCard()) return true;
  if (token.offset != 0 || !HasSavedHeaders(token.text)) {
    warnings_.AddLoss("text outside of the cards is left out", token.text);
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
    if (reference.character == U'$' && HiddenVariable(text, at)) return;
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
  const std::size_t length = std::max<std::size_t>(reference.length, 1);
  // A character reference may go on with the name.
  const std::size_t behind = at + length;
  const bool bracket = reference.length == 0 && behind < text.size() && text[behind] == '(';
  const bool open = !reference.name.empty() && text[behind - 1] != ')';
  if ((bracket || ((open || length == 1) && behind < text.size() && text[behind] == '&')) &&
      HiddenVariable(text, at)) {
    return;
  }
  if (reference.name.empty()) {
    Write("$");
  } else {
    ShowVariable(text.substr(at, length));
  }
  at += length;
}

// A reference with character references in it, which count first: `$(&#x59;)`. False when
// there is none.
bool DeckAdapter::HiddenVariable(std::string_view text, std::size_t &at) {
  constexpr std::size_t kLongest = 128;
  std::string decoded;
  std::vector<std::size_t> ends;  // in the text, of each byte of what is decoded
  for (std::size_t next = at; next < text.size() && decoded.size() < kLongest;) {
    CharacterReference character;
    if (text[next] == '&') {
      character = ReadReference(text.substr(next), ReferencePlace::kText);
      if (character.length == 0) break;
      AppendUtf8(decoded, character.character);
    } else {
      decoded += text[next];
    }
    next += std::max<std::size_t>(character.length, 1);
    ends.resize(decoded.size(), next);
  }
  const VariableReference reference = ReadVariable(decoded);
  if (reference.name.empty()) return false;
  ShowVariable(std::string_view(decoded).substr(0, reference.length));
  at = ends[reference.length - 1];
  return true;
}

// `written` is a reference with a name.
void DeckAdapter::ShowVariable(std::string_view written) {
  if (fields_.InOption()) {
    fields_.AddOptionVariable(written);
    return;
  }
  const VariableReference reference = ReadVariable(written);
  const std::string shown = values_.Show(reference);
  if (cardVariables_.find(written) == cardVariables_.end()) {
    DeckParts &parts = adapted_.parts;
    const bool resolved = shown != '{' + std::string(reference.name) + '}';
    parts.textVariables.emplace_back(parts.texts.Keep(shown), parts.texts.Keep(written), resolved);
    cardVariables_.insert(parts.textVariables.back().written);
  }
  Write(shown);
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
  counts_ = {};
  cardVariables_.clear();
  DeckParts &parts = adapted_.parts;
  card.firstAction = static_cast<PartIndex>(parts.cardActions.size());
  card.firstField = static_cast<PartIndex>(parts.fields.size());
  card.firstRemainder = static_cast<PartIndex>(parts.remainders.size());
  card.firstVariable = static_cast<PartIndex>(parts.textVariables.size());
  card.offset = static_cast<std::uint32_t>(offset);
  card.firstPart = static_cast<PartIndex>(parts.actions.size());
  cardAction_ = parts.actions.size();
  parts.cards.push_back(std::move(card));
  actions_.BeginCard();
  writer_.BeginCard(adapted_.parts.cards.size() - 1);
}

void DeckAdapter::CloseCard() {
  if (!inCard_) return;
  if (fields_.InSelect()) EndSelect({});
  fields_.EndCard();
  DeckParts &parts = adapted_.parts;
  DeckCard &card = parts.cards.back();
  card.fieldCount = static_cast<PartIndex>(parts.fields.size()) - card.firstField;
  card.remainderCount = static_cast<PartIndex>(parts.remainders.size()) - card.firstRemainder;
  card.variableCount = static_cast<PartIndex>(parts.textVariables.size()) - card.firstVariable;
  actions_.EndCard(card);
  writer_.CloseAll();
  ConnectFields(card);
  if (!live_) ShowActions(card);
  writer_.EndCard();
  inCard_ = false;
}

// A post field whose value is a variable sends what is typed into the variable's field.
void DeckAdapter::ConnectFields(const DeckCard &card) {
  if (card.fieldCount == 0) return;
  std::map<std::string_view, Field *> fields;
  for (PartIndex index = 0; index < card.fieldCount; ++index) {
    Field &field = adapted_.parts.fields[card.firstField + index];
    fields.try_emplace(field.Variable(), &field);
  }
  PartList<Action> &actions = adapted_.parts.actions;
  for (std::size_t index = cardAction_; index < actions.size(); ++index) {
    TaskDetails *details = actions[index].task.details.get();
    if (details == nullptr) continue;
    for (NameValue &pair : details->postFields) {
      const std::string_view variable = SoleVariable(pair.value);
      const auto found = fields.find(variable);
      if (variable.empty() || found == fields.end()) continue;
      Field &field = *found->second;
      if (field.action != kNoIndex) continue;
      field.action = static_cast<PartIndex>(index);
      field.sentName = pair.name.shown;
      pair.fromField = true;
    }
  }
}

// The actions in force in a card: its own, and those of the template that they do not
// replace, as far as the budget goes.
std::vector<PartIndex> DeckAdapter::ActionsInForce(const DeckCard &card) {
  const DeckParts &parts = adapted_.parts;
  const auto own = parts.ActionsOf(card);
  std::vector<PartIndex> actions(own.begin(), own.end());
  if (parts.templateActions.empty()) return actions;
  std::set<PartIndex> shadowed;
  for (const PartIndex index : own) shadowed.insert(DetailsOf(parts.actions[index]).shadows);
  for (const PartIndex index : parts.templateActions) {
    const Action &action = parts.actions[index];
    if (shadowed.count(index) != 0) continue;
    if (!values_.Spend(kTemplateCost + ActionLabel(action, nullptr).size())) {
      warnings_.Add("the template has too many actions to show them in every card",
                    templateOffset_);
      break;
    }
    actions.push_back(index);
  }
  return actions;
}

// What the phone's keys, its menu and its timer do, below the text.
void DeckAdapter::ShowActions(const DeckCard &card) {
  const std::vector<PartIndex> actions = ActionsInForce(card);
  bool first = true;
  for (const ActionKind kind : {ActionKind::kDo, ActionKind::kEvent}) {
    for (const PartIndex index : actions) {
      const Action &action = adapted_.parts.actions[index];
      if (action.kind != kind || !IsShown(action)) continue;
      if (first) {
        writer_.Paragraph({});
      } else {
        writer_.LineBreak();
      }
      first = false;
      writer_.Marker({ServedKind::kAction, index}, ActionLabel(action, card.timer.get()));
    }
  }
}

void DeckAdapter::BeginDeck(const Token &token) {
  inDeck_ = true;
  if (const auto *language = token.Find("xml:lang"); language != nullptr) {
    adapted_.parts.language = values_.Plain(language);
  }
}

void DeckAdapter::BeginTemplate(const Token &token) {
  inHead_ = false;
  taken_ = !inCard_;
  if (inCard_) return;
  inTemplate_ = true;
  templateOffset_ = token.offset;
  actions_.BeginTemplate();
  actions_.AddAttributeEvents(token);
}

void DeckAdapter::EndTemplate(const Token &) {
  inTemplate_ = false;
  actions_.EndTemplate();
}

void DeckAdapter::BeginCard(const Token &token) {
  values_.EnterCard();
  DeckCard card;
  if (!token.attributes.empty()) {
    card.id = values_.Plain(token.Find("id", "name"));
    card.title = values_.Line(token.Find("title"));
    card.language = values_.Plain(token.Find("xml:lang"));
    card.newContext = ValueReader::Flag(token.Find("newcontext"), false);
    card.ordered = ValueReader::Flag(token.Find("ordered"), true);
  }
  inDeck_ = true;
  OpenCard(std::move(card), token.offset);
  ++counts_[static_cast<std::size_t>(FindElement(token) - kElements)];
  actions_.AddAttributeEvents(token);
}

void DeckAdapter::TakeAccess(const Token &token) {
  adapted_.parts.accesses.push_back(
      {values_.Plain(token.Find("domain")), values_.Plain(token.Find("path"))});
}

void DeckAdapter::TakeMeta(const Token &token) {
  adapted_.parts.metas.push_back(
      {values_.Plain(token.Find("name")), values_.Plain(token.Find("http-equiv")),
       values_.Plain(token.Find("content")), values_.Plain(token.Find("scheme")),
       values_.Plain(token.Find("forua"))});
}

void DeckAdapter::TakeTimer(const Token &token) {
  taken_ = inCard_ && !adapted_.parts.cards.back().timer;
  if (!taken_) return;
  adapted_.parts.cards.back().timer = std::make_unique<Timer>(Timer{
      values_.Plain(token.Find("name", "key")), values_.Text(token.Find("value", "default"))});
}

// ----------------------------------------------------------------- text elements

void DeckAdapter::BeginParagraph(const Token &token) {
  align_ = ValueReader::Word(token, "align");
  writer_.Paragraph(align_);
}

void DeckAdapter::LineBreak(const Token &token) {
  writer_.LineBreak();
  lastBreak_ = token.empty ? 0 : token.offset;
}

// `</br>` is a line break, but for the end of one that is written in full.
void DeckAdapter::EndLineBreak(const Token &token) {
  if (token.kind == TokenKind::kStartTag) return;
  const bool full = lastBreak_ != 0 && document_.find('>', lastBreak_) + 1 == token.offset;
  if (!full) LineBreak(token);
}

void DeckAdapter::TakeImage(const Token &token) {
  Picture picture;
  picture.source = values_.Target(token.Find("src"));
  picture.localSource = values_.Text(token.Find("localsrc"));
  picture.alternative = values_.Line(token.Find("alt"));
  if (fields_.InOption()) {
    taken_ = false;
    fields_.AddOptionText(picture.alternative.shown);
    return;
  }
  if (picture.source.IsEmpty() && picture.localSource.IsEmpty() && !picture.alternative.IsGiven()) {
    return;
  }
  if (writer_.Preformatted()) {
    taken_ = false;
    writer_.Text(picture.alternative.shown);
    return;
  }
  const auto index = static_cast<PartIndex>(adapted_.parts.pictures.size());
  adapted_.parts.pictures.push_back(picture);
  Own(Remainder::Owner::kPicture, index);
  std::string attributes;
  for (const std::string_view name : {"align", "width", "height"}) {
    attributes += ValueReader::Word(token, name);
  }
  writer_.Image(index, attributes);
}

// A table in a table is shown as the lines of the cell that it stands in.
void DeckAdapter::BeginTable(const Token &token) {
  if (token.empty) return;
  if (tableDepth_++ != 0) {
    taken_ = false;
    warnings_.Add("a table stands in a table", token.offset);
    writer_.LineBreak();
    return;
  }
  std::size_t columns = ValueReader::Number(token.Find("columns"));
  if (columns == 0 || columns > VW_MAX_COLUMNS) {
    columns = std::max<std::size_t>(survey_.TableColumns(table_), 1);
  }
  ++table_;
  const auto text = [&](std::string_view name) {
    return WithoutControls(Collapsed(values_.Text(token.Find(name)).shown));
  };
  writer_.OpenTable(columns, ValueReader::Word(token, "align"), text("title"), text("align"));
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

// Whether a task stands in a link that begins there, as in WML 1.0.
bool DeckAdapter::HasTask(std::string_view link) {
  constexpr std::size_t kFar = 256;
  constexpr std::string_view kTasks[] = {"go", "prev", "refresh", "noop"};
  link = link.substr(0, kFar);
  for (std::size_t at = link.find('<'); at < link.size(); at = link.find('<', at + 1)) {
    const std::string_view tag = link.substr(at + 1);
    if (tag.starts_with('/')) {
      if (EqualIgnoringCase(tag.substr(1, 2), "a>")) return false;
      continue;
    }
    const std::string_view name = tag.substr(0, tag.find_first_of(" \t\r\n/>"));
    if (EqualIgnoringCase(name, "a")) return false;
    if (std::any_of(std::begin(kTasks), std::end(kTasks),
                    [&](std::string_view task) { return EqualIgnoringCase(name, task); })) {
      return true;
    }
  }
  return false;
}

void DeckAdapter::BeginLink(const Token &token) {
  if (token.Find("href") != nullptr) {
    Enter(actions_.AddLink(token), false);
  } else if (!token.empty && HasTask(document_.substr(token.offset + 2))) {
    BeginAnchor(token);
  } else {
    links_.push_back({kNoIndex, links_.empty() ? kNoIndex : links_.back().inForce, false});
    taken_ = false;
  }
}

void DeckAdapter::BeginAnchor(const Token &token) {
  Enter(actions_.Begin(TaskOwner::kAnchor, ActionKind::kAnchor, token), true);
}

void DeckAdapter::Enter(PartIndex action, bool hasTasks) {
  Own(Remainder::Owner::kAction, action);
  links_.push_back({action, action, hasTasks});
  writer_.OpenLink(action);
}

// A link without content shows what it is called, or else where it leads.
void DeckAdapter::EndLink(const Token &) {
  if (links_.empty()) return;
  const OpenLink link = links_.back();
  links_.pop_back();
  if (link.action != kNoIndex) {
    if (writer_.InLink() && !writer_.LinkHasContent()) {
      Action &action = adapted_.parts.actions[link.action];
      action.hasText = false;
      writer_.Text(ActionLabel(action, nullptr));
    }
    writer_.CloseLink();
    if (!links_.empty() && links_.back().inForce != kNoIndex) {
      writer_.OpenLink(links_.back().inForce);
    }
  }
  if (link.hasTasks) actions_.End(TaskOwner::kAnchor);
}

void DeckAdapter::BeginDo(const Token &token) {
  taken_ = inCard_ || inTemplate_ || EnsureCard();
  if (!taken_) return;
  Own(Remainder::Owner::kAction, actions_.Begin(TaskOwner::kDo, ActionKind::kDo, token));
}

void DeckAdapter::BeginEvent(const Token &token) {
  taken_ = inCard_ || inTemplate_ || EnsureCard();
  if (!taken_) return;
  const ActionKind kind = fields_.InOption() ? ActionKind::kPick : ActionKind::kEvent;
  const PartIndex action = actions_.Begin(TaskOwner::kEvent, kind, token);
  if (kind == ActionKind::kPick) fields_.SetPick(action);
  Own(Remainder::Owner::kAction, action);
}

// ------------------------------------------------------------------------- forms

void DeckAdapter::TakeInput(const Token &token) {
  const PartIndex index = fields_.AddInput(token);
  Own(Remainder::Owner::kField, index);
  ShowField(index);
}

void DeckAdapter::ShowField(PartIndex index) {
  const DeckParts &parts = adapted_.parts;
  writer_.Marker({ServedKind::kField, index}, FieldText(parts, parts.fields[index]));
}

void DeckAdapter::BeginSelect(const Token &token) {
  if (fields_.InSelect()) EndSelect(token);
  fields_.BeginSelect(token);
  Own(Remainder::Owner::kField, static_cast<PartIndex>(adapted_.parts.fields.size() - 1));
}

bool DeckAdapter::Leads(const FieldOption &option) const {
  return option.action != kNoIndex && IsShown(adapted_.parts.actions[option.action]);
}

void DeckAdapter::EndSelect(const Token &) {
  if (!fields_.InSelect()) return;
  const PartIndex index = fields_.EndSelect();
  ShowField(index);
  if (live_) return;
  const PartList<FieldOption> &options = adapted_.parts.options;
  const Field &field = adapted_.parts.fields[index];
  for (PartIndex i = 0; i < field.optionCount; ++i) {
    if (Leads(options[field.firstOption + i])) {
      ShowMenu(index);
      return;
    }
  }
}

// A list whose options lead somewhere is a menu, too: its options are links.
void DeckAdapter::ShowMenu(PartIndex index) {
  const DeckParts &parts = adapted_.parts;
  const Field &field = parts.fields[index];
  for (PartIndex i = 0; i < field.optionCount; ++i) {
    const FieldOption &option = parts.options[field.firstOption + i];
    if (!Leads(option)) continue;
    writer_.Paragraph(align_);
    writer_.Marker({ServedKind::kAction, option.action}, option.Label());
  }
  writer_.Paragraph(align_);
}

void DeckAdapter::BeginGroup(const Token &token) {
  taken_ = fields_.InSelect();
  if (taken_) fields_.BeginGroup(token);
}

void DeckAdapter::BeginOption(const Token &token) {
  taken_ = fields_.InSelect();
  if (!taken_) return;
  fields_.BeginOption(token);
  if (const auto *target = token.Find("onpick", "onclick"); target != nullptr) {
    fields_.SetPick(actions_.AddPick(target));
  }
}

void DeckAdapter::BeginFieldset(const Token &token) {
  const std::string_view title = fields_.BeginFieldset(token);
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
