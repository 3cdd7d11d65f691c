/// \file
/// The progress bar.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_UNWML_PROGRESS_H
#define VS_WML_UNWML_PROGRESS_H

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace unwml {

/// Shows on standard error, when that is a terminal and standard output is none, how
/// many of the documents are done, how fast and for how long still.
class Progress {
 public:
  explicit Progress(std::size_t documents);
  ~Progress() { Clear(); }
  Progress(const Progress &) = delete;
  Progress &operator=(const Progress &) = delete;

  void Advance(std::uint64_t bytes);
  /// Takes the bar away, before a message is written.
  void Clear();

 private:
  using Clock = std::chrono::steady_clock;
  void Show(Clock::time_point now);

  std::size_t documents_;
  bool active_;
  bool shown_ = false;
  std::size_t done_ = 0;
  std::uint64_t bytes_ = 0;
  Clock::time_point start_ = Clock::now();
  Clock::time_point last_ = start_;
};

}  // namespace unwml

#endif  // VS_WML_UNWML_PROGRESS_H
