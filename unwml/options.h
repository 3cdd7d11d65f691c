/// \file
/// What the command line asks for, settled.
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

/// Where outputs go other than to standard output.
struct OutputPlace {
  std::string folder;
  std::string file;  ///< the one output, in the folder; empty: they are laid out as the inputs are
};

struct Options {
  std::vector<std::string> inputs;    ///< files, directories, "-"
  std::string filesFrom;              ///< file of names, "-": standard input; empty: none
  std::vector<std::string> names;     ///< patterns of names in folders, besides those of decks
  bool follow = false;                ///< symbolic links in folders, too
  std::optional<OutputPlace> output;  ///< nothing: standard output
  bool sync = false;                  ///< outputs are on the disk before they appear
  bool skipExisting = false;
  bool withFilename = false;  ///< before each line
  std::size_t jobs = 1;
  bool quiet = false;
  std::optional<bool> summary;  ///< nothing: where it makes sense
  bool pager = false;           ///< may be started
  bool flow = false;            ///< the inputs are flows to play
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
