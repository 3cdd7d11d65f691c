// SPDX-License-Identifier: MIT
#include "tests/support/block_source.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <type_traits>

namespace vs_wml::test {
namespace {

static_assert(std::is_standard_layout_v<BlockSource> && offsetof(BlockSource, record) == 0);

BlockSource &From(VwHandle self) {
  return *reinterpret_cast<BlockSource *>(self);
}

bool Fails(std::uint64_t call, std::uint64_t at, bool forever) {
  return at != 0 && (call == at || (forever && call > at));
}

std::uint32_t Read(VwHandle self, void *buffer, std::uint32_t wanted, std::uint32_t *delivered) {
  BlockSource &source = From(self);
  ++source.reads;
  // A host may well write more than it delivers.
  std::memset(buffer, 0xEE, std::min<std::uint32_t>(wanted, 64));
  *delivered = wanted;
  if (Fails(source.reads, source.faults.readAt, source.faults.forever)) return 5;
  if (source.position >= source.faults.readFrom) return 5;
  if (source.budget != 0 && source.bytes >= source.budget) return 5;
  std::uint32_t count = source.position < source.length ? source.length - source.position : 0;
  count = std::min(count, wanted);
  if (source.chunk != 0) count = std::min(count, source.chunk);
  auto *out = static_cast<char *>(buffer);
  for (std::uint32_t done = 0; done < count;) {
    const std::size_t offset = (source.position + done) % source.text.size();
    const auto piece = std::min<std::size_t>(count - done, source.text.size() - offset);
    std::memcpy(out + done, source.text.data() + offset, piece);
    done += static_cast<std::uint32_t>(piece);
  }
  source.position += count;
  source.bytes += count;
  *delivered = count == 0 ? 0 : count + source.faults.overclaim;
  return 0;
}

std::uint32_t Seek(VwHandle self, std::uint32_t origin, std::uint32_t offset) {
  BlockSource &source = From(self);
  ++source.seeks;
  if (Fails(source.seeks, source.faults.seekAt, source.faults.forever)) return 5;
  source.position = origin == 2 ? source.length + offset : offset;
  return 0;
}

std::uint32_t Tell(VwHandle self, std::uint32_t *position) {
  BlockSource &source = From(self);
  ++source.tells;
  if (Fails(source.tells, source.faults.tellAt, source.faults.forever)) return 5;
  *position = source.position + source.faults.tellLie;
  return 0;
}

}  // namespace

BlockSource::BlockSource(std::string_view document, std::uint32_t bytesPerRead)
    : text(document), length(static_cast<std::uint32_t>(document.size())), chunk(bytesPerRead) {
  record.read = Read;
  record.seek = Seek;
  record.tell = Tell;
}

}  // namespace vs_wml::test
