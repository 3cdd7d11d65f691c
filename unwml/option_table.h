/// \file
/// The one table of options that parsing, help, manual and completion are made from.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_UNWML_OPTION_TABLE_H
#define VS_WML_UNWML_OPTION_TABLE_H

#include <cstddef>
#include <span>

namespace unwml {

enum class OptionId {
  kTo,
  kOutput,
  kWidth,
  kColor,
  kCharset,
  kIdentity,
  kRaw,
  kVariable,
  kBase,
  kAssets,
  kImages,
  kFilesFrom,
  kJobs,
  kHelp,
  kVersion
};

struct OptionRow {
  OptionId id;
  const char *flags;     ///< "-t,--to"
  const char *argument;  ///< "FORMAT", empty: none
  const char *choices;   ///< words to complete, "FILE", "DIR" or empty
  const char *brief;     ///< one line of help
  const char *detail;    ///< what the manual adds, in roff
};

/// All options, in the order of OptionId.
std::span<const OptionRow> OptionTable();

inline const OptionRow &Row(OptionId id) {
  return OptionTable()[static_cast<std::size_t>(id)];
}

}  // namespace unwml

#endif  // VS_WML_UNWML_OPTION_TABLE_H
