/// \file
/// Texts that are kept together.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_TEXT_TEXT_ARENA_H
#define VS_WML_HOST_TEXT_TEXT_ARENA_H

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

namespace vs_wml {

/// Keeps texts in a few large blocks. The views it gives are valid as long as the arena,
/// also when it is moved.
class TextArena {
 public:
  /// A copy of the text; never a null view.
  std::string_view Keep(std::string_view text) {
    if (text.empty()) return "";
    if (left_ < text.size()) MakeRoom(text.size());
    char *const copy = next_;
    next_ = std::copy(text.begin(), text.end(), next_);
    left_ -= text.size();
    return {copy, text.size()};
  }

 private:
  static constexpr std::size_t kFirstBlock = 1024;
  static constexpr std::size_t kLargestBlock = 65536;

  void MakeRoom(std::size_t size) {
    left_ = std::max(size, blockSize_);
    blocks_.push_back(std::make_unique_for_overwrite<char[]>(left_));
    next_ = blocks_.back().get();
    blockSize_ = std::min(2 * blockSize_, kLargestBlock);
  }

  std::vector<std::unique_ptr<char[]>> blocks_;
  char *next_ = nullptr;
  std::size_t left_ = 0;
  std::size_t blockSize_ = kFirstBlock;
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_TEXT_TEXT_ARENA_H
