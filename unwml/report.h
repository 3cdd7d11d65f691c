/// \file
/// What is told of the documents and at the end of them.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_UNWML_REPORT_H
#define VS_WML_UNWML_REPORT_H

#include <chrono>
#include <cstddef>

#include "convert.h"
#include "inputs.h"
#include "options.h"
#include "progress.h"

namespace unwml {

/// Tells of failures, of warnings where the output does not hold them, and counts.
class Report {
 public:
  Report(const Options &options, const Inputs &inputs);

  void Add(const Input &input, const Outcome &outcome);
  /// Tells the sums, where that is wanted.
  void Finish();
  bool Failed() const { return failed_ != 0; }

 private:
  void TellSummary() const;

  const Options &options_;
  const Inputs &inputs_;
  Progress progress_;
  std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
  bool tellsWarnings_;
  std::size_t read_ = 0;
  std::size_t warned_ = 0;
  std::size_t failed_ = 0;
  std::size_t skipped_ = 0;
};

}  // namespace unwml

#endif  // VS_WML_UNWML_REPORT_H
