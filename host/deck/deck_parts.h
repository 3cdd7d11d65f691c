/// \file
/// What a deck says beside its text: cards, templates, actions, fields, events, pictures.
///
/// SPDX-License-Identifier: MIT
///
/// Views point into DeckParts::texts. They are well-formed UTF-8 when the document is, with
/// character references replaced, and null (`data() == nullptr`) where the document says
/// nothing, as opposed to an empty value. The parts refer to each other by indexes.
#ifndef VS_WML_HOST_DECK_DECK_PARTS_H
#define VS_WML_HOST_DECK_DECK_PARTS_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/deck/part_list.h"
#include "host/text/text_arena.h"

namespace vs_wml {

using PartIndex = std::uint32_t;
inline constexpr PartIndex kNoIndex = static_cast<PartIndex>(-1);

/// A value that may hold variables.
struct Value {
  /// What it reads as, with `{name}` for a variable whose value is not known beforehand.
  std::string_view shown;
  /// As the document has it: with its references to variables (see variables.h) and with
  /// dollar signs doubled, and not resolved against a base. The same view as `shown` when
  /// there is nothing of that.
  std::string_view written;
  /// Whether all its variables are known.
  bool resolved = true;

  Value() = default;
  explicit Value(std::string_view text) : shown(text), written(text) {}
  Value(std::string_view shownAs, std::string_view writtenAs, bool isResolved)
      : shown(shownAs), written(writtenAs), resolved(isResolved) {}

  bool IsGiven() const { return shown.data() != nullptr; }
  bool IsEmpty() const { return shown.empty(); }
  bool ReadsAsWritten() const { return shown.data() == written.data(); }
};

/// The variable that a value names, when it is nothing else; else empty.
std::string_view SoleVariable(const Value &value);

/// A post field (`postfield`) or a variable assignment (`setvar`).
struct NameValue {
  Value name;
  Value value;
  bool fromField = false;  ///< a field gives the value, see Field::action
};

enum class TaskKind : std::uint8_t { kUnset, kGo, kPrevious, kRefresh, kNothing };

struct TaskDetails {
  std::string_view method;  ///< in lower case
  std::string_view encoding;
  std::string_view acceptCharset;
  std::string_view cacheControl;
  std::string_view sendReferer;
  Value postData;  ///< of WML 1.0, where there are no post fields
  std::vector<NameValue> postFields;
  std::vector<NameValue> variables;  ///< assigned before the task is done
};

/// What an action does.
struct Task {
  TaskKind kind = TaskKind::kUnset;
  Value target;                          ///< of kGo
  std::unique_ptr<TaskDetails> details;  ///< null: none

  std::span<const NameValue> PostFields() const;
  std::span<const NameValue> Variables() const;
  /// Whether what is sent is posted; else it is part of the address.
  bool Posts() const;
  /// Whether what is posted is sent as multipart/form-data.
  bool IsMultipart() const;
};

enum class ActionKind : std::uint8_t {
  kLink,    ///< `a`
  kAnchor,  ///< `anchor`, and an `a` that has a task
  kDo,      ///< `do`: a key or a menu entry of the phone
  kEvent,   ///< entering a card or its timer
  kPick     ///< choosing an option
};

struct ActionDetails {
  std::string_view type;  ///< of kDo ("accept") and kEvent ("ontimer"), in lower case
  std::string_view name;  ///< of kDo: what a card shadows a template's action by
  Value label;            ///< of kDo
  Value title;
  std::string_view accessKey;
  std::string_view tabIndex;
  std::string_view optional;  ///< of kDo
  /// The template's action that this one takes the place of, in its card.
  PartIndex shadows = kNoIndex;
  /// Further tasks. Phones do the first one only.
  std::vector<Task> more;
};

/// Most are links, which have a target and nothing else.
struct Action {
  ActionKind kind = ActionKind::kLink;
  bool hasText = true;  ///< false: a link without content, which shows what it is called
  /// Its place among the links (kLink and kAnchor) or among the other actions.
  PartIndex number = 0;
  Task task;
  std::unique_ptr<ActionDetails> details;  ///< null: none, see DetailsOf

  bool IsLink() const { return kind == ActionKind::kLink || kind == ActionKind::kAnchor; }
};

struct FieldOption {
  Value value;
  Value label;  ///< its text
  Value title;
  PartIndex group = kNoIndex;   ///< index into DeckParts::groups
  PartIndex action = kNoIndex;  ///< index into DeckParts::actions: what picking it does
  bool selected = false;        ///< by default

  /// What people read of it.
  std::string_view Label() const;
};

/// What few fields have.
struct FieldDetails {
  std::string_view format;  ///< of an input: the mask of what may be typed
  std::string_view accessKey;
  std::string_view tabIndex;
  std::string_view indexName;  ///< of a select: the variable of the position, `iname`
  Value indexValue;            ///< of a select: default positions, `ivalue`
};

enum class FieldKind : std::uint8_t { kInput, kSelect };

struct Field {
  FieldKind kind = FieldKind::kInput;
  bool emptyAllowed = true;
  bool multiple = false;          ///< of a select
  PartIndex fieldset = kNoIndex;  ///< index into DeckParts::fieldsets
  std::string_view name;          ///< of the variable
  Value title;
  std::string_view type;     ///< of an input: "text", "password", in lower case
  Value value;               ///< the default
  std::uint32_t size = 0;    ///< of an input: columns, 0: not given
  std::uint32_t length = 0;  ///< of an input: the most characters, 0: no limit
  PartIndex firstOption = 0;
  PartIndex optionCount = 0;
  /// The first action of the card that sends the value, index into DeckParts::actions,
  /// and the name that it sends it under.
  PartIndex action = kNoIndex;
  std::string_view sentName;
  std::unique_ptr<FieldDetails> details;  ///< null: none

  /// The mask of what may be typed into an input.
  std::string_view Format() const { return details ? details->format : std::string_view(); }
  /// The variable that it sets, whether by value or by position.
  std::string_view Variable() const;
  /// What people know it by: its title, else its variable.
  std::string_view Label() const;
};

/// A `fieldset`, or an `optgroup`.
struct Group {
  Value title;
  PartIndex outer = kNoIndex;  ///< the one that it stands in
};

struct Picture {
  Value source;
  Value localSource;  ///< name of an icon of the phone's own
  Value alternative;
};

struct Timer {
  std::string_view name;  ///< of the variable that holds what is left
  Value value;            ///< tenths of a second
};

/// Attributes without a place of their own, and elements that stand where WML has none: one
/// for each attribute, or one without a name for an element without attributes.
struct Remainder {
  enum class Owner : std::uint8_t { kElement, kAction, kField, kPicture };
  Owner owner = Owner::kElement;
  PartIndex index = 0;       ///< of the owner; of kElement 1, 2, 3 ... among those of its name in
                             ///< the card, 0 for an element that is not WML
  std::uint32_t tag = 0;     ///< the same for all attributes of a tag
  std::string_view element;  ///< its name in lower case
  std::string_view name;
  std::string_view value;
};

struct DeckCard {
  std::string_view id;
  Value title;
  std::string_view language;  ///< `xml:lang`
  bool newContext = false;
  bool ordered = true;
  PartIndex firstAction = 0;  ///< of its own keys and events, in DeckParts::cardActions
  PartIndex actionCount = 0;
  PartIndex firstField = 0;  ///< in DeckParts::fields
  PartIndex fieldCount = 0;
  PartIndex firstRemainder = 0;  ///< in DeckParts::remainders
  PartIndex remainderCount = 0;
  PartIndex firstVariable = 0;  ///< in DeckParts::textVariables
  PartIndex variableCount = 0;
  std::unique_ptr<Timer> timer;  ///< null: none
  std::uint32_t offset = 0;      ///< of its tag in the document, in bytes of UTF-8
  PartIndex firstPart = 0;       ///< in DeckParts::actions, of all that stand in the card
};

struct Meta {
  std::string_view name;
  std::string_view httpEquiv;
  std::string_view content;
  std::string_view scheme;
  std::string_view forUserAgent;  ///< `forua`
};

/// Who may link to the deck.
struct Access {
  std::string_view domain;  ///< empty: its own
  std::string_view path;
};

struct DeckParts {
  TextArena texts;
  std::string_view language;  ///< `xml:lang`
  PartList<DeckCard> cards;
  PartList<Action> actions;  ///< in the order of the document, links included
  PartIndex linkCount = 0;
  std::vector<PartIndex> templateActions;  ///< indexes into actions
  std::vector<PartIndex> cardActions;      ///< indexes into actions, card by card
  PartList<Field> fields;
  PartList<FieldOption> options;
  PartList<Group> fieldsets;
  PartList<Group> groups;
  PartList<Picture> pictures;
  PartList<Meta> metas;
  std::vector<Access> accesses;
  PartList<Value> textVariables;          ///< the variables in the text of cards, each once a card
  PartList<Remainder> remainders;         ///< of the cards
  PartList<Remainder> outsideRemainders;  ///< outside of the cards

  /// The card's own keys and events, indexes into actions.
  std::span<const PartIndex> ActionsOf(const DeckCard &card) const;
};

/// The details of an action, empty ones when it has none.
const ActionDetails &DetailsOf(const Action &action);

/// The usual name of a `do` type, empty when it has none.
std::string_view UsualActionName(std::string_view type);

/// What the document calls an action: its label or title; empty when it says nothing.
std::string_view SaidLabel(const Action &action);

/// What people read of an action: what the document calls it, else its type's usual name, its
/// name or its target. `timer` is that of the card, null when it has none.
std::string ActionLabel(const Action &action, const Timer *timer);

/// A field as text: `[Name: ____]`, a list with its default marked.
std::string FieldText(const DeckParts &parts, const Field &field);

}  // namespace vs_wml

#endif  // VS_WML_HOST_DECK_DECK_PARTS_H
