// SPDX-License-Identifier: MIT
#include "filter/elements/image.h"

#include "filter/attributes/alignment.h"
#include "filter/attributes/attribute_values.h"
#include "filter/attributes/length.h"
#include "filter/ground/callbacks.h"
#include "filter/text/paragraph.h"

static_assert(sizeof(SideDescription) == 20);
static_assert(sizeof(GraphicRecord) == 160);
static_assert(offsetof(GraphicRecord, left) == 48);
static_assert(offsetof(GraphicRecord, sizeMode) == 128);

namespace {

constexpr uint32_t kLinkBorder = 30;  // twips

// A length in twips, 0 when the attribute is absent; plain numbers are pixels.
uint32_t ReadLength(uint16_t attribute, WmlProc *proc) {
  char value[32];
  if (!GetAttributeString(attribute, value, sizeof value, proc)) return 0;
  return StrToLong(value, UNIT_PIXELS, proc);
}

void IncludeGraphic(uint32_t source, uint32_t alternative, uint32_t width, uint32_t height,
                    WmlProc *proc) {
  GraphicRecord graphic = {};
  PutReference(source, &graphic.referenceId, proc);
  graphic.size = sizeof graphic;
  graphic.flags = alternative != NO_STRING ? SO_GRAPHIC_HAS_ALT : 0;
  graphic.count = 1;
  graphic.reserved2 = 0xFFFFFFFF;
  graphic.alternative = alternative;
  if (width == 0 || height == 0) {
    graphic.sizeMode = SO_GRAPHIC_UNSIZED;
  } else {
    graphic.sizeMode = SO_GRAPHIC_SIZED;
    graphic.height = graphic.displayHeight = height;
    graphic.width = graphic.displayWidth = width;
  }
  SideDescription side = {0, 0, 1, {}};
  if (proc->save.modeFlags & MODE_IN_ANCHOR) side = {kLinkBorder, proc->save.linkColor, 0, {}};
  graphic.left = graphic.right = graphic.top = graphic.bottom = side;
  SOInsertGraphic(&graphic, proc);
  proc->save.lastChar = 1;
}

}  // namespace

[[gnu::noinline]] void ProcessImage(WmlProc *proc) {
  uint32_t source;
  if (!PutAttributeString(ATTRIB_SRC, &source, proc)) return;
  const uint32_t width = ReadLength(ATTRIB_WIDTH, proc);
  const uint32_t height = ReadLength(ATTRIB_HEIGHT, proc);
  uint32_t alternative;
  PutAttributeString(ATTRIB_ALT, &alternative, proc);
  if (const uint16_t alignment = CheckJustify(proc)) SetParaAlign(alignment, proc);
  IncludeGraphic(source, alternative, width, height, proc);
}
