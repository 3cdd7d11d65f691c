// SPDX-License-Identifier: MIT
#include "agent/address.h"

#include <algorithm>
#include <stdexcept>

#include "host/deck/variables.h"
#include "host/platform/url.h"
#include "host/text/ascii.h"

namespace vs_wml {
namespace {

constexpr std::string_view kDeckSchemes[] = {"http", "https", "file"};
constexpr std::string_view kScriptExtensions[] = {".wmls", ".wmlsc"};

bool EndsWith(std::string_view path, std::string_view extension) {
  return path.size() > extension.size() &&
         EqualIgnoringCase(path.substr(path.size() - extension.size()), extension);
}

}  // namespace

SplitAddress SplitFragment(std::string url) {
  const std::size_t hash = url.find('#');
  if (hash == std::string::npos) return {std::move(url), {}};
  return {url.substr(0, hash), url.substr(hash + 1)};
}

bool IsAbsoluteAddress(const std::string &url) {
  try {
    const BaseUrl base(url);
    return true;
  } catch (const std::invalid_argument &) {
    return false;
  }
}

std::string ResolveAddress(const std::string &deck, std::string_view target) {
  constexpr std::string_view kRefused = "\"<>";
  const std::string resolved =
      IsAbsoluteAddress(deck) ? BaseUrl(deck).Resolve(target) : std::string(target);
  std::string address;
  for (const char c : resolved) {
    if (c > 0x20 && c < 0x7F && kRefused.find(c) == std::string_view::npos) {
      address += c;
    } else {
      address += PercentEncode({&c, 1});
    }
  }
  return address;
}

bool MayBeDeck(std::string_view url) {
  const std::size_t colon = url.find(':');
  const std::string_view scheme = url.substr(0, std::min(colon, url.size()));
  const auto isScheme = [&](std::string_view name) { return EqualIgnoringCase(scheme, name); };
  if (std::none_of(std::begin(kDeckSchemes), std::end(kDeckSchemes), isScheme)) return false;
  if (!isScheme("file") && HostAndPathOf(url).host.empty()) return false;
  const std::string_view path = url.substr(0, url.find_first_of("?#"));
  const auto isScript = [&](std::string_view extension) { return EndsWith(path, extension); };
  return std::none_of(std::begin(kScriptExtensions), std::end(kScriptExtensions), isScript);
}

HostAndPath HostAndPathOf(std::string_view url) {
  HostAndPath parts{{}, "/"};
  const std::size_t slashes = url.find("//");
  if (slashes == std::string_view::npos) return parts;
  url.remove_prefix(slashes + 2);
  const std::size_t end = std::min(url.find_first_of("/?#"), url.size());
  parts.host = url.substr(0, end);
  parts.host.remove_prefix(parts.host.rfind('@') + 1);
  if (const std::size_t port = parts.host.rfind(':');
      port != std::string_view::npos && parts.host.find(']', port) == std::string_view::npos) {
    parts.host = parts.host.substr(0, port);
  }
  const std::string_view path = url.substr(end, url.find_first_of("?#", end) - end);
  if (!path.empty()) parts.path = path;
  return parts;
}

}  // namespace vs_wml
