// SPDX-License-Identifier: MIT
#include "host/text/warnings.h"

#include <algorithm>
#include <utility>

#include "host/text/ascii.h"
#include "host/text/utf8.h"

namespace vs_wml {

std::string WarningText(const Warning &warning) {
  std::string text;
  if (warning.line != 0) text = "line " + std::to_string(warning.line) + ": ";
  text += warning.message;
  if (!warning.text.empty()) text += ": " + warning.text;
  return text;
}

void Warnings::Add(const char *message, std::size_t offset) {
  if (std::find(kinds_.begin(), kinds_.end(), message) != kinds_.end()) return;
  kinds_.push_back(message);
  entries_.push_back({offset, message, {}, offset});
}

void Warnings::AddLoss(const char *message, std::string_view text) {
  text = Trim(text);
  const auto offset = static_cast<std::size_t>(text.data() - document_.data());
  const std::size_t end = offset + text.size();
  if (!entries_.empty() && entries_.back().message == message && entries_.back().end <= offset) {
    Entry &last = entries_.back();
    const std::string_view between = document_.substr(last.end, offset - last.end);
    if (between.find('\n') == std::string_view::npos) {
      last.text.append(" ").append(Collapsed(text));
      last.end = end;
      return;
    }
  }
  entries_.push_back({offset, message, Collapsed(text), end});
}

std::vector<Warning> Warnings::Take() {
  std::stable_sort(entries_.begin(), entries_.end(),
                   [](const Entry &a, const Entry &b) { return a.offset < b.offset; });
  std::vector<Warning> warnings;
  warnings.reserve(entries_.size());
  std::size_t line = 1;
  std::size_t counted = 0;
  for (Entry &entry : entries_) {
    const std::string_view between = document_.substr(counted, entry.offset - counted);
    line += static_cast<std::size_t>(std::count(between.begin(), between.end(), '\n'));
    counted = entry.offset;
    warnings.push_back({line, entry.message, WithoutControls(std::move(entry.text))});
  }
  return warnings;
}

}  // namespace vs_wml
