// SPDX-License-Identifier: MIT
#include "report.h"

#include <unistd.h>

#include <array>
#include <cstdio>
#include <string>

#include "host/text/utf8.h"
#include "messages.h"

namespace unwml {
namespace {

// One line; of a long text that is left out the beginning and its length.
std::string TextOf(const vs_wml::Warning &warning) {
  constexpr std::size_t kMostShown = 200;
  std::string text;
  if (warning.line != 0) text = "line " + std::to_string(warning.line) + ": ";
  text += warning.message;
  if (warning.text.empty()) return text;
  text += ": ";
  if (warning.text.size() <= kMostShown) return text += warning.text;
  std::size_t end = kMostShown;
  while (end != 0 && !vs_wml::StartsCharacter(warning.text[end])) --end;
  text += warning.text.substr(0, end);
  return text += "... (" + std::to_string(warning.text.size()) + " bytes)";
}

}  // namespace

Report::Report(const Options &options, const Inputs &inputs)
    : options_(options),
      inputs_(inputs),
      progress_(options.quiet ? 0 : inputs.list.size()),
      tellsWarnings_(!options.quiet && options.format->writer != vs_wml::Format::kJson) {}

void Report::Add(const Input &input, const Outcome &outcome) {
  progress_.Advance(outcome.bytes);
  if (outcome.skipped) {
    ++skipped_;
    return;
  }
  if (!outcome.error.empty()) {
    ++failed_;
    progress_.Clear();
    Tell(input.path, outcome.error);
    return;
  }
  ++read_;
  if (outcome.warnings.empty()) return;
  ++warned_;
  if (!tellsWarnings_) return;
  progress_.Clear();
  for (const vs_wml::Warning &warning : outcome.warnings) Tell(input.path, TextOf(warning));
}

void Report::TellSummary() const {
  const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin_;
  std::array<char, 32> seconds{};
  std::snprintf(seconds.data(), seconds.size(), "%.1f s", taken.count());
  std::string line = std::to_string(read_) + " read, " + std::to_string(warned_) +
                     " with warnings, " + std::to_string(failed_) + " failed, ";
  if (options_.skipExisting) line += std::to_string(skipped_) + " skipped, ";
  Tell(line + seconds.data());
}

void Report::Finish() {
  progress_.Clear();
  if (inputs_.links != 0 && !options_.quiet) {
    Tell(std::to_string(inputs_.links) +
         (inputs_.links == 1 ? " symbolic link was" : " symbolic links were") +
         " not followed (--follow)");
  }
  const bool worthIt = isatty(STDERR_FILENO) != 0 || (tellsWarnings_ && warned_ != 0);
  if (options_.summary.value_or(inputs_.several && worthIt && !options_.quiet)) TellSummary();
}

}  // namespace unwml
