/// \file
/// Variable references: `$name`, `$(name)`, `$(name:escape)`.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_DECK_VARIABLES_H
#define VS_WML_HOST_DECK_VARIABLES_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

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

/// Reads the reference at the start of `text`, which begins with '$'.
VariableReference ReadVariable(std::string_view text);

/// Whether a variable can have this name.
bool IsVariableName(std::string_view name);

/// Percent-encodes all bytes but letters, digits and `-._~`.
std::string PercentEncode(std::string_view text);
/// Undoes percent-encoding where the result is well-formed UTF-8 without control
/// characters; otherwise the text stays as it is.
std::string PercentDecode(std::string_view text);

/// The variables of a deck and their values, as far as they are known beforehand.
class Variables {
 public:
  /// The values given by the user, which win over the deck's. Longer values than
  /// kLongestValue count as unknown.
  explicit Variables(const std::map<std::string, std::string> &given);

  /// Notes that the deck sets `name` to `value`. A variable that is set to different
  /// values has no value that is known beforehand.
  void Suggest(const std::string &name, const std::string &value);

  /// The value, or nothing when it is not known.
  const std::string *Find(std::string_view name) const;

  /// The value as a reference shows it, `{name}` when it is not known; kDefault is
  /// taken as `usual`.
  std::string Show(const VariableReference &reference, Conversion usual) const;

  /// `text` with all references shown and doubled dollars single. Bytes that
  /// replacements add beyond `budget` are not spent: later references show as `{name}`.
  std::string Substitute(std::string_view text, Conversion usual, std::size_t &budget) const;

  static constexpr std::size_t kLongestValue = 1024;

 private:
  struct Value {
    std::string text;
    bool given = false;
    bool ambiguous = false;
  };
  std::map<std::string, Value, std::less<>> values_;
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_DECK_VARIABLES_H
