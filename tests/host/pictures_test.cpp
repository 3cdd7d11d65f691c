// SPDX-License-Identifier: MIT
//
// Pictures of a document: which are loaded, how many, and how each format shows them.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>

#include "host/deck.h"
#include "host/images/picture_library.h"
#include "host/reader.h"
#include "host/text/output.h"
#include "host/writer.h"

namespace vs_wml::test {
namespace {

using namespace std::string_literals;
namespace fs = std::filesystem;

// A black picture.
std::string Wbmp(unsigned width, unsigned height) {
  std::string file(2, '\0');
  for (const unsigned side : {width, height}) {
    if (side >= 128) file += static_cast<char>(side >> 7U | 0x80U);
    file += static_cast<char>(side & 0x7FU);
  }
  return file + std::string(std::size_t{(width + 7) / 8} * height, '\0');
}

std::size_t Count(std::string_view text, std::string_view part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string_view::npos; at = text.find(part, at + 1))
    ++count;
  return count;
}

class Pictures : public testing::Test {
 protected:
  void SetUp() override {
    folder_ = fs::path(testing::TempDir()) /
              ("vs_wml_pictures_" + std::to_string(reinterpret_cast<std::uintptr_t>(this)));
    fs::create_directories(folder_);
  }
  void TearDown() override { fs::remove_all(folder_); }

  void Put(const std::string &name, const std::string &bytes) {
    std::ofstream(folder_ / name, std::ios::binary) << bytes;
  }

  // What a format makes of the content of a card that lies beside the pictures.
  std::string Shown(Format format, const std::string &content, std::size_t width = 80) {
    std::string written;
    Output output([&](std::string_view piece) { written += piece; });
    WriterOptions options;
    options.images = true;
    options.width = width;
    const auto writer = MakeWriter(format, output, options);
    Deck deck = PrepareDeck("deck.wml", "<wml><card>" + content + "</card></wml>", {});
    deck.pictures.beside = folder_;
    ReadDeck(deck, *writer);
    return written;
  }

  fs::path folder_;
};

TEST_F(Pictures, AreKnownByTheirFirstBytes) {
  const struct {
    std::string bytes;
    const char *uri;  ///< begins so, "" for a file that is no picture
  } cases[] = {{"GIF87a.", "data:image/gif;base64,R0lGODdhLg=="},
               {"GIF89a", "data:image/gif;base64,R0lGODlh"},
               {"GIF88a", ""},
               {"GIF89", ""},
               {"\x89PNG\r\n\x1A\n", "data:image/png;base64,iVBORw0KGgo="},
               {"\x89PNG\n\x1A\n", ""},
               {"\xFF\xD8\xFF\xE0", "data:image/jpeg;base64,/9j/4A=="},
               {"\xFF\xD8", ""},
               {Wbmp(8, 1), "data:image/png;base64,iVBORw0KGgo"},
               {"\0\0\0\0"s, ""},
               {"", ""}};
  PictureLibrary library({folder_, {}});
  int number = 0;
  for (const auto &item : cases) {
    const std::string name = std::to_string(++number);
    Put(name, item.bytes);
    const LoadedPicture *picture = library.Find(name);
    ASSERT_EQ(picture != nullptr, *item.uri != '\0') << item.bytes;
    if (picture == nullptr) continue;
    EXPECT_TRUE(picture->DataUri().starts_with(item.uri)) << picture->DataUri();
    EXPECT_EQ(&picture->DataUri(), &library.Find(name)->DataUri());
  }
}

TEST_F(Pictures, AreReadUpToAMegabyte) {
  Put("full", std::string(1U << 20U, 'x'));
  Put("more", std::string((1U << 20U) + 1, 'x'));
  EXPECT_EQ(ReadPictureFile(folder_ / "full")->size(), 1U << 20U);
  EXPECT_FALSE(ReadPictureFile(folder_ / "more"));
  EXPECT_FALSE(ReadPictureFile(folder_ / "missing"));
}

TEST_F(Pictures, AreLookedForUpToANumberOfSources) {
  Put("a", "GIF89a");
  PictureLibrary library({folder_, {}});
  const LoadedPicture *first = library.Find("a");
  ASSERT_NE(first, nullptr);
  for (int i = 1; i < 9999; ++i) EXPECT_EQ(library.Find("missing" + std::to_string(i)), nullptr);
  EXPECT_NE(library.Find("a?last"), nullptr);
  EXPECT_EQ(library.Find("a?one-too-many"), nullptr);
  EXPECT_EQ(library.Find("a"), first);
}

TEST_F(Pictures, AreHeldUpToANumberOfBytes) {
  Put("a", "GIF89a" + std::string((1U << 20U) - 6, 'x'));
  Put("b", Wbmp(8, 1));
  PictureLibrary library({folder_, {}});
  for (int i = 0; i < 64; ++i) EXPECT_NE(library.Find("a?" + std::to_string(i)), nullptr);
  EXPECT_NE(library.Find("b"), nullptr) << "64 MiB are held";
  EXPECT_EQ(library.Find("b?"), nullptr) << "and one byte more";
  EXPECT_NE(library.Find("b"), nullptr);
  EXPECT_NE(library.Find("a?0"), nullptr);
}

TEST_F(Pictures, HaveTheSizeThatTheDocumentGivesOrTheirOwn) {
  Put("b.wbmp", Wbmp(10, 6));
  Put("g.gif", "GIF89a");
  const struct {
    const char *tag;
    const char *html;  ///< what follows the source and the label
    const char *json;
  } cases[] = {
      {"<img src='b.wbmp' alt='' width='20' height='7'/>", " width=\"20\" height=\"7\">",
       ",\"width\":20,\"height\":7,\"fileWidth\":10,\"fileHeight\":6"},
      {"<img src='b.wbmp' alt='' width='20'/>", " width=\"10\" height=\"6\">",
       "\",\"fileWidth\":10,\"fileHeight\":6"},
      {"<img src='b.wbmp' alt='' height='7'/>", " width=\"10\" height=\"6\">",
       "\",\"fileWidth\":10,\"fileHeight\":6"},
      {"<img src='b.wbmp' alt=''/>", " width=\"10\" height=\"6\">",
       "\",\"fileWidth\":10,\"fileHeight\":6"},
      {"<img src='g.gif' alt='' width='20' height='7'/>", " width=\"20\" height=\"7\">",
       ",\"width\":20,\"height\":7"},
      {"<img src='g.gif' alt='' width='20'/>", ">", "\"alternative\":\"\""},
  };
  for (const auto &item : cases) {
    const std::string page = Shown(Format::kHtml, item.tag);
    const std::size_t label = page.find("\" alt=\"");
    ASSERT_NE(label, std::string::npos) << page;
    const std::size_t behind = page.find('"', label + 7) + 1;
    EXPECT_EQ(page.substr(behind, page.find('>', behind) + 1 - behind), item.html) << item.tag;
    EXPECT_NE(page.find("src=\"data:"), std::string::npos);
    const std::string json = Shown(Format::kJson, item.tag);
    EXPECT_NE(json.find(item.json), std::string::npos) << item.tag << json;
  }
}

// Pictures come with a page as long as it stays modest; the others are referred to.
TEST_F(Pictures, OfAPageAreEmbeddedUpToItsBound) {
  const auto gif = [](std::size_t length) { return "GIF89a" + std::string(length - 6, 'x'); };
  Put("a.gif", gif(786414));
  Put("full.gif", gif(786438));
  Put("more.gif", gif(786439));
  Put("small.gif", gif(6));
  PictureLibrary library({folder_, {}});
  const std::size_t each = library.Find("a.gif")->DataUri().size();
  ASSERT_EQ(15 * each + library.Find("full.gif")->DataUri().size(), 16U << 20U);
  std::string fifteen;
  for (int i = 0; i < 15; ++i) fifteen += "<img src='a.gif' alt=''/>";
  const auto embedded = [&](const std::string &more) {
    return Count(Shown(Format::kHtml, fifteen + more), "src=\"data:");
  };
  EXPECT_EQ(embedded("<img src='full.gif' alt=''/>"), 16U);
  EXPECT_EQ(embedded("<img src='full.gif' alt=''/><img src='small.gif' alt=''/>"), 16U);
  EXPECT_EQ(embedded("<img src='more.gif' alt=''/><img src='small.gif' alt=''/>"), 16U);
}

TEST_F(Pictures, AreDrawnWhereTheyFit) {
  const struct {
    unsigned width;
    unsigned height;
    bool drawn;
  } cases[] = {{20, 2, true}, {21, 2, false}, {19, 96, true}, {20, 97, false}, {1, 1, true}};
  for (const auto &item : cases) {
    Put("b.wbmp", Wbmp(item.width, item.height));
    const std::string text = Shown(Format::kText, "<p>x<img src='b.wbmp' alt='B'/></p>", 10);
    EXPECT_EQ(text == "x[B]\n", !item.drawn) << item.width << 'x' << item.height << text;
    if (item.drawn) {
      EXPECT_EQ(Count(text, "\n"), 1 + (item.height + 1) / 2) << text;
    }
  }
}

}  // namespace
}  // namespace vs_wml::test
