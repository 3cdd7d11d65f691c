/// \file
/// The one table of options: parsing, help, manual and completions are made from it.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_UNWML_OPTION_TABLE_H
#define VS_WML_UNWML_OPTION_TABLE_H

#include <cstddef>
#include <span>
#include <string_view>

#include "command_line.h"

namespace unwml {

/// The parts of the help and of the manual.
enum class Category { kInput, kOutput, kReading, kText, kRunning, kPlaying, kInside, kHelp };
inline constexpr std::size_t kCategories = 8;

/// What an option takes: exactly one value, or none.
enum class Argument { kNone, kText, kNumber, kChoice, kFile, kFolder };

/// What was given: the text of the argument, its number, and whether a switch is on.
struct Given {
  std::string_view text;
  std::size_t number = 0;
  bool on = true;
};

struct OptionRow {
  Category category;
  char letter = '\0';      ///< '\0': none
  const char *name;        ///< without the dashes
  bool negatable = false;  ///< a switch that --no-NAME turns off; the last one counts
  Argument argument = Argument::kNone;
  const char *placeholder = "";                    ///< the argument in help
  std::span<const std::string_view> choices = {};  ///< of kChoice: all; else: suggestions
  std::size_t least = 0;                           ///< of kNumber
  std::size_t most = 0;                            ///< of kNumber
  const char *brief;                               ///< one line of help
  const char *detail = "";                         ///< what the manual adds
  void (*set)(CommandLine &line, const Given &given);
};

/// All options, those of a category one behind the other.
std::span<const OptionRow> OptionTable();

/// The heading of a category.
const char *TitleOf(Category category);

}  // namespace unwml

#endif  // VS_WML_UNWML_OPTION_TABLE_H
