// SPDX-License-Identifier: MIT
#include "host/writers/target.h"

#include <algorithm>
#include <optional>
#include <span>
#include <string>

namespace vs_wml {
namespace {

constexpr std::string_view kLinkSchemes[] = {"http", "https", "ftp", "mailto", "tel",
                                             "sms",  "smsto", "mms", "wtai",   "rtsp"};
constexpr std::string_view kImageSchemes[] = {"http", "https"};

bool IsSchemeCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
}

// The scheme in lower case; nothing for a relative target. A browser passes over blanks
// and control characters before and in a scheme, so they count for nothing here.
std::optional<std::string> SchemeOf(std::string_view target) {
  std::string scheme;
  for (char c : target) {
    if (static_cast<unsigned char>(c) <= 0x20) continue;
    if (c == ':') return scheme;
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
    if (c == '/' || c == '?' || c == '#' || c == '\\') return std::nullopt;
    scheme += IsSchemeCharacter(c) ? c : '?';
  }
  return std::nullopt;
}

bool HasSchemeOf(std::string_view target, std::span<const std::string_view> allowed) {
  const auto scheme = SchemeOf(target);
  return !scheme || std::find(allowed.begin(), allowed.end(), *scheme) != allowed.end();
}

}  // namespace

bool IsSafeTarget(std::string_view target) {
  return HasSchemeOf(target, kLinkSchemes);
}

bool IsSafeSource(std::string_view source) {
  return HasSchemeOf(source, kImageSchemes);
}

std::string LinkTargetText(const Link &link) {
  if (link.action == nullptr) return std::string(link.target);
  const Task &task = link.action->task;
  switch (task.kind) {
    case TaskKind::kPrevious:
      return "(back)";
    case TaskKind::kRefresh:
      return "(refresh)";
    case TaskKind::kGo:
      break;
    default:
      return "(nothing)";
  }
  std::string text(link.target);
  if (text.starts_with('#')) return text;
  if (task.method == "post") text.insert(0, "POST ");
  const char *separator = " (";
  for (const NameValue &field : task.postFields) {
    text += separator + field.name + '=' + field.value;
    separator = ", ";
  }
  return task.postFields.empty() ? text : text + ')';
}

std::string_view BaseName(std::string_view target) {
  target = target.substr(0, target.find_first_of("?#"));
  while (target.ends_with('/')) target.remove_suffix(1);
  const std::size_t slash = target.rfind('/');
  return slash == std::string_view::npos ? target : target.substr(slash + 1);
}

std::string_view ImageLabel(const Image &image) {
  return image.alternative.empty() ? BaseName(image.source) : image.alternative;
}

}  // namespace vs_wml
