/// \file
/// A document made ready for the filter.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_DECK_H
#define VS_WML_HOST_DECK_H

#include <cstdint>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "host/document.h"
#include "host/serve/served_tags.h"

namespace vs_wml {

struct DeckOptions {
  /// Serve the document as it is, apart from its character set: what the filter does not
  /// know is not shown.
  bool raw = false;
  std::map<std::string, std::string> variables;  ///< values, by name
  std::string base;         ///< address that targets are resolved against, empty: none
  std::string charset;      ///< believed before everything else; empty: find it
  std::string contentType;  ///< what the server called it ("text/vnd.wap.wml; charset=...")
  std::string url;          ///< where it came from
  bool live = false;        ///< as a user agent shows it, see AdapterOptions
  bool digest = false;      ///< fill DeckInfo::xxh128
  /// Serve the bytes untouched, under this filter identity.
  std::optional<std::int16_t> identity;
};

/// What the filter is opened with.
struct Deck {
  std::string bytes;          ///< as served
  ServedTags tags;            ///< of an adapted document: what tags in the bytes stand for
  std::int16_t identity = 0;  ///< a filter identity
  bool servedAsUtf8 = false;  ///< characters come back as the bytes of UTF-8
  DeckInfo info;
  PictureFolders pictures;  ///< where its pictures may lie, to be set by who knows
};

/// The bytes are no WML; the message says what they are instead.
class NotWml : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Turns the bytes of a document into a deck. `name` may have any bytes. Throws NotWml, BrokenWmlc,
/// and std::invalid_argument when the base is no absolute address.
Deck PrepareDeck(std::string_view name, std::string bytes, const DeckOptions &options);

/// A document in UTF-8, and what is known of it.
struct DeckText {
  std::string text;
  DeckInfo info;
};

/// The first half of PrepareDeck, for documents that are not served untouched: the text of a
/// document, decoded. Throws NotWml and BrokenWmlc.
DeckText DecodeDeck(std::string_view name, std::string bytes, const DeckOptions &options);
/// The second half: a deck of the text, or of a card in it. Throws std::invalid_argument when the
/// base is no absolute address.
Deck AdaptText(std::string_view text, DeckInfo info, const DeckOptions &options);

/// Whether an identity is one of those in WmlOverlayId.
bool IsFilterIdentity(long identity);

}  // namespace vs_wml

#endif  // VS_WML_HOST_DECK_H
