// SPDX-License-Identifier: MIT
// The constant tables that WmlInit exports, and the ids that their rows carry.
//
// The block is constant data with one fixed order of tables. Where pointers are
// 32 bits wide it has the layout that the asserts at the end state, 5008 bytes.
#ifndef VS_WML_FILTER_DATA_VSD_WML_H
#define VS_WML_FILTER_DATA_VSD_WML_H

#include <cstddef>
#include <cstdint>

#include "filter/data/attribute_list.h"
#include "filter/vs_wml.h"

// ------------------------------------------------------------------ tags

enum TagId : uint8_t {
  TAG_NONE = 0,
  TAG_A = 1,
  TAG_B = 2,
  TAG_BIG = 3,
  TAG_BR = 4,
  TAG_CARD = 5,
  TAG_CENTER = 6,
  TAG_EM = 7,
  TAG_HEAD = 8,
  TAG_I = 9,
  TAG_IMG = 10,
  TAG_INPUT = 11,
  TAG_LANG = 12,
  TAG_META = 13,
  TAG_OPTION = 14,
  TAG_P = 15,
  TAG_PRE = 16,
  TAG_SELECT = 17,
  TAG_SMALL = 18,
  TAG_STRONG = 19,
  TAG_TABLE = 20,
  TAG_TD = 21,
  TAG_TEXT = 22,
  TAG_TITLE = 23,
  TAG_TR = 24,
  TAG_U = 25,
  TAG_WML = 26,
};
inline constexpr int TAG_COUNT = 27;

// Class bits, bits 8..15 of a tag's code: how the tag stack treats the element.
inline constexpr uint32_t TAGF_CONTAINER = 0x01;   // end tag closes down to its begin tag
inline constexpr uint32_t TAGF_MATCH_TOP = 0x02;   // end tag counts only on top of the stack
inline constexpr uint32_t TAGF_EMPTY = 0x04;       // never pushed
inline constexpr uint32_t TAGF_TABLE_PART = 0x08;  // row or cell, closed by the next one
inline constexpr uint32_t TAGF_STYLE = 0x10;       // as a container, and selects a style

// -------------------------------------------------------------- charsets

// Charset ids. Bit 0x2000 or 0x4000: decoded as multi-byte text; bit 0x1000:
// announced to the host as HOST_CS_UNICODE.
inline constexpr uint16_t CHARSET_UTF8 = 0x1000;  // also every name that is not known
inline constexpr uint16_t CHARSET_DEFAULT = 0x9000;
inline constexpr uint16_t CHARSET_JIS_ROMAN = 0x9002;
inline constexpr uint16_t CHARSET_EUC_JP = 0x2004;
inline constexpr uint16_t CHARSET_SJIS = 0x2005;
inline constexpr uint16_t CHARSET_BIG5 = 0x2006;
inline constexpr uint16_t CHARSET_EUC_CN = 0x2007;
inline constexpr uint16_t CHARSET_GB2312 = 0x2008;
inline constexpr uint16_t CHARSET_KSC5601 = 0x2009;
inline constexpr uint16_t CHARSET_ISO2022_KR = 0x201C;
inline constexpr uint16_t CHARSET_JIS_X0208 = 0x4003;
inline constexpr uint16_t CHARSET_ISO2022_KR_ESC = 0x401A;
inline constexpr uint16_t CHARSET_ISO2022_JP = 0x401B;
inline constexpr uint16_t CHARSET_WINDOWS_1250 = 0x8001;
inline constexpr uint16_t CHARSET_WINDOWS_1251 = 0x800A;
inline constexpr uint16_t CHARSET_KOI8_R = 0x800B;
inline constexpr uint16_t CHARSET_ISO8859_1 =
    0x800C;  // part N is CHARSET_ISO8859_1 + N - 1, N to 9
inline constexpr uint16_t CHARSET_WINDOWS_1253 = 0x8015;
inline constexpr uint16_t CHARSET_WINDOWS_1254 = 0x8016;  // to 1257 in order
inline constexpr uint16_t CHARSET_MAC_ROMAN = 0x801D;
inline constexpr uint16_t CHARSET_MAC_TURKISH = 0x801E;
inline constexpr uint16_t CHARSET_MAC_GREEK = 0x8020;
inline constexpr uint16_t CHARSET_MAC_CE = 0x8021;
// Sets without a name that a document could give.
inline constexpr uint16_t CHARSET_MAC_5 = 0x801F;
inline constexpr uint16_t CHARSET_MAC_8 = 0x8022;
inline constexpr uint16_t CHARSET_MAC_9 = 0x8023;
inline constexpr uint16_t CHARSET_MAC_10 = 0x8024;

inline constexpr uint16_t CHARSETF_MULTI_BYTE = 0x6000;
inline constexpr uint16_t CHARSETF_UNICODE = 0x1000;

// Actions of escape sequences: flags in the low 16 bits, a charset id above.
inline constexpr uint32_t ESC_SET_G1 = 0x0001;
inline constexpr uint32_t ESC_SET_G2 = 0x0002;
inline constexpr uint32_t ESC_SET_G3 = 0x0004;
inline constexpr uint32_t ESC_USE_DOC = 0x0010;
inline constexpr uint32_t ESC_USE_G1 = 0x0020;
inline constexpr uint32_t ESC_USE_G2 = 0x0040;
inline constexpr uint32_t ESC_USE_G3 = 0x0080;
inline constexpr uint32_t ESC_RESET_AT_BREAK = 0x0100;
inline constexpr uint32_t ESC_SINGLE_SHIFT = 0x0200;

// -------------------------------------------------- element modes and styles

// Element modes (WmlSave::modeFlags).
inline constexpr uint32_t MODE_PRE = 0x0001;        // style of `pre`
inline constexpr uint32_t MODE_LITERAL = 0x0008;    // style template 13; markup is text
inline constexpr uint32_t MODE_IN_ANCHOR = 0x0040;  // from begin `a` with href to end `a`
inline constexpr uint32_t MODE_IN_SELECT = 0x0100;  // from begin to end `select`
inline constexpr uint32_t MODE_IN_HEAD = 0x0400;    // from begin to end `head`
inline constexpr uint32_t MODE_IN_CARD = 0x0800;    // from begin to end `card`
inline constexpr uint32_t MODE_IN_WML = 0x1000;     // from begin to end `wml`
inline constexpr uint32_t MODE_IN_TABLE = 0x4000;   // from begin to end `table`
inline constexpr uint32_t MODE_IN_CELL = 0x8000;    // style of `td`

// StyleRecord::charAttrs.
inline constexpr uint32_t ATTR_BOLD = 0x10000;
inline constexpr uint32_t ATTR_ITALIC = 0x20000;
inline constexpr uint32_t ATTR_UNDERLINE = 0x40000;
inline constexpr uint32_t ATTR_CLEAR_BOLD = 0x1;  // in templates
inline constexpr uint32_t ATTR_CLEAR_ITALIC = 0x2;
inline constexpr uint32_t ATTR_CLEAR_UNDERLINE = 0x4;
inline constexpr uint32_t CLEAR_ATTRIBUTES = 0x3FF;

// StyleRecord::paraFlags: one alignment (also WmlSave::paraAlign) and one layout.
inline constexpr uint8_t PARA_ALIGN_FROM_TAG = 0x01;  // in a template that no element has
inline constexpr uint8_t PARA_ALIGN_LEFT = 0x02;
inline constexpr uint8_t PARA_ALIGN_CENTER = 0x04;
inline constexpr uint8_t PARA_ALIGN_RIGHT = 0x08;
inline constexpr uint8_t PARA_ALIGN_JUSTIFIED = 0x10;
inline constexpr uint8_t PARA_ALIGN_MASK = 0x1F;
inline constexpr uint8_t PARA_ORDINARY = 0x20;
inline constexpr uint8_t PARA_PREFORMATTED = 0x40;
inline constexpr uint8_t PARA_LAYOUT_MASK = 0x60;

// A complete character and paragraph style, or a template for one.
struct StyleRecord {
  uint8_t templateId;  // template last applied; not compared
  uint8_t pointSize;   // points; 0 in a template: inherit
  uint16_t reserved;   // 0
  uint32_t charAttrs;  // ATTR_ bits
  uint32_t modeBits;   // MODE_ bits that the style carries
  int16_t level;       // a template adds to it, a negative one resets it
  uint8_t typeface;    // typeface number; 0 in a template: inherit
  uint8_t paraFlags;   // PARA_ bits
};
static_assert(sizeof(StyleRecord) == 16);

inline constexpr int STYLE_TEMPLATE_COUNT = 16;

// ------------------------------------------------------- keywords and units

// Rows of the keyword table that are read by their place.
inline constexpr int KEYWORD_ROMAN = 0;
inline constexpr int KEYWORD_HELVETICA = 1;
inline constexpr int KEYWORD_COURIER = 2;
inline constexpr int KEYWORD_NATIONAL_1250 =
    3;  // typefaces of the identities, all of them nameless
inline constexpr int KEYWORD_NATIONAL_EUC_JP = 4;
inline constexpr int KEYWORD_NATIONAL_SJIS = 5;
inline constexpr int KEYWORD_NATIONAL_JIS = 6;
inline constexpr int KEYWORD_NATIONAL_BIG5 = 7;
inline constexpr int KEYWORD_NATIONAL_GB = 8;
inline constexpr int KEYWORD_NATIONAL_EUC_CN = 9;
inline constexpr int KEYWORD_NATIONAL_KOREAN = 10;
inline constexpr int KEYWORD_NATIONAL_1251 = 11;
inline constexpr int KEYWORD_NATIONAL_KOI8_R = 12;
inline constexpr int KEYWORD_RIGHT = 21;
inline constexpr int KEYWORD_CENTER = 22;
inline constexpr int KEYWORD_BLEED_RIGHT = 24;
inline constexpr int KEYWORD_JUST = 29;
inline constexpr int KEYWORD_INDENT = 30;
inline constexpr int KEYWORD_MIDDLE = 47;

inline constexpr uint32_t UNIT_NONE = 0;
inline constexpr uint32_t UNIT_TWIPS = 1;
inline constexpr uint32_t UNIT_PI = 2;
inline constexpr uint32_t UNIT_IN = 3;
inline constexpr uint32_t UNIT_CM = 4;
inline constexpr uint32_t UNIT_MM = 5;
inline constexpr uint32_t UNIT_EM = 6;
inline constexpr uint32_t UNIT_EN = 7;
inline constexpr uint32_t UNIT_PIXELS = 8;
inline constexpr uint32_t UNIT_RELATIVE = 9;

// ------------------------------------------------------------- the tables

struct NumberedName {
  uint32_t number;
  const char *name;
};

struct NameRecord {
  const char *name;
  uint32_t value;
};

struct EscapeRecord {
  const char *sequence;  // what follows the ESC byte
  uint32_t action;       // ESC_ flags, charset id in the high half
};

struct WmlInitTables {
  NumberedName keywords[48];            // keyword number, name
  NumberedName units[9];                // UNIT_ number, name; sorted by name
  EscapeRecord escapes[16];             // first match wins
  uint16_t highControls[32];            // bytes 0x80..0x9F of the default charsets; 0: no character
  NameRecord colors[34];                // 0x00BBGGRR
  uint16_t widths[96];                  // characters 0x20..0x7F at 12 points
  NameRecord tags[TAG_COUNT];           // id, class, style template; row = id, sorted by name
  NameRecord attributes[ATTRIB_COUNT];  // id; row = id - 1, sorted by name
  NameRecord entities[315];             // UTF-16 unit; sorted by bytes
  StyleRecord styleTemplates[STYLE_TEMPLATE_COUNT];
  NameRecord charsetNames[75];  // charset id; sorted by name, but for row 69
};

#if UINTPTR_MAX == 0xFFFFFFFFu
static_assert(offsetof(WmlInitTables, keywords) == 0);
static_assert(offsetof(WmlInitTables, units) == 384);
static_assert(offsetof(WmlInitTables, escapes) == 456);
static_assert(offsetof(WmlInitTables, highControls) == 584);
static_assert(offsetof(WmlInitTables, colors) == 648);
static_assert(offsetof(WmlInitTables, widths) == 920);
static_assert(offsetof(WmlInitTables, tags) == 1112);
static_assert(offsetof(WmlInitTables, attributes) == 1328);
static_assert(offsetof(WmlInitTables, entities) == 1632);
static_assert(offsetof(WmlInitTables, styleTemplates) == 4152);
static_assert(offsetof(WmlInitTables, charsetNames) == 4408);
static_assert(sizeof(WmlInitTables) == 5008);
#endif

// --------------------------------------------------------------- identities

inline constexpr uint8_t VW_TYPE_CODE = 120;

inline constexpr int16_t FILTER_WML = 1151;
inline constexpr int16_t FILTER_WML_BIG5 = 1154;
inline constexpr int16_t FILTER_WML_EUC_CN = 1155;
inline constexpr int16_t FILTER_WML_GB = 1156;
inline constexpr int16_t FILTER_WML_1251 = 1157;
inline constexpr int16_t FILTER_WML_KOI8_R = 1158;
inline constexpr int16_t FILTER_WML_JIS = 1159;
inline constexpr int16_t FILTER_WML_SJIS = 1160;
inline constexpr int16_t FILTER_WML_EUC_JP = 1161;
inline constexpr int16_t FILTER_WML_KOREAN = 1162;
inline constexpr int16_t FILTER_WML_1250 = 1163;

static_assert(sizeof(WmlOverlayRecord) == 44);
static_assert(sizeof(WmlOverlayId) == 616);

#endif  // VS_WML_FILTER_DATA_VSD_WML_H
