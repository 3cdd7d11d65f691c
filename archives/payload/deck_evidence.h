/// \file
/// What shows that bytes are a deck.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_ARCHIVES_PAYLOAD_DECK_EVIDENCE_H
#define VS_WML_ARCHIVES_PAYLOAD_DECK_EVIDENCE_H

#include <string>
#include <string_view>
#include <vector>

namespace vs_wml {

/// Whether bytes are what PrepareDeck takes for a deck: a compiled one, or text that has a
/// <wml> or <card> tag, in any character set that has ASCII in it, or in UTF-16. True for a
/// little more than that: PrepareDeck has the last word.
bool LooksLikeDeck(std::string_view bytes);

/// Which media types are looked into.
class TypeFilter {
 public:
  /// `types`: empty for DefaultTypes().
  TypeFilter(const std::vector<std::string> &types, bool all);
  /// `type` is in lower case, without parameters.
  bool Wants(std::string_view type) const;

 private:
  std::vector<std::string> types_;  // in lower case
  bool all_;
};

/// Whether a type says that a document is a deck.
bool IsDeckType(std::string_view type);

}  // namespace vs_wml

#endif  // VS_WML_ARCHIVES_PAYLOAD_DECK_EVIDENCE_H
