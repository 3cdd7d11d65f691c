// SPDX-License-Identifier: MIT
#include "archives/payload/digest.h"

#include <nettle/nettle-meta.h>

#include <cstdint>
#include <string>
#include <vector>

#include "host/text/ascii.h"

namespace vs_wml {
namespace {

struct Algorithm {
  std::string_view name;  // without hyphens
  const nettle_hash *hash;
};

const nettle_hash *Find(std::string_view label) {
  static const Algorithm kAlgorithms[] = {{"md5", &nettle_md5},
                                          {"sha1", &nettle_sha1},
                                          {"sha256", &nettle_sha256},
                                          {"sha512", &nettle_sha512}};
  std::string name = Lowered(label);
  std::erase(name, '-');
  for (const Algorithm &algorithm : kAlgorithms) {
    if (algorithm.name == name) return algorithm.hash;
  }
  return nullptr;
}

int Base32Digit(char c) {
  const char lower = ToLower(c);
  if (lower >= 'a' && lower <= 'z') return lower - 'a';
  return c >= '2' && c <= '7' ? c - '2' + 26 : -1;
}

int HexDigit(char c) {
  if (IsDigit(c)) return c - '0';
  return IsHexDigit(c) ? ToLower(c) - 'a' + 10 : -1;
}

// The bytes that digits of so many bits stand for, as many as are whole; nothing for others.
std::vector<std::uint8_t> Decode(std::string_view digits, int (*value)(char), unsigned bits) {
  std::vector<std::uint8_t> bytes;
  unsigned held = 0;
  unsigned count = 0;
  for (const char c : digits) {
    const int digit = value(c);
    if (digit < 0) return {};
    held = held << bits | static_cast<unsigned>(digit);
    count += bits;
    if (count < 8) continue;
    count -= 8;
    bytes.push_back(static_cast<std::uint8_t>(held >> count));
    held &= (1U << count) - 1;
  }
  return bytes;
}

}  // namespace

DigestMatch CompareDigest(std::string_view digest, std::string_view bytes) {
  const std::size_t colon = digest.find(':');
  if (colon == std::string_view::npos) return DigestMatch::kUnknown;
  const nettle_hash *hash = Find(Trim(digest.substr(0, colon)));
  if (hash == nullptr) return DigestMatch::kUnknown;
  std::string_view value = Trim(digest.substr(colon + 1));
  while (value.ends_with('=')) value.remove_suffix(1);
  const bool isHex = value.size() == std::size_t{hash->digest_size} * 2;
  const std::vector<std::uint8_t> expected =
      isHex ? Decode(value, HexDigit, 4) : Decode(value, Base32Digit, 5);
  if (expected.size() != hash->digest_size) return DigestMatch::kUnknown;

  std::vector<std::uint8_t> context(hash->context_size);
  std::vector<std::uint8_t> found(hash->digest_size);
  hash->init(context.data());
  hash->update(context.data(), bytes.size(), reinterpret_cast<const std::uint8_t *>(bytes.data()));
  hash->digest(context.data(), found.size(), found.data());
  return found == expected ? DigestMatch::kSame : DigestMatch::kDifferent;
}

}  // namespace vs_wml
