// SPDX-License-Identifier: MIT
#include "host/platform/url.h"

#include <uriparser/Uri.h>

#include <algorithm>
#include <stdexcept>

#include "host/text/ascii.h"

namespace vs_wml {
namespace {

constexpr std::string_view kUrlPunctuation = "-._~:/?#[]@!$&'()*+,;=%";

// Percent-encodes what no address holds, and each '%' that encodes nothing.
std::string EncodeForbidden(std::string_view text) {
  std::string encoded;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char c = text[at];
    const bool stray =
        c == '%' && !(at + 2 < text.size() && IsHexDigit(text[at + 1]) && IsHexDigit(text[at + 2]));
    if (!stray &&
        (IsLetter(c) || IsDigit(c) || kUrlPunctuation.find(c) != std::string_view::npos)) {
      encoded += c;
    } else {
      AppendPercentEncoded(encoded, c);
    }
  }
  return encoded;
}

// A parsed address; it points into the text that it was parsed from.
class Uri {
 public:
  Uri() = default;
  ~Uri() { uriFreeUriMembersA(&uri_); }
  Uri(const Uri &) = delete;
  Uri &operator=(const Uri &) = delete;

  bool Parse(const std::string &text) {
    return uriParseSingleUriExA(&uri_, text.data(), text.data() + text.size(), nullptr) ==
           URI_SUCCESS;
  }
  bool Resolve(const Uri &reference, const Uri &base) {
    return uriAddBaseUriExA(&uri_, &reference.uri_, &base.uri_, URI_RESOLVE_STRICTLY) ==
           URI_SUCCESS;
  }
  bool IsAbsolute() const { return uri_.scheme.first != nullptr; }
  std::string Text() const {
    int length = 0;
    if (uriToStringCharsRequiredA(&uri_, &length) != URI_SUCCESS) return {};
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    if (uriToStringA(text.data(), &uri_, length + 1, nullptr) != URI_SUCCESS) return {};
    text.resize(static_cast<std::size_t>(length));
    return text;
  }

 private:
  UriUriA uri_{};
};

}  // namespace

struct BaseUrl::Parsed {
  std::string text;
  Uri uri;
};

BaseUrl::BaseUrl(const std::string &url) : parsed_(std::make_unique<Parsed>()) {
  parsed_->text = EncodeForbidden(url.substr(0, url.find('#')));
  if (!parsed_->uri.Parse(parsed_->text) || !parsed_->uri.IsAbsolute()) {
    throw std::invalid_argument("not an absolute address: " + url);
  }
}

BaseUrl::~BaseUrl() = default;

std::string BaseUrl::Resolve(std::string_view target) const {
  if (target.empty() || target.front() == '#') return std::string(target);
  const std::size_t path = std::min(target.find_first_of("?#"), target.size());
  const std::string encoded = EncodeForbidden(target.substr(0, path));
  std::string resolved;
  if (encoded.empty()) {
    resolved = parsed_->text.substr(0, parsed_->text.find('?'));
  } else {
    Uri reference;
    Uri result;
    if (!reference.Parse(encoded)) return std::string(target);
    if (reference.IsAbsolute()) return std::string(target);
    if (!result.Resolve(reference, parsed_->uri)) return std::string(target);
    resolved = result.Text();
  }
  if (resolved.empty()) return std::string(target);
  return resolved.append(target.substr(path));
}

void ResolveTargets(DeckParts &parts, const BaseUrl &base) {
  // What stands for an unknown variable is no part of an address.
  const auto resolve = [&](Value &target) {
    if (!target.resolved || target.IsEmpty()) return;
    const std::string resolved = base.Resolve(target.shown);
    if (resolved != target.shown) target.shown = parts.texts.Keep(resolved);
  };
  for (Action &action : parts.actions) resolve(action.task.target);
  for (Picture &picture : parts.pictures) resolve(picture.source);
}

}  // namespace vs_wml
