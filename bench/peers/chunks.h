// SPDX-License-Identifier: MIT
// How a document is pushed into a parser.
#ifndef VS_WML_BENCH_PEERS_CHUNKS_H
#define VS_WML_BENCH_PEERS_CHUNKS_H

#include "contender.h"

inline constexpr size_t kChunkSize = 65536;

// push(chunk, isLast) for every chunk, an empty one last, until it answers false.
template <typename Push>
bool ForEachChunk(const Document &document, Push push) {
  const std::string_view bytes = document.bytes;
  for (size_t at = 0; at < bytes.size(); at += kChunkSize) {
    if (!push(bytes.substr(at, kChunkSize), false)) return false;
  }
  return push(std::string_view(), true);
}

#endif  // VS_WML_BENCH_PEERS_CHUNKS_H
