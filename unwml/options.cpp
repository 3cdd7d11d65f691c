// SPDX-License-Identifier: MIT
#include "options.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>
#include <stdexcept>
#include <string_view>

#include "files.h"
#include "host/deck/variables.h"
#include "host/platform/charset.h"
#include "host/platform/url.h"
#include "host/text/utf8.h"
#include "manual.h"
#include "option_table.h"

namespace unwml {
namespace {

struct FormatName {
  std::string_view name;
  vs_wml::Format format;
  std::string_view extension;
};

constexpr FormatName kFormats[] = {{"text", vs_wml::Format::kText, ".txt"},
                                   {"html", vs_wml::Format::kHtml, ".html"},
                                   {"json", vs_wml::Format::kJson, ".json"},
                                   {"markdown", vs_wml::Format::kMarkdown, ".md"}};
constexpr std::string_view kTrace = "trace";
constexpr std::size_t kDefaultWidth = 80;
constexpr std::size_t kMostJobs = 256;

// What the command line says, before it is checked.
struct Raw {
  std::string to = "text";
  std::string color = "auto";
  std::string images;
  std::vector<std::string> variables;
  std::size_t width = 0;
  int identity = 0;
  bool help = false;
  bool version = false;
  bool manual = false;
  bool completion = false;
};

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

void Declare(CLI::App &app, Options &options, Raw &raw) {
  app.set_help_flag();
  app.add_option("input", options.inputs);
  app.add_option(Row(OptionId::kTo).flags, raw.to)
      ->check(CLI::IsMember({"text", "html", "json", "markdown", "trace"}));
  app.add_option(Row(OptionId::kOutput).flags, options.outputDirectory);
  app.add_option(Row(OptionId::kWidth).flags, raw.width)->check(CLI::Range(1, 100000));
  app.add_option(Row(OptionId::kColor).flags, raw.color)
      ->check(CLI::IsMember({"auto", "always", "never"}));
  app.add_option(Row(OptionId::kCharset).flags, options.deck.charset);
  app.add_option(Row(OptionId::kIdentity).flags, raw.identity);
  app.add_flag(Row(OptionId::kRaw).flags, options.deck.raw);
  app.add_option(Row(OptionId::kVariable).flags, raw.variables)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
      ->expected(1);
  app.add_option(Row(OptionId::kBase).flags, options.deck.base);
  app.add_option(Row(OptionId::kAssets).flags, options.assets);
  app.add_option(Row(OptionId::kImages).flags, raw.images)->check(CLI::IsMember({"blocks", "alt"}));
  app.add_option(Row(OptionId::kFilesFrom).flags, options.filesFrom);
  app.add_option(Row(OptionId::kJobs).flags, options.jobs)
      ->check(CLI::Range(std::size_t{1}, kMostJobs));
  app.add_flag(Row(OptionId::kHelp).flags, raw.help);
  app.add_flag(Row(OptionId::kVersion).flags, raw.version);
  app.add_flag("--print-manual", raw.manual);
  app.add_flag("--print-completion", raw.completion);
}

// Puts NAME=VALUE where it belongs; false when it has no such form.
bool AddVariable(const std::string &text, std::map<std::string, std::string> &variables) {
  const std::size_t equals = text.find('=');
  if (equals == std::string::npos) return false;
  const std::string name = text.substr(0, equals);
  variables[name] = vs_wml::RepairUtf8(text.substr(equals + 1));
  return vs_wml::IsVariableName(name);
}

std::optional<std::string> SettleAdaptation(Options &options, const Raw &raw) {
  const bool toTerminal = options.outputDirectory.empty() && isatty(STDOUT_FILENO) != 0;
  options.writer.images = raw.images.empty() ? toTerminal : raw.images == "blocks";
  options.deck.raw = options.deck.raw || options.trace;
  for (const std::string &variable : raw.variables) {
    if (!AddVariable(variable, options.deck.variables)) {
      return "--var: \"" + variable + "\" is not NAME=VALUE";
    }
  }
  if (options.deck.base.empty()) return std::nullopt;
  try {
    const vs_wml::BaseUrl base(options.deck.base);
  } catch (const std::invalid_argument &mistake) {
    return std::string("--base: ") + mistake.what();
  }
  return std::nullopt;
}

// The mistake in what was given, if there is one; fills in what it settles.
std::optional<std::string> Settle(Options &options, const Raw &raw, const CLI::App &app) {
  options.trace = raw.to == kTrace;
  for (const FormatName &entry : kFormats) {
    if (entry.name == raw.to) options.format = entry.format;
  }
  options.writer.width = raw.width != 0 ? raw.width : TerminalWidth();
  options.writer.color = WantsColor(raw.color, !options.outputDirectory.empty());
  std::error_code ignored;
  if (!options.assets.empty() && !std::filesystem::is_directory(options.assets, ignored)) {
    return "--assets: " + Printable(options.assets) + " is not a directory";
  }
  if (auto mistake = SettleAdaptation(options, raw)) return mistake;
  if (!options.deck.charset.empty() && !vs_wml::IsKnownCharset(options.deck.charset)) {
    return "--charset: \"" + options.deck.charset + "\" is no character set that is known";
  }
  if (app.count("--identity") != 0) {
    if (!vs_wml::IsFilterIdentity(raw.identity)) {
      return "--identity: " + std::to_string(raw.identity) +
             " is no filter identity (1151, 1154 to 1163)";
    }
    if (!options.deck.charset.empty()) return "--identity and --charset exclude each other";
    options.deck.identity = static_cast<std::int16_t>(raw.identity);
  }
  if (app.count("--files-from") != 0 && options.filesFrom.empty()) {
    return "--files-from: no name given";
  }
  if (app.count("--output") != 0 && options.outputDirectory.empty()) {
    return "--output: no name given";
  }
  std::error_code error;
  if (std::filesystem::exists(options.outputDirectory, error) &&
      !std::filesystem::is_directory(options.outputDirectory, error)) {
    return "--output: " + Printable(options.outputDirectory) + " is not a directory";
  }
  if (options.inputs.empty() && options.filesFrom.empty()) {
    if (isatty(STDIN_FILENO) != 0) return "no input: name a FILE, a DIR or -";
    options.inputs.emplace_back("-");
  }
  const bool twice = std::count(options.inputs.begin(), options.inputs.end(), "-") +
                         (options.filesFrom == "-" ? 1 : 0) >
                     1;
  if (twice) return "standard input can be read only once";
  return std::nullopt;
}

}  // namespace

std::string Options::Extension() const {
  if (trace) return ".trace";
  const auto *entry =
      std::find_if(std::begin(kFormats), std::end(kFormats),
                   [&](const FormatName &candidate) { return candidate.format == format; });
  return std::string(entry->extension);
}

std::optional<Options> ParseOptions(int argc, char **argv, int &exitCode) {
  Options options;
  Raw raw;
  CLI::App app;
  Declare(app, options, raw);
  std::optional<std::string> mistake;
  try {
    app.parse(argc, argv);
    exitCode = kAllRead;
    if (raw.help) {
      PrintHelp(std::cout);
    } else if (raw.version) {
      PrintVersion(std::cout);
    } else if (raw.manual) {
      PrintManual(std::cout);
    } else if (raw.completion) {
      PrintCompletion(std::cout);
    } else {
      mistake = Settle(options, raw, app);
      if (!mistake) return options;
    }
  } catch (const CLI::ParseError &error) {
    mistake = error.what();
  }
  if (mistake) {
    std::cerr << "unwml: " << Printable(*mistake) << "\nTry 'unwml --help'.\n";
    exitCode = kWrongUsage;
  } else if (!std::cout.flush()) {
    exitCode = kSomeFailed;
  }
  return std::nullopt;
}

}  // namespace unwml
