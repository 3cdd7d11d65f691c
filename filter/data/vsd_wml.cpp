// SPDX-License-Identifier: MIT
#include "filter/data/vsd_wml.h"

#include "filter/data/name_index.h"

namespace {

constexpr uint32_t TagCode(uint32_t id, uint32_t tagClass, uint32_t styleTemplate) {
  return id | tagClass << 8 | styleTemplate << 16;
}

constexpr uint32_t EscapeAction(uint32_t flags, uint32_t charset = 0) {
  return flags | charset << 16;
}

}  // namespace

constexpr WmlInitTables WmlInit = {
    .keywords =
        {
            {0, "roman"},
            {1, "helvetica"},
            {2, "courier"},
            {3, ""},
            {6, ""},
            {4, ""},
            {5, ""},
            {7, ""},
            {8, ""},
            {9, ""},
            {10, ""},
            {11, ""},
            {12, ""},
            {13, "none"},
            {14, "basic"},
            {15, "note"},
            {16, "caution"},
            {17, "warning"},
            {18, "circle"},
            {19, "square"},
            {20, "left"},
            {21, "right"},
            {22, "center"},
            {23, "bleedleft"},
            {24, "bleedright"},
            {25, "top"},
            {26, "bottom"},
            {27, "topbot"},
            {28, "sides"},
            {29, "just"},
            {30, "indent"},
            {31, "rows"},
            {32, "cols"},
            {33, "made"},
            {34, "A"},
            {35, "a"},
            {36, "I"},
            {37, "i"},
            {38, "1"},
            {39, "upperalpha"},
            {40, "loweralpha"},
            {41, "upperroman"},
            {42, "lowerroman"},
            {43, "IXCM"},
            {44, "ixcm"},
            {45, "VLD"},
            {46, "vld"},
            {47, "middle"},
        },
    .units =
        {
            {UNIT_CM, "cm"},
            {UNIT_EM, "em"},
            {UNIT_EN, "en"},
            {UNIT_IN, "in"},
            {UNIT_MM, "mm"},
            {UNIT_PI, "pi"},
            {UNIT_PIXELS, "pixels"},
            {UNIT_PIXELS, "px"},
            {UNIT_RELATIVE, "relative"},
        },
    .escapes =
        {
            {"N", EscapeAction(ESC_USE_G2 | ESC_SINGLE_SHIFT)},
            {"O", EscapeAction(ESC_USE_G3 | ESC_SINGLE_SHIFT)},
            {"(B", EscapeAction(ESC_USE_DOC)},
            {"(J", EscapeAction(ESC_SET_G1 | ESC_USE_G1, CHARSET_JIS_ROMAN)},
            {"$@", EscapeAction(ESC_SET_G1 | ESC_USE_G1, CHARSET_JIS_X0208)},
            {"$B", EscapeAction(ESC_SET_G1 | ESC_USE_G1, CHARSET_JIS_X0208)},
            {"$)A", EscapeAction(ESC_SET_G1, CHARSET_GB2312)},
            {"$)C", EscapeAction(ESC_SET_G1 | ESC_RESET_AT_BREAK, CHARSET_KSC5601)},
            {"$)E", EscapeAction(ESC_SET_G1)},
            {"$)G", EscapeAction(ESC_SET_G1, CHARSET_BIG5)},
            {"$*H", EscapeAction(ESC_SET_G2, CHARSET_BIG5)},
            {"$+I", EscapeAction(ESC_SET_G3, CHARSET_BIG5)},
            {"$+J", EscapeAction(ESC_SET_G3, CHARSET_BIG5)},
            {"$+K", EscapeAction(ESC_SET_G3, CHARSET_BIG5)},
            {"$+L", EscapeAction(ESC_SET_G3, CHARSET_BIG5)},
            {"$+M", EscapeAction(ESC_SET_G3, CHARSET_BIG5)},
        },
    .highControls =
        {
            0x0000, 0x0000, 0x201A, 0x0192, 0x201D, 0x2026, 0x2020, 0x2021,  // 0x80
            0x2038, 0x2030, 0x0160, 0x2039, 0x0152, 0x0000, 0x0000, 0x0000,  // 0x88
            0x0000, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  // 0x90
            0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x0000, 0x0000, 0x0178,  // 0x98
        },
    .colors =
        {
            {"aqua", 0x0093DB70},        {"black", 0x00000000},        {"blue", 0x00FF0000},
            {"brown", 0x002A2AA6},       {"dark blue", 0x007F0000},    {"dark brown", 0x0033405C},
            {"dark gray", 0x00545454},   {"dark green", 0x00007F00},   {"dark orange", 0x00003F7F},
            {"dark purple", 0x00781F87}, {"dark red", 0x0000007F},     {"dark yellow", 0x00007F7F},
            {"fuchsia", 0x00AE1CFF},     {"gray", 0x007F7F7F},         {"green", 0x0000FF00},
            {"light blue", 0x00FF7F7F},  {"light brown", 0x00151555},  {"light gray", 0x00A8A8A8},
            {"light green", 0x007FFF7F}, {"light orange", 0x0080BFFF}, {"light purple", 0x00DE5FBE},
            {"light red", 0x007F7FFF},   {"light yellow", 0x007FFFFF}, {"lime", 0x0032CD32},
            {"maroon", 0x006B238E},      {"navy", 0x008E2323},         {"olive", 0x002F4F4F},
            {"orange", 0x00007FFF},      {"purple", 0x00961F78},       {"red", 0x000000FF},
            {"silver", 0x00FAE8E6},      {"teal", 0x00DBDB70},         {"white", 0x00FFFFFF},
            {"yellow", 0x0000FFFF},
        },
    .widths =
        {
            210, 267, 325, 402, 402, 672, 612, 152,  // 0x20
            267, 267, 404, 459, 210, 267, 210, 230,  // 0x28
            402, 402, 402, 402, 402, 402, 402, 402,  // 0x30
            402, 402, 228, 230, 460, 460, 460, 346,  // 0x38
            748, 576, 516, 537, 576, 498, 440, 576,  // 0x40
            555, 267, 306, 576, 480, 708, 576, 576,  // 0x48
            438, 576, 516, 438, 496, 552, 570, 748,  // 0x50
            576, 576, 480, 267, 213, 270, 384, 404,  // 0x58
            270, 362, 384, 348, 402, 348, 252, 402,  // 0x60
            426, 228, 216, 402, 228, 632, 422, 388,  // 0x68
            402, 402, 288, 306, 228, 402, 378, 552,  // 0x70
            402, 366, 360, 384, 150, 384, 438, 0,    // 0x78
        },
    .tags =
        {
            {"", TagCode(TAG_NONE, 0, 0)},
            {"a", TagCode(TAG_A, TAGF_CONTAINER, 0)},
            {"b", TagCode(TAG_B, TAGF_STYLE, 6)},
            {"big", TagCode(TAG_BIG, TAGF_STYLE, 15)},
            {"br", TagCode(TAG_BR, TAGF_EMPTY, 0)},
            {"card", TagCode(TAG_CARD, TAGF_CONTAINER, 0)},
            {"center", TagCode(TAG_CENTER, TAGF_CONTAINER, 2)},
            {"em", TagCode(TAG_EM, TAGF_STYLE, 7)},
            {"head", TagCode(TAG_HEAD, TAGF_MATCH_TOP, 0)},
            {"i", TagCode(TAG_I, TAGF_STYLE, 7)},
            {"img", TagCode(TAG_IMG, TAGF_EMPTY, 0)},
            {"input", TagCode(TAG_INPUT, TAGF_EMPTY, 0)},
            {"lang", TagCode(TAG_LANG, TAGF_EMPTY, 0)},
            {"meta", TagCode(TAG_META, TAGF_EMPTY, 0)},
            {"option", TagCode(TAG_OPTION, TAGF_MATCH_TOP, 0)},
            {"p", TagCode(TAG_P, TAGF_EMPTY, 0)},
            {"pre", TagCode(TAG_PRE, TAGF_STYLE, 14)},
            {"select", TagCode(TAG_SELECT, TAGF_CONTAINER, 0)},
            {"small", TagCode(TAG_SMALL, TAGF_STYLE, 9)},
            {"strong", TagCode(TAG_STRONG, TAGF_STYLE, 6)},
            {"table", TagCode(TAG_TABLE, TAGF_CONTAINER, 0)},
            {"td", TagCode(TAG_TD, TAGF_TABLE_PART, 5)},
            {"text", TagCode(TAG_TEXT, TAGF_CONTAINER, 0)},
            {"title", TagCode(TAG_TITLE, TAGF_CONTAINER, 0)},
            {"tr", TagCode(TAG_TR, TAGF_TABLE_PART, 0)},
            {"u", TagCode(TAG_U, TAGF_STYLE, 8)},
            {"wml", TagCode(TAG_WML, TAGF_CONTAINER, 0)},
        },
    .attributes =
        {
#define ATTRIBUTE_ROW(id, name) {name, ATTRIB_##id},
            WML_ATTRIBUTES(ATTRIBUTE_ROW)
#undef ATTRIBUTE_ROW
        },
    .entities =
        {
            {"AElig", 0xC6},    {"Aacute", 0xC1},   {"Acirc", 0xC2},    {"Aelig", 0xC6},
            {"Agrave", 0xC0},   {"Alpha", 0x391},   {"Aring", 0xC5},    {"Atilde", 0xC3},
            {"Auml", 0xC4},     {"Beta", 0x392},    {"Ccedil", 0xC7},   {"Chi", 0x3A7},
            {"Delta", 0x394},   {"Dstrok", 0xD0},   {"ETH", 0xD0},      {"Eacute", 0xC9},
            {"Ecirc", 0xCA},    {"Egrave", 0xC8},   {"Epsi", 0x395},    {"Epsilon", 0x395},
            {"Eta", 0x397},     {"Euml", 0xCB},     {"Gamma", 0x393},   {"Iacute", 0xCD},
            {"Icirc", 0xCE},    {"Igrave", 0xCC},   {"Iota", 0x399},    {"Iuml", 0xCF},
            {"Kappa", 0x39A},   {"Lambda", 0x39B},  {"Mu", 0x39C},      {"Ntilde", 0xD1},
            {"Nu", 0x39D},      {"Oacute", 0xD3},   {"Ocirc", 0xD4},    {"Ograve", 0xD2},
            {"Omega", 0x3A9},   {"Omicron", 0x39F}, {"Oslash", 0xD8},   {"Otilde", 0xD5},
            {"Ouml", 0xD6},     {"Phi", 0x3A6},     {"Pi", 0x3A0},      {"Prime", 0x22},
            {"Psi", 0x3A8},     {"Rho", 0x3A1},     {"Sigma", 0x3A3},   {"THORN", 0xDE},
            {"Tau", 0x3A4},     {"Theta", 0x398},   {"Uacute", 0xDA},   {"Ucirc", 0xDB},
            {"Ugrave", 0xD9},   {"Upsi", 0x3A5},    {"Upsilon", 0x3A5}, {"Uuml", 0xDC},
            {"Xi", 0x39E},      {"Yacute", 0xDD},   {"Zeta", 0x396},    {"aacute", 0xE1},
            {"acirc", 0xE2},    {"acute", 0xB4},    {"aelig", 0xE6},    {"agrave", 0xE0},
            {"aleph", 0x2135},  {"alpha", 0x3B1},   {"amp", 0x26},      {"and", 0xB7},
            {"ang", 0x2220},    {"ap", 0x2245},     {"ape", 0x2245},    {"apos", 0x27},
            {"aring", 0xE5},    {"ast", 0x2A},      {"atilde", 0xE3},   {"auml", 0xE4},
            {"beta", 0x3B2},    {"breve", 0x2D8},   {"brkbar", 0xA6},   {"brvbar", 0xA6},
            {"bsol", 0x5C},     {"bull", 0x2022},   {"cap", 0x2229},    {"caron", 0x30C},
            {"ccedil", 0xE7},   {"cdots", 0x2026},  {"cedil", 0xB8},    {"cent", 0xA2},
            {"chi", 0x3C7},     {"circ", 0x5E},     {"clubs", 0x2663},  {"colon", 0x3A},
            {"comma", 0x2C},    {"commat", 0x40},   {"cong", 0x0},      {"copy", 0xA9},
            {"cos", 0x0},       {"cosh", 0x0},      {"cup", 0x222A},    {"curren", 0xA4},
            {"dArr", 0x21D3},   {"darr", 0x2193},   {"dblac", 0x2DD},   {"ddots", 0x22F0},
            {"deg", 0xB0},      {"dellip", 0x22F0}, {"delta", 0x3B4},   {"diams", 0x2666},
            {"die", 0xA8},      {"divide", 0xF7},   {"dollar", 0x24},   {"dot", 0x307},
            {"dotfill", 0x0},   {"eacute", 0xE9},   {"ecirc", 0xEA},    {"egrave", 0xE8},
            {"emdash", 0x2014}, {"empty", 0x2205},  {"emsp", 0x20},     {"endash", 0x2013},
            {"ensp", 0x20},     {"epsi", 0x3B5},    {"epsilon", 0x3B5}, {"equals", 0x3D},
            {"equiv", 0x2261},  {"eta", 0x3B7},     {"eth", 0xF0},      {"euml", 0xEB},
            {"excl", 0x21},     {"exist", 0x2203},  {"fnof", 0x192},    {"forall", 0x2200},
            {"frac12", 0xBD},   {"frac14", 0xBC},   {"frac18", 0x215B}, {"frac34", 0xBE},
            {"frac38", 0x215C}, {"frac58", 0x215D}, {"frac78", 0x215E}, {"gamma", 0x3B3},
            {"ge", 0x2265},     {"grave", 0x60},    {"gt", 0x3E},       {"hArr", 0x21D4},
            {"hairsp", 0x200A}, {"half", 0xBD},     {"harr", 0x2194},   {"hearts", 0x2665},
            {"hellip", 0x2026}, {"hibar", 0xAF},    {"horbar", 0x5F},   {"hyphen", 0x2D},
            {"iacute", 0xED},   {"icirc", 0xEE},    {"iexcl", 0xA1},    {"iff", 0x0},
            {"igrave", 0xEC},   {"image", 0x69},    {"inf", 0x221E},    {"infin", 0x221E},
            {"int", 0x222B},    {"iota", 0x3B9},    {"iquest", 0xBF},   {"isin", 0x2208},
            {"iuml", 0xEF},     {"kappa", 0x3BA},   {"lArr", 0x21D0},   {"lambda", 0x3BB},
            {"lang", 0x3C},     {"laquo", 0xAB},    {"larr", 0x2190},   {"lceil", 0x2308},
            {"lcub", 0x7B},     {"ldet", 0x7C},     {"ldots", 0x2026},  {"ldquo", 0x201C},
            {"le", 0x2264},     {"lfloor", 0x230A}, {"log", 0x0},       {"lowbar", 0x97},
            {"loz", 0x2662},    {"lpar", 0x28},     {"lrm", 0x200E},    {"lsqb", 0x5B},
            {"lsquo", 0x2018},  {"lt", 0x3C},       {"macr", 0xAF},     {"mdash", 0x2014},
            {"micro", 0xB5},    {"middot", 0xB7},   {"minus", 0x2D},    {"mu", 0x3BC},
            {"nabla", 0x2207},  {"nbsp", 0xA0},     {"ndash", 0x2013},  {"ne", 0x2260},
            {"ni", 0x220B},     {"not", 0xAC},      {"notin", 0x2209},  {"nsub", 0x2284},
            {"ntilde", 0xF1},   {"nu", 0x3BD},      {"num", 0x23},      {"oacute", 0xF3},
            {"ocirc", 0xF4},    {"ogon", 0x2DB},    {"ograve", 0xF2},   {"ohm", 0x3A9},
            {"omega", 0x3C9},   {"omicron", 0x3BF}, {"oplus", 0x2295},  {"or", 0x2B},
            {"ordf", 0xAA},     {"ordm", 0xBA},     {"oslash", 0xF8},   {"otilde", 0xF5},
            {"otimes", 0x2297}, {"ouml", 0xF6},     {"para", 0xB6},     {"part", 0x2202},
            {"pd", 0x2202},     {"percnt", 0x25},   {"period", 0x2E},   {"perp", 0x22A5},
            {"phi", 0x3C6},     {"phiv", 0x3D5},    {"pi", 0x3C0},      {"piv", 0x3D6},
            {"plus", 0x2B},     {"plusmn", 0xB1},   {"pound", 0xA3},    {"prime", 0x27},
            {"prod", 0x220F},   {"prop", 0x7E},     {"psi", 0x3C8},     {"quad", 0x20},
            {"quest", 0x3F},    {"quot", 0x22},     {"rArr", 0x21D2},   {"radic", 0x221A},
            {"rang", 0x3E},     {"raquo", 0xBB},    {"rarr", 0x2192},   {"rceil", 0x2309},
            {"rcub", 0x7D},     {"rdet", 0x7C},     {"rdquo", 0x201D},  {"real", 0x211C},
            {"reg", 0xAE},      {"rfloor", 0x230B}, {"rho", 0x3C1},     {"ring", 0xB0},
            {"rlm", 0x200F},    {"rpar", 0x29},     {"rsqb", 0x5D},     {"rsquo", 0x2019},
            {"sdot", 0xB7},     {"sect", 0xA7},     {"semi", 0x3B},     {"shy", 0xAD},
            {"sigma", 0x3C3},   {"sigmav", 0x3C2},  {"sim", 0x7E},      {"sin", 0x0},
            {"sinh", 0x0},      {"sol", 0x2F},      {"sp", 0x20},       {"spades", 0x2660},
            {"sub", 0x2282},    {"sube", 0x2286},   {"sum", 0x2211},    {"sung", 0x266A},
            {"sup", 0x2283},    {"sup1", 0xB9},     {"sup2", 0xB2},     {"sup3", 0xB3},
            {"supe", 0x2287},   {"szlig", 0xDF},    {"tan", 0x0},       {"tanh", 0x0},
            {"tau", 0x3C4},     {"there4", 0x2234}, {"theta", 0x3B8},   {"thetav", 0x3D1},
            {"thinsp", 0x20},   {"thorn", 0xFE},    {"tilde", 0x7E},    {"times", 0xD7},
            {"trade", 0x2122},  {"uArr", 0x21D1},   {"uacute", 0xFA},   {"uarr", 0x2191},
            {"ucirc", 0xFB},    {"ugrave", 0xF9},   {"uml", 0xA8},      {"upsi", 0x3C5},
            {"upsilon", 0x3C5}, {"uuml", 0xFC},     {"varphi", 0x3D5},  {"varpi", 0x3D6},
            {"varrho", 0x0},    {"vdots", 0x22EE},  {"vellip", 0x22EE}, {"vepsilon", 0x3AD},
            {"verbar", 0xA6},   {"vsigma", 0x3C2},  {"vtheta", 0x3D1},  {"weierp", 0x2118},
            {"xi", 0x3BE},      {"yacute", 0xFD},   {"yen", 0xA5},      {"yuml", 0xFF},
            {"zeta", 0x3B6},    {"zwj", 0x200D},    {"zwnj", 0x200C},
        },
    .styleTemplates =
        {
            {0, 12, 0, CLEAR_ATTRIBUTES, 0, 0, 1, PARA_ALIGN_LEFT | PARA_ORDINARY},
            {1, 0, 0, 0, 0, 0, 0, 0},
            {2, 0, 0, 0, 0, 0, 0, PARA_ALIGN_CENTER},
            {3, 0, 0, 0, 0, 0, 0, PARA_ALIGN_LEFT},
            {4, 0, 0, 0, 0, 0, 0, PARA_ALIGN_FROM_TAG},
            {5, 0, 0, 0, MODE_IN_CELL, 0, 0, 0},
            {6, 0, 0, ATTR_BOLD, 0, 0, 0, 0},
            {7, 0, 0, ATTR_ITALIC, 0, 0, 0, 0},
            {8, 0, 0, ATTR_UNDERLINE, 0, 0, 0, 0},
            {9, 8, 0, 0, 0, 0, 0, 0},
            {10, 10, 0, 0, 0, 0, 3, 0},
            {11, 10, 0, ATTR_ITALIC, 0, 0, 3, 0},
            {12, 12, 0, ATTR_ITALIC, 0, 0, 1, 0},
            {13, 10, 0, CLEAR_ATTRIBUTES, MODE_LITERAL, 0, 3, PARA_PREFORMATTED},
            {14, 10, 0, CLEAR_ATTRIBUTES, MODE_PRE, 0, 3, PARA_PREFORMATTED},
            {15, 20, 0, 0, 0, 0, 0, 0},
        },
    .charsetNames =
        {
            {"8859_1", CHARSET_ISO8859_1},
            {"8859_2", CHARSET_ISO8859_1 + 1},
            {"8859_3", CHARSET_ISO8859_1 + 2},
            {"8859_4", CHARSET_ISO8859_1 + 3},
            {"8859_5", CHARSET_ISO8859_1 + 4},
            {"8859_6", CHARSET_ISO8859_1 + 5},
            {"8859_7", CHARSET_ISO8859_1 + 6},
            {"8859_8", CHARSET_ISO8859_1 + 7},
            {"8859_9", CHARSET_ISO8859_1 + 8},
            {"big5", CHARSET_BIG5},
            {"cn-big5", CHARSET_BIG5},
            {"cp1250", CHARSET_WINDOWS_1250},
            {"cp1251", CHARSET_WINDOWS_1251},
            {"cp1253", CHARSET_WINDOWS_1253},
            {"csbig5", CHARSET_BIG5},
            {"cseuckr", CHARSET_KSC5601},
            {"csgb2312", CHARSET_GB2312},
            {"csiso2022jp", CHARSET_ISO2022_JP},
            {"csiso2022jp2", CHARSET_ISO2022_JP},
            {"csiso2022kr", CHARSET_ISO2022_KR},
            {"csiso58gb231280", CHARSET_GB2312},
            {"cskoi8r", CHARSET_KOI8_R},
            {"csshiftjis", CHARSET_SJIS},
            {"cyrillic", CHARSET_WINDOWS_1251},
            {"euc-jp", CHARSET_EUC_JP},
            {"euc-kr", CHARSET_KSC5601},
            {"gb2312", CHARSET_GB2312},
            {"gb_2312-80", CHARSET_GB2312},
            {"iso-2022-jp", CHARSET_ISO2022_JP},
            {"iso-2022-jp-2", CHARSET_ISO2022_JP},
            {"iso-2022-kr", CHARSET_ISO2022_KR},
            {"iso-8859-1", CHARSET_ISO8859_1},
            {"iso-8859-2", CHARSET_ISO8859_1 + 1},
            {"iso-8859-3", CHARSET_ISO8859_1 + 2},
            {"iso-8859-4", CHARSET_ISO8859_1 + 3},
            {"iso-8859-5", CHARSET_ISO8859_1 + 4},
            {"iso-8859-6", CHARSET_ISO8859_1 + 5},
            {"iso-8859-7", CHARSET_ISO8859_1 + 6},
            {"iso-8859-8", CHARSET_ISO8859_1 + 7},
            {"iso-8859-9", CHARSET_ISO8859_1 + 8},
            {"jis0208", CHARSET_ISO2022_JP},
            {"jis_x0201", CHARSET_JIS_ROMAN},
            {"jis_x0208-1983", CHARSET_ISO2022_JP},
            {"jis_x0212-1990", CHARSET_ISO2022_JP},
            {"koi8", CHARSET_KOI8_R},
            {"koi8-r", CHARSET_KOI8_R},
            {"kr2022", CHARSET_ISO2022_KR},
            {"shift_jis", CHARSET_SJIS},
            {"sjis", CHARSET_SJIS},
            {"UNICODE-1-1-UTF-8", CHARSET_UTF8},
            {"us-ascii", CHARSET_DEFAULT},
            {"windows-1250", CHARSET_WINDOWS_1250},
            {"windows-1251", CHARSET_WINDOWS_1251},
            {"windows-1253", CHARSET_WINDOWS_1253},
            {"windows-1254", CHARSET_WINDOWS_1254},
            {"windows-1255", CHARSET_WINDOWS_1254 + 1},
            {"windows-1256", CHARSET_WINDOWS_1254 + 2},
            {"windows-1257", CHARSET_WINDOWS_1254 + 3},
            {"x-cp1250", CHARSET_WINDOWS_1250},
            {"x-cp1251", CHARSET_WINDOWS_1251},
            {"x-cp1253", CHARSET_WINDOWS_1253},
            {"x-euc-jp", CHARSET_EUC_JP},
            {"x-gb2312-11", CHARSET_GB2312},
            {"x-jisx0208-11", CHARSET_ISO2022_JP},
            {"x-mac-ce", CHARSET_MAC_CE},
            {"x-mac-cyrillic", CHARSET_WINDOWS_1251},
            {"x-mac-greek", CHARSET_MAC_GREEK},
            {"x-mac-roman", CHARSET_MAC_ROMAN},
            {"x-mac-turkish", CHARSET_MAC_TURKISH},
            {"x-mac-ce", CHARSET_MAC_CE},  // a second row of the same name: lookups never reach it
            {"x-sjis", CHARSET_SJIS},
            {"x-x-big5", CHARSET_BIG5},
            {"x0201", CHARSET_JIS_ROMAN},
            {"x0208", CHARSET_ISO2022_JP},
            {"x0212", CHARSET_ISO2022_JP},
        },
};

namespace {

constexpr WmlOverlayRecord Overlay(uint16_t id, const char *name) {
  WmlOverlayRecord record = {
      {static_cast<uint8_t>(id & 0xFF), static_cast<uint8_t>(id >> 8)}, VW_TYPE_CODE, {}};
  for (int i = 0; name[i] != 0; ++i) record.name[i] = name[i];
  return record;
}

}  // namespace

constexpr WmlOverlayRecord WmlOverlayId[VW_OVERLAY_COUNT] = {
    Overlay(1151, "Internet WML"),
    Overlay(1163, "WML - Central European"),
    Overlay(1160, "WML - Japanese ShiftJIS"),
    Overlay(1161, "WML - Japanese EUC"),
    Overlay(1159, "WML - Japanese JIS"),
    Overlay(1154, "WML - Chinese Big5"),
    Overlay(1155, "WML - Chinese EUC"),
    Overlay(1156, "WML - Chinese GB"),
    Overlay(1162, "WML - Korean Hangul"),
    Overlay(1157, "WML - Cyrillic (Ansi 1251)"),
    Overlay(1158, "WML - Cyrillic (KOI8-R)"),
    {},
    {},
    {},
};

namespace {

template <size_t slotCount, size_t rowCount>
constexpr NameIndex<slotCount> MakeIndex(const NameRecord (&table)[rowCount]) {
  static_assert(slotCount >= 2 * rowCount);
  NameIndex<slotCount> index = {};
  for (const NameRecord &record : table) {
    size_t length = 0;
    while (record.name[length] != 0) ++length;
    if (length > 0 && length <= NAME_KEY_MAX) {
      index.Add(NameKey(record.name, length), record.value & 0xFFFF);
    }
  }
  return index;
}

template <size_t rowCount>
constexpr bool NamesFit(size_t maximum, const NameRecord (&table)[rowCount]) {
  for (const NameRecord &record : table) {
    for (size_t length = 0; record.name[length] != 0; ++length) {
      if (length == maximum) return false;
    }
  }
  return true;
}

// No element takes a template that leaves the alignment to the tag, or one that makes markup text:
// the first is never applied, and the second only stands in save blocks.
constexpr bool TemplatesApply() {
  for (const NameRecord &tag : WmlInit.tags) {
    const StyleRecord &style = WmlInit.styleTemplates[tag.value >> 16];
    if ((style.paraFlags & PARA_ALIGN_FROM_TAG) || (style.modeBits & MODE_LITERAL)) return false;
  }
  return true;
}

static_assert(TemplatesApply());
static_assert(NamesFit(NAME_KEY_MAX - 1, WmlInit.tags));
static_assert(NamesFit(NAME_KEY_MAX, WmlInit.entities));
static_assert(NamesFit(ATTRIB_NAME_MAX, WmlInit.attributes));

}  // namespace

// A tag's value carries its class above its id.
constexpr NameIndex<64> TAG_INDEX = [] {
  NameIndex<64> index = MakeIndex<64>(WmlInit.tags);
  for (uint16_t &value : index.values) value &= 0xFF;
  return index;
}();
constexpr BareTagIndex BARE_TAG_INDEX = [] {
  BareTagIndex index = {};
  for (BareTag &slot : index.slots) slot = {1, 0, 0, TAG_NONE, 1};
  for (uint8_t id = TAG_NONE + 1; id < TAG_COUNT; ++id) {
    if (id == TAG_META) continue;
    BareTag tag = {0, 0, 0, id, 0};
    for (const char *name = WmlInit.tags[id].name; *name != 0; ++name) {
      tag.bytes |= uint64_t{static_cast<uint8_t>(*name)} << 8 * tag.length;
      tag.letters |= uint64_t{0x20} << 8 * tag.length;
      ++tag.length;
    }
    tag.bytes |= uint64_t{'>'} << 8 * tag.length;
    ++tag.length;
    tag.mask = (uint64_t{1} << 8 * tag.length) - 1;
    const auto slot = static_cast<size_t>(&index.Candidate(tag.bytes) - index.slots);
    index.slots[slot] = tag;
  }
  return index;
}();
constexpr TagClasses TAG_CLASSES = [] {
  TagClasses classes = {};
  for (int id = 0; id < TAG_COUNT; ++id) {
    classes.of[id] = static_cast<uint8_t>(WmlInit.tags[id].value >> 8);
  }
  return classes;
}();
constexpr NameIndex<128> ATTRIBUTE_INDEX = MakeIndex<128>(WmlInit.attributes);
constexpr NameIndex<1024> ENTITY_INDEX = MakeIndex<1024>(WmlInit.entities);

namespace {

constexpr bool AllCandidates(const BareTagIndex &index) {
  int count = 0;
  for (const BareTag &slot : index.slots) count += slot.tagId != TAG_NONE;
  return count == TAG_COUNT - 2;  // without TAG_NONE and `meta`
}

static_assert(AllCandidates(BARE_TAG_INDEX));

}  // namespace
