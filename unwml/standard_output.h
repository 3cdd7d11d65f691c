/// \file
/// Standard output, where one document follows the other.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_UNWML_STANDARD_OUTPUT_H
#define VS_WML_UNWML_STANDARD_OUTPUT_H

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "pager.h"

namespace unwml {

/// Standard output failed, not a document: nothing more can be written.
class OutputFailure : public std::system_error {
 public:
  explicit OutputFailure(std::error_code code) : std::system_error(code) {}
};

/// Standard output, through a pager if that is wanted and the output is longer than the screen.
class StandardOutput {
 public:
  explicit StandardOutput(bool pager);

  /// Throws OutputFailure.
  void Write(std::string_view bytes);
  /// Writes what is held back for a pager that does not come, or waits until people leave the
  /// one that came. Throws OutputFailure.
  void Finish();
  /// The same, where nothing more can be written.
  void Abandon();

 private:
  std::optional<std::string> command_;  // of the pager, as long as it may come
  std::string held_;
  std::optional<Pager> pager_;
};

/// What is written of one document. It is held back until the document is read, so that nothing
/// is seen of one that fails; what is larger than kMostHeld goes out when it is the document's
/// turn, and then as it comes.
class DocumentOutput {
 public:
  static constexpr std::size_t kMostHeld = 1U << 20U;

  /// `awaitTurn` returns when all documents before this one have been written.
  DocumentOutput(StandardOutput &output, std::function<void()> awaitTurn)
      : output_(&output), awaitTurn_(std::move(awaitTurn)) {}

  /// Throws OutputFailure and what `awaitTurn` throws.
  void Write(std::string_view piece);
  /// The document failed: forgets what is held, and ends the line that was begun. Whether
  /// something of it was written. Throws OutputFailure.
  bool Fail();
  /// Writes what is held; to be called when it is the document's turn. Throws OutputFailure.
  void Finish();

 private:
  StandardOutput *output_;
  std::function<void()> awaitTurn_;
  std::vector<std::string> held_;
  std::size_t size_ = 0;
  bool written_ = false;
  char last_ = '\n';
};

}  // namespace unwml

#endif  // VS_WML_UNWML_STANDARD_OUTPUT_H
