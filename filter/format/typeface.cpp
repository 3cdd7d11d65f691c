// SPDX-License-Identifier: MIT
#include "filter/format/typeface.h"

#include <cstring>

#include "filter/data/ascii.h"
#include "filter/ground/callbacks.h"

namespace {

constexpr uint16_t kLastTypeface = 254;    // greatest index with a number of its own
constexpr uint8_t kListedTypefaces = 3;    // numbers of the section's font list
constexpr uint32_t kOtherCharWidth = 700;  // characters outside the width table
constexpr uint32_t kScale = 460;           // of the table: 12 points are 5520
constexpr uint32_t kTableScale = 5520;

const char *TypefaceName(uint16_t index, const WmlProc *proc) {
  return static_cast<const char *>(VAGetItem(index, &proc->typefaceArray));
}

}  // namespace

uint8_t AddTypeface(const char *name, WmlProc *proc) {
  uint16_t index = 0;
  for (; index <= kLastTypeface; ++index) {
    const char *known = TypefaceName(index, proc);
    if (known == nullptr) break;
    if (ncstrcmp(known, name) == 0) return static_cast<uint8_t>(index + 1);
  }
  auto *added = static_cast<char *>(VAAddItem(nullptr, &proc->typefaceArray, proc));
  if (added == nullptr) return TYPEFACE_NONE;
  std::strncpy(added, name, TYPEFACE_NAME_SIZE - 1);
  added[TYPEFACE_NAME_SIZE - 1] = 0;
  return index <= kLastTypeface ? static_cast<uint8_t>(index + 1) : uint8_t{0};
}

void PutTypeface(uint8_t number, WmlProc *proc) {
  if (number <= kListedTypefaces) {
    SOSelectFontNumber(proc->filterId == FILTER_WML ? number : 0, proc);
    return;
  }
  const char *name = TypefaceName(static_cast<uint16_t>(number - 1), proc);
  if (name != nullptr) SOSelectFontName(name, proc);
}

uint32_t WMLGetCharWidth(uint16_t ch, const StyleRecord &style) {
  if (ch == 0) return 0;
  const uint32_t factor = style.pointSize * kScale;
  const uint32_t width =
      ch >= 0x20 && ch < 0x80 ? uint32_t{WmlInit.widths[ch - 0x20]} : kOtherCharWidth;
  return width * factor / kTableScale;
}
