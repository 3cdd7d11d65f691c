/// \file
/// Reads a deck through the filter.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_READER_H
#define VS_WML_HOST_READER_H

#include <ostream>
#include <stdexcept>

#include "host/blocks/block_source.h"
#include "host/blocks/guarded_host.h"
#include "host/deck.h"
#include "host/document.h"

namespace vs_wml {

/// The document could not be read to its end; the message says why.
class ReadFailure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Reads a deck and hands it to `sink` block by block. Throws ReadFailure when the
/// filter has no memory or the document makes it read without end, and what the sink
/// throws; the blocks up to there have been handed over then.
void ReadDeck(const Deck &deck, BlockSink &sink);

/// Throws ReadFailure, which says why, when the deck was not read to its end through `source`.
void CheckRead(const BlockSource &source, const Deck &deck, const ReadOutcome &outcome);

/// Reads a deck and writes each call of the filter as a line. Throws ReadFailure.
void TraceDeck(const Deck &deck, std::ostream &out);

}  // namespace vs_wml

#endif  // VS_WML_HOST_READER_H
