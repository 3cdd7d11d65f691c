/// \file
/// Targets against the address of their document.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_PLATFORM_URL_H
#define VS_WML_HOST_PLATFORM_URL_H

#include <memory>
#include <string>
#include <string_view>

#include "host/deck/deck_parts.h"

namespace vs_wml {

/// The absolute address of a document, which relative targets are resolved against
/// (RFC 3986, section 5).
class BaseUrl {
 public:
  /// Throws std::invalid_argument when `url` is no absolute address.
  explicit BaseUrl(const std::string &url);
  ~BaseUrl();
  BaseUrl(const BaseUrl &) = delete;
  BaseUrl &operator=(const BaseUrl &) = delete;

  /// The target as an absolute address. Characters that an address cannot hold are
  /// percent-encoded in its path; its query and fragment stay as they are. A target
  /// within the document ("#card") stays as it is, and so does one that cannot be read.
  std::string Resolve(std::string_view target) const;

 private:
  struct Parsed;
  std::unique_ptr<Parsed> parsed_;
};

/// Resolves all targets and sources of a deck.
void ResolveTargets(DeckParts &parts, const BaseUrl &base);

}  // namespace vs_wml

#endif  // VS_WML_HOST_PLATFORM_URL_H
