// SPDX-License-Identifier: MIT
// The attributes that the filter knows: a line here makes one known, as ATTRIB_ and its id.
#ifndef VS_WML_FILTER_DATA_ATTRIBUTE_LIST_H
#define VS_WML_FILTER_DATA_ATTRIBUTE_LIST_H

#include <cstdint>

// Id and name, sorted by name. An attribute's number is that of its line, from 1.
#define WML_ATTRIBUTES(ROW) \
  ROW(ACTION, "action") \
  ROW(ALIGN, "align") \
  ROW(ALT, "alt") \
  ROW(CLASS, "class") \
  ROW(COLUMNS, "columns") \
  ROW(CONTENT, "content") \
  ROW(ENCTYPE, "enctype") \
  ROW(ERROR, "error") \
  ROW(HEIGHT, "height") \
  ROW(HREF, "href") \
  ROW(HSPACE, "hspace") \
  ROW(HTTP_EQUIV, "http-equiv") \
  ROW(ID, "id") \
  ROW(LANG, "lang") \
  ROW(LOCALSRC, "localsrc") \
  ROW(MAXLENGTH, "maxlength") \
  ROW(METHOD, "method") \
  ROW(MODE, "mode") \
  ROW(MULTIPLE, "multiple") \
  ROW(NAME, "name") \
  ROW(NOHREF, "nohref") \
  ROW(NOWRAP, "nowrap") \
  ROW(OPTIONAL, "optional") \
  ROW(PLAIN, "plain") \
  ROW(SIZE, "size") \
  ROW(SRC, "src") \
  ROW(TAG, "tag") \
  ROW(TITLE, "title") \
  ROW(TO, "to") \
  ROW(TYPE, "type") \
  ROW(URL, "url") \
  ROW(URN, "urn") \
  ROW(VALUE, "value") \
  ROW(VERSION, "version") \
  ROW(VSPACE, "vspace") \
  ROW(WIDTH, "width") \
  ROW(WRAP, "wrap") \
  ROW(XML_LANG, "xml:lang")

enum AttributeId : uint16_t {
  ATTRIB_NONE = 0,
#define ATTRIBUTE_ID(id, name) ATTRIB_##id,
  WML_ATTRIBUTES(ATTRIBUTE_ID)
#undef ATTRIBUTE_ID
      ATTRIB_END
};
inline constexpr int ATTRIB_COUNT = ATTRIB_END - 1;

#endif  // VS_WML_FILTER_DATA_ATTRIBUTE_LIST_H
