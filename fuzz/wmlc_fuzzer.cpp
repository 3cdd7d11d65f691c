// Decodes any bytes as a compiled deck: the markup is UTF-8 of a bounded length, and a deck
// made of the same tokens is read to its end or refused with the byte where it is damaged.
//
// SPDX-License-Identifier: MIT
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "host/deck.h"
#include "host/text/utf8.h"
#include "host/wmlc/wmlc.h"

namespace {

void Require(bool condition, const char *what, std::string_view text) {
  if (condition) return;
  std::fprintf(stderr, "%s:\n%.*s\n", what, static_cast<int>(text.size()), text.data());
  std::abort();
}

void CheckDecoded(std::string_view bytes) {
  // No code and no reference is longer than the markup that one step may add beyond the bound.
  constexpr std::size_t kStep = 64;
  try {
    const vs_wml::DecodedWmlc deck = vs_wml::DecodeWmlc(bytes);
    Require(vs_wml::IsValidUtf8(deck.wml), "not UTF-8", deck.wml);
    Require(deck.wml.size() <= vs_wml::kWmlcGrowth * bytes.size() + vs_wml::kWmlcGrowthBase + kStep,
            "too long", "");
    Require(!deck.charset.empty(), "no character set", deck.wml);
  } catch (const vs_wml::BrokenWmlc &failure) {
    Require(std::string_view(failure.what()).starts_with("compiled deck is damaged at byte "),
            "no byte is named", failure.what());
  }
}

// The first byte chooses a header for the rest, so that tokens are reached at once: a number is
// as long as its bytes say.
std::string WithHeader(std::uint8_t choice, std::string_view rest) {
  constexpr std::string_view kPublicIds = "\x02\x04\x09\x0A";
  constexpr std::string_view kCharsets[] = {"\x6A", "\x04", "\x11", "\x87\x67", "\x27"};
  std::string deck = "\x03";
  deck += kPublicIds[choice % kPublicIds.size()];
  deck += kCharsets[(choice / kPublicIds.size()) % std::size(kCharsets)];
  deck += '\x08';
  deck.append("abc\0d e", 8);
  return deck.append(rest);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char *>(data), size);
  CheckDecoded(bytes);
  if (bytes.empty()) return 0;
  const std::string deck = WithHeader(data[0], bytes.substr(1));
  CheckDecoded(deck);
  try {
    vs_wml::PrepareDeck("deck", deck, {});
  } catch (const vs_wml::BrokenWmlc &) {
  } catch (const vs_wml::NotWml &) {
  }
  return 0;
}
