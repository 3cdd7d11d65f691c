// SPDX-License-Identifier: MIT
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <system_error>

#include "batch.h"
#include "convert.h"
#include "files.h"
#include "inputs.h"
#include "options.h"
#include "progress.h"

namespace unwml {
namespace {

// Standard output failed, not a document: nothing more can be written.
class OutputFailure : public std::system_error {
 public:
  explicit OutputFailure(std::error_code code) : std::system_error(code) {}
};

void WriteToStandardOutput(std::string_view bytes) {
  try {
    WriteAll(STDOUT_FILENO, bytes);
  } catch (const std::system_error &failure) {
    throw OutputFailure(failure.code());
  }
}

int Run(Options options) {
  const Inputs inputs = FindInputs(options);
  const bool toOutput = options.outputDirectory.empty();
  if (toOutput && inputs.several && options.format->writer == vs_wml::Format::kHtml) {
    std::cerr << "unwml: HTML of more than one input needs -o DIR\n";
    return kWrongUsage;
  }
  options.writer.nameHeading = toOutput && inputs.several;

  Progress progress(inputs.list.size());
  bool failed = false;
  const auto take = [&](const Input &input, const Outcome &outcome) {
    for (const std::string &piece : outcome.output) WriteToStandardOutput(piece);
    progress.Advance(outcome.bytes);
    if (outcome.error.empty()) return;
    failed = true;
    progress.Clear();
    std::cerr << "unwml: " << Printable(input.path) << ": " << Printable(outcome.error) << '\n';
  };

  if (options.jobs == 1) {
    Converter converter(options);
    for (const Input &input : inputs.list) take(input, converter.Convert(input));
  } else {
    ConvertAll(options, inputs, take);
  }
  return failed ? kSomeFailed : kAllRead;
}

// The memory of a document serves its output and the next document; giving it back and
// fetching it anew takes longer than reading. Where the system has huge pages, the first
// documents lie in them: fetching small ones takes a tenth of the time of a reading.
void PrepareHeap() {
  constexpr int kKeptBytes = 32 << 20;
  mallopt(M_MMAP_THRESHOLD, kKeptBytes);
  mallopt(M_TRIM_THRESHOLD, 2 * kKeptBytes);
  constexpr std::size_t kHugePage = 2U << 20U;
  constexpr std::size_t kHugeBytes = 8 * kHugePage;
  void *const heap = std::aligned_alloc(kHugePage, kHugeBytes);
  if (heap != nullptr) madvise(heap, kHugeBytes, MADV_HUGEPAGE);
  std::free(heap);
}

}  // namespace
}  // namespace unwml

int main(int argc, char **argv) {
  unwml::PrepareHeap();
  // A closed pipe is an error of the write, not a signal.
  std::signal(SIGPIPE, SIG_IGN);
  int exitCode = 0;
  try {
    const auto options = unwml::ParseOptions(argc, argv, exitCode);
    return options ? unwml::Run(*options) : exitCode;
  } catch (const unwml::OutputFailure &failure) {
    // Whoever closes the pipe has seen enough.
    if (failure.code().value() == EPIPE) return unwml::kAllRead;
    std::cerr << "unwml: standard output: " << failure.code().message() << '\n';
  } catch (const std::exception &failure) {
    std::cerr << "unwml: " << unwml::Printable(failure.what()) << '\n';
  }
  return unwml::kSomeFailed;
}
