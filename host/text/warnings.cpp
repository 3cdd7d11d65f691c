// SPDX-License-Identifier: MIT
#include "host/text/warnings.h"

#include <algorithm>

namespace vs_wml {

void Warnings::Add(const char *message, std::size_t offset) {
  if (std::find(kinds_.begin(), kinds_.end(), message) != kinds_.end()) return;
  kinds_.push_back(message);
  const std::string_view before = document_.substr(0, offset);
  const auto line = 1 + std::count(before.begin(), before.end(), '\n');
  texts_.push_back("line " + std::to_string(line) + ": " + message);
}

}  // namespace vs_wml
