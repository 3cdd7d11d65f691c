/// \file
/// What a person sees of a card, and can do with it.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_AGENT_CARD_VIEW_H
#define VS_WML_AGENT_CARD_VIEW_H

#include <string>
#include <vector>

#include "agent/browser_state.h"

namespace vs_wml {

struct CardLink {
  std::string label;               ///< white space collapsed
  const Action *action = nullptr;  ///< of the deck
};

struct CardKey {
  std::string label;  ///< its label, else its name, else its type
  std::string type;
  std::string name;  ///< its type when it has none
  const Action *action = nullptr;
};

struct CardField {
  const Field *field = nullptr;  ///< of the deck
  std::string variable;          ///< `name`, else `iname`, else empty
  std::string title;
  std::string value;                 ///< of an input
  Choices choices;                   ///< of a select
  std::vector<std::string> options;  ///< labels of a select's options
};

struct CardView {
  std::string url;              ///< with the fragment by which the card was reached
  std::string id;               ///< empty: none
  std::string title;            ///< empty: none
  std::string text;             ///< links included, keys and fields not; white space collapsed
  std::vector<CardLink> links;  ///< `a` and `anchor`, in the order of the card
  std::vector<CardKey> keys;
  std::vector<CardField> fields;  ///< in the order of the card
};

/// The card on top of the history.
CardView MakeCardView(const BrowserState &state);

/// Hands that card to a sink, block by block.
void ShowCard(const BrowserState &state, BlockSink &sink);

}  // namespace vs_wml

#endif  // VS_WML_AGENT_CARD_VIEW_H
