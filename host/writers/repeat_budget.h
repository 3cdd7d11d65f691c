/// \file
/// How often a long value may be written again.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_WRITERS_REPEAT_BUDGET_H
#define VS_WML_HOST_WRITERS_REPEAT_BUDGET_H

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_set>

#include "host/text/utf8.h"

namespace vs_wml {

/// A value with many users, such as the target of a link that goes on over paragraphs, is
/// written again as long as all that is written again stays in proportion to what was written
/// for the first time. Ordinary documents never come near the bound.
class RepeatBudget {
 public:
  /// Shorter values are not worth a reference.
  static constexpr std::size_t kShort = 64;

  /// So many bytes were written for the first time.
  void Earn(std::size_t bytes) { left_ += bytes * kRepeats; }
  /// Whether so many bytes may be written again.
  bool Spend(std::size_t bytes) {
    if (bytes > left_) return false;
    left_ -= bytes;
    return true;
  }
  /// Whether the value of `index` may be written where it is used: it is short, is none of those
  /// `said`, which it then becomes, or may be written again.
  bool MaySay(std::unordered_set<std::size_t> &said, std::size_t index, std::size_t bytes) {
    if (bytes < kShort) return true;
    if (!said.insert(index).second) return Spend(bytes);
    Earn(bytes);
    return true;
  }

 private:
  static constexpr std::size_t kRepeats = 8;
  std::size_t left_ = 65536;
};

/// What stands for a long text that stands above in full: how it begins.
inline std::string AsAbove(std::string_view text) {
  constexpr std::size_t kShown = 24;
  std::size_t end = text.size() < kShown ? text.size() : kShown;
  while (end != 0 && end != text.size() && !StartsCharacter(text[end])) --end;
  return std::string(text.substr(0, end)) + "... (as above)";
}

}  // namespace vs_wml

#endif  // VS_WML_HOST_WRITERS_REPEAT_BUDGET_H
