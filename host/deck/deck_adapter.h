/// \file
/// Adapts a deck for the filter: what a phone did with it, in markup that the filter
/// shows.
///
/// SPDX-License-Identifier: MIT
///
/// The filter knows text, styles, links, pictures and tables. A deck has actions, forms
/// and variables besides, and many decks have comments, sloppy markup and long targets.
/// The adapter reads all that, serves plain markup that reads the same, and tells what
/// the served links and pictures stand for (see served_writer.h).
#ifndef VS_WML_HOST_DECK_DECK_ADAPTER_H
#define VS_WML_HOST_DECK_DECK_ADAPTER_H

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "host/deck/deck_parts.h"
#include "host/serve/served_tags.h"
#include "host/text/warnings.h"

namespace vs_wml {

struct AdapterOptions {
  std::map<std::string, std::string> variables;  ///< values, by name
  /// As a user agent shows it: variables without a value are empty, and what keys and events do
  /// is not part of the text.
  bool live = false;
};

struct AdaptedDeck {
  std::string served;  ///< what the filter reads
  ServedTags tags;     ///< what tags in it stand for
  DeckParts parts;
  std::vector<Warning> warnings;
};

/// Adapts a document in UTF-8. Time and memory are linear in its length; `served` is
/// well-formed UTF-8 when the document is.
AdaptedDeck AdaptDeck(std::string_view document, const AdapterOptions &options = {});

}  // namespace vs_wml

#endif  // VS_WML_HOST_DECK_DECK_ADAPTER_H
