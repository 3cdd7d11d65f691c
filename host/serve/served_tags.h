/// \file
/// What the tags of a served deck stand for.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_SERVE_SERVED_TAGS_H
#define VS_WML_HOST_SERVE_SERVED_TAGS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace vs_wml {

struct ServedCard {
  std::size_t end = 0;   ///< behind its tag in the served bytes
  std::size_t card = 0;  ///< index into DeckParts::cards
};

struct ServedTable {
  std::size_t end = 0;  ///< behind its tag in the served bytes
  std::string title;    ///< empty: none
  std::string align;    ///< a letter for each column, or a word for the table
  /// How many cells each row has been given; the filter fills all columns.
  std::vector<std::uint8_t> rowCells;
};

/// The tags that say more than the filter tells, in the order of the served bytes: one of
/// them is known by where it ends.
struct ServedTags {
  std::vector<ServedCard> cards;
  std::vector<ServedTable> tables;
};

/// The tag that ends there, null when there is none.
template <typename Tag>
const Tag *FindServed(const std::vector<Tag> &tags, std::size_t end) {
  const auto found =
      std::lower_bound(tags.begin(), tags.end(), end,
                       [](const Tag &tag, std::size_t offset) { return tag.end < offset; });
  return found != tags.end() && found->end == end ? &*found : nullptr;
}

}  // namespace vs_wml

#endif  // VS_WML_HOST_SERVE_SERVED_TAGS_H
