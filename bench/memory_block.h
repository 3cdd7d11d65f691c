// SPDX-License-Identifier: MIT
// A block handle over a document in memory.
#ifndef VS_WML_BENCH_MEMORY_BLOCK_H
#define VS_WML_BENCH_MEMORY_BLOCK_H

#include <algorithm>
#include <string_view>

#include "vs_wml.h"

class MemoryBlock {
 public:
  explicit MemoryBlock(std::string_view bytes) : bytes_(bytes) {}
  MemoryBlock(const MemoryBlock &) = delete;
  MemoryBlock &operator=(const MemoryBlock &) = delete;

  VwHandle Handle() { return reinterpret_cast<VwHandle>(&handle_); }
  VwBlockHandle &Routines() { return handle_; }

 private:
  static MemoryBlock &Self(VwHandle handle) { return *reinterpret_cast<MemoryBlock *>(handle); }

  static uint32_t Read(VwHandle handle, void *buffer, uint32_t wanted, uint32_t *delivered) {
    MemoryBlock &self = Self(handle);
    const size_t start = std::min(self.position_, self.bytes_.size());
    *delivered =
        static_cast<uint32_t>(self.bytes_.copy(static_cast<char *>(buffer), wanted, start));
    self.position_ += *delivered;
    return 0;
  }
  static uint32_t Seek(VwHandle handle, uint32_t origin, uint32_t offset) {
    Self(handle).position_ = offset + (origin == 2 ? Self(handle).bytes_.size() : 0);
    return 0;
  }
  static uint32_t Tell(VwHandle handle, uint32_t *position) {
    *position = static_cast<uint32_t>(Self(handle).position_);
    return 0;
  }

  VwBlockHandle handle_{nullptr, Read, nullptr, Seek, Tell};  // first: its address is the handle
  std::string_view bytes_;
  size_t position_ = 0;
};

#endif  // VS_WML_BENCH_MEMORY_BLOCK_H
