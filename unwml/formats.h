/// \file
/// The formats that unwml writes, in one place.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_UNWML_FORMATS_H
#define VS_WML_UNWML_FORMATS_H

#include <array>
#include <optional>
#include <string_view>

#include "host/writer.h"

namespace unwml {

struct FormatRow {
  std::string_view name;                 ///< for --to
  std::optional<vs_wml::Format> writer;  ///< empty: the trace, which is made without blocks
  std::string_view extension;            ///< of output files, with the dot
  std::string_view meaning;              ///< for people
};

/// The first one is what is written when no other is asked for.
inline constexpr FormatRow kFormats[] = {
    {"text", vs_wml::Format::kText, ".txt", "wrapped to the width, links numbered"},
    {"html", vs_wml::Format::kHtml, ".html", "a page a document that needs no other file"},
    {"json", vs_wml::Format::kJson, ".json", "JSON Lines: one object a document"},
    {"markdown", vs_wml::Format::kMarkdown, ".md", "with pipe tables"},
    {"trace", std::nullopt, ".trace", "a line for each call of the filter"},
};

inline constexpr auto kFormatNames = [] {
  std::array<std::string_view, std::size(kFormats)> names{};
  for (std::size_t i = 0; i < names.size(); ++i) names[i] = kFormats[i].name;
  return names;
}();

}  // namespace unwml

#endif  // VS_WML_UNWML_FORMATS_H
