// SPDX-License-Identifier: MIT
// heap_use DECK...: what one pass of each contender takes from the heap. One line a deck and
// contender: deck, contender, allocations, greatest number of bytes held at a time.
#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <exception>

#include "contender.h"

namespace {

struct Heap {
  uint64_t allocations;
  size_t held;
  size_t most;
};
Heap heap;

void *Took(void *memory) {
  heap.allocations++;
  heap.held += malloc_usable_size(memory);
  heap.most = std::max(heap.most, heap.held);
  return memory;
}

void Gave(void *memory) {
  heap.held -= malloc_usable_size(memory);
}

}  // namespace

// The C library's own allocator, under names that it keeps for programs which replace it.
extern "C" {
void *__libc_malloc(size_t size);
void *__libc_calloc(size_t count, size_t size);
void *__libc_realloc(void *memory, size_t size);
void __libc_free(void *memory);

void *malloc(size_t size) {
  return Took(__libc_malloc(size));
}
void *calloc(size_t count, size_t size) {
  return Took(__libc_calloc(count, size));
}
void *realloc(void *memory, size_t size) {
  Gave(memory);
  return Took(__libc_realloc(memory, size));
}
void free(void *memory) {
  Gave(memory);
  __libc_free(memory);
}
}

int main(int argc, char **argv) try {
  const std::vector<Contender> contenders = AllContenders({});
  for (int i = 1; i < argc; ++i) {
    const Document document = LoadDocument(argv[i]);
    for (const Contender &contender : contenders) {
      Tally tally{};
      if (!contender.pass(document, &tally)) continue;  // and what is set up only once
      const Heap before = heap;
      heap.most = heap.held;
      contender.pass(document, &tally);
      std::printf("%s\t%s\t%llu\t%zu\n", document.name.c_str(), contender.name.c_str(),
                  static_cast<unsigned long long>(heap.allocations - before.allocations),
                  heap.most - before.held);
    }
  }
  return 0;
} catch (const std::exception &error) {
  std::fprintf(stderr, "heap_use: %s\n", error.what());
  return 2;
}
