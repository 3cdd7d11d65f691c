/// \file
/// A growing text that takes one character at a time cheaply.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_TEXT_BUFFER_H
#define VS_WML_HOST_TEXT_BUFFER_H

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace vs_wml {

/// Like a std::string, with room always made ahead, so that adding a character is one
/// comparison and one store. Views are valid until the next addition.
class TextBuffer {
 public:
  TextBuffer() { Reserve(kFirstSize); }
  TextBuffer(const TextBuffer &) = delete;
  TextBuffer &operator=(const TextBuffer &) = delete;

  /// Adds a character if there is room for it at once.
  bool TryAdd(char character) {
    if (cursor_ == end_) return false;
    *cursor_++ = character;
    return true;
  }
  void Add(char character) {
    if (cursor_ == end_) Reserve(2 * storage_.size());
    *cursor_++ = character;
  }
  void Add(std::string_view text) {
    if (static_cast<std::size_t>(end_ - cursor_) < text.size()) {
      Reserve(2 * storage_.size() + text.size());
    }
    cursor_ = std::copy(text.begin(), text.end(), cursor_);
  }
  void Truncate(std::size_t size) { cursor_ = storage_.data() + size; }
  void Clear() { Truncate(0); }

  std::size_t Size() const { return static_cast<std::size_t>(cursor_ - storage_.data()); }
  std::string_view View() const { return {storage_.data(), Size()}; }
  char operator[](std::size_t offset) const { return storage_[offset]; }

 private:
  static constexpr std::size_t kFirstSize = 256;

  void Reserve(std::size_t size) {
    const std::size_t used = cursor_ == nullptr ? 0 : Size();
    storage_.resize(size);
    cursor_ = storage_.data() + used;
    end_ = storage_.data() + storage_.size();
  }

  std::string storage_;
  char *cursor_ = nullptr;
  char *end_ = nullptr;
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_TEXT_BUFFER_H
