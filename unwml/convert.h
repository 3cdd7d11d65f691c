/// \file
/// One document from its name to its output.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_UNWML_CONVERT_H
#define VS_WML_UNWML_CONVERT_H

#include <cstdint>
#include <exception>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/text/output.h"
#include "host/text/warnings.h"
#include "inputs.h"
#include "options.h"
#include "output_folder.h"
#include "standard_output.h"

namespace unwml {

/// What all documents share. Everything has to outlive the converters.
struct Work {
  const Options &options;
  const Inputs &inputs;
  OutputFolder *folder;  ///< where outputs go, null: standard output
  StandardOutput &standardOutput;
};

/// What became of a document.
struct Outcome {
  /// What is still to be written to standard output.
  std::optional<DocumentOutput> output;
  std::string error;         ///< empty: it was read
  std::exception_ptr fatal;  ///< why no further document can be worked on, null otherwise
  std::vector<vs_wml::Warning> warnings;
  bool skipped = false;     ///< there was an output already
  std::uint64_t bytes = 0;  ///< its size
};

/// Converts documents one after the other; each thread has its own.
class Converter {
 public:
  explicit Converter(const Work &work) : work_(work) {}

  /// To the input's own file, or to standard output, of which a small document takes nothing
  /// until it is read. `awaitTurn` is for DocumentOutput.
  Outcome Convert(const Input &input, const std::function<void()> &awaitTurn) noexcept;

 private:
  void Run(const Input &input, const vs_wml::Output::Destination &destination, Outcome &outcome);
  void Write(vs_wml::Deck &deck, const vs_wml::Output::Destination &destination) const;
  void ToFile(const Input &input, Outcome &outcome);
  void ToStandardOutput(const Input &input, Outcome &outcome);

  Work work_;
};

}  // namespace unwml

#endif  // VS_WML_UNWML_CONVERT_H
