// SPDX-License-Identifier: MIT
#include "files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "host/text/utf8.h"

namespace unwml {
namespace {

// Offsets of the filter have 32 bits.
constexpr std::size_t kLargestDocument = 0xFFFF0000U;
constexpr std::size_t kPiece = 65536;

class Descriptor {
 public:
  explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
  ~Descriptor() {
    if (descriptor_ > STDERR_FILENO) close(descriptor_);
  }
  Descriptor(const Descriptor &) = delete;
  Descriptor &operator=(const Descriptor &) = delete;
  int Get() const { return descriptor_; }

 private:
  int descriptor_;
};

[[noreturn]] void ThrowSystem(const std::string &what) {
  throw std::system_error(errno, std::generic_category(), what);
}

[[noreturn]] void ThrowReason() {
  throw std::runtime_error(std::strerror(errno));
}

mode_t FileMode() {
  static const mode_t kMode = [] {
    const mode_t mask = umask(0);
    umask(mask);
    return static_cast<mode_t>(0666U & ~mask);
  }();
  return kMode;
}

}  // namespace

std::string ReadWhole(const std::string &path) {
  const Descriptor file(path == "-" ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (file.Get() < 0) ThrowReason();
  struct stat status {};
  if (fstat(file.Get(), &status) != 0) ThrowReason();
  if (S_ISDIR(status.st_mode)) throw std::runtime_error("is a directory");
  const auto expected = S_ISREG(status.st_mode) ? static_cast<std::size_t>(status.st_size) : 0;
  if (expected > kLargestDocument) throw std::runtime_error("larger than 4 GiB");

  std::string bytes;
  std::size_t used = 0;
  // One byte more than expected, so that the end is seen without growing.
  bytes.resize(expected + 1);
  while (true) {
    if (used == bytes.size()) bytes.resize(used + std::max(used, kPiece));
    const ssize_t count = read(file.Get(), bytes.data() + used, bytes.size() - used);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) ThrowReason();
    if (count == 0) break;
    used += static_cast<std::size_t>(count);
    if (used > kLargestDocument) throw std::runtime_error("larger than 4 GiB");
  }
  bytes.resize(used);
  return bytes;
}

void WriteAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = write(descriptor, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) ThrowSystem("write");
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
}

PendingFile::PendingFile(std::string path) : path_(std::move(path)) {
  const std::filesystem::path directory = std::filesystem::path(path_).parent_path();
  temporary_ = (directory / ".unwml-XXXXXX").string();
  descriptor_ = mkstemp(temporary_.data());
  if (descriptor_ < 0 && errno == ENOENT) {
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    if (error) throw std::system_error(error, directory.string());
    temporary_ = (directory / ".unwml-XXXXXX").string();
    descriptor_ = mkstemp(temporary_.data());
  }
  if (descriptor_ < 0) ThrowSystem(directory.string());
}

PendingFile::~PendingFile() {
  if (descriptor_ >= 0) close(descriptor_);
  if (!temporary_.empty()) unlink(temporary_.c_str());
}

void PendingFile::Commit() {
  fchmod(descriptor_, FileMode());
  const int closed = close(std::exchange(descriptor_, -1));
  if (closed != 0) ThrowSystem(path_);
  if (rename(temporary_.c_str(), path_.c_str()) != 0) ThrowSystem(path_);
  temporary_.clear();
}

std::string Printable(std::string_view name) {
  std::string printable;
  for (std::size_t offset = 0; offset < name.size();) {
    const char32_t character = vs_wml::NextCharacter(name, offset);
    if (vs_wml::IsControl(character)) {
      printable += '?';
    } else {
      vs_wml::AppendUtf8(printable, character);
    }
  }
  return printable;
}

}  // namespace unwml
