// SPDX-License-Identifier: MIT
#include "agent/flow_json.h"

#include <algorithm>
#include <numeric>

#include "host/text/ascii.h"

namespace vs_wml {
namespace {

// Letters to put in, take out or change to make one name of the other (Levenshtein).
std::size_t Distance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = row[0]++;
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t changed = diagonal + (a[i] == b[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({row[j] + 1, row[j + 1] + 1, changed});
    }
  }
  return row.back();
}

constexpr std::size_t kNear = 3;
constexpr std::size_t kLongestName = 32;

constexpr std::string_view kBase64Digits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

}  // namespace

std::string_view NearestName(std::string_view name, std::span<const std::string_view> known) {
  std::string_view nearest;
  std::size_t least = kNear;
  if (name.size() > kLongestName) return nearest;
  for (const std::string_view candidate : known) {
    const std::size_t distance = Distance(name, candidate);
    if (distance >= least) continue;
    least = distance;
    nearest = candidate;
  }
  return nearest;
}

std::size_t LineAt(std::string_view text, std::size_t offset) {
  const std::string_view before = text.substr(0, offset);
  return 1 + static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
}

std::vector<std::size_t> StepLines(std::string_view json) {
  std::vector<std::size_t> lines;
  std::size_t line = 1;
  std::size_t depth = 0;
  std::string_view key;  // the last string of the flow's own object
  bool inSteps = false;
  for (std::size_t at = 0; at < json.size(); ++at) {
    const char c = json[at];
    if (c == '\n') ++line;
    if (c == '"') {
      const std::size_t begin = at + 1;
      for (++at; at < json.size() && json[at] != '"'; ++at)
        if (json[at] == '\\') ++at;
      if (depth == 1) key = json.substr(begin, std::min(at, json.size()) - begin);
    } else if (c == '{' || c == '[') {
      ++depth;
      if (depth == 2) inSteps = c == '[' && key == "steps";
      if (depth == 3 && inSteps) lines.push_back(line);
    } else if (c == '}' || c == ']') {
      --depth;
    }
  }
  return lines;
}

std::optional<std::string> DecodeBase64(std::string_view text) {
  std::string bytes;
  unsigned bits = 0;
  int count = 0;
  std::size_t digits = 0;
  std::size_t padding = 0;
  for (const char c : text) {
    if (IsWhiteSpace(c)) continue;
    if (c == '=') {
      ++padding;
      continue;
    }
    const std::size_t digit = kBase64Digits.find(c);
    if (digit == std::string_view::npos || padding != 0) return std::nullopt;
    ++digits;
    bits = (bits << 6U | static_cast<unsigned>(digit)) & 0xFFFFU;
    count += 6;
    if (count >= 8) {
      count -= 8;
      bytes += static_cast<char>(bits >> static_cast<unsigned>(count) & 0xFFU);
    }
  }
  const bool whole = padding == 0 ? digits % 4 != 1 : (digits + padding) % 4 == 0 && padding < 3;
  if (!whole) return std::nullopt;
  return bytes;
}

}  // namespace vs_wml
