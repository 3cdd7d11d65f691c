// Adapts any bytes: the result is well-formed UTF-8, no longer than a multiple of the
// document, names only parts that exist, and has all of a plain text. The same bytes are
// read as a picture.
//
// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "host/deck/deck_adapter.h"
#include "host/images/picture_formats.h"
#include "host/images/wbmp.h"
#include "host/serve/served_writer.h"
#include "host/text/utf8.h"

namespace {

constexpr std::size_t kGrowth = 32;  // of the served markup, against the document
constexpr std::size_t kGrowthBase = 1U << 17U;
constexpr std::uint32_t kPaintedSide = 256;  // larger pictures only take time

void Require(bool condition, const char *what, std::string_view served) {
  if (condition) return;
  std::fprintf(stderr, "%s:\n%.*s\n", what, static_cast<int>(served.size()), served.data());
  std::abort();
}

std::size_t CountOf(const vs_wml::DeckParts &parts, vs_wml::ServedKind kind) {
  switch (kind) {
    case vs_wml::ServedKind::kAction:
      return parts.actions.size();
    case vs_wml::ServedKind::kField:
      return parts.fields.size();
    default:
      return parts.pictures.size();
  }
}

// Whether a place lies in a tag, between its attributes.
bool IsAttribute(std::string_view served, std::size_t at) {
  const std::size_t begin = served.rfind('<', at);
  const std::size_t end = served.rfind('>', at);
  if (begin == served.npos || (end != served.npos && end > begin)) return false;
  return std::ranges::count(served.substr(begin, at - begin), '"') % 2 == 0;
}

// Every quoted target is a reference to a part.
void CheckTargets(const vs_wml::AdaptedDeck &deck) {
  const std::string_view served = deck.served;
  for (const std::string_view name : {" href=\"", " src=\""}) {
    for (std::size_t at = served.find(name); at != served.npos; at = served.find(name, at + 1)) {
      if (!IsAttribute(served, at)) continue;
      const std::size_t start = at + name.size();
      const auto reference =
          vs_wml::ParseServedTarget(served.substr(start, served.find('"', start) - start));
      Require(reference && reference->index < CountOf(deck.parts, reference->kind),
              "a target of nothing", served);
    }
  }
}

void CheckDocument(const std::string &document) {
  const vs_wml::AdaptedDeck deck = vs_wml::AdaptDeck(document, {{{"v", "<&$v>"}}});
  Require(deck.served.size() <= kGrowth * document.size() + kGrowthBase, "too long", "");
  Require(vs_wml::IsValidUtf8(deck.served), "not UTF-8", deck.served);
  CheckTargets(deck);
}

void CheckPlainText(std::string text) {
  std::erase_if(text, [](char c) {
    return (static_cast<unsigned char>(c) < 0x20 && c != '\n') || c == 0x7F || c == '<' ||
           c == '>' || c == '&' || c == '$';
  });
  for (std::size_t at = 0; (at = text.find('\xC2', at)) != text.npos; ++at) {
    if (at + 1 < text.size() && static_cast<unsigned char>(text[at + 1]) < 0xA0) return;
  }
  const std::string served = vs_wml::AdaptDeck("<wml><card>" + text + ".</card></wml>").served;
  Require(served == "<wml><card>" + text + ".</card></wml>", "text was changed", served);
}

void CheckPicture(std::string_view bytes) {
  const auto bitmap = vs_wml::DecodeWbmp(bytes);
  if (!bitmap || std::max(bitmap->width, bitmap->height) > kPaintedSide) return;
  vs_wml::EncodePng(*bitmap);
  vs_wml::DrawBlocks(*bitmap);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char *>(data), size);
  const std::string text = vs_wml::RepairUtf8(bytes);
  CheckDocument(text);
  CheckPlainText(text);
  CheckPicture(bytes);
  return 0;
}
