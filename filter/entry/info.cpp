// SPDX-License-Identifier: MIT
// The entry point that answers questions about the library.
#include <cstring>

#include "filter/data/vsd_wml.h"

namespace {

uint16_t PutWord16(uint16_t value, void *out) {
  std::memcpy(out, &value, sizeof value);
  return 1;
}

uint16_t PutWord32(uint32_t value, void *out) {
  std::memcpy(out, &value, sizeof value);
  return 1;
}

template <size_t size>
uint16_t PutText(const char (&text)[size], void *out) {
  std::memcpy(out, text, size);
  return 1;
}

uint16_t PutFilterIds(void *out) {
  auto *bytes = static_cast<char *>(out);
  for (const WmlOverlayRecord &record : WmlOverlayId) {
    PutWord16(static_cast<uint16_t>(record.id[0] | record.id[1] << 8), bytes);
    bytes += sizeof(uint16_t);
  }
  return 1;
}

}  // namespace

uint16_t VwGetInfo(void *out, uint16_t query) noexcept {
  if (out == nullptr) return 0;
  switch (query) {
    case VW_INFO_SAVE_SIZE:
      return PutWord16(VW_SAVE_SIZE, out);
    case VW_INFO_INSTANCE_SIZE:
      return PutWord16(1136, out);
    case VW_INFO_TABLES_SIZE:
      return PutWord16(5008, out);
    case VW_INFO_FIXED_4:
      return PutWord16(400, out);
    case VW_INFO_FIXED_5:
      return PutWord16(440, out);
    case VW_INFO_IDENTITY_COUNT:
      return PutWord16(VW_OVERLAY_COUNT, out);
    case VW_INFO_IDENTITIES:
      return PutFilterIds(out);
    case VW_INFO_BUILD_DATE:
      return PutText(VS_WML_BUILD_DATE, out);
    case VW_INFO_BUILD_TIME:
      return PutText(VS_WML_BUILD_TIME, out);
    case VW_INFO_FIXED_10:
    case VW_INFO_FIXED_11:
      return PutWord16(0, out);
    case VW_INFO_FIXED_12:
      return PutWord32(0x12345678, out);
    case VW_INFO_FIXED_13:
      return PutWord32(0, out);
    default:
      return 0;
  }
}
