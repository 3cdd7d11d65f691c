// SPDX-License-Identifier: MIT
#include "host/deck.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "host/deck/deck_adapter.h"
#include "host/platform/charset.h"
#include "host/platform/digest.h"
#include "host/platform/url.h"
#include "host/serve/served_bytes.h"
#include "host/text/ascii.h"
#include "host/text/base64.h"
#include "host/text/utf8.h"
#include "host/wmlc/wmlc.h"
#include "vs_wml.h"

namespace vs_wml {
namespace {

// Whether the text has a tag of that name (in lower case, with its '<').
bool HasTag(std::string_view text, std::string_view tag) {
  for (std::size_t at = text.find('<'); at != std::string_view::npos; at = text.find('<', at + 1)) {
    const std::string_view candidate = text.substr(at, tag.size());
    if (std::equal(candidate.begin(), candidate.end(), tag.begin(), tag.end(),
                   [](char a, char b) { return ToLower(a) == b; })) {
      return true;
    }
  }
  return false;
}

std::size_t CountReplacements(std::string_view text) {
  constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
  std::size_t count = 0;
  for (std::size_t at = text.find(kReplacement); at != std::string_view::npos;
       at = text.find(kReplacement, at + kReplacement.size())) {
    ++count;
  }
  return count;
}

// Throws unless the text looks like WML.
void RequireWml(std::string_view text) {
  if (HasTag(text, "<wml") || HasTag(text, "<card")) return;
  if (text.find_first_not_of(" \t\r\n") == std::string_view::npos) throw NotWml("empty document");
  if (HasTag(text, "<html") || HasTag(text, "<!doctype html")) {
    const bool xhtml = text.find("xhtml") != std::string_view::npos ||
                       text.find("XHTML") != std::string_view::npos;
    throw NotWml(std::string(xhtml ? "XHTML" : "HTML") + ", not WML: open it in a browser");
  }
  if (text.find('\0') != std::string_view::npos) throw NotWml("binary data, not WML");
  throw NotWml("not WML: no <wml> or <card> element");
}

// Warnings of the document as a whole.
void WarnOfAll(DeckInfo &info, std::vector<std::string> messages) {
  for (std::string &message : messages) info.warnings.push_back({0, std::move(message), {}});
}

// Finds the character set and converts to UTF-8.
std::string TextOf(std::string bytes, const DeckOptions &options, DeckInfo &info) {
  if (IsWmlc(bytes)) {
    DecodedWmlc decoded = DecodeWmlc(bytes, options.charset);
    info.charset = std::move(decoded.charset);
    info.charsetOrigin = decoded.charsetOrigin;
    WarnOfAll(info, std::move(decoded.warnings));
    return std::move(decoded.wml);
  }
  std::vector<std::string> warnings;
  const DetectedCharset found =
      DetectCharset(bytes, options.charset, warnings, options.contentType);
  WarnOfAll(info, std::move(warnings));
  info.charset = found.name;
  info.charsetOrigin = found.origin;
  if (found.markLength != 0) bytes.erase(0, found.markLength);
  return ToUtf8(std::move(bytes), found.name);
}

// Takes what HTTP headers that were saved with the document say, where nobody said it better.
void TakeSavedHeaders(std::string_view text, DeckInfo &info) {
  if (!HasSavedHeaders(text)) return;
  text = text.substr(0, text.find('<'));
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = Trim(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    const std::size_t colon = std::min(line.find(':'), line.size());
    const std::string name = Lowered(line.substr(0, colon));
    std::string *value = name == "content-type"                                 ? &info.contentType
                         : name == "content-location" || name == "content-base" ? &info.url
                                                                                : nullptr;
    if (value == nullptr || !value->empty()) continue;
    *value = WithoutControls(std::string(Trim(line.substr(std::min(colon + 1, line.size())))));
  }
}

void NameDeck(DeckInfo &info, std::string_view name) {
  if (!IsValidUtf8(name)) AppendBase64(info.sourceBase64, name);
  info.source = RepairUtf8(name);
  for (std::size_t offset = 0; offset < info.source.size();) {
    const char32_t character = NextCharacter(info.source, offset);
    AppendUtf8(info.name, IsControl(character) ? U'?' : character);
  }
}

DeckInfo InfoOf(std::string_view name, std::string_view bytes, const DeckOptions &options) {
  DeckInfo info;
  NameDeck(info, name);
  info.url = WithoutControls(RepairUtf8(options.url));
  info.contentType = WithoutControls(RepairUtf8(options.contentType));
  if (options.digest) info.xxh128 = Xxh128(bytes);
  return info;
}

}  // namespace

bool IsFilterIdentity(long identity) {
  return identity != 0 && std::any_of(std::begin(WmlOverlayId), std::end(WmlOverlayId),
                                      [&](const WmlOverlayRecord &record) {
                                        return record.id[0] + record.id[1] * 256 == identity;
                                      });
}

DeckText DecodeDeck(std::string_view name, std::string bytes, const DeckOptions &options) {
  DeckText deck;
  deck.info = InfoOf(name, bytes, options);
  if (bytes.empty()) throw NotWml("empty document");
  deck.text = TextOf(std::move(bytes), options, deck.info);
  RequireWml(deck.text);
  TakeSavedHeaders(deck.text, deck.info);
  if (const std::size_t count = CountReplacements(deck.text); count != 0) {
    WarnOfAll(deck.info,
              {std::to_string(count) + " places are not well-formed in the character set"});
  }
  return deck;
}

Deck AdaptText(std::string_view text, DeckInfo info, const DeckOptions &options) {
  Deck deck;
  deck.info = std::move(info);
  AdaptedDeck adapted = AdaptDeck(text, {options.variables, options.live});
  if (!options.base.empty()) ResolveTargets(adapted.parts, BaseUrl(options.base));
  deck.bytes = std::move(adapted.served);
  deck.tags = std::move(adapted.tags);
  deck.info.adapted = true;
  deck.info.parts = std::move(adapted.parts);
  std::vector<Warning> &warnings = deck.info.warnings;
  warnings.insert(warnings.end(), std::make_move_iterator(adapted.warnings.begin()),
                  std::make_move_iterator(adapted.warnings.end()));
  deck.identity = kServedIdentity;
  deck.servedAsUtf8 = true;
  return deck;
}

Deck PrepareDeck(std::string_view name, std::string bytes, const DeckOptions &options) {
  Deck deck;
  if (options.identity) {
    deck.info = InfoOf(name, bytes, options);
    deck.identity = *options.identity;
    deck.info.charset = "identity " + std::to_string(*options.identity);
    deck.info.charsetOrigin = CharsetOrigin::kIdentity;
    deck.bytes = std::move(bytes);
    return deck;
  }
  DeckText decoded = DecodeDeck(name, std::move(bytes), options);
  if (!options.raw) return AdaptText(decoded.text, std::move(decoded.info), options);
  deck.info = std::move(decoded.info);
  deck.bytes = MakeServedBytes(decoded.text);
  deck.identity = kServedIdentity;
  deck.servedAsUtf8 = true;
  return deck;
}

}  // namespace vs_wml
