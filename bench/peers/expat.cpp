// SPDX-License-Identifier: MIT
#include <expat.h>
#include <iconv.h>
#include <strings.h>

#include <array>

#include "contender.h"
#include "peers/chunks.h"

namespace {

// Expat asks for Unicode values of the encodings that it does not know itself.
class ShiftJisMap {
 public:
  ShiftJisMap() {
    iconv_t converter = iconv_open("UCS-4LE", "SHIFT_JIS");
    for (size_t code = 0; code < map_.size(); ++code) {
      char bytes[2] = {static_cast<char>(code >> 8), static_cast<char>(code)};
      char *from = bytes;
      uint8_t value[4] = {};
      char *to = reinterpret_cast<char *>(value);
      size_t fromLeft = sizeof bytes;
      size_t toLeft = sizeof value;
      const bool known = iconv(converter, &from, &fromLeft, &to, &toLeft) != size_t(-1);
      map_[code] = known && fromLeft == 0 ? value[0] | value[1] << 8 : -1;
    }
    iconv_close(converter);
  }
  static int Convert(void *self, const char *bytes) {
    const size_t lead = static_cast<uint8_t>(bytes[0]);
    return static_cast<ShiftJisMap *>(self)->map_[lead << 8 | static_cast<uint8_t>(bytes[1])];
  }

 private:
  std::array<int, 65536> map_;  // -1: no such character
};

int OnUnknownEncoding(void *, const XML_Char *name, XML_Encoding *encoding) {
  if (strcasecmp(name, "Shift_JIS") != 0) return XML_STATUS_ERROR;
  for (int byte = 0; byte < 256; ++byte) {
    const bool halfWidth = byte >= 0xA1 && byte <= 0xDF;
    const bool lead = !halfWidth && byte > 0x80 && byte != 0xA0 && byte < 0xFD;
    encoding->map[byte] = byte < 0x80 ? byte : halfWidth ? 0xFF61 + byte - 0xA1 : lead ? -2 : -1;
  }
  encoding->convert = ShiftJisMap::Convert;
  static ShiftJisMap map;
  encoding->data = &map;
  encoding->release = nullptr;
  return XML_STATUS_OK;
}

void OnText(void *sink, const XML_Char *text, int length) {
  static_cast<TextSink *>(sink)->Text(text, static_cast<size_t>(length));
}
void OnStart(void *sink, const XML_Char *, const XML_Char **) {
  static_cast<TextSink *>(sink)->Element();
}
void OnEnd(void *, const XML_Char *) {}

}  // namespace

bool ReadExpat(const Document &document, TextSink *sink) {
  XML_Parser parser = XML_ParserCreate(nullptr);
  XML_SetUserData(parser, sink);
  XML_SetElementHandler(parser, OnStart, OnEnd);
  XML_SetCharacterDataHandler(parser, OnText);
  XML_SetUnknownEncodingHandler(parser, OnUnknownEncoding, nullptr);
  const bool good = ForEachChunk(document, [parser](std::string_view chunk, bool last) {
    return XML_Parse(parser, chunk.data(), static_cast<int>(chunk.size()), last) == XML_STATUS_OK;
  });
  XML_ParserFree(parser);
  return good;
}
