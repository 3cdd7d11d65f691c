// SPDX-License-Identifier: MIT
#include "output_folder.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace unwml {
namespace {

namespace fs = std::filesystem;

// A temporary file is ".unwml-" and letters and digits. Its owner holds a lock on it.
constexpr std::string_view kPrefix = ".unwml-";
constexpr std::size_t kFewestMarks = 6;
constexpr std::size_t kMostMarks = 16;
// Where files cannot be locked, one that has not changed for so long belongs to nobody.
constexpr std::time_t kLongDeadSeconds = 3600;

std::string TemporaryName() {
  std::uint64_t random = 0;
  if (getrandom(&random, sizeof random, 0) != sizeof random) ThrowSystem("random");
  std::array<char, kMostMarks + 1> marks{};
  std::snprintf(marks.data(), marks.size(), "%016llx", static_cast<unsigned long long>(random));
  return std::string(kPrefix) + marks.data();
}

bool IsTemporaryName(std::string_view name) {
  if (!name.starts_with(kPrefix)) return false;
  name.remove_prefix(kPrefix.size());
  return name.size() >= kFewestMarks && name.size() <= kMostMarks &&
         std::all_of(name.begin(), name.end(), [](char c) {
           return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
         });
}

// Removes a temporary file that was left behind: ours, older than this run, and held by nobody.
void RemoveIfLeft(int folder, const char *name, std::time_t begin) {
  struct stat status {};
  if (fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0) return;
  if (!S_ISREG(status.st_mode) || status.st_uid != geteuid() || status.st_mtime > begin) return;
  const Descriptor file(openat(folder, name, O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
  if (file.Get() < 0) return;
  const bool held = flock(file.Get(), LOCK_EX | LOCK_NB) != 0;
  const bool unknown = held && errno != EWOULDBLOCK;
  if (!held || (unknown && status.st_mtime + kLongDeadSeconds < begin)) unlinkat(folder, name, 0);
}

Descriptor OpenBelow(const Descriptor &folder, const std::string &name) {
  const auto open = [&] {
    return Descriptor(
        openat(folder.Get(), name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW));
  };
  Descriptor below = open();
  if (below.Get() < 0 && errno == ENOENT) {
    if (mkdirat(folder.Get(), name.c_str(), 0777) != 0 && errno != EEXIST) ThrowSystem(name);
    below = open();
  }
  if (below.Get() >= 0) return below;
  const int error = errno;
  struct stat status {};
  if (fstatat(folder.Get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
      S_ISLNK(status.st_mode)) {
    throw std::runtime_error(name + " is a symbolic link, which is not written through");
  }
  errno = error;
  ThrowSystem(name);
}

mode_t FileMode() {
  static const mode_t kMode = [] {
    const mode_t mask = umask(0);
    umask(mask);
    return static_cast<mode_t>(0666U & ~mask);
  }();
  return kMode;
}

// Closing tells of faults that a write did not; the lock is to be held on.
void CloseCopy(const Descriptor &file, const std::string &name) {
  const int copy = dup(file.Get());
  if (copy < 0 || close(copy) != 0) ThrowSystem(name);
}

}  // namespace

OutputFolder::OutputFolder(fs::path root, bool sync)
    : root_(std::move(root)), sync_(sync), begin_(std::time(nullptr)) {
  FileMode();  // before there are threads
}

Descriptor OutputFolder::OpenFolderOf(const fs::path &file) {
  const auto open_root = [&] {
    return Descriptor(open(root_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  };
  Descriptor folder = open_root();
  if (folder.Get() < 0 && errno == ENOENT) {
    std::error_code error;
    fs::create_directories(root_, error);
    if (error) throw std::system_error(error, root_.string());
    folder = open_root();
  }
  if (folder.Get() < 0) ThrowSystem(root_.string());
  const fs::path parent = file.parent_path();
  for (const fs::path &part : parent) folder = OpenBelow(folder, part.string());
  Clean(folder, parent.string());
  return folder;
}

bool OutputFolder::Has(const fs::path &file) const {
  struct stat status {};
  return lstat((root_ / file).c_str(), &status) == 0 && !S_ISDIR(status.st_mode);
}

void OutputFolder::Clean(const Descriptor &folder, const std::string &name) {
  const std::lock_guard lock(mutex_);
  if (!cleaned_.insert(name).second) return;
  const int copy = dup(folder.Get());
  const std::unique_ptr<DIR, int (*)(DIR *)> entries(copy < 0 ? nullptr : fdopendir(copy),
                                                     closedir);
  if (entries == nullptr) {
    if (copy >= 0) close(copy);
    return;
  }
  while (const dirent *entry = readdir(entries.get())) {
    if (IsTemporaryName(entry->d_name)) RemoveIfLeft(folder.Get(), entry->d_name, begin_);
  }
}

PendingFile::PendingFile(OutputFolder &folder, const fs::path &file)
    : sync_(folder.Sync()),
      shown_(folder.PathOf(file).string()),
      folder_(folder.OpenFolderOf(file)),
      name_(file.filename().string()) {
  while (!Create()) continue;
}

// False: another run took the file for one that was left behind before it could be locked.
bool PendingFile::Create() {
  constexpr mode_t kOwnerOnly = 0600;
  temporary_ = TemporaryName();
  const auto held = HoldSignals();
  file_ = Descriptor(openat(folder_.Get(), temporary_.c_str(),
                            O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, kOwnerOnly));
  if (file_.Get() < 0) ThrowSystem(shown_);
  struct stat status {};
  if (flock(file_.Get(), LOCK_EX) == 0 && fstat(file_.Get(), &status) == 0 &&
      status.st_nlink == 0) {
    return false;
  }
  Begin(held);
  return true;
}

PendingFile::~PendingFile() {
  const auto held = HoldSignals();
  if (!temporary_.empty()) PendingFile::Undo();
  End(held);
}

void PendingFile::Undo() noexcept {
  unlinkat(folder_.Get(), temporary_.c_str(), 0);
}

void PendingFile::Commit() {
  fchmod(file_.Get(), FileMode());
  if (sync_ && fsync(file_.Get()) != 0) ThrowSystem(shown_);
  CloseCopy(file_, shown_);
  const auto held = HoldSignals();
  if (renameat(folder_.Get(), temporary_.c_str(), folder_.Get(), name_.c_str()) != 0) {
    ThrowSystem(shown_);
  }
  temporary_.clear();
  End(held);
  if (sync_ && fsync(folder_.Get()) != 0) ThrowSystem(shown_);
}

}  // namespace unwml
