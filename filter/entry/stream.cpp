// SPDX-License-Identifier: MIT
// The entry points of a stream: open, section, read, position, close.
#include <cstring>
#include <initializer_list>

#include "filter/entry/read_loop.h"
#include "filter/format/typeface.h"
#include "filter/ground/callbacks.h"
#include "filter/ground/instance.h"
#include "filter/ground/stream_position.h"

namespace {

constexpr uint16_t kTableGrowth = 1;
constexpr uint16_t kStyleGrowth = 4;
constexpr uint16_t kTypefaceGrowth = 1;

// A filter identity: the charset of a document that names none, and the place of its
// national typeface in the keyword table, 0 for none.
struct Identity {
  int16_t filterId;
  uint16_t charset;
  uint8_t nationalKeyword;
};

constexpr Identity kIdentities[] = {
    {FILTER_WML, CHARSET_DEFAULT, 0},
    {FILTER_WML_BIG5, CHARSET_BIG5, KEYWORD_NATIONAL_BIG5},
    {FILTER_WML_EUC_CN, CHARSET_EUC_CN, KEYWORD_NATIONAL_EUC_CN},
    {FILTER_WML_GB, CHARSET_GB2312, KEYWORD_NATIONAL_GB},
    {FILTER_WML_1251, CHARSET_WINDOWS_1251, KEYWORD_NATIONAL_1251},
    {FILTER_WML_KOI8_R, CHARSET_KOI8_R, KEYWORD_NATIONAL_KOI8_R},
    {FILTER_WML_JIS, CHARSET_JIS_X0208, KEYWORD_NATIONAL_JIS},
    {FILTER_WML_SJIS, CHARSET_SJIS, KEYWORD_NATIONAL_SJIS},
    {FILTER_WML_EUC_JP, CHARSET_EUC_JP, KEYWORD_NATIONAL_EUC_JP},
    {FILTER_WML_KOREAN, CHARSET_KSC5601, KEYWORD_NATIONAL_KOREAN},
    {FILTER_WML_1250, CHARSET_WINDOWS_1250, KEYWORD_NATIONAL_1250},
};

const Identity *FindIdentity(uint16_t filterId) {
  for (const Identity &identity : kIdentities) {
    if (static_cast<uint16_t>(identity.filterId) == filterId) return &identity;
  }
  return nullptr;
}

const char *Keyword(int place) {
  return WmlInit.keywords[place].name;
}

void SetInput(VwHandle chr, WmlProc *proc) {
  proc->input = reinterpret_cast<VwCharBuffer *>(chr);
}

void FillFileInfo(VwFileInfo *info) {
  static_assert(sizeof info->name == sizeof WmlOverlayId[0].name);
  info->typeCode = VW_TYPE_CODE;
  info->charsetCode = HOST_CS_UNICODE;
  std::memcpy(info->name, WmlOverlayId[0].name, sizeof info->name);
}

void DestroyStorage(WmlProc *proc) {
  VADestroy(&proc->tableArray);
  VADestroy(&proc->styleArray);
  VADestroy(&proc->typefaceArray);
  StringFreeAll(proc);
  proc->currentTable = nullptr;
}

void CreateStorage(WmlProc *proc) {
  DestroyStorage(proc);
  VACreate(sizeof(TableRecord), kTableGrowth, &proc->tableArray);
  VACreate(sizeof(StyleRecord), kStyleGrowth, &proc->styleArray);
  VACreate(TYPEFACE_NAME_SIZE, kTypefaceGrowth, &proc->typefaceArray);
  proc->tablesAscend = true;
  std::memset(&proc->derivedStyles, 0xFF, sizeof proc->derivedStyles);
}

// The charset fields are set once the identity is known.
void ResetSave(WmlSave *save) {
  const uint16_t curCharset = save->curCharset;
  *save = {};
  save->curCharset = curCharset;
  save->firstCardPending = 1;
  save->charsetState = CS_AFTER_OPEN;
  save->tagStackTop = -1;
  save->paraAlign = PARA_ALIGN_LEFT;
  save->emPointSize = 12;
  save->linkColor = 0x00FF0000;
  save->backgroundColor = 0x00FFFFFF;
  save->tableIndex = NO_INDEX;
}

void AddTypefaces(const Identity &identity, WmlProc *proc) {
  if (identity.nationalKeyword != 0) AddTypeface(Keyword(identity.nationalKeyword), proc);
  for (const int place : {KEYWORD_ROMAN, KEYWORD_HELVETICA, KEYWORD_COURIER}) {
    AddTypeface(Keyword(place), proc);
  }
}

}  // namespace

uint32_t VwStreamOpen(VwHandle chr, int16_t filterId, uint32_t /*unused*/, VwFileInfo *info,
                      WmlProc *proc) noexcept {
  if (info != nullptr) FillFileInfo(info);
  if (proc == nullptr) return 0;
  SetInput(chr, proc);
  proc->stopFlags = 0;
  proc->attrCount = 0;
  proc->filterId = static_cast<uint16_t>(filterId);
  proc->defaultTypeface = 1;
  CreateStorage(proc);
  ResetSave(&proc->save);
  proc->isOpen = true;
  const Identity *identity = FindIdentity(proc->filterId);
  if (identity == nullptr) {
    SOAbortStream(proc);
    return 0;
  }
  proc->docCharset = identity->charset;
  proc->save.curCharset = identity->charset;
  AddTypefaces(*identity, proc);
  return 0;
}

uint32_t VwStreamSection(VwHandle chr, WmlProc *proc) noexcept {
  if (proc == nullptr || !proc->isOpen) return 0;
  SetInput(chr, proc);
  SODeclareSection(proc);
  SOOpenFontList(proc);
  if (const Identity *identity = FindIdentity(proc->filterId)) {
    const bool national = identity->nationalKeyword != 0;
    proc->defaultTypeface = national ? 0 : 1;
    if (national) {
      SOAddFontListEntry(4, SO_FAMILY_NATIONAL, Keyword(identity->nationalKeyword), proc);
    }
  }
  SOAddFontListEntry(1, SO_FAMILY_ROMAN, Keyword(KEYWORD_ROMAN), proc);
  SOAddFontListEntry(2, SO_FAMILY_HELVETICA, Keyword(KEYWORD_HELVETICA), proc);
  SOAddFontListEntry(3, SO_FAMILY_COURIER, Keyword(KEYWORD_COURIER), proc);
  SOCloseFontList(proc);
  SOSetProperty(PROP_SECTION_END, 136, 0, 0, proc);
  return 0;
}

uint32_t VwStreamRead(VwHandle chr, WmlProc *proc) noexcept {
  if (proc == nullptr || !proc->isOpen) return 0;
  SetInput(chr, proc);
  ReadDocument(proc);
  return 0;
}

int32_t VwStreamTell(VwHandle chr, VwStreamPos *position) noexcept {
  const auto *buffer = reinterpret_cast<const VwCharBuffer *>(chr);
  if (position != nullptr) position->offset = buffer != nullptr ? VwCharTell(buffer) : 0;
  return 0;
}

int32_t VwStreamSeek(VwHandle chr, const VwStreamPos *position) noexcept {
  auto *buffer = reinterpret_cast<VwCharBuffer *>(chr);
  if (buffer == nullptr || position == nullptr) return -1;
  return VwCharSeek(buffer, position->offset, SEEK_FROM_START);
}

void VwStreamClose(VwHandle chr, WmlProc *proc) noexcept {
  if (proc == nullptr) return;
  SetInput(chr, proc);
  proc->isOpen = false;
  DestroyStorage(proc);
}
