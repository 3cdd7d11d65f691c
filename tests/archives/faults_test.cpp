// SPDX-License-Identifier: MIT
//
// Web archives as they should not be: what writers, disks and cut transfers do to them.
#include <gtest/gtest.h>

#include "makers.h"

namespace vs_wml::test {
namespace {

using namespace std::string_literals;

WarcRecord At(const std::string &uri, long lengthError = 0) {
  WarcRecord record;
  record.uri = uri;
  record.lengthError = lengthError;
  return record;
}

std::string Edited(std::string text, std::string_view from, std::string_view to) {
  return text.replace(text.find(from), from.size(), to);
}

void ExpectSum(const ArchiveSummary &summary) {
  EXPECT_EQ(summary.records, summary.decks + summary.skipped + summary.damaged);
}

TEST(Faults, AreRepairedOrNamed) {
  const std::string one = Warc(At("u:1"));
  const std::string two = Warc(At("u:2"));
  const std::string three = Warc(At("u:3"));
  WarcRecord bare = At("u:1");
  bare.end = "";
  WarcRecord half = At("u:1");
  half.end = "\r\n";
  WarcRecord unix = At("u:1");
  unix.end = "\n\n";
  WarcRecord plain;
  plain = {"resource", "u:1", kDeck + "xx", "Content-Type: text/vnd.wap.wml\r\n"};
  WarcRecord longer = At("u:1");
  const std::string dates = "WARC-Date: 2002-03-04T05:06:07Z\r\n";
  const std::string junk = "this is no record\r\n\r\n";
  const auto twoAt = std::to_string(one.size());

  const struct {
    const char *what;
    std::string archive;
    const char *sum;
    bool lost;
    std::string said = "";
  } cases[] = {
      {"no empty lines", Warc(bare) + two, "2 records: 2 decks, 0 skipped, 0 damaged", false},
      {"one line end", Warc(half) + two, "2 records: 2 decks, 0 skipped, 0 damaged", false},
      {"bare line feeds", Warc(unix) + two, "2 records: 2 decks, 0 skipped, 0 damaged", false},
      {"many empty lines", one + "\r\n\r\n\n\n" + two, "2 records: 2 decks, 0 skipped, 0 damaged",
       false},
      {"WARC/0.17", Edited(one, "1.0", "0.17") + Edited(two, "1.0", "0.18"),
       "2 records: 2 decks, 0 skipped, 0 damaged", false},
      {"WARC/1.1", Edited(one, "1.0", "1.1") + two, "2 records: 2 decks, 0 skipped, 0 damaged",
       false},
      {"bare line feeds in the header", Edited(one, dates, "WARC-Date : \n 2002\n") + two,
       "2 records: 2 decks, 0 skipped, 0 damaged", false},
      {"nonsense in the header", Edited(one, dates, "no field\r\n: none\r\nX\xFF: \xFF\r\n") + two,
       "2 records: 2 decks, 0 skipped, 0 damaged", false},
      {"length one short", Warc(At("u:1", -1)) + two, "2 records: 2 decks, 0 skipped, 0 damaged",
       false, "its Content-Length is too short: 96 of 97 bytes\n"},
      {"length far too short", Warc(At("u:1", -40)) + two,
       "2 records: 2 decks, 0 skipped, 0 damaged", false,
       "its Content-Length is too short: 57 of 97 bytes\n"},
      {"last length short", one + Warc(At("u:2", -5)), "2 records: 2 decks, 0 skipped, 0 damaged",
       false, "its Content-Length is too short: 92 of 97 bytes\n"},
      {"length one long", Warc(At("u:1", 1)) + two, "2 records: 2 decks, 0 skipped, 0 damaged",
       false},
      {"length long into the next version", Warc(At("u:1", 6)) + two,
       "2 records: 2 decks, 0 skipped, 0 damaged", false,
       "its Content-Length is too long: the next record begins after 97 bytes\n"},
      {"length long into the next header", Warc(At("u:1", 50)) + two,
       "2 records: 2 decks, 0 skipped, 0 damaged", false,
       "its Content-Length is too long: the next record begins after 97 bytes\n"},
      {"length over several records",
       Warc(At("u:1", static_cast<long>(one.size()) + 40)) + two + three,
       "3 records: 3 decks, 0 skipped, 0 damaged", false,
       "its Content-Length is too long: the next record begins after 97 bytes\n"},
      {"length over the end", Warc(At("u:1", 100000)) + two,
       "2 records: 2 decks, 0 skipped, 0 damaged", false,
       "its Content-Length is too long: the next record begins after 97 bytes\n"},
      {"no length", Edited(one, "Content-Length", "Content-Longth") + two,
       "2 records: 2 decks, 0 skipped, 0 damaged", false,
       "its header has no Content-Length that is a number\n"},
      {"negative length", Edited(one, "Content-Length: ", "Content-Length: -") + two,
       "2 records: 2 decks, 0 skipped, 0 damaged", false,
       "its header has no Content-Length that is a number\n"},
      {"junk in front", junk + one, "1 records: 1 decks, 0 skipped, 0 damaged", true,
       "byte 0: 21 bytes from here on belong to no record\n"},
      {"junk between", one + junk + two, "2 records: 2 decks, 0 skipped, 0 damaged", true,
       "byte " + twoAt + ": 21 bytes from here on belong to no record\n"},
      {"junk behind", one + junk, "1 records: 1 decks, 0 skipped, 0 damaged", true,
       "byte " + twoAt + ": 21 bytes from here on belong to no record\n"},
      {"a broken version line", one + Edited(two, "WARC/1.0", "WBRC/1.0") + three,
       "3 records: 2 decks, 0 skipped, 1 damaged", true,
       "byte " + twoAt + ": no record begins as this one does\n"},
      {"cut in a block", one + two.substr(0, two.size() - 20),
       "2 records: 1 decks, 0 skipped, 1 damaged", true,
       "byte " + twoAt + ": u:2: is cut: 81 of 97 bytes are there\n"},
      {"cut in a header", one + two.substr(0, 50), "2 records: 1 decks, 0 skipped, 1 damaged", true,
       "byte " + twoAt + ": its header is cut: 50 bytes are there\n"},
      {"cut in the empty lines", one.substr(0, one.size() - 1),
       "1 records: 1 decks, 0 skipped, 0 damaged", false,
       "the file is cut in the empty lines behind the record\n"},
  };
  for (const auto &item : cases) {
    SCOPED_TRACE(item.what);
    for (const std::size_t piece : {1U, 64U, 1U << 20U}) {
      const Found found = Push(item.archive, "a.warc", piece);
      EXPECT_EQ(found.summary.Line(), item.sum);
      EXPECT_EQ(found.summary.lost, item.lost);
      EXPECT_EQ(found.Said(), item.said);
      ExpectSum(found.summary);
      for (const ArchivedDocument &document : found.documents) {
        EXPECT_EQ(document.bytes.substr(0, kDeck.size()), kDeck);
        EXPECT_LE(document.bytes.size(), kDeck.size() + 4);
      }
    }
  }
}

TEST(Faults, OfLengthsInMembersAreRepaired) {
  for (const long error : {-30L, -1L, 1L, 2L, 30L, 100000L}) {
    SCOPED_TRACE(error);
    const std::string archive =
        Gzip(Warc(At("u:1", error))) + Gzip(Warc(At("u:2"))) + Gzip(Warc(At("u:3", error)));
    for (const std::size_t piece : {1U, 1U << 20U}) {
      const Found found = Push(archive, "a.warc.gz", piece);
      ASSERT_EQ(found.documents.size(), 3U) << found.Said();
      EXPECT_FALSE(found.summary.lost);
      EXPECT_EQ(found.documents[1].bytes, kDeck);
      EXPECT_EQ(found.documents[0].bytes.substr(0, kDeck.size()), kDeck);
    }
  }
}

TEST(Faults, OfLengthsInAnArcAreRepaired) {
  const std::string block = Http("Content-Type: text/html\r\n", kDeck);
  for (const int error : {-20, -1, 1, 2, 5, 30}) {
    SCOPED_TRACE(error);
    const std::string right = ArcRecord("http://a.example/1", "text/html", block);
    const std::string length = ' ' + std::to_string(block.size()) + '\n';
    const std::string wrong =
        Edited(right, length, ' ' + std::to_string(static_cast<int>(block.size()) + error) + '\n');
    const Found found =
        Push(ArcHead() + wrong + ArcRecord("http://a.example/2", "text/html", block), "a.arc", 20);
    ASSERT_EQ(found.documents.size(), 2U) << found.Said();
    EXPECT_EQ(found.documents[0].uri, "http://a.example/1");
    EXPECT_EQ(found.documents[1].uri, "http://a.example/2");
    EXPECT_FALSE(found.summary.lost);
  }
}

// The head of HTTP that is taken for the whole block belongs to the next record in part.
TEST(Faults, OfLengthsMayReachIntoHeads) {
  WarcRecord record = At("u:1", 60);
  record.block = "HTTP/1.1 200 OK\r\nContent-Type: text/html";
  const Found found = Push(Warc(record) + Warc(At("u:2")), "a.warc", 20);
  EXPECT_EQ(found.summary.Line(), "2 records: 1 decks, 1 skipped, 0 damaged");
}

TEST(Faults, InOneMemberLeaveTheOthers) {
  const std::vector<std::string> members = {Gzip(Warc(At("u:1"))), Gzip(Warc(At("u:2"))),
                                            Gzip(Warc(At("u:3")))};
  for (std::size_t at = 0; at < members[1].size(); ++at) {
    std::string broken = members[1];
    broken[at] = static_cast<char>(broken[at] ^ 0x55);
    const Found found = Push(members[0] + broken + members[2], "a.warc.gz", 64);
    // The fields of gzip's own header that say nothing of the contents may have any value.
    const bool harmless = found.documents.size() == 3;
    EXPECT_TRUE(!harmless || (at >= 4 && at < 10)) << at;
    ExpectSum(found.summary);
    if (harmless) continue;
    ASSERT_EQ(found.documents.size(), 2U) << at << '\n' << found.Said();
    EXPECT_EQ(found.documents[1].uri, "u:3");
    EXPECT_TRUE(found.summary.lost);
    EXPECT_NE(found.Said().find("byte " + std::to_string(members[0].size()) + ": "),
              std::string::npos)
        << at << '\n'
        << found.Said();
  }
}

TEST(Faults, JunkBetweenMembersIsNamed) {
  const std::string one = Gzip(Warc(At("u:1")));
  const std::string archive = one + "junk" + Gzip(Warc(At("u:2"))) + "more";
  const Found found = Push(archive, "a.warc.gz", 10);
  EXPECT_EQ(found.documents.size(), 2U);
  EXPECT_EQ(found.documents[0].length, one.size());
  EXPECT_EQ(found.Said(), "byte " + std::to_string(one.size()) +
                              ": 4 bytes from here on belong to no record\nbyte " +
                              std::to_string(archive.size() - 4) +
                              ": 4 bytes from here on belong to no record\n");
  EXPECT_TRUE(found.summary.lost);
}

// Each cut says that it is one, unless it is where a record ends.
TEST(Faults, CutsAreSeenAfterEachByte) {
  const std::string one = Warc(At("u:1"));
  const std::string two = Warc(At("u:2"));
  const std::string arcOne = ArcHead();
  const std::string arcTwo =
      ArcRecord("http://a.example/", "text/html", Http("Content-Type: text/html\r\n", kDeck));
  const struct {
    const char *name;
    std::string first;
    std::string second;
  } cases[] = {{"a.warc", one, two},
               {"a.warc.gz", Gzip(one), Gzip(two)},
               {"a.warc.zst", Zstd(one), Zstd(two)},
               {"whole.warc.gz", "", Gzip(one + two)},
               {"a.arc", arcOne, arcTwo},
               {"a.arc.gz", Gzip(arcOne), Gzip(arcTwo)}};
  for (const auto &item : cases) {
    SCOPED_TRACE(item.name);
    const std::string archive = item.first + item.second;
    for (std::size_t size = 1; size <= archive.size(); ++size) {
      const Found found = Push(archive.substr(0, size), item.name, 33);
      ExpectSum(found.summary);
      const bool whole = size == archive.size() || size == item.first.size();
      EXPECT_EQ(found.Said().empty(), whole) << size << '\n' << found.Said();
      if (whole) {
        EXPECT_FALSE(found.summary.lost);
      }
    }
  }
}

TEST(Faults, LimitsNameThemselves) {
  const std::string big =
      Http("Content-Type: text/vnd.wap.wml\r\n", kDeck + std::string(2000, 'x'));
  WarcRecord record;
  record.block = big;
  WarcRecord zipped;
  zipped.block = Http("Content-Type: text/vnd.wap.wml\r\n", Gzip(kDeck + std::string(100000, 'x')));
  WarcRecord html;
  html.block = Http("Content-Type: text/html\r\n", std::string(5000, 'x'));
  WarcRecord header;
  header.fields += "X: " + std::string(700, 'x') + "\r\n";
  WarcRecord http;
  http.block = Http("X: " + std::string(5000, 'x') + "\r\n", kDeck);
  const struct {
    const char *what;
    std::string archive;
    std::size_t damaged;
    const char *said;
  } cases[] = {
      {"a document", Warc(record), 1, "is longer than 1000 bytes (documentBytes)"},
      {"a document, decompressed", Warc(zipped), 1, "is longer than 1000 bytes (documentBytes)"},
      {"no deck", Warc(html), 0, ""},
      {"a header", Warc(header), 1, "its header is longer than 600 bytes (headerBytes)"},
      {"a header of HTTP", Warc(http), 1, "its HTTP header is longer than 600 bytes (headerBytes)"},
  };
  for (const auto &item : cases) {
    SCOPED_TRACE(item.what);
    ArchiveOptions options;
    options.limits.documentBytes = 1000;
    options.limits.headerBytes = 600;
    const Found found = Push(item.archive + Warc(At("u:2")), "a.warc", 100, options);
    EXPECT_EQ(found.summary.damaged, item.damaged);
    EXPECT_EQ(found.summary.lost, item.damaged != 0);
    EXPECT_EQ(found.documents.size(), 1U) << found.Said();
    EXPECT_NE(found.Said().find(item.said), std::string::npos) << found.Said();
    ExpectSum(found.summary);
  }
}

TEST(Faults, EmptyArchivesHoldNothing) {
  for (const char *name : {"a.warc", "a.warc.gz", "a"}) {
    const Found found = Read("", name);
    EXPECT_EQ(found.summary.Line(), "0 records: 0 decks, 0 skipped, 0 damaged") << name;
    EXPECT_FALSE(found.summary.lost);
  }
  EXPECT_EQ(Read(Gzip(""), "a.warc.gz").summary.Line(), "0 records: 0 decks, 0 skipped, 0 damaged");
}

}  // namespace
}  // namespace vs_wml::test
