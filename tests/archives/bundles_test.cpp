// SPDX-License-Identifier: MIT
//
// Bundles of files, and archives in archives.
#include <gtest/gtest.h>

#include "makers.h"

namespace vs_wml::test {
namespace {

std::string UriList(const Found &found) {
  std::string uris;
  for (const ArchivedDocument &document : found.documents) uris += document.uri + '\n';
  return uris;
}

TEST(Bundles, AreReadWhetherTheyCanSeekOrNot) {
  const struct {
    const char *format;
    const char *filter;
  } cases[] = {{"zip", ""},     {"tar", ""},      {"tar", "gzip"}, {"tar", "xz"},
               {"tar", "zstd"}, {"tar", "bzip2"}, {"7z", ""}};
  for (const auto &item : cases) {
    SCOPED_TRACE(std::string(item.format) + item.filter);
    const std::string bundle =
        Bundle(item.format, item.filter,
               {{"a.wml", kDeck}, {"dir/b.txt", "no deck"}, {"dir/c", kDeck}, {"empty", ""}});
    for (const Found &found : {Read(bundle, "x"), Push(bundle, "x", 1000)}) {
      EXPECT_EQ(UriList(found), "x!a.wml\nx!dir/c\n") << found.Said();
      EXPECT_EQ(found.summary.Line(), "4 records: 2 decks, 2 skipped, 0 damaged");
      EXPECT_EQ(found.Said(), "");
      ASSERT_FALSE(found.documents.empty());
      EXPECT_EQ(found.documents[0].archive, "x");
      EXPECT_EQ(found.documents[0].date, "2002-03-04T05:06:07Z");
      EXPECT_EQ(found.documents[0].bytes, kDeck);
      EXPECT_FALSE(found.documents[0].offset);
    }
  }
}

TEST(Bundles, HoldOtherArchives) {
  const std::string warc = Gzip(Warc({})) + Gzip(Warc({}));
  const std::string wacz =
      Bundle("zip", "", {{"archive/data.warc.gz", warc}, {"datapackage.json", "{}"}});
  const std::string all = Bundle("tar", "xz", {{"crawl.wacz", wacz}, {"deck.wml.gz", Gzip(kDeck)}});
  const Found found = Read(all, "all.tar.xz");
  ASSERT_EQ(found.documents.size(), 3U) << found.Said();
  EXPECT_EQ(found.documents[1].archive, "all.tar.xz!crawl.wacz!archive/data.warc.gz");
  EXPECT_EQ(found.documents[1].offset, Gzip(Warc({})).size());
  EXPECT_EQ(found.documents[1].uri, "http://a.example/");
  EXPECT_EQ(found.documents[2].uri, "all.tar.xz!deck.wml.gz!deck.wml");
  EXPECT_EQ(found.summary.Line(), "4 records: 3 decks, 1 skipped, 0 damaged");

  WarcRecord record;
  record.uri = "http://a.example/decks.zip";
  record.block = Http("Content-Type: application/zip\r\n", Bundle("zip", "", {{"a.wml", kDeck}}));
  EXPECT_EQ(UriList(Read(Warc(record), "x.warc")), "http://a.example/decks.zip!a.wml\n");
  EXPECT_EQ(UriList(Read(Gzip(kDeck), "d/a.wml.gz")), "d/a.wml.gz!a.wml\n");
  EXPECT_EQ(UriList(Read(Bundle("tar", "", {{"b.xz", ""}}), "x")), "");
}

TEST(Bundles, NestUpToALimit) {
  std::string bundle = kDeck;
  for (int depth = 0; depth < 7; ++depth) {
    const Found found = Read(bundle, "x");
    EXPECT_EQ(found.documents.size(), depth <= 6 ? 1U : 0U) << depth;
    bundle = Bundle("zip", "", {{"n", bundle}});
  }
  const Found found = Read(bundle, "x");
  EXPECT_EQ(found.summary.Line(), "1 records: 0 decks, 0 skipped, 1 damaged");
  EXPECT_NE(found.Said().find("nests deeper than 5 archives (nesting)"), std::string::npos)
      << found.Said();
}

TEST(Bundles, DoNotExplode) {
  const std::string zeros(100000, '\0');
  const std::string inner = Bundle("zip", "", {{"1", zeros}, {"2", zeros}, {"3", zeros}});
  const std::string outer = Bundle("zip", "", {{"bomb.zip", inner}, {"a.wml", kDeck}});
  ArchiveOptions options;
  options.limits.nestedBytes = 150000;
  const Found found = Read(outer, "x.zip", options);
  EXPECT_EQ(found.documents.size(), 1U);
  EXPECT_NE(found.Said().find("comes to more than 150000 bytes (nestedBytes)"), std::string::npos)
      << found.Said();
  EXPECT_TRUE(found.summary.lost);
}

// The first bytes tell the kind, however few of them there are.
TEST(Bundles, MayBeCutInTheirMarks) {
  const std::string bundles[] = {Bundle("zip", "", {{"a", kDeck}}),
                                 Bundle("7z", "", {{"a", kDeck}}),
                                 Bundle("tar", "bzip2", {{"a", kDeck}}),
                                 Bundle("tar", "xz", {{"a", kDeck}}),
                                 Gzip(kDeck),
                                 Zstd(kDeck)};
  for (const std::string &bundle : bundles) {
    EXPECT_TRUE(LooksLikeArchive(bundle, "x"));
    for (std::size_t size = 0; size < 20; ++size) {
      EXPECT_EQ(Read(bundle.substr(0, size), "x").documents.size(), 0U);
    }
  }
}

TEST(Bundles, ThatAreCutSaySo) {
  for (const char *format : {"zip", "tar", "7z"}) {
    const std::string bundle = Bundle(format, "", {{"a.wml", kDeck}, {"b.wml", kDeck}});
    const std::size_t content = format == std::string("tar") ? 1536 + kDeck.size() : bundle.size();
    for (std::size_t size = 6; size < content; size += 3) {
      if (format == std::string("tar") && (size < 512 || size == 1024)) continue;
      const Found found = Read(bundle.substr(0, size), "x");
      EXPECT_FALSE(found.Said().empty()) << format << ' ' << size;
    }
  }
}

}  // namespace
}  // namespace vs_wml::test
