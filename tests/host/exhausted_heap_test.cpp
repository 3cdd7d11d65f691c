// SPDX-License-Identifier: MIT
//
// A heap that refuses: the document fails and says so, or reads as it always does.
#include <gtest/gtest.h>
#include <unicode/uclean.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <new>
#include <sstream>
#include <string>
#include <vector>

#include "host/deck.h"
#include "host/reader.h"
#include "host/writer.h"
#include "tests/support/heap_probe.h"

// What C++ and ICU allocate goes through the probe, as what the filter allocates does.
void *operator new(std::size_t size) {
  void *const block = std::malloc(size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
void operator delete(void *block) noexcept {
  std::free(block);
}
void operator delete(void *block, std::size_t /*size*/) noexcept {
  std::free(block);
}

namespace vs_wml::test {
namespace {

// Before ICU is used for the first time.
const bool kIcuIsProbed = [] {
  UErrorCode status = U_ZERO_ERROR;
  u_setMemoryFunctions(
      nullptr, [](const void *, std::size_t size) { return std::malloc(size); },
      [](const void *, void *block, std::size_t size) { return std::realloc(block, size); },
      [](const void *, void *block) { std::free(block); }, &status);
  return U_SUCCESS(status);
}();

struct Document {
  std::string name;
  std::string bytes;
  DeckOptions options;
};

std::string ReadFile(const std::filesystem::path &path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// The decks that the formats are compared on, adapted; two more as they are.
std::vector<Document> Documents() {
  std::vector<Document> documents;
  for (const auto &entry : std::filesystem::directory_iterator(VS_WML_HOST_CASES)) {
    const std::string extension = entry.path().extension();
    if (extension != ".wml") continue;
    documents.push_back({entry.path().stem(), ReadFile(entry.path()), {}});
  }
  std::string rich =
      "<wml><card id='a' title='T&amp;'><p align='center'>a<b>b&#8364;</b>"
      "<a href='x' title='y'>c<img src='k' alt='l' width='3'/></a><br/>d</p>"
      "<table columns='2' align='LC' title='u'><tr><td>e<td>\xE6\x97\xA5\xE6\x9C\xAC<tr><td>g"
      "</table><pre>h\ti\nj</pre></card><card title='k'>";
  for (int i = 0; i < 200; ++i) rich += "a line that is long enough to be broken somewhere ";
  documents.push_back({"adapted", rich, {}});
  std::string wide = "<wml><card><p>";
  for (int i = 0; i < 100; ++i) wide += "\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E ";
  documents.push_back({"wide", wide, {}});
  documents.push_back({"long", "<wml><card><p>" + std::string(300000, 'x'), {}});
  documents.push_back({"detected", "<wml><card><p>\xCF\xF0\xE8\xE2\xE5\xF2, \xEC\xE8\xF0", {}});
  documents.push_back({"raw", rich, {}});
  documents.back().options.raw = true;
  documents.push_back({"shift_jis", rich + "\x93\xFA\x96\x7B&#xD83D;&#xDE00;", {}});
  documents.back().options.identity = 1160;
  return documents;
}

enum class Form { kText, kColoredText, kHtml, kJson, kMarkdown, kTrace };

void Write(const Document &document, Form form, std::string &written) {
  const Deck deck = PrepareDeck(document.name, document.bytes, document.options);
  if (form == Form::kTrace) {
    std::ostringstream trace;
    trace.exceptions(std::ios::badbit);
    TraceDeck(deck, trace);
    written = std::move(trace).str();
    return;
  }
  constexpr Format kFormats[] = {Format::kText, Format::kText, Format::kHtml, Format::kJson,
                                 Format::kMarkdown};
  WriterOptions options;
  options.width = 40;
  options.color = form == Form::kColoredText;
  Output output([&](std::string_view piece) { written += piece; });
  const auto writer = MakeWriter(kFormats[static_cast<std::size_t>(form)], output, options);
  ReadDeck(deck, *writer);
}

// A typeface that the filter could not register is missing, and nothing else.
std::string WithoutTypefaces(const std::string &trace) {
  std::string rest;
  std::istringstream lines(trace);
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with("SOAddFontListEntry ")) rest += line + '\n';
  }
  return rest;
}

// Writes the document while an allocation fails, or it and all later ones; false when there is
// no such allocation.
bool WriteWithout(const Document &document, Form form, std::uint64_t at, bool forever,
                  const std::string &expected) {
  std::string written;
  std::uint64_t failures = 0;
  bool told = false;
  try {
    HeapProbe heap(at, forever);
    const struct Count {
      HeapProbe &heap;
      std::uint64_t &failures;
      ~Count() { failures = heap.failures; }
    } count{heap, failures};
    Write(document, form, written);
  } catch (const std::bad_alloc &) {
    told = true;
  } catch (const ReadFailure &failure) {
    told = true;
    EXPECT_STREQ(failure.what(), "out of memory");
  }
  EXPECT_TRUE(told || written == expected ||
              WithoutTypefaces(written) == WithoutTypefaces(expected))
      << "allocation " << at << ":\n"
      << written;
  return failures != 0;
}

TEST(ExhaustedHeap, FailsADocumentAndSaysSo) {
  ASSERT_TRUE(kIcuIsProbed);
  for (const Document &document : Documents()) {
    for (const Form form : {Form::kText, Form::kColoredText, Form::kHtml, Form::kJson,
                            Form::kMarkdown, Form::kTrace}) {
      SCOPED_TRACE(document.name + ", form " + std::to_string(static_cast<int>(form)));
      std::string expected;
      Write(document, form, expected);
      for (const bool forever : {false, true}) {
        std::uint64_t at = 1;
        while (WriteWithout(document, form, at, forever, expected)) ++at;
        EXPECT_GT(at, 20U) << "nothing failed";
        if (HasFailure()) return;
      }
    }
  }
}

}  // namespace
}  // namespace vs_wml::test
