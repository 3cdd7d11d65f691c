/// \file
/// Buffered output.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_TEXT_OUTPUT_H
#define VS_WML_HOST_TEXT_OUTPUT_H

#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "host/text/text_buffer.h"

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
    if (buffer_.Size() == 0 && text.size() >= kLongText) {
      destination_(text);
      return *this;
    }
    buffer_.Add(text);
    if (buffer_.Size() >= kPiece) Flush();
    return *this;
  }
  Output &operator<<(char character) {
    buffer_.Add(character);
    return *this;
  }
  Output &operator<<(std::size_t number) { return *this << std::to_string(number); }
  /// Room for so many characters behind what was written, which Fill takes in.
  char *Room(std::size_t count) {
    if (buffer_.Size() >= kPiece) Flush();
    return buffer_.Room(count);
  }
  void Fill(std::size_t count) { buffer_.Fill(count); }
  /// A part of a larger text.
  void WritePart(std::string_view whole, std::size_t begin, std::size_t end) {
    buffer_.AddFrom(whole.substr(begin, end - begin), whole.size() - begin);
    if (buffer_.Size() >= kPiece) Flush();
  }
  void Pad(std::size_t blanks) {
    constexpr std::string_view kBlanks = "                                ";
    for (; blanks > kBlanks.size(); blanks -= kBlanks.size()) buffer_.Add(kBlanks);
    buffer_.AddFrom(kBlanks.substr(0, blanks), kBlanks.size());
  }

  /// Hands on what is in the buffer. The destructor does not.
  void Flush() {
    if (buffer_.Size() != 0) destination_(buffer_.View());
    buffer_.Clear();
  }

 private:
  static constexpr std::size_t kPiece = 65536;
  static constexpr std::size_t kLongText = kPiece / 4;  // not worth a copy
  Destination destination_;
  TextBuffer buffer_;
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_TEXT_OUTPUT_H
