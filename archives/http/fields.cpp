// SPDX-License-Identifier: MIT
#include "archives/http/fields.h"

#include <algorithm>

#include "host/text/ascii.h"

namespace vs_wml {
namespace {

constexpr auto npos = std::string_view::npos;

std::string_view WithoutQuotes(std::string_view text) {
  if (text.starts_with('"') || text.starts_with('\'')) text.remove_prefix(1);
  return Trim(text.substr(0, text.find_first_of("\"'")));
}

}  // namespace

std::size_t HeaderLength(std::string_view bytes) {
  for (std::size_t at = 0; (at = bytes.find('\n', at)) != npos;) {
    ++at;
    if (bytes.substr(at, 1) == "\n") return at + 1;
    if (bytes.substr(at, 2) == "\r\n") return at + 2;
  }
  return 0;
}

std::vector<HeaderField> ParseHeaderFields(std::string_view lines) {
  std::vector<HeaderField> fields;
  bool folds = false;
  while (!lines.empty()) {
    const std::size_t end = std::min(lines.find('\n'), lines.size());
    const std::string_view line = lines.substr(0, end);
    lines.remove_prefix(std::min(end + 1, lines.size()));
    const std::string_view text = Trim(line);
    if (text.empty()) break;
    if (IsWhiteSpace(line[0]) && folds) {
      std::string &value = fields.back().value;
      if (!value.empty()) value += ' ';
      value += text;
      continue;
    }
    const std::size_t colon = text.find(':');
    folds = colon != npos && colon != 0;
    if (!folds) continue;
    fields.push_back(
        {std::string(Trim(text.substr(0, colon))), std::string(Trim(text.substr(colon + 1)))});
  }
  return fields;
}

MediaType ParseMediaType(std::string_view text) {
  MediaType type;
  const std::size_t end = std::min(text.find_first_of(";,"), text.size());
  std::string_view name = Trim(text.substr(0, end));
  name = name.substr(0, name.find_first_of(" \t"));
  type.name = Lowered(WithoutQuotes(name));
  std::string_view rest = text.substr(end);
  while (!rest.empty()) {
    rest.remove_prefix(1);
    const std::size_t next = std::min(rest.find_first_of(";,"), rest.size());
    const std::string_view parameter = rest.substr(0, next);
    rest.remove_prefix(next);
    const std::size_t equals = parameter.find('=');
    if (equals == npos || !IsLowered(Trim(parameter.substr(0, equals)), "charset")) continue;
    if (type.charset.empty()) type.charset = WithoutQuotes(Trim(parameter.substr(equals + 1)));
  }
  return type;
}

}  // namespace vs_wml
