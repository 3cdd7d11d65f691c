/// \file
/// Link targets and image sources.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_WRITERS_TARGET_H
#define VS_WML_HOST_WRITERS_TARGET_H

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "host/document.h"

namespace vs_wml {

/// Whether a target may be followed from a page: relative, or of a scheme that runs
/// nothing (http, https, mailto, tel and the like).
bool IsSafeTarget(std::string_view target);

/// Whether an image may be shown from a page: relative, http or https.
bool IsSafeSource(std::string_view source);

/// A target as a URL: blanks and other characters that no URL holds encoded.
std::string EncodeTarget(std::string_view target);

/// Whether showing a picture asks a stranger for it: an absolute address, or one that has a
/// host and takes the scheme from the page.
bool IsRemote(std::string_view source);

/// What comes of following a link where there is no phone.
enum class LinkOutcome : std::uint8_t {
  kFollowed,    ///< it leads to its target
  kField,       ///< it is none, but a field
  kBack,        ///< it would lead back
  kRefresh,     ///< it would show the card anew
  kNothing,     ///< it does nothing
  kUnsafe,      ///< its target runs something, or is of a scheme that is not known
  kUnresolved,  ///< its target has a variable whose value is not known
  kNoCard,      ///< it leads to a card that the deck does not have
  kEmpty        ///< it has no target
};

/// Tells what comes of the links of one deck.
class LinkReader {
 public:
  LinkReader() = default;
  explicit LinkReader(const DeckInfo &deck);

  LinkOutcome OutcomeOf(const Link &link) const;
  /// What a format that shows the target of followed links only has to say behind a link:
  /// " (POST, a=1, x:=17)", " (back)", " (javascript:x)"; empty when there is nothing.
  std::string Details(const Link &link) const;
  /// The same in words for readers of a page: "goes back", "sets x to 17". What a form sends
  /// is left out when `works`.
  std::string Explanation(const Link &link, bool works) const;

 private:
  LinkOutcome OutcomeOfTarget(const Link &link) const;

  bool adapted_ = false;
  std::unordered_set<std::string_view> cards_;  ///< their ids
  /// Of long targets, which may have many users, by action.
  mutable std::unordered_map<PartIndex, LinkOutcome> outcomes_;
};

/// Whether a target is an address of its own, of whatever scheme.
bool HasScheme(std::string_view target);

/// Where a link leads, for people: its target, with what is sent and assigned, or "(back)"
/// and "(refresh)" for what has none.
std::string LinkTargetText(const Link &link);

/// The last part of a path, without query and fragment.
std::string_view BaseName(std::string_view target);

/// What stands for an image in text: its alternative text, else its file name.
std::string_view ImageLabel(const Image &image);

}  // namespace vs_wml

#endif  // VS_WML_HOST_WRITERS_TARGET_H
