/// \file
/// A sink that writes blocks down in a short form for comparison.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_TESTS_HOST_RECORDER_H
#define VS_WML_TESTS_HOST_RECORDER_H

#include <string>
#include <string_view>

#include "host/deck.h"
#include "host/document.h"
#include "host/reader.h"

namespace vs_wml::test {

/// Cards as "{id|title", paragraphs as "P", further lines as "L", preformatted ones as
/// "F", tables as "T" with '/' between rows and ',' between cells; a run as its text
/// with its style in front ("*b" bold, "*i" italic, "*u" underlined, "*N" half points),
/// links as "[target]", images as "<source|alternative>".
class Recorder : public BlockSink {
 public:
  std::string log;

  void BeginDocument(const DeckInfo & /*deck*/) override {}
  void BeginCard(const Card &card) override { log += "{" + card.id + "|" + card.title + "\n"; }
  void TakeParagraph(const Paragraph &paragraph) override {
    log += paragraph.preformatted ? "F" : paragraph.continues ? "L" : "P";
    log += "lcrj"[static_cast<std::size_t>(paragraph.alignment)];
    AddContent(paragraph.content);
    log += '\n';
  }
  void TakeTable(const Table &table) override {
    log += "T";
    for (const Row &row : table.rows) {
      log += " /";
      for (const Cell &cell : table.CellsOf(row)) {
        log += "lcrj"[static_cast<std::size_t>(cell.alignment)];
        AddContent(table.ContentOf(cell));
        log += ',';
      }
    }
    log += '\n';
  }
  void EndCard() override { log += "}\n"; }
  void EndDocument(const DeckInfo & /*deck*/) override { log += "."; }

 private:
  void AddContent(const Content &content) {
    for (const Run &run : content.runs) {
      log += ' ';
      if (run.style.bold) log += "*b";
      if (run.style.italic) log += "*i";
      if (run.style.underline && run.link == kNone) log += "*u";
      if (run.style.halfPoints != 24) log += "*" + std::to_string(run.style.halfPoints);
      if (run.link != kNone) {
        const Link &link = content.links[run.link];
        log.append("[" + std::to_string(link.number) + ":").append(link.target);
        if (!link.title.empty()) log.append("|").append(link.title);
        log += "]";
      }
      if (run.image != kNone) {
        const Image &image = content.images[run.image];
        log += "<" + image.source + "|" + image.alternative + ">";
      }
      for (const char c : content.TextOf(run)) {
        log += c == '\n' ? std::string("\\n") : std::string(1, c);
      }
    }
  }
};

/// The blocks of a document, as Recorder writes them.
inline std::string Blocks(std::string_view document, const DeckOptions &options = {}) {
  Recorder recorder;
  ReadDeck(PrepareDeck("test", std::string(document), options), recorder);
  return recorder.log;
}

}  // namespace vs_wml::test

#endif  // VS_WML_TESTS_HOST_RECORDER_H
