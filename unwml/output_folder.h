/// \file
/// The folder that outputs are written under.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_UNWML_OUTPUT_FOLDER_H
#define VS_WML_UNWML_OUTPUT_FOLDER_H

#include <ctime>
#include <filesystem>
#include <mutex>
#include <set>
#include <string>
#include <string_view>

#include "files.h"
#include "signals.h"

namespace unwml {

/// A folder and what is below it. Symbolic links below it are not written through. May be used
/// by several threads.
class OutputFolder {
 public:
  /// With `sync` a file is on the disk before it appears under its name.
  OutputFolder(std::filesystem::path root, bool sync);

  /// Opens the folder of a relative path; makes what is missing, and removes what earlier runs
  /// have left there half-written. Throws std::system_error and std::runtime_error.
  Descriptor OpenFolderOf(const std::filesystem::path &file);

  /// Whether there is a file at a relative path. Throws nothing.
  bool Has(const std::filesystem::path &file) const;

  /// The path of a file, for people.
  std::filesystem::path PathOf(const std::filesystem::path &file) const { return root_ / file; }
  bool Sync() const { return sync_; }

 private:
  void Clean(const Descriptor &folder, const std::string &name);

  std::filesystem::path root_;
  bool sync_;
  std::time_t begin_;
  std::mutex mutex_;
  std::set<std::string> cleaned_;
};

/// A file that appears under its name only when it is complete: it is written under another one
/// and renamed. What is not committed is removed, also when a signal ends the program.
class PendingFile : private Undoable {
 public:
  /// `file` is relative to `folder`. Throws as OutputFolder::OpenFolderOf does.
  PendingFile(OutputFolder &folder, const std::filesystem::path &file);
  ~PendingFile() override;

  void Write(std::string_view bytes) { WriteAll(file_.Get(), bytes, shown_); }
  void Commit();

 private:
  bool Create();
  void Undo() noexcept override;

  bool sync_;
  std::string shown_;  // in messages
  Descriptor folder_;
  std::string name_;
  std::string temporary_;
  Descriptor file_;
};

}  // namespace unwml

#endif  // VS_WML_UNWML_OUTPUT_FOLDER_H
