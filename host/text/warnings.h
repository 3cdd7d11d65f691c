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

struct Warning {
  std::size_t line = 0;  ///< of the document, from 1 on; 0: it is about all of it
  std::string message;   ///< in English
  std::string text;      ///< what of the document is left out, empty: nothing
};

/// A warning as a line of text: "line 3: text outside of the cards is left out: Hello".
std::string WarningText(const Warning &warning);

/// Collects warnings of a document.
class Warnings {
 public:
  explicit Warnings(std::string_view document) : document_(document) {}

  /// Says it once, with the line where it was met first. `message` is a literal: a kind is
  /// known by its address.
  void Add(const char *message, std::size_t offset);
  /// Says each time what is left out, once a line. `text` points into the document.
  void AddLoss(const char *message, std::string_view text);
  /// The warnings in the order of their lines.
  std::vector<Warning> Take();

 private:
  struct Entry {
    std::size_t offset;
    const char *message;
    std::string text;
    std::size_t end;  // of the text in the document
  };
  std::string_view document_;
  std::vector<const char *> kinds_;
  std::vector<Entry> entries_;
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_TEXT_WARNINGS_H
