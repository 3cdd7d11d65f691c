// SPDX-License-Identifier: MIT
#include "tests/support/heap_probe.h"

#include <malloc.h>

#include <algorithm>
#include <cstring>

extern "C" {
void *__real_malloc(std::size_t size);
void *__real_calloc(std::size_t count, std::size_t size);
void *__real_realloc(void *block, std::size_t size);
void __real_free(void *block);
void *__wrap_malloc(std::size_t size);
void *__wrap_calloc(std::size_t count, std::size_t size);
void *__wrap_realloc(void *block, std::size_t size);
void __wrap_free(void *block);
}

namespace vs_wml::test {
namespace {

thread_local HeapProbe *active = nullptr;

}  // namespace

HeapProbe::HeapProbe(std::uint64_t failAt, bool forever) : failAt_(failAt), forever_(forever) {
  active = this;
}

HeapProbe::~HeapProbe() {
  active = nullptr;
}

bool HeapProbe::Refuses() {
  ++allocations;
  const bool refuses =
      failAt_ != 0 && (allocations == failAt_ || (forever_ && allocations > failAt_));
  if (refuses) ++failures;
  return refuses;
}

void HeapProbe::Gained(void *block) {
  if (block == nullptr) return;
  ++blocks;
  bytes += static_cast<std::int64_t>(malloc_usable_size(block));
  peak = std::max(peak, bytes);
}

void HeapProbe::Lost(void *block) {
  if (block == nullptr) return;
  --blocks;
  bytes -= static_cast<std::int64_t>(malloc_usable_size(block));
}

}  // namespace vs_wml::test

using vs_wml::test::active;

void *__wrap_malloc(std::size_t size) {
  if (active == nullptr) return __real_malloc(size);
  if (active->Refuses()) return nullptr;
  void *block = __real_malloc(size);
  if (block != nullptr) std::memset(block, active->fill, size);
  active->Gained(block);
  return block;
}

void *__wrap_calloc(std::size_t count, std::size_t size) {
  if (active == nullptr) return __real_calloc(count, size);
  if (active->Refuses()) return nullptr;
  void *block = __real_calloc(count, size);
  active->Gained(block);
  return block;
}

void *__wrap_realloc(void *block, std::size_t size) {
  if (active == nullptr) return __real_realloc(block, size);
  if (active->Refuses()) return nullptr;
  active->Lost(block);
  void *moved = __real_realloc(block, size);
  active->Gained(moved);
  return moved;
}

void __wrap_free(void *block) {
  if (active != nullptr) active->Lost(block);
  __real_free(block);
}
