// SPDX-License-Identifier: MIT
#include "host/blocks/block_source.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>

namespace vs_wml {

BlockSource::BlockSource() : record_{{nullptr, Read, nullptr, Seek, Tell}, this} {}

std::uint32_t BlockSource::Read(VwHandle self, void *buffer, std::uint32_t wanted,
                                std::uint32_t *delivered) {
  BlockSource &source = Owner(self);
  *delivered = 0;
  if (source.served_ >= source.limit_) {
    source.exhausted_ = true;
    return 1;
  }
  const std::uint32_t count = source.ReadAt(source.position_, static_cast<char *>(buffer), wanted);
  source.position_ += count;
  source.served_ += count;
  *delivered = count;
  return 0;
}

std::uint32_t BlockSource::Seek(VwHandle self, std::uint32_t origin, std::uint32_t offset) {
  BlockSource &source = Owner(self);
  if (origin != 0 && origin != 2) return 1;
  source.position_ = origin == 0 ? offset : source.Size() + offset;
  return 0;
}

std::uint32_t BlockSource::Tell(VwHandle self, std::uint32_t *position) {
  *position = Owner(self).position_;
  return 0;
}

std::uint32_t MemorySource::ReadAt(std::uint32_t position, char *buffer, std::uint32_t wanted) {
  if (position >= bytes_.size()) return 0;
  const std::string_view rest = bytes_.substr(position, wanted);
  std::memcpy(buffer, rest.data(), rest.size());
  return static_cast<std::uint32_t>(rest.size());
}

FileSource::FileSource(const std::string &path) : file_(std::fopen(path.c_str(), "rb")) {
  if (!file_) throw std::system_error(errno, std::generic_category(), path);
}

std::uint32_t FileSource::ReadAt(std::uint32_t position, char *buffer, std::uint32_t wanted) {
  if (std::fseek(file_.get(), static_cast<long>(position), SEEK_SET) != 0) return 0;
  return static_cast<std::uint32_t>(std::fread(buffer, 1, wanted, file_.get()));
}

std::uint32_t FileSource::Size() {
  if (std::fseek(file_.get(), 0, SEEK_END) != 0) return 0;
  return static_cast<std::uint32_t>(std::max(std::ftell(file_.get()), 0L));
}

}  // namespace vs_wml
