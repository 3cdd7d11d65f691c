/// \file
/// What a deck says beside its text: cards, actions, fields, pictures.
///
/// SPDX-License-Identifier: MIT
///
/// All strings are well-formed UTF-8 when the document is, with references and
/// variables replaced.
#ifndef VS_WML_HOST_DECK_DECK_PARTS_H
#define VS_WML_HOST_DECK_DECK_PARTS_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace vs_wml {

inline constexpr std::size_t kNoIndex = static_cast<std::size_t>(-1);

/// A post field or a variable assignment.
struct NameValue {
  std::string name;
  std::string value;
  std::string variable;    ///< the variable whose value it is, when it is nothing else
  bool fromField = false;  ///< a field gives the value, see Field::action
};

enum class TaskKind : std::uint8_t { kUnset, kGo, kPrevious, kRefresh, kNothing };

/// What an action does.
struct Task {
  TaskKind kind = TaskKind::kUnset;
  std::string target;      ///< of kGo, as the document has it
  std::string method;      ///< of kGo: "get" or "post", or what the document says
  bool multipart = false;  ///< of kGo: what is posted is sent as multipart/form-data
  std::vector<NameValue> postFields;
  std::vector<NameValue> variables;  ///< assigned before the task is done
};

enum class ActionKind : std::uint8_t {
  kLink,    ///< `a`
  kAnchor,  ///< `anchor`
  kDo,      ///< `do`: a key or a menu entry of the phone
  kEvent,   ///< entering a card or its timer
  kPick     ///< choosing an option
};

struct ActionNames {
  std::string type;   ///< of kDo ("accept") and kEvent ("ontimer")
  std::string name;   ///< of kDo: what a card shadows a template's action by
  std::string label;  ///< for people; of kAnchor, what is shown when it is empty
};

/// Most are links, which have a target, perhaps a title, and nothing else.
struct Action {
  ActionKind kind = ActionKind::kLink;
  std::uint32_t delay = 0;  ///< of "ontimer": tenths of a second
  std::string title;        ///< empty: none
  Task task;
  std::unique_ptr<ActionNames> names;  ///< null: none, see NamesOf
};

struct FieldOption {
  std::string value;
  std::string label;
  std::size_t group = kNoIndex;  ///< index into Field::groups
  bool selected = false;
  std::size_t action = kNoIndex;  ///< index into DeckParts::actions: what picking it does
};

enum class FieldKind : std::uint8_t { kInput, kSelect };

struct Field {
  FieldKind kind = FieldKind::kInput;
  std::string name;    ///< of the variable
  std::string title;   ///< empty: none
  std::string type;    ///< of an input: "text" or "password", or what the document says
  std::string format;  ///< of an input: the mask of what may be typed, empty: none
  std::string value;   ///< of an input: the default
  std::size_t fieldset = kNoIndex;  ///< index into DeckParts::fieldsets
  std::uint32_t size = 0;           ///< of an input: columns, 0: not given
  std::uint32_t length = 0;         ///< of an input: the most characters, 0: no limit
  bool emptyAllowed = true;
  bool multiple = false;  ///< of a select
  std::vector<FieldOption> options;
  std::vector<std::string> groups;  ///< titles of the option groups
  /// The first action of the card that sends the value, index into DeckParts::actions,
  /// and the name that it sends it under.
  std::size_t action = kNoIndex;
  std::string sentName;
};

struct Picture {
  std::string source;
  std::string localSource;  ///< name of an icon of the phone's own, empty: none
  std::string alternative;
  bool hasAlternative = false;
};

struct DeckCard {
  std::string id;     ///< empty: none
  std::string title;  ///< empty: none
  bool newContext = false;
  bool ordered = true;
  std::vector<std::size_t> actions;  ///< of kind kDo and kEvent, the template's included
  std::vector<std::size_t> fields;
};

struct Meta {
  std::string name;
  std::string httpEquiv;
  std::string content;
};

struct DeckParts {
  std::vector<DeckCard> cards;
  std::deque<Action> actions;
  std::vector<Field> fields;
  std::vector<std::string> fieldsets;  ///< titles
  std::vector<Picture> pictures;
  std::vector<Meta> metas;
  bool hasAccess = false;
  std::string accessDomain;  ///< who may link to the deck, empty: its own domain
  std::string accessPath;
};

/// The names of an action, empty ones when it has none.
const ActionNames &NamesOf(const Action &action);

/// The usual name of a `do` type, empty when it has none.
const char *UsualActionName(const std::string &type);

/// What people read of an action: its label, else its title, its type's usual name or
/// its target.
std::string ActionLabel(const Action &action);

/// A field as text: `[Name: ____]`, a list with its default marked.
std::string FieldText(const Field &field);

}  // namespace vs_wml

#endif  // VS_WML_HOST_DECK_DECK_PARTS_H
