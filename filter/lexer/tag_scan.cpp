// SPDX-License-Identifier: MIT
#include "filter/lexer/tag_scan.h"

#include "filter/data/name_lookup.h"
#include "filter/lexer/name_key.h"

namespace {

// The order counts: inside quotes a value goes on through all classes in front of QUOTE,
// in multi-byte text only through those in front of HIGH.
enum ByteClass : uint8_t {
  NAME,   // part of a name or of an unquoted value
  BLANK,  // between words
  MARK,   // '<', '>', '=', '/', '!'
  HIGH,   // 0x80 and above: half of a character in multi-byte text
  QUOTE,  // opens and closes a value
  ODD,    // control bytes and '&'
};

struct ByteClasses {
  ByteClass of[256];
};

constexpr ByteClasses kBytes = [] {
  ByteClasses bytes = {};
  for (int b = 0; b < 0x20; ++b) bytes.of[b] = ODD;
  for (int b = 0x80; b < 0x100; ++b) bytes.of[b] = HIGH;
  const auto set = [&bytes](const char *characters, ByteClass which) {
    for (; *characters != 0; ++characters) bytes.of[static_cast<uint8_t>(*characters)] = which;
  };
  set(" \t\n\r", BLANK);
  set("<>=/!", MARK);
  set("\"'", QUOTE);
  set("&", ODD);
  return bytes;
}();

// A place in the unread bytes of the buffer. Behind the last one stands a NUL, which is
// ODD.
struct Scan {
  const uint8_t *at;
  bool multiByte;
};

ByteClass ClassAt(const Scan &scan) {
  return kBytes.of[*scan.at];
}

void SkipBlanks(Scan *scan) {
  while (ClassAt(*scan) == BLANK) ++scan->at;
}

// The length of the name at the scan, 0 when there is none; the scan moves behind it.
size_t ScanName(Scan *scan) {
  const uint8_t *begin = scan->at;
  while (ClassAt(*scan) == NAME) ++scan->at;
  return static_cast<size_t>(scan->at - begin);
}

// The name of a tag does not fill a key, so that no longer name has the key of one.
uint8_t TagOf(const uint8_t *name, size_t length) {
  return static_cast<uint8_t>(TAG_INDEX.Find(LoadLowerNameKey(name, length)));
}

uint16_t AttributeOf(const uint8_t *name, size_t length) {
  if (length <= NAME_KEY_MAX) return ATTRIBUTE_INDEX.Find(LoadLowerNameKey(name, length));
  if (length > ATTRIB_NAME_MAX) return ATTRIB_NONE;
  char copy[ATTRIB_NAME_MAX + 1];
  std::memcpy(copy, name, length);
  copy[length] = 0;
  return IDAttrib(copy);
}

// The bytes that the scan and the word readers take as they are inside double quotes, apart from
// the quote itself.
struct PlainBytes {
  bool of[256];
};

constexpr PlainBytes MakePlainBytes(bool isReference) {
  PlainBytes plain = {};
  const auto set = [&plain](const char *characters, bool value) {
    for (; *characters != 0; ++characters) plain.of[static_cast<uint8_t>(*characters)] = value;
  };
  for (int b = ' '; b < 0x80; ++b) plain.of[b] = true;
  set(isReference ? "\"&<>=!" : "\"&", false);
  if (!isReference) set("\n\r\t", true);
  return plain;
}

constexpr PlainBytes kPlainValue = MakePlainBytes(false);
constexpr PlainBytes kPlainReference = MakePlainBytes(true);

struct Value {
  const uint8_t *begin;
  size_t length;
  bool isPlain;  // as AttrRef has it
};

// A value in quotes, or a plain word.
bool ScanValue(bool isReference, Scan *scan, Value *value) {
  value->begin = scan->at;
  const uint8_t quote = *scan->at;
  if (kBytes.of[quote] != QUOTE) {
    value->length = ScanName(scan);
    return value->length > 0;
  }
  const uint8_t *at = value->begin = ++scan->at;
  if (*at == '>') return false;
  if (quote == '"') {
    const bool *plain = isReference ? kPlainReference.of : kPlainValue.of;
    while (plain[*at]) ++at;
    value->isPlain = *at == '"';
  }
  const ByteClass stop = scan->multiByte ? HIGH : QUOTE;
  while (kBytes.of[*at] < stop || (kBytes.of[*at] == QUOTE && *at != quote)) ++at;
  value->length = static_cast<size_t>(at - value->begin);
  scan->at = at + 1;
  return *at == quote;
}

// The value of a reference stands in for the name of another attribute, which ordinary
// values do not spell.
bool IsOrdinaryReference(const Value &value) {
  return value.length != 1 && AttributeOf(value.begin, value.length) == ATTRIB_NONE;
}

// The attribute at the scan, which begins with a byte of a name.
bool ScanAttribute(Scan *scan, WmlProc *proc) {
  const uint8_t *name = scan->at;
  const size_t length = ScanName(scan);
  AttrRef attribute = {AttributeOf(name, length), NOT_PLAIN, 0};
  SkipBlanks(scan);
  if (*scan->at == '=') {
    const uint8_t *behind = ++scan->at;
    attribute.valuePos = VwCharPosition(proc->input, behind);
    SkipBlanks(scan);
    const bool isReference = attribute.attrId == ATTRIB_HREF || attribute.attrId == ATTRIB_SRC;
    Value value = {};
    if (!ScanValue(isReference, scan, &value)) return false;
    if (value.isPlain && value.begin == behind + 1) {
      attribute.plainLength = static_cast<uint16_t>(value.length);
    }
    SkipBlanks(scan);
    if (isReference && !IsOrdinaryReference(value)) return false;
  }
  if (attribute.attrId != ATTRIB_NONE) {
    if (proc->attrCount + 1 >= MAX_ATTRIBUTES) return false;
    proc->attrList[proc->attrCount++] = attribute;
  }
  return true;
}

// The '>' or "/>" at the scan.
bool ScanTagEnd(Scan *scan, ItemRecord *item) {
  if (*scan->at == '/') {
    item->itemFlags |= ITEM_EMPTY;
    ++scan->at;
  }
  return *scan->at++ == '>';
}

bool ScanWholeTag(Scan *scan, ItemRecord *item, WmlProc *proc) {
  if (*scan->at == '/') {
    item->itemFlags |= ITEM_END;
    ++scan->at;
  }
  const uint8_t *name = scan->at;
  const size_t length = ScanName(scan);
  if (length == 0) return false;
  item->tagId = TagOf(name, length);
  if (item->tagId == TAG_META) return false;
  SkipBlanks(scan);
  while (ClassAt(*scan) == NAME) {
    if (!ScanAttribute(scan, proc)) return false;
    SkipBlanks(scan);
  }
  return ScanTagEnd(scan, item);
}

}  // namespace

bool ScanTag(ItemRecord *item, WmlProc *proc) {
  VwCharBuffer *input = proc->input;
  const uint16_t charset = proc->save.curCharset;
  proc->attrCount = 0;
  Scan scan = {input->next, (charset & CHARSETF_MULTI_BYTE) != 0};
  ItemRecord scanned = *item;
  if (!ScanWholeTag(&scan, &scanned, proc)) return false;
  *item = scanned;
  input->next = scan.at;
  return true;
}
