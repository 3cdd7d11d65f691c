// Counts, limits and fails the library's heap calls. The test program is linked with
// --wrap for malloc, calloc, realloc and free, so that nothing in the library knows.
//
// SPDX-License-Identifier: MIT
#ifndef VS_WML_TESTS_SUPPORT_HEAP_PROBE_H
#define VS_WML_TESTS_SUPPORT_HEAP_PROBE_H

#include <cstddef>
#include <cstdint>

namespace vs_wml::test {

/// Watches the heap calls of this thread while it lives; one at a time.
class HeapProbe {
 public:
  /// The `failAt`-th allocation fails, counted from 1; 0: none does. With `forever`
  /// all later ones fail too.
  explicit HeapProbe(std::uint64_t failAt = 0, bool forever = false);
  ~HeapProbe();
  HeapProbe(const HeapProbe &) = delete;
  HeapProbe &operator=(const HeapProbe &) = delete;

  std::uint64_t allocations = 0;  ///< malloc, calloc and realloc calls, failed ones too
  std::uint64_t failures = 0;
  std::int64_t blocks = 0;   ///< in use now
  std::int64_t bytes = 0;    ///< in use now
  std::int64_t peak = 0;     ///< highest `bytes`
  std::uint8_t fill = 0xA5;  ///< what new blocks hold

  /// For the wrappers.
  bool Refuses();
  void Gained(void *block);
  void Lost(void *block);

 private:
  std::uint64_t failAt_;
  bool forever_;
};

}  // namespace vs_wml::test

#endif  // VS_WML_TESTS_SUPPORT_HEAP_PROBE_H
