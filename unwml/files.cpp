// SPDX-License-Identifier: MIT
#include "files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <system_error>

namespace unwml {
namespace {

// Offsets of the filter have 32 bits.
constexpr std::size_t kLargestDocument = 0xFFFF0000U;
constexpr std::size_t kPiece = 65536;

[[noreturn]] void ThrowReason() {
  throw std::runtime_error(std::strerror(errno));
}

// Opens without waiting for who would write into a pipe.
int OpenFile(const std::string &path, Origin origin) {
  const int waiting = origin == Origin::kFound ? O_NONBLOCK : 0;
  return open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | waiting);
}

}  // namespace

Descriptor::~Descriptor() {
  if (descriptor_ > STDERR_FILENO) close(descriptor_);
}

void ThrowSystem(const std::string &what) {
  throw std::system_error(errno, std::generic_category(), what);
}

std::string ReadWhole(const std::string &path, Origin origin) {
  const Descriptor file(path == "-" ? STDIN_FILENO : OpenFile(path, origin));
  if (file.Get() < 0) ThrowReason();
  struct stat status {};
  if (fstat(file.Get(), &status) != 0) ThrowReason();
  if (S_ISDIR(status.st_mode)) throw std::runtime_error("is a directory");
  if (origin == Origin::kFound && path != "-" && !S_ISREG(status.st_mode)) {
    throw std::runtime_error("not a regular file");
  }
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

void WriteAll(int descriptor, std::string_view bytes, const std::string &name) {
  while (!bytes.empty()) {
    const ssize_t count = write(descriptor, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) ThrowSystem(name);
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
}

}  // namespace unwml
