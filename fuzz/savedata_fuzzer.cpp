// Restores any bytes as a save block, at any position of any document.
//
// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "tests/support/session.h"

using namespace vs_wml::test;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  SavedState state;
  std::uint8_t position[2] = {};
  const std::size_t header = sizeof position + state.block.size();
  if (size < header) return 0;
  std::memcpy(position, data, sizeof position);
  std::copy_n(data + sizeof position, state.block.size(), state.block.begin());
  state.position = static_cast<std::uint32_t>(position[0] | position[1] << 8);

  const std::string_view document(reinterpret_cast<const char *>(data) + header, size - header);
  BlockSource source(document);
  source.budget = 8 * (document.size() + 2048);
  Host host;
  Session session(source, host);
  session.Open(kIdentities[position[0] % std::size(kIdentities)]);
  session.Section();
  // Half of the blocks meet a stream that has read and holds styles and tables.
  if (position[1] & 0x80) session.Read();
  session.Restore(state);
  for (int reads = 0; reads < 3; ++reads) session.Read();
  return 0;
}
