// SPDX-License-Identifier: MIT
// The SAX parsers of libxml2: no tree is built.
#include <libxml/HTMLparser.h>
#include <libxml/parser.h>

#include "contender.h"
#include "peers/chunks.h"

namespace {

void OnText(void *sink, const xmlChar *text, int length) {
  static_cast<TextSink *>(sink)->Text(reinterpret_cast<const char *>(text),
                                      static_cast<size_t>(length));
}
void OnStartXml(void *sink, const xmlChar *, const xmlChar *, const xmlChar *, int,
                const xmlChar **, int, int, const xmlChar **) {
  static_cast<TextSink *>(sink)->Element();
}
void OnStartHtml(void *sink, const xmlChar *, const xmlChar **) {
  static_cast<TextSink *>(sink)->Element();
}
xmlEntityPtr OnEntity(void *, const xmlChar *name) {
  return xmlGetPredefinedEntity(name);
}
void OnError(void *, xmlErrorPtr) {}

xmlSAXHandler TextHandler() {
  xmlSAXHandler handler{};
  handler.characters = handler.ignorableWhitespace = handler.cdataBlock = OnText;
  handler.serror = OnError;
  return handler;
}

}  // namespace

bool ReadLibxml2Xml(const Document &document, TextSink *sink) {
  xmlSAXHandler handler = TextHandler();
  handler.initialized = XML_SAX2_MAGIC;
  handler.startElementNs = OnStartXml;
  handler.getEntity = OnEntity;
  xmlParserCtxtPtr parser = xmlCreatePushParserCtxt(&handler, sink, nullptr, 0, nullptr);
  xmlCtxtUseOptions(parser, XML_PARSE_RECOVER | XML_PARSE_NONET | XML_PARSE_HUGE);
  ForEachChunk(document, [parser](std::string_view chunk, bool last) {
    xmlParseChunk(parser, chunk.data(), static_cast<int>(chunk.size()), last);
    return true;
  });
  const bool good = parser->wellFormed != 0;
  xmlFreeDoc(parser->myDoc);
  xmlFreeParserCtxt(parser);
  return good;
}

bool ReadLibxml2Html(const Document &document, TextSink *sink) {
  htmlSAXHandler handler = TextHandler();
  handler.startElement = OnStartHtml;
  htmlParserCtxtPtr parser =
      htmlCreatePushParserCtxt(&handler, sink, nullptr, 0, nullptr, XML_CHAR_ENCODING_NONE);
  htmlCtxtUseOptions(parser, HTML_PARSE_RECOVER | HTML_PARSE_NONET);
  ForEachChunk(document, [parser](std::string_view chunk, bool last) {
    htmlParseChunk(parser, chunk.data(), static_cast<int>(chunk.size()), last);
    return true;
  });
  htmlFreeParserCtxt(parser);
  return true;
}
