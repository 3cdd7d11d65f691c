// SPDX-License-Identifier: MIT
#include "options.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <map>
#include <string_view>
#include <utility>

#include "command_line.h"
#include "completion.h"
#include "files.h"
#include "host/deck/variables.h"
#include "host/platform/charset.h"
#include "host/platform/url.h"
#include "host/text/utf8.h"
#include "manual.h"
#include "messages.h"

namespace unwml {
namespace {

namespace fs = std::filesystem;

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
  std::string value = vs_wml::RepairUtf8(text.substr(equals + 1));
  if (vs_wml::WithoutControls(value) != value) {
    throw WrongUsage("--var: \"" + text + "\" has control characters, which no phone would send");
  }
  variables[name] = std::move(value);
}

void RequireBase(const std::string &base) {
  try {
    const vs_wml::BaseUrl url(base);
  } catch (const std::invalid_argument &mistake) {
    throw WrongUsage(std::string("--base: ") + mistake.what());
  }
}

const FormatRow *FindFormat(std::string_view FormatRow::*member, std::string_view wanted) {
  const auto *const found =
      std::find_if(std::begin(kFormats), std::end(kFormats),
                   [&](const FormatRow &candidate) { return candidate.*member == wanted; });
  return found == std::end(kFormats) ? nullptr : found;
}

// The format that was asked for by name, or by that of the one output.
void SettleFormat(const CommandLine &line, Options &options) {
  if (line.to) {
    options.format = FindFormat(&FormatRow::name, *line.to);
  } else if (options.output) {
    const std::string extension = fs::path(options.output->file).extension().string();
    const FormatRow *const row = FindFormat(&FormatRow::extension, extension);
    if (row != nullptr) options.format = row;
  }
  const bool lines = !options.format->writer || options.format->writer == vs_wml::Format::kText ||
                     options.format->writer == vs_wml::Format::kMarkdown;
  if (line.withFilename && !lines) {
    throw WrongUsage("--with-filename is for text, Markdown and the trace");
  }
  options.withFilename = line.withFilename;
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
  if (line.assets && !fs::is_directory(*line.assets, ignored)) {
    throw WrongUsage("--assets: " + *line.assets + " is not a directory");
  }
}

void SettleText(const CommandLine &line, Options &options) {
  const bool toTerminal = !options.output && isatty(STDOUT_FILENO) != 0;
  options.writer.width = line.width.value_or(TerminalWidth());
  options.writer.color = WantsColor(line.color, options.output.has_value());
  options.writer.remoteImages = line.remoteImages;
  options.writer.images = line.images ? line.images == "blocks" : toTerminal;
  options.pager = toTerminal && !line.output && line.pager.value_or(true);
}

void SettleInputs(const CommandLine &line, Options &options) {
  options.inputs = line.inputs;
  options.names = line.names;
  options.follow = line.follow;
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

// Whether -o means a folder: it is one, looks like one, or has to hold several files.
bool MeansFolder(const std::string &path, const Options &options) {
  std::error_code error;
  const auto isFolder = [&](const std::string &name) { return fs::is_directory(name, error); };
  return path.ends_with('/') || isFolder(path) || !options.filesFrom.empty() ||
         options.inputs.size() > 1 ||
         std::any_of(options.inputs.begin(), options.inputs.end(), isFolder);
}

// What is no file that could be replaced (a device, a pipe) takes the place of standard output.
bool RedirectToDevice(const std::string &path) {
  std::error_code error;
  if (!fs::exists(path, error) || fs::is_regular_file(path, error)) return false;
  const Descriptor device(open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
  if (device.Get() < 0 || dup2(device.Get(), STDOUT_FILENO) < 0) {
    throw WrongUsage("--output: " + path + ": " + std::strerror(errno));
  }
  return true;
}

void SettleOutput(const CommandLine &line, Options &options) {
  options.sync = line.sync;
  options.skipExisting = line.skipExisting;
  if (!line.output || *line.output == "-") return;
  const std::string &path = *line.output;
  std::error_code error;
  if (MeansFolder(path, options)) {
    if (fs::exists(path, error) && !fs::is_directory(path, error)) {
      throw WrongUsage("--output: " + path + " is not a directory");
    }
    options.output = OutputPlace{path, ""};
  } else if (!RedirectToDevice(path)) {
    // A link that was named is meant to be written through.
    const fs::path file = fs::is_symlink(path, error) ? fs::weakly_canonical(path) : fs::path(path);
    const std::string folder = file.parent_path().string();
    options.output = OutputPlace{folder.empty() ? "." : folder, file.filename().string()};
  }
}

Options Settled(const CommandLine &line) {
  Options options;
  options.jobs = line.jobs;
  options.quiet = line.quiet;
  options.summary = line.summary;
  options.flow = line.flow;
  SettleInputs(line, options);
  SettleOutput(line, options);
  SettleFormat(line, options);
  SettleReading(line, options);
  SettleText(line, options);
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
    Tell(mistake.what());
    std::cerr << "Try 'unwml --help'.\n";
    exitCode = kWrongUsage;
  }
  return std::nullopt;
}

}  // namespace unwml
