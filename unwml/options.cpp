// SPDX-License-Identifier: MIT
#include "options.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>
#include <string_view>

#include "command_line.h"
#include "completion.h"
#include "files.h"
#include "host/deck/variables.h"
#include "host/platform/charset.h"
#include "host/platform/url.h"
#include "host/text/utf8.h"
#include "manual.h"

namespace unwml {
namespace {

constexpr std::size_t kDefaultWidth = 80;

std::size_t TerminalWidth() {
  winsize size{};
  if (isatty(STDOUT_FILENO) != 0 && ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 &&
      size.ws_col != 0) {
    return size.ws_col;
  }
  return kDefaultWidth;
}

bool WantsColor(const std::string &when, bool toFiles) {
  if (when != "auto") return when == "always";
  const char *noColor = std::getenv("NO_COLOR");
  const char *terminal = std::getenv("TERM");
  return !toFiles && isatty(STDOUT_FILENO) != 0 && (noColor == nullptr || *noColor == '\0') &&
         terminal != nullptr && std::string_view(terminal) != "dumb";
}

void AddVariable(const std::string &text, std::map<std::string, std::string> &variables) {
  const std::size_t equals = text.find('=');
  const std::string name = text.substr(0, equals);
  if (equals == std::string::npos || !vs_wml::IsVariableName(name)) {
    throw WrongUsage("--var: \"" + text + "\" is not NAME=VALUE");
  }
  variables[name] = vs_wml::RepairUtf8(text.substr(equals + 1));
}

void RequireBase(const std::string &base) {
  try {
    const vs_wml::BaseUrl url(base);
  } catch (const std::invalid_argument &mistake) {
    throw WrongUsage(std::string("--base: ") + mistake.what());
  }
}

void SettleFormat(const CommandLine &line, Options &options) {
  options.format = kFormats;
  for (const FormatRow &row : kFormats) {
    if (row.name == line.to) options.format = &row;
  }
}

void SettleReading(const CommandLine &line, Options &options) {
  options.deck.raw = line.raw || !options.format->writer;
  options.deck.digest = options.format->writer == vs_wml::Format::kJson;
  for (const std::string &variable : line.variables) {
    AddVariable(variable, options.deck.variables);
  }
  if (line.base) RequireBase(*line.base);
  options.deck.base = line.base.value_or("");
  if (line.charset && !vs_wml::IsKnownCharset(*line.charset)) {
    throw WrongUsage("--charset: \"" + *line.charset + "\" is no character set that is known");
  }
  options.deck.charset = line.charset.value_or("");
  if (line.identity) {
    if (line.charset) throw WrongUsage("--identity and --charset exclude each other");
    std::int16_t identity = 0;
    std::from_chars(line.identity->data(), line.identity->data() + line.identity->size(), identity);
    options.deck.identity = identity;
  }
  std::error_code ignored;
  options.assets = line.assets.value_or("");
  if (line.assets && !std::filesystem::is_directory(*line.assets, ignored)) {
    throw WrongUsage("--assets: " + *line.assets + " is not a directory");
  }
}

void SettleText(const CommandLine &line, Options &options) {
  const bool toTerminal = !line.output && isatty(STDOUT_FILENO) != 0;
  options.writer.width = line.width.value_or(TerminalWidth());
  options.writer.color = WantsColor(line.color, line.output.has_value());
  options.writer.remoteImages = line.remoteImages;
  options.writer.images = line.images ? line.images == "blocks" : toTerminal;
}

void SettleInputs(const CommandLine &line, Options &options) {
  options.inputs = line.inputs;
  options.filesFrom = line.filesFrom.value_or("");
  if (options.inputs.empty() && options.filesFrom.empty()) {
    if (isatty(STDIN_FILENO) != 0) throw WrongUsage("no input: name a FILE, a DIR or -");
    options.inputs.emplace_back("-");
  }
  const bool twice = std::count(options.inputs.begin(), options.inputs.end(), "-") +
                         (options.filesFrom == "-" ? 1 : 0) >
                     1;
  if (twice) throw WrongUsage("standard input can be read only once");
}

void SettleOutput(const CommandLine &line, Options &options) {
  options.outputDirectory = line.output.value_or("");
  std::error_code error;
  if (std::filesystem::exists(options.outputDirectory, error) &&
      !std::filesystem::is_directory(options.outputDirectory, error)) {
    throw WrongUsage("--output: " + options.outputDirectory + " is not a directory");
  }
}

Options Settled(const CommandLine &line) {
  Options options;
  options.jobs = line.jobs;
  SettleFormat(line, options);
  SettleReading(line, options);
  SettleText(line, options);
  SettleInputs(line, options);
  SettleOutput(line, options);
  return options;
}

// Prints what the command line asks for instead of reading documents; false: nothing.
bool PrintWanted(const CommandLine &line, std::ostream &out) {
  if (line.help) {
    PrintHelp(out);
  } else if (line.version) {
    PrintVersion(out);
  } else if (line.print == "manual") {
    PrintManual(out);
  } else if (line.print) {
    PrintCompletion(*line.print, out);
  } else {
    return false;
  }
  return true;
}

}  // namespace

std::optional<Options> ParseOptions(int argc, char **argv, int &exitCode) {
  try {
    const CommandLine line = ReadCommandLine(argc, argv);
    if (!PrintWanted(line, std::cout)) return Settled(line);
    exitCode = std::cout.flush() ? kAllRead : kSomeFailed;
  } catch (const WrongUsage &mistake) {
    std::cerr << "unwml: " << Printable(mistake.what()) << "\nTry 'unwml --help'.\n";
    exitCode = kWrongUsage;
  }
  return std::nullopt;
}

}  // namespace unwml
