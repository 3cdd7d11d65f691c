/// \file
/// A deck that a user agent has read.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_AGENT_LOADED_DECK_H
#define VS_WML_AGENT_LOADED_DECK_H

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "host/deck.h"
#include "host/document.h"

namespace vs_wml {

/// The variables of a browser context, by name. A variable that is empty is not set, and is not in
/// the map (WAP-191, 10.3).
using ContextVariables = std::map<std::string, std::string, std::less<>>;

/// The fields of a card, in their order.
class DeckFields {
 public:
  DeckFields(const DeckParts &parts, const DeckCard &card) : parts_(parts), card_(card) {}
  std::size_t size() const { return card_.fieldCount; }
  const Field &operator[](std::size_t index) const {
    return parts_.fields[card_.firstField + index];
  }

 private:
  const DeckParts &parts_;
  const DeckCard &card_;
};

/// A deck as written, with its cards by name, and its keys and events with those of the template.
/// Immutable, so that entries of the history share it.
class LoadedDeck {
 public:
  /// Reads a document that came from `url`. Throws NotWml when it is none, or has no card.
  LoadedDeck(std::string url, std::string bytes, const std::string &contentType);
  /// The deck of a text that a LoadedDeck gave.
  static LoadedDeck OfText(std::string url, std::string text);
  LoadedDeck(LoadedDeck &&) = default;

  const std::string &Url() const { return url_; }
  /// The document in UTF-8.
  const std::string &Text() const { return text_; }
  const DeckParts &Parts() const { return deck_.info.parts; }
  const DeckCard &Card(std::size_t index) const { return Parts().cards[index]; }
  std::size_t CardCount() const { return Parts().cards.size(); }

  /// The card of a fragment; the first one when there is none of that name (WAP-191, 12.5.1).
  std::size_t FindCard(std::string_view fragment) const;
  DeckFields FieldsOf(std::size_t card) const;
  /// The card's own keys, then those of the template that it does not shadow; none that does
  /// nothing (WAP-191, 9.6).
  std::vector<const Action *> KeysOf(std::size_t card) const;
  /// What is bound to an event of a card, its own or the template's; null when nothing is, or
  /// `noop`.
  const Action *FindEvent(std::size_t card, std::string_view type) const;

  /// Whether a deck from `url` may lead here (WAP-191, 11.3.1).
  bool Admits(const std::string &url) const;

  /// The card under these variables, as a document of its own; its links and fields are those of
  /// Parts() from the card's first part and its first field on.
  Deck Show(std::size_t card, const ContextVariables &variables) const;

 private:
  LoadedDeck(std::string url, DeckText text);

  std::string url_;
  std::string text_;
  Deck deck_;
};

}  // namespace vs_wml

#endif  // VS_WML_AGENT_LOADED_DECK_H
