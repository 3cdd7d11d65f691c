// Reads any bytes as a response of HTTP: what is decoded keeps to its limit, and each coding is
// accounted for.
//
// SPDX-License-Identifier: MIT
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "archives/http/chunks.h"
#include "archives/http/message.h"
#include "archives/payload/content_kind.h"
#include "archives/payload/deck_evidence.h"
#include "archives/payload/digest.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  constexpr std::size_t kLimit = std::size_t{1} << 18U;
  const std::string_view bytes(reinterpret_cast<const char *>(data), size);
  const std::size_t length = vs_wml::HeaderLength(bytes);
  if (length > size) std::abort();
  const std::string_view body = bytes.substr(length);
  const vs_wml::HttpHead head = vs_wml::ParseHttpHead(bytes.substr(0, length));
  if (head.status && (*head.status < 100 || *head.status > 999)) std::abort();
  const vs_wml::DecodedBody decoded = vs_wml::DecodeBody(head, body, kLimit);
  if (decoded.bytes.size() > kLimit && decoded.bytes.size() > body.size()) std::abort();
  if (decoded.damaged && decoded.warnings.empty()) std::abort();
  const vs_wml::DecodedWhole chunks = vs_wml::JoinChunks(body);
  if (chunks.taken > body.size() || chunks.bytes.size() > body.size()) std::abort();
  vs_wml::LooksLikeDeck(decoded.bytes);
  vs_wml::SniffContent(body, {});
  vs_wml::CompareDigest(bytes.substr(0, length), body);
  return 0;
}
