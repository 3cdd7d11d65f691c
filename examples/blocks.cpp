// Lists the cards of a deck with the links in them: a host on the C++ host library, which has
// the character sets, the block handle and the output routines done.
//
// SPDX-License-Identifier: MIT
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>

#include "host/deck.h"
#include "host/reader.h"
#include "host/writers/target.h"

struct LinkList : vs_wml::BlockSink {
  void BeginCard(const vs_wml::Card &card) override { std::cout << "card " << card.title << '\n'; }
  void TakeParagraph(const vs_wml::Paragraph &paragraph) override { Take(paragraph.content); }
  void TakeTable(const vs_wml::Table &table) override { Take(table.content); }
  static void Take(const vs_wml::Content &content) {
    for (const vs_wml::Run &run : content.runs) {
      if (run.link == vs_wml::kNone || content.links[run.link].field != nullptr) continue;
      std::cout << "  " << content.TextOf(run) << " -> "
                << vs_wml::LinkTargetText(content.links[run.link]) << '\n';
    }
  }
  void BeginDocument(const vs_wml::DeckInfo & /*deck*/) override {}
  void EndCard() override {}
  void EndDocument(const vs_wml::DeckInfo & /*deck*/) override {}
};

int main(int argc, char **argv) try {
  std::ifstream file(argc == 2 ? argv[1] : "", std::ios::binary);
  if (!file) throw std::runtime_error("usage: blocks FILE");
  LinkList list;
  ReadDeck(vs_wml::PrepareDeck(argv[1], {std::istreambuf_iterator<char>(file), {}}, {}), list);
} catch (const std::exception &failure) {
  std::cerr << failure.what() << '\n';
  return 1;
}
