// SPDX-License-Identifier: MIT
#include "host/platform/digest.h"

#include <nettle/base16.h>
#include <nettle/base64.h>
#include <nettle/sha2.h>

#include <array>
#include <cstdint>

namespace vs_wml {
namespace {

const std::uint8_t *Bytes(std::string_view bytes) {
  return reinterpret_cast<const std::uint8_t *>(bytes.data());
}

}  // namespace

std::string Sha256(std::string_view bytes) {
  sha256_ctx context;
  sha256_init(&context);
  sha256_update(&context, bytes.size(), Bytes(bytes));
  std::array<std::uint8_t, SHA256_DIGEST_SIZE> digest;
  sha256_digest(&context, digest.size(), digest.data());
  std::string digits(BASE16_ENCODE_LENGTH(SHA256_DIGEST_SIZE), '\0');
  base16_encode_update(digits.data(), digest.size(), digest.data());
  return digits;
}

std::string Base64(std::string_view bytes) {
  std::string text(BASE64_ENCODE_RAW_LENGTH(bytes.size()), '\0');
  base64_encode_raw(text.data(), bytes.size(), Bytes(bytes));
  return text;
}

}  // namespace vs_wml
