/// \file
/// The source of a tag that the filter has just read.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_BLOCKS_SOURCE_TAG_H
#define VS_WML_HOST_BLOCKS_SOURCE_TAG_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vs_wml {

/// A tag in the served bytes: what the filter does not tell (card ids, column
/// alignments) a host reads here.
class SourceTag {
 public:
  /// The tag named `name` (in lower case) that ends right before `offset`; empty when
  /// there is none within a few kilobytes.
  static SourceTag EndingAt(std::string_view bytes, std::size_t offset, std::string_view name);

  bool Found() const { return !attributes_.empty(); }
  /// The value of an attribute with its references resolved; nothing when the tag does
  /// not have it.
  std::optional<std::string> Attribute(std::string_view name) const;

 private:
  std::string_view attributes_;  ///< from behind the name to the end of the tag
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_BLOCKS_SOURCE_TAG_H
