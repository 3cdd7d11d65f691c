// SPDX-License-Identifier: MIT
// The host's output routines as functions of the instance.
#ifndef VS_WML_FILTER_GROUND_CALLBACKS_H
#define VS_WML_FILTER_GROUND_CALLBACKS_H

#include <cstdint>

#include "filter/ground/instance.h"

// Calls the routine in a slot with its own arguments and the two user words.
template <typename Routine, VwSlot slot, typename... Arguments>
inline uint32_t CallHost(const WmlProc *proc, Arguments... arguments) {
  const auto routine = reinterpret_cast<Routine>(proc->calls.field[SLOT_FIELDS.of[slot]]);
  return routine(arguments..., proc->userData1, proc->userData2);
}

inline void SOEmitChar(uint32_t character, const WmlProc *proc) {
  CallHost<SOEmitCharRoutine, SLOT_EMIT_CHAR>(proc, character);
}
inline void SOEmitControlCode(uint32_t code, const WmlProc *proc) {
  CallHost<SOEmitControlCodeRoutine, SLOT_EMIT_CONTROL_CODE>(proc, code);
}
inline void SOSetCharSize(uint32_t halfPoints, const WmlProc *proc) {
  CallHost<SOSetCharSizeRoutine, SLOT_SET_CHAR_SIZE>(proc, halfPoints);
}
// The host's answer, of which the low 16 bits count.
inline uint16_t SOEmitBreak(uint32_t kind, const WmlProc *proc) {
  return static_cast<uint16_t>(
      CallHost<SOEmitBreakRoutine, SLOT_EMIT_BREAK>(proc, kind, uint32_t{0}));
}
inline void SODeclareSection(const WmlProc *proc) {
  CallHost<SODeclareSectionRoutine, SLOT_DECLARE_SECTION>(proc, uint32_t{0}, uint32_t{0},
                                                          uint32_t{0});
}
inline void SOAbortStream(const WmlProc *proc) {
  CallHost<SOAbortStreamRoutine, SLOT_ABORT_STREAM>(proc, uint32_t{0});
}
inline void SOSelectFontNumber(uint32_t fontNumber, const WmlProc *proc) {
  CallHost<SOSelectFontNumberRoutine, SLOT_SELECT_FONT_NUMBER>(proc, fontNumber);
}
inline void SOSelectFontName(const char *name, const WmlProc *proc) {
  CallHost<SOSelectFontNameRoutine, SLOT_SELECT_FONT_NAME>(proc, uint32_t{1}, name);
}
inline void SOOpenFontList(const WmlProc *proc) {
  CallHost<SOOpenFontListRoutine, SLOT_OPEN_FONT_LIST>(proc);
}
inline void SOAddFontListEntry(uint32_t fontNumber, uint32_t family, const char *name,
                               const WmlProc *proc) {
  CallHost<SOAddFontListEntryRoutine, SLOT_ADD_FONT_LIST_ENTRY>(proc, fontNumber, family, name);
}
inline void SOCloseFontList(const WmlProc *proc) {
  CallHost<SOCloseFontListRoutine, SLOT_CLOSE_FONT_LIST>(proc);
}
inline void SOOpenTable(const WmlProc *proc) {
  CallHost<SOOpenTableRoutine, SLOT_OPEN_TABLE>(proc);
}
inline void SOCloseTable(const WmlProc *proc) {
  CallHost<SOCloseTableRoutine, SLOT_CLOSE_TABLE>(proc);
}
inline void SOInsertGraphic(const GraphicRecord *graphic, const WmlProc *proc) {
  CallHost<SOInsertGraphicRoutine, SLOT_INSERT_GRAPHIC>(proc, graphic);
}
inline void SOOpenLink(uint32_t number, const VwLinkRecord *link, const WmlProc *proc) {
  CallHost<SOOpenLinkRoutine, SLOT_OPEN_LINK>(proc, uint32_t{SO_LINK_CODE}, number, link);
}
inline void SOCloseLink(uint32_t number, const WmlProc *proc) {
  CallHost<SOCloseLinkRoutine, SLOT_CLOSE_LINK>(proc, uint32_t{SO_LINK_CODE}, number);
}
inline void SOStoreString(const uint16_t *string, uint32_t length, uint32_t *index,
                          const WmlProc *proc) {
  CallHost<SOStoreStringRoutine, SLOT_STORE_STRING>(proc, string, uint32_t{SO_STRING_CODE}, length,
                                                    index);
}
inline void SODescribeRow(const RowDescription *row, const WmlProc *proc) {
  CallHost<SODescribeRowRoutine, SLOT_DESCRIBE_ROW>(proc, row);
}
inline void SOSetTextColor(uint32_t color, const WmlProc *proc) {
  CallHost<SOSetTextColorRoutine, SLOT_SET_TEXT_COLOR>(proc, uint32_t{0}, color);
}
inline void SOSwitchCharset(uint32_t hostCharset, const WmlProc *proc) {
  CallHost<SOSwitchCharsetRoutine, SLOT_SWITCH_CHARSET>(proc, hostCharset);
}
inline void SOOpenReference(uint32_t *id, const WmlProc *proc) {
  CallHost<SOOpenReferenceRoutine, SLOT_OPEN_REFERENCE>(proc, id);
}
inline void SODescribeCell(const CellDescription *cell, const WmlProc *proc) {
  CallHost<SODescribeCellRoutine, SLOT_DESCRIBE_CELL>(proc, cell);
}
inline void SOSetProperty(uint32_t code, uint32_t a, uint32_t b, uint32_t c, const WmlProc *proc) {
  CallHost<SOSetPropertyRoutine, SLOT_SET_PROPERTY>(proc, code, a, b, c);
}

#endif  // VS_WML_FILTER_GROUND_CALLBACKS_H
