// SPDX-License-Identifier: MIT
// The instance block: every piece of state of one open stream.
#ifndef VS_WML_FILTER_GROUND_INSTANCE_H
#define VS_WML_FILTER_GROUND_INSTANCE_H

#include <cstdint>

#include "filter/data/vsd_wml.h"
#include "filter/ground/char_buffer.h"
#include "filter/ground/heap.h"
#include "filter/ground/item.h"
#include "filter/ground/routine_table.h"
#include "filter/vs_wml.h"

inline constexpr int TAG_STACK_SIZE = 40;
inline constexpr int MAX_ATTRIBUTES = 17;
inline constexpr uint16_t NO_INDEX = 0xFFFF;       // no style, no table
inline constexpr uint32_t NO_STRING = 0xFFFFFFFF;  // no string index of the host's

// stopFlags: any routine may set a bit, only the read loop acts on them.
inline constexpr uint16_t STOP_END_OF_INPUT = 0x0001;  // the decoder met the end
inline constexpr uint16_t STOP_HOST = 0x0002;          // the host answered SO_STOP
inline constexpr uint16_t STOP_NO_MEMORY = 0x0100;     // an allocation failed

// charsetState
inline constexpr uint16_t CS_AFTER_OPEN = 0x06;
inline constexpr uint16_t CS_SINGLE_SHIFT = 0x20;    // back to docCharset after one character
inline constexpr uint16_t CS_RESET_AT_BREAK = 0x40;  // back to docCharset at the next break

// An open element on the tag stack.
struct TagStackElem {
  uint8_t tagId;        // of its begin tag
  uint8_t itemFlags;    // of its begin tag
  uint16_t styleIndex;  // item of styleArray, NO_INDEX = none
  uint8_t styleClass;   // style template asked for, 0 = none
  uint8_t reserved;     // 0
};
static_assert(sizeof(TagStackElem) == 6);

// What VwGetData and VwSetData copy: all that a resumed read needs. Its bytes
// may come from anywhere, so every reader of a field allows any value; paddings
// are fields, so that no stray byte leaves the process. `open:` is the value
// after VwStreamOpen, 0 where none is given.
struct WmlSave {
  uint16_t firstCardPending;  // open: 1; cleared when the first card begins
  uint16_t charsetState;      // open: CS_AFTER_OPEN; CS_ bits
  uint16_t curCharset;        // open: docCharset; decodes the next byte
  uint16_t g1Charset;         // ISO 2022 designations, 0 = none
  uint16_t g2Charset;
  uint16_t g3Charset;
  uint16_t anchorCount;  // links opened so far
  TagStackElem tagStack[TAG_STACK_SIZE];
  int16_t tagStackTop;   // open: -1; index of the top element
  uint16_t paraAlign;    // open: PARA_ALIGN_LEFT; of the current paragraph
  uint16_t paraByte;     // a place of the block that nothing uses
  uint16_t emPointSize;  // open: 12; points of an em in lengths
  uint16_t reserved0;
  uint32_t modeFlags;        // MODE_ bits
  uint32_t textColor;        // 0x00BBGGRR
  uint32_t linkColor;        // open: 0xFF0000
  uint32_t backgroundColor;  // open: 0xFFFFFF
  uint16_t lastChar;         // last character since the last paragraph break, 0 = none
  uint16_t lastBeginTagId;   // what `<>` repeats
  uint32_t tableShade;       // background of the open table
  uint16_t tableIndex;       // open: NO_INDEX; record of the open table
  uint16_t tableRow;         // `tr` met in the open table
  uint16_t cellIndex;        // cells begun in the current row
  uint8_t reserved1[222];
};
static_assert(sizeof(WmlSave) == VW_SAVE_SIZE);

// An attribute of the tag read last. Values stay in the document. A plain one is ASCII in double
// quotes right behind the '=', and means what stands there.
struct AttrRef {
  uint16_t attrId;       // ATTRIB_ id, never 0
  uint16_t plainLength;  // bytes between the quotes of a plain value, NOT_PLAIN for others
  uint32_t valuePos;     // position right behind the '=', 0 when it has no value
};
inline constexpr uint16_t NOT_PLAIN = 0xFFFF;

// The measurement of one table.
struct TableRecord {
  uint32_t filePos;                      // position behind the start tag; the key
  uint16_t columnCount;                  // 0 to VW_MAX_COLUMNS
  uint16_t alignFlags;                   // one of TABLE_ALIGN_
  uint32_t cellBorderWidth;              // twips
  uint32_t rowInset;                     // twips
  uint32_t columnWidth[VW_MAX_COLUMNS];  // twips, 0 beyond columnCount
};
static_assert(sizeof(TableRecord) == 272);

inline constexpr uint16_t TABLE_ALIGN_LEFT = 0x0100;
inline constexpr uint16_t TABLE_ALIGN_RIGHT = 0x0200;
inline constexpr uint16_t TABLE_ALIGN_CENTER = 0x0400;

// What the templates made of the first styles that are stored; NO_INDEX = not known. Styles
// never change once stored.
inline constexpr uint16_t DERIVED_FROM_COUNT = 16;
struct DerivedStyles {
  uint16_t of[DERIVED_FROM_COUNT][STYLE_TEMPLATE_COUNT];  // [style][template]
};

// What each byte adds to the width of a cell in one point size, 0 = none.
struct CellWidths {
  uint8_t pointSize;
  bool multiByte;
  uint32_t of[256];  // CELL_ bits
};

struct WmlProc {
  WmlSave save;
  VwCharBuffer *input;  // the handle given to the entry point that runs
  uint16_t docCharset;  // of the identity until a `meta` element names another
  uint16_t stopFlags;   // STOP_ bits; cleared by every VwStreamRead
  uint16_t attrCount;   // attributes of the tag read last
  AttrRef attrList[MAX_ATTRIBUTES];
  TableRecord *currentTable;           // item of tableArray at tableIndex, or null
  uint16_t cellFlags[VW_MAX_COLUMNS];  // CELL_ bits of the current row
  uint32_t cellShade[VW_MAX_COLUMNS];  // background of the current row's cells
  VwVarArray tableArray;               // TableRecord
  VwVarArray styleArray;               // StyleRecord, no two equal
  DerivedStyles derivedStyles;
  VwVarArray typefaceArray;  // names of TYPEFACE_NAME_SIZE bytes
  CellWidths cellWidths;
  char *attrScratch;           // attribute values, during a read
  uint16_t filterId;           // identity
  uint8_t defaultTypeface;     // typeface number of style template 0
  bool isOpen;                 // between VwStreamOpen and VwStreamClose
  bool tablesAscend;           // tableArray is sorted by filePos
  ScratchBlock *spareStrings;  // scratch strings to hand out again
  SoRoutineTable routines;
  SoRoutineTable calls;  // what is called for each of them, see EmptyRoutine
  VwUserWord userData1;
  VwUserWord userData2;
};

inline constexpr uint16_t CELL_BEGUN = 0x0800;

// True when the read is to end at once; a stop that the host asked for waits for the
// end of the item.
inline bool ReadingStopped(const WmlProc *proc) {
  return proc->stopFlags != 0 && (proc->stopFlags & STOP_HOST) == 0;
}

inline constexpr TagStackElem NO_ELEMENT = {TAG_NONE, 0, NO_INDEX, 0, 0};

// The innermost open element, NO_ELEMENT when the tag stack is empty.
inline const TagStackElem &TagStackTop(const WmlProc *proc) {
  const WmlSave &save = proc->save;
  return save.tagStackTop >= 0 && save.tagStackTop < TAG_STACK_SIZE
             ? save.tagStack[save.tagStackTop]
             : NO_ELEMENT;
}

#endif  // VS_WML_FILTER_GROUND_INSTANCE_H
