/// \file
/// What the command line says, word by word.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_UNWML_COMMAND_LINE_H
#define VS_WML_UNWML_COMMAND_LINE_H

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace unwml {

/// The command line is not as it should be; the message says why.
class WrongUsage : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What stands on the command line: every option by itself is right, but how they fit together
/// and to the system is not looked at.
struct CommandLine {
  std::vector<std::string> inputs;
  std::optional<std::string> filesFrom;
  std::optional<std::string> output;
  std::optional<std::string> to;
  std::optional<std::size_t> width;
  std::string color = "auto";
  std::optional<std::string> images;
  std::optional<std::string> charset;
  std::optional<std::string> identity;
  std::vector<std::string> variables;
  std::optional<std::string> base;
  std::optional<std::string> assets;
  std::vector<std::string> names;
  bool follow = false;
  bool sync = false;
  bool skipExisting = false;
  bool withFilename = false;
  std::optional<bool> pager;
  std::size_t jobs = 1;
  bool quiet = false;
  std::optional<bool> summary;
  bool flow = false;
  bool raw = false;
  bool remoteImages = false;
  bool help = false;
  bool version = false;
  std::optional<std::string> print;

  bool operator==(const CommandLine &) const = default;
};

/// Reads the words behind the name of the program by the table of options. Options and inputs
/// come in any order; "--" ends the options. Throws WrongUsage.
CommandLine ReadCommandLine(int argc, char **argv);

}  // namespace unwml

#endif  // VS_WML_UNWML_COMMAND_LINE_H
