/// \file
/// What the things that the filter tells of stand for.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_BLOCKS_PARTS_H
#define VS_WML_HOST_BLOCKS_PARTS_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "host/deck.h"
#include "host/document.h"

namespace vs_wml {

/// What the filter tells of a link or a picture.
struct ToldReference {
  std::uint32_t number = 0;          ///< of a link
  std::string target;                ///< the address, as written in the served bytes
  std::optional<std::string> label;  ///< a link's title or a picture's alternative text
};

/// What a table is beside its cells.
struct TableParts {
  std::string title;
  std::vector<Alignment> columns;          ///< of the columns; others are to the left
  std::span<const std::uint8_t> rowCells;  ///< cells of each row, as far as it is known
};

/// Tells what cards, tables, links and pictures of a served document stand for.
class Parts {
 public:
  virtual ~Parts() = default;

  /// Whether the text that comes back is well-formed UTF-8, but for an end that is cut.
  virtual bool TextIsWellFormed() const = 0;
  /// The card whose tag ends at an offset of the served bytes.
  virtual Card CardAt(std::size_t end) = 0;
  /// The table whose tag ends there.
  virtual TableParts TableAt(std::size_t end) = 0;
  /// The views of a link are valid until the second EndBlock, or longer.
  virtual Link LinkOf(ToldReference told) = 0;
  virtual Image ImageOf(ToldReference told) = 0;
  /// A block was handed over; the last link goes on in the next one or not.
  virtual void EndBlock(bool linkGoesOn) = 0;
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_BLOCKS_PARTS_H
