/// \file
/// What is said of a document that is not as it should be.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_TEXT_WARNINGS_H
#define VS_WML_HOST_TEXT_WARNINGS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vs_wml {

/// Collects warnings, each kind once, with the line where it was met first.
class Warnings {
 public:
  explicit Warnings(std::string_view document) : document_(document) {}

  /// `message` is a literal: a kind is known by its address.
  void Add(const char *message, std::size_t offset);
  std::vector<std::string> Take() { return std::move(texts_); }

 private:
  std::string_view document_;
  std::vector<const char *> kinds_;
  std::vector<std::string> texts_;
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_TEXT_WARNINGS_H
