// SPDX-License-Identifier: MIT
#include "filter/format/style.h"

#include <bit>
#include <cassert>

#include "filter/format/typeface.h"
#include "filter/ground/callbacks.h"
#include "filter/ground/short_cuts.h"
#include "filter/text/paragraph.h"

namespace {

struct CharAttribute {
  uint32_t set;
  uint32_t clear;  // in templates
};

constexpr CharAttribute kCharAttributes[] = {
    {ATTR_BOLD, ATTR_CLEAR_BOLD},
    {ATTR_ITALIC, ATTR_CLEAR_ITALIC},
    {ATTR_UNDERLINE, ATTR_CLEAR_UNDERLINE},
};

bool SameStyle(const StyleRecord &a, const StyleRecord &b) {
  return a.charAttrs == b.charAttrs && a.paraFlags == b.paraFlags && a.pointSize == b.pointSize &&
         a.modeBits == b.modeBits && a.level == b.level && a.typeface == b.typeface;
}

}  // namespace

StyleRecord BaseStyle(const WmlProc *proc) {
  StyleRecord style = WmlInit.styleTemplates[0];
  style.typeface = proc->defaultTypeface;
  return style;
}

namespace {

[[maybe_unused]] uint16_t CountEqual(const StyleRecord &style, const WmlProc *proc) {
  uint16_t equal = 0;
  for (uint16_t i = 0; const StyleRecord *stored = StyleRetrieve(i, proc); ++i) {
    equal += SameStyle(*stored, style);
  }
  return equal;
}

}  // namespace

uint16_t StyleStore(const StyleRecord &style, WmlProc *proc) {
  uint16_t index = 0;
  while (const StyleRecord *stored = StyleRetrieve(index, proc)) {
    if (SameStyle(*stored, style)) return index;
    ++index;
  }
  auto *added = static_cast<StyleRecord *>(VAAddItem(&index, &proc->styleArray, proc));
  if (added == nullptr) return NO_INDEX;
  *added = style;
  assert(CountEqual(style, proc) == 1);
  return index;
}

namespace {

void ApplyCharAttributes(uint32_t templateAttrs, StyleRecord *target) {
  target->charAttrs &= ~CLEAR_ATTRIBUTES;
  for (const CharAttribute &attribute : kCharAttributes) {
    if (templateAttrs & attribute.set) {
      target->charAttrs |= attribute.set;
    } else if (templateAttrs & attribute.clear) {
      target->charAttrs &= ~attribute.set;
    }
  }
}

void ReplaceParaFlags(uint8_t mask, uint8_t flags, StyleRecord *target) {
  target->paraFlags = static_cast<uint8_t>((target->paraFlags & ~mask) | flags);
}

void StyleApply(const StyleRecord &styleTemplate, StyleRecord *target) {
  target->templateId = styleTemplate.templateId;
  if (styleTemplate.pointSize != 0) target->pointSize = styleTemplate.pointSize;
  ApplyCharAttributes(styleTemplate.charAttrs, target);
  target->modeBits |= styleTemplate.modeBits;
  target->level = styleTemplate.level < 0
                      ? int16_t{0}
                      : static_cast<int16_t>(target->level + styleTemplate.level);
  const uint8_t alignment = styleTemplate.paraFlags & PARA_ALIGN_MASK;
  if (alignment != 0) ReplaceParaFlags(PARA_ALIGN_MASK, alignment, target);
  if (styleTemplate.paraFlags & PARA_ORDINARY) {
    ReplaceParaFlags(PARA_LAYOUT_MASK, PARA_ORDINARY, target);
  } else if (styleTemplate.paraFlags & PARA_PREFORMATTED) {
    ReplaceParaFlags(PARA_LAYOUT_MASK, PARA_PREFORMATTED, target);
  }
  if (styleTemplate.typeface != 0) target->typeface = styleTemplate.typeface;
}

uint16_t DeriveStyle(uint16_t current, uint8_t styleClass, WmlProc *proc) {
  const StyleRecord *from = StyleRetrieve(current, proc);
  StyleRecord style = from != nullptr ? *from : BaseStyle(proc);
  StyleApply(WmlInit.styleTemplates[styleClass], &style);
  return StyleStore(style, proc);
}

}  // namespace

uint16_t StyleSelect(uint8_t styleClass, WmlProc *proc) {
  if (styleClass == 0 || styleClass >= STYLE_TEMPLATE_COUNT) return NO_INDEX;
  const uint16_t current = TagStackTop(proc).styleIndex;
  if (!kShortCuts || current >= DERIVED_FROM_COUNT) return DeriveStyle(current, styleClass, proc);
  const uint16_t known = proc->derivedStyles.of[current][styleClass];
  if (known != NO_INDEX) return known;
  const bool isStored = current < proc->styleArray.count;
  const uint16_t derived = DeriveStyle(current, styleClass, proc);
  if (isStored) proc->derivedStyles.of[current][styleClass] = derived;
  return derived;
}

namespace {

// The bits of the attributes stand in the order of their properties.
static_assert(ATTR_ITALIC == ATTR_BOLD << 1 && ATTR_UNDERLINE == ATTR_BOLD << 2);
static_assert(PROP_ATTR_ITALIC == PROP_ATTR_BOLD + 1 && PROP_ATTR_UNDERLINE == PROP_ATTR_BOLD + 2);

void SendCharAttributes(uint32_t from, uint32_t to, WmlProc *proc) {
  uint32_t changed = (from ^ to) & (ATTR_BOLD | ATTR_ITALIC | ATTR_UNDERLINE);
  for (; changed != 0; changed &= changed - 1) {
    const int bit = std::countr_zero(changed);
    const auto place = static_cast<uint32_t>(bit - std::countr_zero(ATTR_BOLD));
    SOSetProperty(PROP_CHAR_ATTRIBUTE, PROP_ATTR_BOLD + place, to >> bit & 1, 0, proc);
  }
}

void SendLayout(const StyleRecord &style, WmlProc *proc) {
  const bool preformatted = (style.paraFlags & PARA_PREFORMATTED) != 0;
  SOSetProperty(PROP_LAYOUT, preformatted ? PROP_LAYOUT_PREFORMATTED : PROP_LAYOUT_ORDINARY, 0, 0,
                proc);
}

void SendWholeStyle(const StyleRecord &style, WmlProc *proc) {
  SendCharAttributes(0, style.charAttrs, proc);
  SOSetCharSize(2u * style.pointSize, proc);
  SendLayout(style, proc);
  PutTypeface(style.typeface, proc);
  proc->save.modeFlags |= style.modeBits;
  OptionParaBreak(proc);
}

void SendDifference(const StyleRecord &from, const StyleRecord &to, WmlProc *proc) {
  if (from.charAttrs != to.charAttrs) SendCharAttributes(from.charAttrs, to.charAttrs, proc);
  if (from.pointSize != to.pointSize) SOSetCharSize(2u * to.pointSize, proc);
  if ((from.paraFlags ^ to.paraFlags) & PARA_LAYOUT_MASK) SendLayout(to, proc);
  if (from.typeface != to.typeface) PutTypeface(to.typeface, proc);
  if (from.modeBits != to.modeBits) {
    proc->save.modeFlags &= ~(from.modeBits & ~to.modeBits);
    proc->save.modeFlags |= to.modeBits & ~from.modeBits;
  }
}

}  // namespace

void SendStyleDelta(uint16_t from, uint16_t to, WmlProc *proc) {
  const auto *styles = reinterpret_cast<const StyleRecord *>(proc->styleArray.storage);
  const uint16_t count = proc->styleArray.count;
  if (to >= count) return;
  if (from >= count) {
    SendWholeStyle(styles[to], proc);
  } else {
    SendDifference(styles[from], styles[to], proc);
  }
}

void StyleUpdate(WmlProc *proc) {
  StyleDelta(NO_INDEX, TagStackTop(proc).styleIndex, proc);
}
