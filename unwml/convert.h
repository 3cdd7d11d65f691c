/// \file
/// One document from its name to its output.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_UNWML_CONVERT_H
#define VS_WML_UNWML_CONVERT_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/text/output.h"
#include "host/writer.h"
#include "inputs.h"
#include "options.h"

namespace unwml {

/// What became of a document.
struct Outcome {
  /// What goes to standard output, in pieces; nothing of a document that failed.
  std::vector<std::string> output;
  std::string error;        ///< empty: it was read
  std::uint64_t bytes = 0;  ///< its size
};

/// Converts documents one after the other; each thread has its own.
class Converter {
 public:
  explicit Converter(const Options &options) : options_(options) {}

  /// To the input's own file, or collected in the outcome: standard output gets whole
  /// documents only.
  Outcome Convert(const Input &input);

 private:
  std::uint64_t Run(const Input &input, const vs_wml::Output::Destination &destination);

  const Options &options_;
};

}  // namespace unwml

#endif  // VS_WML_UNWML_CONVERT_H
