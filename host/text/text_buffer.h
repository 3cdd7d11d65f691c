/// \file
/// A growing text that takes one character at a time cheaply.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_TEXT_TEXT_BUFFER_H
#define VS_WML_HOST_TEXT_TEXT_BUFFER_H

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

namespace vs_wml {

/// Like a std::string, with room always made ahead, so that adding a character is one
/// comparison and one store. Views are valid until the next addition.
class TextBuffer {
 public:
  /// With room for so many bytes, which are not touched before they are needed.
  explicit TextBuffer(std::size_t room = 0) {
    storage_.reserve(room);
    Grow(kFirstSize);
  }
  TextBuffer(const TextBuffer &) = delete;
  TextBuffer &operator=(const TextBuffer &) = delete;

  /// Adds a character if there is room for it at once.
  bool TryAdd(char character) {
    if (cursor_ == end_) return false;
    *cursor_++ = character;
    return true;
  }
  void Add(char character) {
    if (cursor_ == end_) Grow(1);
    *cursor_++ = character;
  }
  void Add(std::string_view text) {
    if (static_cast<std::size_t>(end_ - cursor_) < text.size()) Grow(text.size());
    cursor_ = std::copy(text.begin(), text.end(), cursor_);
  }
  /// Room for so many characters behind the text, to be written there and taken in by Fill.
  char *Room(std::size_t count) {
    if (static_cast<std::size_t>(end_ - cursor_) < count) Grow(count);
    return cursor_;
  }
  void Fill(std::size_t count) { cursor_ += count; }
  /// Adds a text that is `readable` bytes long with what lies behind it in memory. A short
  /// one is copied with some of that, whatever its length is, which is hard to predict.
  void AddFrom(std::string_view text, std::size_t readable) {
    constexpr std::size_t kShort = 32;
    const auto room = static_cast<std::size_t>(end_ - cursor_);
    if (text.size() > kShort || std::min(room, readable) < kShort) {
      Add(text);
    } else {
      std::memcpy(cursor_, text.data(), kShort);
      cursor_ += text.size();
    }
  }

  void Truncate(std::size_t size) { cursor_ = storage_.data() + size; }
  void Clear() { Truncate(0); }

  std::size_t Size() const { return static_cast<std::size_t>(cursor_ - storage_.data()); }
  std::string_view View() const { return {storage_.data(), Size()}; }
  char operator[](std::size_t offset) const { return storage_[offset]; }

  /// The text; the buffer is not to be used any more.
  std::string Take() && {
    storage_.resize(Size());
    return std::move(storage_);
  }

 private:
  static constexpr std::size_t kFirstSize = 256;
  static constexpr std::size_t kStep = 65536;  // stays in the processor's cache

  void Grow(std::size_t least) {
    const std::size_t used = cursor_ == nullptr ? 0 : Size();
    storage_.resize(used + std::max(least, std::min(std::max(used, kFirstSize), kStep)));
    cursor_ = storage_.data() + used;
    end_ = storage_.data() + storage_.size();
  }

  std::string storage_;
  char *cursor_ = nullptr;
  char *end_ = nullptr;
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_TEXT_TEXT_BUFFER_H
