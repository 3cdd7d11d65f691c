/* vs_wml: a document filter for WML, the Wireless Markup Language of WAP phones.
 *
 * SPDX-License-Identifier: MIT
 *
 * A host (a viewer, a converter, an indexer) loads this library, hands it a
 * document as a block-input handle and a table of output routines, and is told
 * about the document call by call: characters, breaks, styles, links, images
 * and tables. The host owns the file and the display; the filter owns the
 * format. The header is C99 and C++; everything a host needs is in it.
 *
 *   1. VwAllocProc        one instance for each document
 *   2. VwLocalUp          wraps the host's block handle, empties every slot
 *   3. VwSetSoRtn ...     once for each output routine the host has
 *      VwSetUser          two words that every output routine gets back
 *   4. VwStreamOpen       with a filter identity (1151 is plain WML)
 *      VwStreamSection    font list and section properties
 *      VwStreamRead       until SOEmitBreak reported SO_BREAK_DOCUMENT
 *   5. VwStreamClose, VwLocalDown, VwFreeProc
 *
 * Units. Lengths are twips (1/1440 inch, 1/20 point; a pixel counts 15),
 * character sizes half points, colours 0x00BBGGRR with red in the low byte.
 *
 * Strings from the filter are NUL-terminated. Records and strings that are
 * passed to an output routine belong to the filter and are valid only until
 * the routine returns; a host copies what it wants to keep.
 *
 * Threads. The library has no state of its own that changes: instances in
 * different threads share nothing but constant tables. One instance is used by
 * one thread at a time, and its output routines run on that thread, inside the
 * entry point.
 *
 * In an output routine a host must not call any entry point on the same
 * instance or character handle except VwStreamTell, must not throw an exception or
 * jump out of it, and must not free what it was given. VwGetInfo, VwGetRtns and
 * all entry points on other instances are free to use.
 *
 * Failure. The filter reports damaged markup by repairing it, and an exhausted
 * heap through SOAbortStream. A block handle that fails reads as the end of
 * the document. No document and no save block, whatever its bytes, makes the
 * filter touch memory that is not its own.
 *
 * Null instances are ignored by every entry point that takes one: nothing
 * happens and, where there is a result, it is 0 (VwLocalUp stores a handle of
 * 0). An instance that is not open (before VwStreamOpen, after VwStreamClose)
 * reads as nothing: VwStreamRead and VwStreamSection return 0 without a call.
 *
 * Memory. An instance takes 3.6 KB, its input buffer 2 KB and the scratch strings of a
 * read at most 8 KB, whatever the length of the document; and the stream keeps 272 bytes
 * for each table and 16 for each distinct style, with up to half of that again in
 * reserve. Nothing else is allocated, and a scratch string once for all its uses.
 *
 * Work. A document is read in time proportional to its length, except that a
 * table is read ahead once to measure it before it is told, and that a
 * document can be written so that many unclosed tables each read ahead to its
 * end. A host that opens documents from strangers bounds that by counting the
 * bytes it serves: once they exceed a multiple of the document's length it
 * lets its read routine fail, which ends the document.
 */
#ifndef VS_WML_H
#define VS_WML_H

#include <stdint.h>

/** The version of this header, and of the library that comes with it. */
#define VW_VERSION_MAJOR 0
#define VW_VERSION_MINOR 1
#define VW_VERSION_PATCH 0

/** The same as one number, to compare with: 1.2.3 is 10203. */
#define VW_VERSION (VW_VERSION_MAJOR * 10000 + VW_VERSION_MINOR * 100 + VW_VERSION_PATCH)

#ifdef __cplusplus
#define VW_NOEXCEPT noexcept
extern "C" {
#else
#define VW_NOEXCEPT
#endif

#if defined(__GNUC__)
#define VW_API __attribute__((visibility("default")))
#else
#define VW_API
#endif

/* ------------------------------------------------------------------ handles */

/** A handle: the address of something, as an integer; 0 is no handle. */
typedef uintptr_t VwHandle;

/** A word of the host's own, handed back with every output routine. */
typedef uintptr_t VwUserWord;

/** Any routine: the type that routine tables and slots store. */
typedef void (*VwRoutine)(void);

/** The instance: one open document. Its inside is the filter's own. */
typedef struct WmlProc WmlProc;

/** The host's block-input handle: a VwHandle is the address of such a record.
 *
 * The filter calls `read`, `seek` and `tell`, each with the handle itself as
 * its first argument, and nothing else; `close` and `third` may be null. The
 * record may be followed by fields of the host's own. It stays the host's and
 * has to outlive VwLocalDown; the filter never writes into it.
 */
typedef struct VwBlockHandle {
  VwRoutine close; /**< never called */
  /** Reads up to `wanted` bytes (the filter always asks for 2048) at the current
   * position into `buffer`, stores how many were read through `delivered` and
   * returns 0. Fewer bytes than wanted are fine; 0 bytes mean the end of the
   * document. A result other than 0 is a failure, which reads as the end; a
   * later read asks again. A count above `wanted` is taken as `wanted`. */
  uint32_t (*read)(VwHandle self, void *buffer, uint32_t wanted, uint32_t *delivered);
  VwRoutine third; /**< never called */
  /** Moves the position to `offset` bytes from the start; 0 on success, else a
   * failure, after which the next read asks for its position again. `origin` is
   * always 0 (2, from the end, is set aside). Seeking beyond the end is no
   * failure: the next read delivers 0 bytes. */
  uint32_t (*seek)(VwHandle self, uint32_t origin, uint32_t offset);
  /** Stores the current position through `position`; 0 on success. A handle
   * that is shared may stand anywhere: the filter asks before each read and
   * seeks when the position is not the one it needs. */
  uint32_t (*tell)(VwHandle self, uint32_t *position);
} VwBlockHandle;

/* ------------------------------------------------------------------ records */

/** What VwStreamOpen tells about the filter. */
typedef struct VwFileInfo {
  uint32_t typeCode;    /**< 120, the type code of every WmlOverlayId record */
  uint32_t charsetCode; /**< HOST_CS_UNICODE */
  char name[41];        /**< "Internet WML", for every identity */
} VwFileInfo;

/** A stream position. */
typedef struct VwStreamPos {
  uint32_t first;  /**< neither read nor written by the filter */
  uint32_t offset; /**< bytes from the start of the document to the next byte */
} VwStreamPos;

/** The target of a link, passed to SOOpenLink. */
typedef struct VwLinkRecord {
  uint32_t flags;       /**< SO_LINK_HAS_TITLE or 0 */
  uint32_t referenceId; /**< the id that SOOpenReference wrote, 0 for none */
} VwLinkRecord;

/** VwLinkRecord.flags: the element has a `title`; it was stored with the host
 * (SOStoreString) right after the target. */
#define SO_LINK_HAS_TITLE 0x1u

/** One side of an image or of a table cell; 20 bytes. */
typedef struct SideDescription {
  uint32_t width;       /**< border width in twips */
  uint32_t color;       /**< border colour 0x00BBGGRR */
  uint32_t hidden;      /**< 1: no border is drawn */
  uint32_t reserved[2]; /**< 0 */
} SideDescription;

/** An image, passed to SOInsertGraphic; 160 bytes. */
typedef struct GraphicRecord {
  uint32_t size;          /**< 160 */
  uint32_t flags;         /**< SO_GRAPHIC_HAS_ALT or 0 */
  uint32_t count;         /**< 1 */
  uint32_t reserved0;     /**< 0 */
  uint32_t height;        /**< twips; 0 when height or width is not given */
  uint32_t width;         /**< twips; 0 when height or width is not given */
  uint32_t reserved1[4];  /**< 0 */
  uint32_t displayHeight; /**< the same as `height` */
  uint32_t displayWidth;  /**< the same as `width` */
  SideDescription left;   /**< drawn, in the link colour, on an image in a link */
  SideDescription right;  /**< as `left` */
  SideDescription top;    /**< as `left` */
  SideDescription bottom; /**< as `left` */
  uint32_t sizeMode;      /**< SO_GRAPHIC_SIZED or SO_GRAPHIC_UNSIZED */
  uint32_t referenceId;   /**< the source: the id that SOOpenReference wrote */
  uint32_t reserved2;     /**< 0xFFFFFFFF */
  uint32_t alternative;   /**< string index of the alternative text, 0xFFFFFFFF: none */
  uint32_t reserved3[4];  /**< 0 */
} GraphicRecord;

#define SO_GRAPHIC_HAS_ALT 0x4u /**< GraphicRecord.flags: `alternative` is set */
#define SO_GRAPHIC_SIZED 0u     /**< GraphicRecord.sizeMode: width and height given */
#define SO_GRAPHIC_UNSIZED 4u   /**< GraphicRecord.sizeMode: the picture's own size */

/** A table row, passed to SODescribeRow after the row's content; 28 bytes. */
typedef struct RowDescription {
  uint32_t reserved[3]; /**< 0 */
  uint32_t one;         /**< 1 */
  uint32_t inset;       /**< twips, 15 */
  uint32_t alignment;   /**< of the table: SO_TABLE_LEFT, _RIGHT or _CENTER */
  uint32_t columnCount; /**< 0 to VW_MAX_COLUMNS: so many SODescribeCell calls follow */
} RowDescription;

/** The most columns that a table is told with. */
#define VW_MAX_COLUMNS 64

#define SO_TABLE_LEFT 1u
#define SO_TABLE_RIGHT 2u
#define SO_TABLE_CENTER 3u

/** One column of a table row, passed to SODescribeCell; 128 bytes. */
typedef struct CellDescription {
  uint32_t size;         /**< 128 */
  uint32_t reserved0[3]; /**< 0 */
  uint32_t width;        /**< column width in twips, 0 when nothing was measured */
  uint32_t reserved1;    /**< 0 */
  uint32_t constant1;    /**< 13 */
  uint32_t constant2;    /**< 255 */
  uint32_t cellShade;    /**< background 0x00BBGGRR of this cell */
  uint32_t tableShade;   /**< background 0x00BBGGRR of the table */
  uint32_t reserved2[2]; /**< 0 */
  SideDescription left;
  SideDescription right;
  SideDescription top;
  SideDescription bottom;
} CellDescription;

/* ------------------------------------------------------------ output routines
 *
 * Every output routine gets its own arguments and then the two user words of
 * VwSetUser. All arguments are 32-bit words or pointers; results are ignored
 * unless a routine says otherwise, and 0 is always a good answer. An empty slot
 * holds SODummy: the filter does not notice which routines a host has.
 */

/** Slot numbers run from 1 to VW_SLOT_COUNT; the filter calls the 23 below. */
#define VW_SLOT_COUNT 118

enum VwSlot {
  SLOT_EMIT_CHAR = 1,
  SLOT_EMIT_CONTROL_CODE = 2,
  SLOT_SET_CHAR_SIZE = 3,
  SLOT_EMIT_BREAK = 5,
  SLOT_DECLARE_SECTION = 18,
  SLOT_ABORT_STREAM = 20,
  SLOT_SELECT_FONT_NUMBER = 31,
  SLOT_SELECT_FONT_NAME = 32,
  SLOT_OPEN_FONT_LIST = 34,
  SLOT_ADD_FONT_LIST_ENTRY = 35,
  SLOT_CLOSE_FONT_LIST = 36,
  SLOT_OPEN_TABLE = 40,
  SLOT_CLOSE_TABLE = 41,
  SLOT_INSERT_GRAPHIC = 45,
  SLOT_OPEN_LINK = 49,
  SLOT_CLOSE_LINK = 50,
  SLOT_STORE_STRING = 51,
  SLOT_DESCRIBE_ROW = 85,
  SLOT_SET_TEXT_COLOR = 88,
  SLOT_SWITCH_CHARSET = 90,
  SLOT_OPEN_REFERENCE = 96,
  SLOT_DESCRIBE_CELL = 98,
  SLOT_SET_PROPERTY = 99
};

/** Slot 1: one character of text, a code of the character set that
 * SOSwitchCharset announced last: a byte, a two-byte code with the lead byte in
 * the high 8 bits, or a UTF-16 unit when that set is HOST_CS_UNICODE.
 * Values run from 1 to 0xFFFF. */
typedef uint32_t (*SOEmitCharRoutine)(uint32_t character, VwUserWord user1, VwUserWord user2);

/** Slot 2: SO_CONTROL_TAB inside preformatted text, SO_CONTROL_CARD before every
 * card of a deck but the first. */
typedef uint32_t (*SOEmitControlCodeRoutine)(uint32_t code, VwUserWord user1, VwUserWord user2);
#define SO_CONTROL_TAB 1u
#define SO_CONTROL_CARD 4u

/** Slot 3: size of the following text in half points (24 for 12 points). */
typedef uint32_t (*SOSetCharSizeRoutine)(uint32_t halfPoints, VwUserWord user1, VwUserWord user2);

/** Slot 5: a break, one of the SO_BREAK_ kinds; `zero` is 0.
 *
 * For SO_BREAK_PARAGRAPH and SO_BREAK_ROW the low 16 bits of the answer are read:
 * SO_STOP ends the VwStreamRead in progress after the current element, with
 * everything kept, and the next VwStreamRead goes on behind it. Every other
 * answer, and every answer to another kind, means nothing. (A break inside a
 * title that spans several lines does not stop the read either.) */
typedef uint32_t (*SOEmitBreakRoutine)(uint32_t kind, uint32_t zero, VwUserWord user1,
                                       VwUserWord user2);
#define SO_BREAK_PARAGRAPH 1u /**< end of a paragraph */
#define SO_BREAK_DOCUMENT 2u  /**< end of the document: the stream is finished */
#define SO_BREAK_ROW 19u      /**< end of a table row, after its descriptions */
#define SO_BREAK_CELL 20u     /**< end of a table cell */
#define SO_STOP 1u            /**< the answer that stops the read */

/** Slot 18: opens the section description; the arguments are 0. */
typedef uint32_t (*SODeclareSectionRoutine)(uint32_t zero0, uint32_t zero1, uint32_t zero2,
                                            VwUserWord user1, VwUserWord user2);

/** Slot 20: the filter cannot go on: the filter identity is not served (from
 * VwStreamOpen) or the heap is exhausted or the document has too many tables (from
 * VwStreamRead, which closes what is open and still ends with SO_BREAK_DOCUMENT, unless the host
 * has just stopped it). `zero` is 0. */
typedef uint32_t (*SOAbortStreamRoutine)(uint32_t zero, VwUserWord user1, VwUserWord user2);

/** Slot 31: selects a font of the font list by its number, 0 the default font. */
typedef uint32_t (*SOSelectFontNumberRoutine)(uint32_t fontNumber, VwUserWord user1,
                                              VwUserWord user2);

/** Slot 32: selects a font by its typeface name; `one` is 1. */
typedef uint32_t (*SOSelectFontNameRoutine)(uint32_t one, const char *name, VwUserWord user1,
                                            VwUserWord user2);

/** Slot 34: start of the section's font list. */
typedef uint32_t (*SOOpenFontListRoutine)(VwUserWord user1, VwUserWord user2);

/** Slot 35: one font: its number, family (SO_FAMILY_) and typeface name, which is
 * empty for the national typeface. */
typedef uint32_t (*SOAddFontListEntryRoutine)(uint32_t fontNumber, uint32_t family,
                                              const char *name, VwUserWord user1, VwUserWord user2);
#define SO_FAMILY_NATIONAL 1u
#define SO_FAMILY_ROMAN 2u
#define SO_FAMILY_HELVETICA 3u
#define SO_FAMILY_COURIER 4u

/** Slot 36: end of the font list. */
typedef uint32_t (*SOCloseFontListRoutine)(VwUserWord user1, VwUserWord user2);

/** Slot 40: start of a table. Tables do not nest, and a stream has VW_MAX_TABLES at
 * most: where the next one begins, the filter calls SOAbortStream. */
typedef uint32_t (*SOOpenTableRoutine)(VwUserWord user1, VwUserWord user2);
#define VW_MAX_TABLES 65535u

/** Slot 41: end of a table, after its last row. */
typedef uint32_t (*SOCloseTableRoutine)(VwUserWord user1, VwUserWord user2);

/** Slot 45: an image. */
typedef uint32_t (*SOInsertGraphicRoutine)(const GraphicRecord *graphic, VwUserWord user1,
                                           VwUserWord user2);

/** Slot 49: start of the text of a hyperlink. `code` is SO_LINK_CODE, links are
 * numbered 1, 2, 3, ... in a stream (65535 is followed by 0), and only one is
 * open at a time. */
typedef uint32_t (*SOOpenLinkRoutine)(uint32_t code, uint32_t number, const VwLinkRecord *link,
                                      VwUserWord user1, VwUserWord user2);

/** Slot 50: end of the link of that number. */
typedef uint32_t (*SOCloseLinkRoutine)(uint32_t code, uint32_t number, VwUserWord user1,
                                       VwUserWord user2);
#define SO_LINK_CODE 0x8003000Cu

/** Slot 51: the host keeps a string and stores an index for it through `index`.
 * `string` holds `length` units and a terminating 0; each unit is one byte of an
 * attribute value as the document has it, not a Unicode character. An index of
 * 0xFFFFFFFF, which is what the word holds beforehand, says that the string was
 * not kept. `code` is SO_STRING_CODE; `length` is 0 to 1023. */
typedef uint32_t (*SOStoreStringRoutine)(const uint16_t *string, uint32_t code, uint32_t length,
                                         uint32_t *index, VwUserWord user1, VwUserWord user2);
#define SO_STRING_CODE 0x30100u

/** Slot 85: the row whose content has just ended. */
typedef uint32_t (*SODescribeRowRoutine)(const RowDescription *row, VwUserWord user1,
                                         VwUserWord user2);

/** Slot 88: colour of the following text; `zero` is 0. */
typedef uint32_t (*SOSetTextColorRoutine)(uint32_t zero, uint32_t color, VwUserWord user1,
                                          VwUserWord user2);

/** Slot 90: character set of the following characters, one of the HOST_CS_ codes.
 * It comes at the start of every VwStreamRead, at every change, and around each
 * character reference in text that is not Unicode. */
typedef uint32_t (*SOSwitchCharsetRoutine)(uint32_t hostCharset, VwUserWord user1,
                                           VwUserWord user2);

/** Slot 96: opens a reference (a link target or an image source); the host stores
 * an id of its choice through `id`, which holds 0 beforehand. SOSetProperty with
 * PROP_REFERENCE_TARGET and PROP_REFERENCE_END follow at once. */
typedef uint32_t (*SOOpenReferenceRoutine)(uint32_t *id, VwUserWord user1, VwUserWord user2);

/** Slot 98: a column of the row just described, from the first to the last. */
typedef uint32_t (*SODescribeCellRoutine)(const CellDescription *cell, VwUserWord user1,
                                          VwUserWord user2);

/** Slot 99: a property, one of the PROP_ codes. */
typedef uint32_t (*SOSetPropertyRoutine)(uint32_t code, uint32_t a, uint32_t b, uint32_t c,
                                         VwUserWord user1, VwUserWord user2);

/** a = PROP_ATTR_BOLD, _ITALIC or _UNDERLINE, b = 1 on, 0 off. */
#define PROP_CHAR_ATTRIBUTE 8u
#define PROP_ATTR_BOLD 2u
#define PROP_ATTR_ITALIC 3u
#define PROP_ATTR_UNDERLINE 4u
/** a = PROP_ALIGN_: alignment of the current paragraph and of those that follow. */
#define PROP_ALIGNMENT 12u
#define PROP_ALIGN_LEFT 1u
#define PROP_ALIGN_RIGHT 2u
#define PROP_ALIGN_CENTER 3u
#define PROP_ALIGN_JUSTIFIED 4u
/** a = b = 0, c = 2: follows every PROP_ALIGNMENT of a paragraph. */
#define PROP_ALIGNMENT_DONE 20u
/** a = 136: once, at the end of the section description. */
#define PROP_SECTION_END 27u
/** a = PROP_LAYOUT_: layout of the following text. */
#define PROP_LAYOUT 88u
#define PROP_LAYOUT_PREFORMATTED 1170u
#define PROP_LAYOUT_ORDINARY 540u
/** a = 128, b = string index: the target of the reference just opened. */
#define PROP_REFERENCE_TARGET 193u
/** End of the reference definition. */
#define PROP_REFERENCE_END 194u

/* Host character-set codes, the argument of SOSwitchCharset, and the set that
 * turns the characters into Unicode. EUC-JP and ISO-2022-JP text comes as
 * Shift_JIS codes. */
#define HOST_CS_UNICODE 0x14B00000u      /**< UTF-16 units; ISO 8859-1 in byte text */
#define HOST_CS_SHIFT_JIS 0x13A40000u    /**< Shift_JIS (code page 932) */
#define HOST_CS_GB2312 0x13A80000u       /**< EUC-CN, GB 2312 (code page 936) */
#define HOST_CS_KSC5601 0x13B50000u      /**< EUC-KR, KS C 5601 (code page 949) */
#define HOST_CS_BIG5 0x13B60000u         /**< Big5 (code page 950) */
#define HOST_CS_ISO2022_JP 0x0F0C0000u   /**< single bytes of an ISO-2022-JP document */
#define HOST_CS_ISO2022_KR 0x15510000u   /**< single bytes of an ISO-2022-KR document */
#define HOST_CS_KOI8_R 0x000A0101u       /**< KOI8-R */
#define HOST_CS_ISO8859_1 0x00080101u    /**< ISO 8859-1; part N is HOST_CS_ISO8859_1 + N - 1 */
#define HOST_CS_WINDOWS_1250 0x14E20100u /**< windows-1250 */
#define HOST_CS_WINDOWS_1251 0x14E30100u
#define HOST_CS_WINDOWS_1253 0x14E50100u
#define HOST_CS_WINDOWS_1254 0x14E60100u
#define HOST_CS_WINDOWS_1255 0x14E70100u
#define HOST_CS_WINDOWS_1256 0x14E80100u
#define HOST_CS_WINDOWS_1257 0x14E90100u
#define HOST_CS_MAC_ROMAN 0x80000100u
#define HOST_CS_MAC_TURKISH 0x80030100u
#define HOST_CS_MAC_GREEK 0x80060100u
#define HOST_CS_MAC_CE 0x80070100u
/* Sets of the Macintosh by their numbers there; no document names them, but a save
 * block can. */
#define HOST_CS_MAC_5 0x80050100u
#define HOST_CS_MAC_8 0x80080100u
#define HOST_CS_MAC_9 0x80090100u
#define HOST_CS_MAC_10 0x800A0100u

/* -------------------------------------------------------------- entry points */

/** Fills `table` with the entry points, for hosts that load the library at run
 * time: 0 VwStreamOpen, 1 VwStreamSection, 2 VwStreamRead, 3 VwStreamTell,
 * 4 VwStreamSeek, 5 VwGetInfo, 6 VwGetData, 7 VwSetData, 8 VwLocalUp, 9 VwLocalDown,
 * 10 VwAllocProc, 11 VwFreeProc, 12 VwSetUser, 13 VwSetSoRtn, 14 VwStreamClose,
 * 15 null, 16 null, 17 VwStreamReadRecord; 18 VwDoSpecial when `entries` is 19 or
 * more; 19 to 21 null when it is 22 or more. `table` holds at least 18 entries,
 * whatever `entries` says. */
VW_API void VwGetRtns(VwRoutine *table, uint16_t entries) VW_NOEXCEPT;

/** Allocates an instance; null when the heap is exhausted. Free it with VwFreeProc. */
VW_API WmlProc *VwAllocProc(void) VW_NOEXCEPT;

/** Frees an instance, which VwStreamClose must have closed if it was opened. */
VW_API void VwFreeProc(WmlProc *instance) VW_NOEXCEPT;

/** Attaches a document: wraps the address of a VwBlockHandle in an input buffer
 * and stores the character-input handle, which all VwStream routines take first,
 * through `outChar`; 0 when the heap is exhausted. Then empties all slots, so that
 * VwSetSoRtn comes after it. A character-input handle of 0 reads as an empty
 * document. End it with VwLocalDown. */
VW_API void VwLocalUp(VwHandle block, VwHandle *outChar, WmlProc *instance) VW_NOEXCEPT;

/** Frees the input buffer and stores the block handle that it wrapped through
 * `outBlock` (0 for a handle of 0). The host closes its file itself. */
VW_API void VwLocalDown(VwHandle chr, VwHandle *outBlock) VW_NOEXCEPT;

/** Installs an output routine in `slot`, SODummy when `routine` is null. Slots
 * below 1 or above VW_SLOT_COUNT are ignored; the filter never calls the slots
 * that have no name above. */
VW_API void VwSetSoRtn(int16_t slot, VwRoutine routine, WmlProc *instance) VW_NOEXCEPT;

/** Sets the two words that every output routine gets as its last arguments. */
VW_API void VwSetUser(VwUserWord user1, VwUserWord user2, WmlProc *instance) VW_NOEXCEPT;

/** What VwGetInfo is asked, with the type and the value of its answer. The fixed
 * answers say nothing about this build. */
enum VwInfo {
  VW_INFO_SAVE_SIZE = 1,      /**< u16, VW_SAVE_SIZE */
  VW_INFO_INSTANCE_SIZE = 2,  /**< u16, 1136: an instance's data as the interface counts it */
  VW_INFO_TABLES_SIZE = 3,    /**< u16, 5008: WmlInit where pointers are 32 bits wide */
  VW_INFO_FIXED_4 = 4,        /**< u16, 400 */
  VW_INFO_FIXED_5 = 5,        /**< u16, 440 */
  VW_INFO_IDENTITY_COUNT = 6, /**< u16, VW_OVERLAY_COUNT */
  VW_INFO_IDENTITIES = 7,     /**< u16[VW_OVERLAY_COUNT], the id of each WmlOverlayId record */
  VW_INFO_BUILD_DATE = 8,     /**< char[12], such as "Mar  1 2002" */
  VW_INFO_BUILD_TIME = 9,     /**< char[9], such as "03:52:42" */
  VW_INFO_FIXED_10 = 10,      /**< u16, 0 */
  VW_INFO_FIXED_11 = 11,      /**< u16, 0 */
  VW_INFO_FIXED_12 = 12,      /**< u32, 0x12345678 */
  VW_INFO_FIXED_13 = 13       /**< u32, 0 */
};

/** Writes the answer to one of the VW_INFO_ questions into `out`; 1, or 0, and nothing
 * written, for any other number. */
VW_API uint16_t VwGetInfo(void *out, uint16_t query) VW_NOEXCEPT;

/** Size in bytes of the save block. */
#define VW_SAVE_SIZE 516

/** Copies the save block out: everything that a read needs in order to go on
 * later, except the position (VwStreamTell) and the character set that ISO 2022
 * escapes return to, which the last `meta` element read has declared. Between two
 * reads only. The block is valid for this open stream, in this process; it holds
 * no addresses. */
VW_API void VwGetData(void *out, WmlProc *instance) VW_NOEXCEPT;

/** Copies a save block back in; VwStreamSeek then sets the position that was
 * taken with it. Bytes that are no save block of this stream give meaningless
 * output, nothing worse. */
VW_API void VwSetData(const void *in, WmlProc *instance) VW_NOEXCEPT;

/** Opens the document with one of the identities of WmlOverlayId and fills `info`.
 * An unknown identity calls SOAbortStream, and the instance is then only fit for
 * VwStreamClose. `unused` is not read. Always 0. */
VW_API uint32_t VwStreamOpen(VwHandle chr, int16_t filterId, uint32_t unused, VwFileInfo *info,
                             WmlProc *instance) VW_NOEXCEPT;

/** Tells the section: SODeclareSection, the font list, PROP_SECTION_END. Once,
 * after VwStreamOpen and before the first VwStreamRead. Always 0. */
VW_API uint32_t VwStreamSection(VwHandle chr, WmlProc *instance) VW_NOEXCEPT;

/** Reads until the document ends, the host stops it with SO_STOP or the heap is
 * exhausted, and tells the host everything on the way. A finished read ends with
 * SO_BREAK_DOCUMENT; a stopped one does not, and the next call goes on, after
 * telling the style and the character set in force again. When not even the two
 * scratch strings of a read can be had, it returns without any call. Always 0. */
VW_API uint32_t VwStreamRead(VwHandle chr, WmlProc *instance) VW_NOEXCEPT;

/** Stores the offset of the next byte in `position`; 0. At the end of the
 * document the offset lies one byte behind the last. The only entry point that an
 * output routine may call on its own stream: it then gives the offset right
 * behind what has been read so far. */
VW_API int32_t VwStreamTell(VwHandle chr, VwStreamPos *position) VW_NOEXCEPT;

/** Moves to an offset from the start of the document; -1 when the host's seek
 * failed (the next read tries again) or the handle is 0, else 0. */
VW_API int32_t VwStreamSeek(VwHandle chr, const VwStreamPos *position) VW_NOEXCEPT;

/** Closes the stream and frees what it holds; only VwLocalDown, VwLocalUp,
 * VwFreeProc and another VwStreamOpen may follow. */
VW_API void VwStreamClose(VwHandle chr, WmlProc *instance) VW_NOEXCEPT;

/** Places in the routine table that this filter has no use for: they do nothing. */
VW_API void VwStreamReadRecord(void) VW_NOEXCEPT;
VW_API void VwDoSpecial(void) VW_NOEXCEPT;
VW_API void VwGetSectionData(void) VW_NOEXCEPT;
VW_API void VwSetSectionData(void) VW_NOEXCEPT;

/** The routine in every empty slot: does nothing and returns 0. */
VW_API uint32_t SODummy(void) VW_NOEXCEPT;

/* ------------------------------------------------------------ exported tables */

/** A filter identity; 44 bytes, the same on every machine. */
typedef struct WmlOverlayRecord {
  uint8_t id[2];    /**< little-endian; 0 in an empty record */
  uint8_t typeCode; /**< 120, 0 in an empty record */
  char name[41];    /**< padded with NUL */
} WmlOverlayRecord;

#define VW_OVERLAY_COUNT 14

/** The filter identities: 1151 plain WML, 1163 Central European, 1160 Shift-JIS,
 * 1161 EUC-JP, 1159 JIS, 1154 Big5, 1155 Chinese EUC, 1156 GB 2312, 1162 Korean,
 * 1157 Cyrillic (windows-1251), 1158 Cyrillic (KOI8-R); three empty records. An
 * identity is the character set of a document that names none. */
VW_API extern const WmlOverlayRecord WmlOverlayId[VW_OVERLAY_COUNT];

/** The filter's constant tables (names, entities, widths, styles, ...). */
typedef struct WmlInitTables WmlInitTables;
VW_API extern const WmlInitTables WmlInit;

#ifdef __cplusplus
}
#endif

#endif /* VS_WML_H */
