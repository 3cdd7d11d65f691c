// SPDX-License-Identifier: MIT
#include "host/reader.h"

#include <string>

#include "host/blocks/block_builder.h"
#include "host/blocks/block_source.h"
#include "host/blocks/stream.h"

namespace vs_wml {

void CheckRead(const BlockSource &source, const Deck &deck, bool aborted) {
  if (source.Exhausted()) {
    throw ReadFailure("given up: its tables make the reader go over it again and again (" +
                      std::to_string(source.Served()) + " bytes read of " +
                      std::to_string(deck.bytes.size()) + ")");
  }
  if (!aborted) return;
  throw ReadFailure(IsFilterIdentity(deck.identity) ? "out of memory"
                                                    : "the filter identity is not served");
}

void ReadDeck(const Deck &deck, BlockSink &sink) {
  MemorySource source(deck.bytes);
  source.SetLimit(BlockSource::SensibleLimit(deck.bytes.size()));
  BlockBuilder builder(deck, sink);
  {
    Stream stream(source, deck.identity, builder.Routines(), &builder);
    builder.Attach(stream);
    if (!builder.Aborted()) {
      stream.Section();
      stream.Read();
    }
  }
  builder.Rethrow();
  CheckRead(source, deck, builder.Aborted() || !builder.Done());
  sink.EndDocument(deck.info);
}

}  // namespace vs_wml
