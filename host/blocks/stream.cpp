// SPDX-License-Identifier: MIT
#include "host/blocks/stream.h"

#include <new>

namespace vs_wml {

Stream::Stream(BlockSource &source, std::int16_t identity, std::span<const OutputRoutine> routines,
               void *user)
    : source_(source), instance_(VwAllocProc()) {
  if (instance_ == nullptr) throw std::bad_alloc();
  VwLocalUp(source.Handle(), &handle_, instance_);
  if (handle_ == 0) {
    VwFreeProc(instance_);
    throw std::bad_alloc();
  }
  for (const OutputRoutine &entry : routines) VwSetSoRtn(entry.slot, entry.routine, instance_);
  VwSetUser(reinterpret_cast<VwUserWord>(user), 0, instance_);
  VwStreamOpen(handle_, identity, 0, &info_, instance_);
}

Stream::~Stream() {
  VwHandle block = 0;
  VwStreamClose(handle_, instance_);
  VwLocalDown(handle_, &block);
  VwFreeProc(instance_);
}

std::uint32_t Stream::Offset() const {
  VwStreamPos position{};
  VwStreamTell(handle_, &position);
  return position.offset;
}

}  // namespace vs_wml
