// SPDX-License-Identifier: MIT
#include "host/reader.h"

#include <memory>
#include <string>

#include "host/blocks/adapted_parts.h"
#include "host/blocks/block_source.h"
#include "host/blocks/filter_host.h"
#include "host/blocks/raw_parts.h"
#include "host/blocks/stream.h"

namespace vs_wml {

void CheckRead(const BlockSource &source, const Deck &deck, const ReadOutcome &outcome) {
  if (source.Exhausted()) {
    throw ReadFailure("given up: its tables make the reader go over it again and again (" +
                      std::to_string(source.Served()) + " bytes read of " +
                      std::to_string(deck.bytes.size()) + ")");
  }
  if (outcome.ended && !outcome.aborted) return;
  if (!IsFilterIdentity(deck.identity)) throw ReadFailure("the filter identity is not served");
  if (outcome.tables == VW_MAX_TABLES) {
    throw ReadFailure("given up at table " + std::to_string(VW_MAX_TABLES + 1) +
                      ": the filter reads no more in a document; what comes before it was read");
  }
  throw ReadFailure("out of memory");
}

namespace {

std::unique_ptr<Parts> PartsOf(const Deck &deck) {
  if (deck.info.adapted) return std::make_unique<AdaptedParts>(deck);
  return std::make_unique<RawParts>();
}

}  // namespace

void ReadDeck(const Deck &deck, BlockSink &sink) {
  MemorySource source(deck.bytes);
  source.SetLimit(BlockSource::SensibleLimit(deck.bytes.size()));
  const std::unique_ptr<Parts> parts = PartsOf(deck);
  FilterHost host(deck, *parts, sink);
  {
    Stream stream(source, deck.identity, host.Routines(), &host);
    host.Attach(stream);
    if (!host.Outcome().aborted) {
      stream.Section();
      stream.Read();
    }
  }
  host.Rethrow();
  CheckRead(source, deck, host.Outcome());
  sink.EndDocument(deck.info);
}

}  // namespace vs_wml
