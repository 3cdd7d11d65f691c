// SPDX-License-Identifier: MIT
// The style store, and the differences between styles that the host is sent.
#ifndef VS_WML_FILTER_FORMAT_STYLE_H
#define VS_WML_FILTER_FORMAT_STYLE_H

#include <cstdint>

#include "filter/ground/instance.h"

// The document's base style: template 0 with the typeface of the stream's section.
StyleRecord BaseStyle(const WmlProc *proc);

// The index of an equal style, stored now if there is none. NO_INDEX when the store
// cannot grow. Stored styles never change or move in index.
uint16_t StyleStore(const StyleRecord &style, WmlProc *proc);

// The style of an index, null when there is none; valid until the next StyleStore.
inline const StyleRecord *StyleRetrieve(uint16_t index, const WmlProc *proc) {
  const auto *styles = reinterpret_cast<const StyleRecord *>(proc->styleArray.storage);
  return index < proc->styleArray.count ? styles + index : nullptr;
}

// The index of the current style with a template applied, NO_INDEX for a styleClass
// without a template.
uint16_t StyleSelect(uint8_t styleClass, WmlProc *proc);

// Sends the host what differs between two styles by their indexes, or everything when
// `from` is none; nothing when `to` is none or both are the same.
void SendStyleDelta(uint16_t from, uint16_t to, WmlProc *proc);

inline void StyleDelta(uint16_t from, uint16_t to, WmlProc *proc) {
  if (from != to) SendStyleDelta(from, to, proc);
}

// Sends the whole style of the top element.
void StyleUpdate(WmlProc *proc);

#endif  // VS_WML_FILTER_FORMAT_STYLE_H
