/// \file
/// The pager that long output on a terminal is read with.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_UNWML_PAGER_H
#define VS_WML_UNWML_PAGER_H

#include <sys/types.h>

#include <optional>
#include <string>
#include <string_view>

#include "files.h"
#include "signals.h"

namespace unwml {

/// The command of the pager: UNWML_PAGER, PAGER or less, the first that is set. Nothing when it
/// is empty or cat, or is not installed.
std::optional<std::string> PagerCommand();

/// Whether a text has more lines than the screen that standard output is.
bool ExceedsScreen(std::string_view text);

/// A pager that runs: standard output, and standard error if that is a terminal, go into it. A
/// signal that ends the program waits for it.
class Pager : private Undoable {
 public:
  /// Throws std::system_error when it cannot be started.
  explicit Pager(const std::string &command);
  /// Ends its input, waits until people leave it, and gives the two streams back.
  ~Pager() override;

 private:
  void Undo() noexcept override;
  void Wait() const;

  Descriptor output_;  // the streams as they were
  Descriptor errors_;
  pid_t process_ = -1;
};

}  // namespace unwml

#endif  // VS_WML_UNWML_PAGER_H
