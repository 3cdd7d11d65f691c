/// \file
/// Reading and writing whole files.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_UNWML_FILES_H
#define VS_WML_UNWML_FILES_H

#include <string>
#include <string_view>

namespace unwml {

/// The bytes of a file, or of standard input for "-". Throws std::runtime_error with
/// the reason, without the name.
std::string ReadWhole(const std::string &path);

/// Writes all of `bytes`. Throws std::system_error.
void WriteAll(int descriptor, std::string_view bytes);

/// A file that appears under its name only when it is complete: it is written under
/// another and renamed. What is not committed is removed.
class PendingFile {
 public:
  /// Makes the directories that are missing. Throws std::system_error.
  explicit PendingFile(std::string path);
  ~PendingFile();
  PendingFile(const PendingFile &) = delete;
  PendingFile &operator=(const PendingFile &) = delete;

  void Write(std::string_view bytes) { WriteAll(descriptor_, bytes); }
  void Commit();

 private:
  std::string path_;
  std::string temporary_;
  int descriptor_ = -1;
};

/// A name for messages: control characters shown as '?', so that none reaches a terminal.
std::string Printable(std::string_view name);

}  // namespace unwml

#endif  // VS_WML_UNWML_FILES_H
