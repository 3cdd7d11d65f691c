/// \file
/// The parts of a document that is served as it is.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_BLOCKS_RAW_PARTS_H
#define VS_WML_HOST_BLOCKS_RAW_PARTS_H

#include <deque>
#include <string>

#include "host/blocks/parts.h"

namespace vs_wml {

/// What the filter tells, and no more: cards have no ids, tables no titles, and values are
/// cut where the filter cuts them.
class RawParts : public Parts {
 public:
  bool TextIsWellFormed() const override { return false; }
  Card CardAt(std::size_t /*end*/) override { return {}; }
  TableParts TableAt(std::size_t /*end*/) override { return {}; }
  Link LinkOf(ToldReference told) override;
  Image ImageOf(ToldReference told) override;
  void EndBlock(bool linkGoesOn) override;

 private:
  struct LinkText {
    std::string target;
    std::string title;
  };
  std::deque<LinkText> links_;  // of the block
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_BLOCKS_RAW_PARTS_H
