// SPDX-License-Identifier: MIT
#include "archives/payload/deck_evidence.h"

#include <algorithm>

#include "archives/archive.h"
#include "archives/http/fields.h"
#include "host/text/ascii.h"
#include "host/text/byte_scan.h"
#include "host/wmlc/wmlc.h"

namespace vs_wml {
namespace {

constexpr std::string_view kDeckTags[] = {"wml", "card"};

// Whether the text goes on with the name, in units of so many bytes.
bool HasName(std::string_view text, std::string_view name, std::size_t unit) {
  if (text.size() < (name.size() - 1) * unit + 1) return false;
  for (std::size_t i = 0; i < name.size(); ++i) {
    if (ToLower(text[i * unit]) != name[i]) return false;
    if (unit == 2 && i != 0 && text[i * unit - 1] != '\0') return false;
  }
  return true;
}

}  // namespace

const std::vector<std::string> &DefaultTypes() {
  static const std::vector<std::string> kTypes = {
      // What decks are.
      "text/vnd.wap.wml", "application/vnd.wap.wmlc", "text/x-wap.wml",
      // What they are served as.
      "text/html", "text/plain", "application/octet-stream", "text/xml", "application/xml",
      "application/xhtml+xml", "application/vnd.wap.xhtml+xml",
      // What is written for none.
      "", "no-type", "unk", "unknown", "application/unknown", "application/x-unknown",
      "content/unknown"};
  return kTypes;
}

bool LooksLikeDeck(std::string_view bytes) {
  if (IsWmlc(bytes)) return true;
  while (true) {
    bytes.remove_prefix(LengthBefore(bytes, [](auto c) { return c == '<'; }));
    if (bytes.empty()) return false;
    bytes.remove_prefix(1);
    const bool wide = bytes.starts_with('\0');
    for (const std::string_view tag : kDeckTags) {
      if (HasName(bytes.substr(wide ? 1 : 0), tag, wide ? 2 : 1)) return true;
    }
  }
}

TypeFilter::TypeFilter(const std::vector<std::string> &types, bool all) : all_(all) {
  for (const std::string &type : types.empty() ? DefaultTypes() : types) {
    types_.push_back(ParseMediaType(type).name);
  }
}

bool TypeFilter::Wants(std::string_view type) const {
  return all_ || std::find(types_.begin(), types_.end(), type) != types_.end();
}

bool IsDeckType(std::string_view type) {
  return type == "text/vnd.wap.wml" || type == "application/vnd.wap.wmlc" ||
         type == "text/x-wap.wml";
}

}  // namespace vs_wml
