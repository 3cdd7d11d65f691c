/// \file
/// Variable references: `$name`, `$(name)`, `$(name:escape)`.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_DECK_VARIABLES_H
#define VS_WML_HOST_DECK_VARIABLES_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace vs_wml {

enum class Conversion : std::uint8_t {
  kDefault,   ///< none is given: what is usual where the reference stands
  kEscape,    ///< percent-encoded
  kUnescape,  ///< percent-decoded
  kVerbatim   ///< as it is
};

/// A reference at a '$'. `length` is 0 when there is none; a doubled dollar has length
/// 2 and no name.
struct VariableReference {
  std::string_view name;
  Conversion conversion = Conversion::kDefault;
  std::size_t length = 0;
};

/// Reads the reference at the start of `text`, which begins with '$'. A name in brackets may
/// have dots in it, as printers have them.
VariableReference ReadVariable(std::string_view text);

/// Calls `text` with each piece of text of a value as it is written, and `variable` with each
/// reference in it, in their order. Doubled dollars are single in the text.
template <typename Text, typename Variable>
void ForEachPiece(std::string_view written, Text text, Variable variable) {
  while (!written.empty()) {
    std::size_t length = std::min(written.find('$'), written.size());
    std::size_t next = length;
    VariableReference reference;
    if (length < written.size()) {
      reference = ReadVariable(written.substr(length));
      if (reference.name.empty()) ++length;  // the dollar is text
      next += std::max<std::size_t>(reference.length, 1);
    }
    if (length != 0) text(written.substr(0, length));
    if (!reference.name.empty()) variable(reference);
    written.remove_prefix(next);
  }
}

/// Whether a variable can have this name.
bool IsVariableName(std::string_view name);

/// Percent-encodes all bytes but letters, digits and `-._~`.
std::string PercentEncode(std::string_view text);
/// Undoes percent-encoding where the result is well-formed UTF-8 without control
/// characters; otherwise the text stays as it is.
std::string PercentDecode(std::string_view text);

/// The variables of a deck and their values, as far as they are known beforehand.
///
/// Cards are counted from 1 on, 0 is what stands outside of them. Entering a card sets
/// variables (the default of an `input`, a `refresh` on entry), and what stands in it can
/// rely on them, unless the deck sets them to something else anywhere. What is set on the
/// way from one card to another is not known: nobody need have taken that way.
class Variables {
 public:
  /// The values given by the user, which win over the deck's. Longer values than
  /// kLongestValue count as unknown.
  /// With `onlyGiven`, all others are empty.
  explicit Variables(const std::map<std::string, std::string> &given, bool onlyGiven = false);

  /// Notes that the deck sets `name` to `value`, on entering the card when that is not 0.
  void Suggest(const std::string &name, const std::string &value, std::size_t card);
  /// Notes that the value of `name` changes by itself or by what people choose.
  void Unsettle(const std::string &name);

  /// The value in a card, or nothing when it is not known.
  const std::string *Find(std::string_view name, std::size_t card) const;

  struct Substituted {
    std::string text;
    bool resolved = true;  ///< no reference shows as `{name}`
  };

  /// The value as a reference shows it, `{name}` when it is not known; kDefault is
  /// taken as `usual`.
  std::string Show(const VariableReference &reference, Conversion usual, std::size_t card) const;

  /// `text` with all references shown and doubled dollars single. Bytes that
  /// replacements add beyond `budget` are not spent: later references show as `{name}`.
  Substituted Substitute(std::string_view text, Conversion usual, std::size_t card,
                         std::size_t &budget) const;

  static constexpr std::size_t kLongestValue = 1024;

 private:
  struct Known {
    std::string text;
    bool given = false;
    bool unsettled = false;
    std::vector<std::size_t> cards;  // that set it when they are entered, in their order
  };
  Known *Note(const std::string &name);

  bool onlyGiven_;
  std::map<std::string, Known, std::less<>> values_;
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_DECK_VARIABLES_H
