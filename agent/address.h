/// \file
/// Addresses of decks.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_AGENT_ADDRESS_H
#define VS_WML_AGENT_ADDRESS_H

#include <string>
#include <string_view>

namespace vs_wml {

struct SplitAddress {
  std::string address;   ///< without fragment
  std::string fragment;  ///< empty: none
};
SplitAddress SplitFragment(std::string url);

/// Whether it is an absolute address.
bool IsAbsoluteAddress(const std::string &url);

/// `target` against the address of the deck that it stands in, as it goes over the network: what
/// an address cannot hold is percent-encoded. The target as it is when the deck has no absolute
/// address.
std::string ResolveAddress(const std::string &deck, std::string_view target);

/// Whether a deck may be fetched from there: by http, https or as a file, and no script. Telephone
/// functions, mailboxes and the like are not.
bool MayBeDeck(std::string_view url);

struct HostAndPath {
  std::string_view host;  ///< without user and port
  std::string_view path;  ///< without query; "/" when it is empty
};
HostAndPath HostAndPathOf(std::string_view url);

}  // namespace vs_wml

#endif  // VS_WML_AGENT_ADDRESS_H
