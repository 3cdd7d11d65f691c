// SPDX-License-Identifier: MIT
// make_deck KIND BYTES FILE        writes one deck
// make_deck tree COUNT FOLDER      writes a tree of small decks of all kinds
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "deck.h"

namespace {

void WriteFile(const std::filesystem::path &path, const std::string &bytes) {
  std::ofstream file(path, std::ios::binary);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.close();
  if (!file) throw std::runtime_error("cannot write " + path.string());
}

// Decks of 0.5 to 3 KB, as phones took them, a hundred to a folder.
void WriteTree(size_t count, const std::filesystem::path &root) {
  for (size_t i = 0; i < count; ++i) {
    const std::filesystem::path folder = root / std::to_string(i / 100);
    if (i % 100 == 0) std::filesystem::create_directories(folder);
    WriteFile(folder / (std::to_string(i) + ".wml"),
              MakeDeck(DeckKind(i % kDeckNames.size()), 500 + i * 37 % 2500, i + 1));
  }
}

}  // namespace

int main(int argc, char **argv) try {
  if (argc != 4) throw std::runtime_error("usage: make_deck KIND|tree SIZE FILE");
  const std::string_view kind = argv[1];
  const size_t size = std::stoull(argv[2]);
  if (kind == "tree") {
    WriteTree(size, argv[3]);
    return 0;
  }
  for (size_t i = 0; i < kDeckNames.size(); ++i) {
    if (kind != kDeckNames[i]) continue;
    WriteFile(argv[3], MakeDeck(DeckKind(i), size, 1));
    return 0;
  }
  throw std::runtime_error("no such kind of deck: " + std::string(kind));
} catch (const std::exception &error) {
  std::fprintf(stderr, "make_deck: %s\n", error.what());
  return 2;
}
