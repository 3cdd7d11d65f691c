// SPDX-License-Identifier: MIT
#include <cerrno>
#include <csignal>
#include <exception>
#include <optional>

#include "batch.h"
#include "convert.h"
#include "flows.h"
#include "inputs.h"
#include "messages.h"
#include "options.h"
#include "output_folder.h"
#include "report.h"
#include "signals.h"
#include "standard_output.h"

namespace unwml {
namespace {

// A closed pipe and a file that has grown too large are errors of the write, not signals.
void IgnoreSignalsOfWrites() {
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
}

int ConvertInputs(const Options &options, const Inputs &inputs, StandardOutput &standardOutput) {
  std::optional<OutputFolder> folder;
  if (options.output) folder.emplace(options.output->folder, options.sync);
  const Work work{options, inputs, folder ? &*folder : nullptr, standardOutput};
  Report report(options, inputs);
  try {
    ConvertAll(work, [&](const Input &input, Outcome &outcome) {
      if (outcome.fatal) std::rethrow_exception(outcome.fatal);
      if (outcome.output) outcome.output->Finish();
      report.Add(input, outcome);
    });
    standardOutput.Finish();
    report.Finish();
  } catch (const OutputFailure &failure) {
    standardOutput.Abandon();
    if (failure.code().value() != EPIPE) {
      Tell("standard output", failure.code().message());
      return kSomeFailed;
    }
    // Whoever closes the pipe has seen enough.
  }
  return report.Failed() ? kSomeFailed : kAllRead;
}

int Run(Options options) {
  if (options.flow) return PlayFlows(options.inputs);
  std::optional<SignalWatch> watch;
  if (options.output || options.pager) watch.emplace();
  const Inputs inputs = FindInputs(options);
  if (!options.output && inputs.several && options.format->writer == vs_wml::Format::kHtml) {
    Tell("HTML of more than one input needs -o DIR");
    return kWrongUsage;
  }
  options.writer.nameHeading = !options.output && inputs.several && !options.withFilename;
  StandardOutput standardOutput(options.pager);
  return ConvertInputs(options, inputs, standardOutput);
}

}  // namespace
}  // namespace unwml

int main(int argc, char **argv) {
  unwml::IgnoreSignalsOfWrites();
  int exitCode = 0;
  try {
    const auto options = unwml::ParseOptions(argc, argv, exitCode);
    return options ? unwml::Run(*options) : exitCode;
  } catch (const std::bad_alloc &) {
    unwml::Tell("out of memory");
  } catch (const std::exception &failure) {
    unwml::Tell(failure.what());
  }
  return unwml::kSomeFailed;
}
