/// \file
/// The command line of unwml.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_UNWML_OPTIONS_H
#define VS_WML_UNWML_OPTIONS_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "formats.h"
#include "host/deck.h"
#include "host/writer.h"

namespace unwml {

/// Exit codes.
inline constexpr int kAllRead = 0;
inline constexpr int kSomeFailed = 1;
inline constexpr int kWrongUsage = 2;

struct Options {
  std::vector<std::string> inputs;  ///< files, directories, "-"
  std::string filesFrom;            ///< file of names, "-": standard input; empty: none
  std::string outputDirectory;      ///< empty: standard output
  std::size_t jobs = 1;
  const FormatRow *format = kFormats;
  vs_wml::WriterOptions writer;
  vs_wml::DeckOptions deck;
  std::string assets;  ///< folder of pictures, empty: none
};

/// Reads the command line. Help, version and mistakes are printed; the exit code to
/// leave with is stored then, and nothing is returned.
std::optional<Options> ParseOptions(int argc, char **argv, int &exitCode);

}  // namespace unwml

#endif  // VS_WML_UNWML_OPTIONS_H
