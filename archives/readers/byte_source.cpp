// SPDX-License-Identifier: MIT
#include "archives/readers/byte_source.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace vs_wml {
namespace {

constexpr std::size_t kMostInMemory = std::size_t{4} << 20U;

[[noreturn]] void ThrowSpoolFailure() {
  throw std::runtime_error(std::string("temporary file: ") + std::strerror(errno));
}

}  // namespace

StreamSource::StreamSource(std::istream &stream) : stream_(stream), begin_(stream.tellg()) {
  stream_.seekg(0, std::ios::end);
  const std::istream::pos_type end = stream_.tellg();
  size_ = static_cast<std::uint64_t>(end - begin_);
  stream_.seekg(begin_);
  if (!stream_) throw std::runtime_error("cannot seek");
}

std::size_t StreamSource::Read(char *to, std::size_t room) {
  stream_.read(to, static_cast<std::streamsize>(room));
  const auto count = static_cast<std::size_t>(stream_.gcount());
  if (stream_.bad()) throw std::runtime_error("cannot be read");
  if (stream_.eof()) stream_.clear();
  return count;
}

void StreamSource::Seek(std::uint64_t position) {
  stream_.clear();
  stream_.seekg(begin_ + static_cast<std::streamoff>(position));
  if (!stream_) throw std::runtime_error("cannot seek");
}

void Spool::Append(std::string_view bytes) {
  if (file_ == nullptr && memory_.size() + bytes.size() > kMostInMemory) {
    file_.reset(std::tmpfile());
    if (file_ == nullptr) ThrowSpoolFailure();
    const std::string held = std::exchange(memory_, {});
    if (std::fwrite(held.data(), 1, held.size(), file_.get()) != held.size()) ThrowSpoolFailure();
  }
  if (file_ == nullptr) {
    memory_ += bytes;
  } else if (std::fwrite(bytes.data(), 1, bytes.size(), file_.get()) != bytes.size()) {
    ThrowSpoolFailure();
  }
  size_ += bytes.size();
}

std::size_t Spool::Read(char *to, std::size_t room) {
  std::size_t count = 0;
  if (file_ != nullptr) {
    count = std::fread(to, 1, room, file_.get());
    if (std::ferror(file_.get()) != 0) ThrowSpoolFailure();
  } else {
    count = static_cast<std::size_t>(std::min<std::uint64_t>(room, size_ - position_));
    std::memcpy(to, memory_.data() + position_, count);
  }
  position_ += count;
  return count;
}

void Spool::Seek(std::uint64_t position) {
  position_ = position;
  if (file_ != nullptr && fseeko(file_.get(), static_cast<off_t>(position), SEEK_SET) != 0) {
    ThrowSpoolFailure();
  }
}

}  // namespace vs_wml
