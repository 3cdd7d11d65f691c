// SPDX-License-Identifier: MIT
//
// Documents that fail, sinks that fail, documents from files.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "host/blocks/block_source.h"
#include "host/blocks/stream.h"
#include "host/text/output.h"
#include "host/writer.h"
#include "recorder.h"

namespace vs_wml::test {
namespace {

TEST(Reader, SaysWhatIsNoWml) {
  const struct {
    std::string bytes;
    const char *message;
  } cases[] = {{"", "empty document"},
               {" \n\t", "empty document"},
               {"<!DOCTYPE HTML><html><p>x", "HTML, not WML: open it in a browser"},
               {"<!DOCTYPE html PUBLIC \"-//WAPFORUM//DTD XHTML Mobile 1.0//EN\"><html>x",
                "XHTML, not WML: open it in a browser"},
               {std::string("\x7F"
                            "ELF\0\0\0",
                            7),
                "binary data, not WML"},
               {"just text", "not WML: no <wml> or <card> element"}};
  for (const auto &item : cases) {
    try {
      PrepareDeck("x", item.bytes, {});
      ADD_FAILURE() << item.message;
    } catch (const NotWml &failure) {
      EXPECT_STREQ(failure.what(), item.message);
    }
  }
}

// Each table that is not closed is read ahead to the end of the document, when it is served
// as it is.
TEST(Reader, GivesUpADocumentThatIsReadAgainAndAgain) {
  std::string document = "<wml><card>";
  for (int i = 0; i < 20000; ++i) document += "<p><table columns='1'></p></card><card>";
  DeckOptions options;
  options.raw = true;
  EXPECT_THROW(Blocks(document, options), ReadFailure);
  std::ostringstream trace;
  EXPECT_THROW(TraceDeck(PrepareDeck("x", document, options), trace), ReadFailure);
}

TEST(Reader, SaysWhichTableIsOneTooMany) {
  std::string document = "<wml><card>";
  for (std::uint32_t i = 0; i < VW_MAX_TABLES; ++i)
    document += "<table columns='1'><tr><td>x</table>";
  const auto fault = [](const std::string &text) -> std::string {
    try {
      Recorder recorder;
      ReadDeck(PrepareDeck("x", text, {}), recorder);
      return "";
    } catch (const ReadFailure &failure) {
      return failure.what();
    }
  };
  EXPECT_EQ(fault(document), "");
  EXPECT_EQ(fault(document + "<table columns='1'><tr><td>x</table>"),
            "given up at table 65536: the filter reads no more in a document; what comes before it "
            "was read");
}

class FailingSink : public Recorder {
 public:
  void TakeParagraph(const Paragraph & /*paragraph*/) override {
    ++calls;
    throw std::runtime_error("full");
  }
  int calls = 0;
};

TEST(Reader, PassesOnWhatTheSinkThrows) {
  FailingSink sink;
  const Deck deck = PrepareDeck("x", "<wml><card><p>a</p><p>b</p><p>c</p></card></wml>", {});
  EXPECT_THROW(ReadDeck(deck, sink), std::runtime_error);
  EXPECT_EQ(sink.calls, 1);
}

TEST(Reader, OneBlockIsHeldAtATime) {
  std::string document = "<wml><card>";
  for (int i = 0; i < 100000; ++i) document += "<p>some words to read</p>";
  class Measure : public Recorder {
   public:
    void TakeParagraph(const Paragraph &paragraph) override {
      ++paragraphs;
      largest = std::max(largest, paragraph.content.text.size());
    }
    std::size_t paragraphs = 0;
    std::size_t largest = 0;
  } sink;
  ReadDeck(PrepareDeck("x", document, {}), sink);
  EXPECT_EQ(sink.paragraphs, 100000U);
  EXPECT_LT(sink.largest, 64U);
}

// The characters of a document, read through a stream of its own.
std::string Characters(BlockSource &source) {
  std::string text;
  const OutputRoutine routines[] = {
      {SLOT_EMIT_CHAR, AsRoutine(+[](std::uint32_t character, VwUserWord user, VwUserWord) {
         *reinterpret_cast<std::string *>(user) += static_cast<char>(character);
         return std::uint32_t{0};
       })}};
  Stream stream(source, 1151, routines, &text);
  stream.Section();
  stream.Read();
  return text;
}

TEST(Source, FilesReadLikeMemory) {
  std::string document = "<wml><card><p>";
  for (int i = 0; i < 1000; ++i) document += "word ";
  document += "<table columns='1'><tr><td>cell</td></tr></table></p></card></wml>";
  const std::string path = testing::TempDir() + "source_test.wml";
  std::ofstream(path, std::ios::binary) << document;
  FileSource file(path);
  MemorySource memory(document);
  const std::string text = Characters(memory);
  EXPECT_EQ(Characters(file), text);
  EXPECT_EQ(text.size(), 5004U);
  EXPECT_GE(memory.Served(), document.size());
  std::remove(path.c_str());
  EXPECT_THROW(FileSource{path}, std::system_error);
}

// Whatever the bytes, every writer ends and writes no control character.
TEST(Writers, ShowNothingThatDrivesATerminal) {
  std::string document =
      "<wml><card id='\x1B[31m' title='\x1B]0;t\x07'><p>\x1B[2J&#27;[0m\xC2\x9B"
      "<a href='\x1B[x' title='&#27;'>y</a><img src='&#x1b;' alt='&#155;'/>"
      "<pre>\x1B[1m\x08\x7F</pre></p></card></wml>";
  for (const bool untouched : {false, true}) {
    DeckOptions options;
    if (untouched) options.identity = 1151;
    for (const Format format : {Format::kText, Format::kHtml, Format::kJson, Format::kMarkdown}) {
      std::string written;
      Output output([&](std::string_view piece) { written += piece; });
      const auto writer = MakeWriter(format, output, {});
      ReadDeck(PrepareDeck("x", document, options), *writer);
      for (const char c : written) {
        EXPECT_TRUE(c == '\n' || (static_cast<unsigned char>(c) >= 0x20 && c != 0x7F))
            << int{c} << " in " << written;
      }
      EXPECT_EQ(written.find("\xC2\x9B"), std::string::npos);
    }
  }
}

}  // namespace
}  // namespace vs_wml::test
