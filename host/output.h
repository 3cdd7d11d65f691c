/// \file
/// Buffered output.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_OUTPUT_H
#define VS_WML_HOST_OUTPUT_H

#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace vs_wml {

/// Collects bytes and hands them on in large pieces. The destination may throw; what
/// it throws passes through the call that filled the buffer.
class Output {
 public:
  using Destination = std::function<void(std::string_view)>;

  explicit Output(Destination destination) : destination_(std::move(destination)) {}
  Output(const Output &) = delete;
  Output &operator=(const Output &) = delete;

  Output &operator<<(std::string_view text) {
    buffer_.append(text);
    if (buffer_.size() >= kPiece) Flush();
    return *this;
  }
  Output &operator<<(char character) {
    buffer_.push_back(character);
    return *this;
  }
  Output &operator<<(std::size_t number) { return *this << std::to_string(number); }
  void Pad(std::size_t count, char character = ' ') { buffer_.append(count, character); }

  /// Hands on what is in the buffer. The destructor does not.
  void Flush() {
    if (!buffer_.empty()) destination_(buffer_);
    buffer_.clear();
  }

 private:
  static constexpr std::size_t kPiece = 65536;
  Destination destination_;
  std::string buffer_;
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_OUTPUT_H
