// SPDX-License-Identifier: MIT
//
// Web archives as they should be: where records lie, what they are, how they come in pieces.
#include <gtest/gtest.h>

#include "archives/payload/digest.h"
#include "makers.h"

namespace vs_wml::test {
namespace {

using namespace std::string_literals;

constexpr const char *kUris[] = {"http://a.example/1", "http://a.example/2", "http://a.example/3"};

std::vector<std::string> ThreeRecords(bool arc) {
  std::vector<std::string> records;
  if (arc) records.push_back(ArcHead());
  for (const char *uri : kUris) {
    const std::string block = Http("Content-Type: text/vnd.wap.wml; charset=utf-8\r\n",
                                   kDeck + std::string(records.size(), ' '));
    WarcRecord record;
    record.uri = uri;
    record.block = block;
    records.push_back(arc ? ArcRecord(uri, "text/vnd.wap.wml", block) : Warc(record));
  }
  return records;
}

using Wrap = std::string (*)(const std::string &);
std::string Same(const std::string &bytes) {
  return bytes;
}
std::string GzipMember(const std::string &bytes) {
  return Gzip(bytes);
}
std::string ZstdFrame(const std::string &bytes) {
  return Zstd(bytes);
}

TEST(Records, LieWhereTheirMembersDo) {
  const struct {
    const char *name;
    bool arc;
    Wrap wrap;
  } cases[] = {{"a.warc", false, Same},          {"a.warc.gz", false, GzipMember},
               {"a.warc.zst", false, ZstdFrame}, {"a.arc", true, Same},
               {"a.arc.gz", true, GzipMember},   {"unnamed", false, GzipMember}};
  for (const auto &item : cases) {
    SCOPED_TRACE(item.name);
    std::string archive;
    std::vector<std::size_t> starts;
    for (const std::string &record : ThreeRecords(item.arc)) {
      starts.push_back(archive.size());
      archive += item.wrap(record);
    }
    starts.push_back(archive.size());
    if (item.arc) starts.erase(starts.begin());
    for (const std::size_t piece : {1U, 7U, 100U, 1U << 20U}) {
      const Found found = Push(archive, item.name, piece);
      ASSERT_EQ(found.documents.size(), 3U) << found.Said();
      EXPECT_EQ(found.Said(), "");
      EXPECT_EQ(found.summary.records, item.arc ? 4U : 3U);
      EXPECT_FALSE(found.summary.lost);
      for (std::size_t i = 0; i < 3; ++i) {
        const ArchivedDocument &document = found.documents[i];
        EXPECT_EQ(document.uri, kUris[i]);
        EXPECT_EQ(document.archive, item.name);
        EXPECT_EQ(document.offset, starts[i]);
        EXPECT_EQ(document.length, starts[i + 1] - starts[i]);
        EXPECT_EQ(document.date, "2002-03-04T05:06:07Z");
        EXPECT_EQ(document.status, 200);
        EXPECT_EQ(document.contentType, "text/vnd.wap.wml");
        EXPECT_EQ(document.charset, "utf-8");
        EXPECT_EQ(document.recordId, item.arc ? "" : "urn:uuid:1");
        EXPECT_EQ(document.bytes.substr(0, kDeck.size()), kDeck);
      }
    }
    // Each is read back from its offset, and nothing else is.
    for (std::size_t i = 0; i < 3; ++i) {
      ArchiveOptions options;
      options.at = starts[i];
      const Found found = Read(archive, item.name, options);
      ASSERT_EQ(found.documents.size(), 1U);
      EXPECT_EQ(found.documents[0].uri, kUris[i]);
      EXPECT_EQ(found.documents[0].length, starts[i + 1] - starts[i]);
      EXPECT_TRUE(found.summary.found);
      for (const std::uint64_t beside : {starts[i] + 1, archive.size(), archive.size() + 100}) {
        options.at = beside;
        const Found none = Read(archive, item.name, options);
        EXPECT_EQ(none.documents.size(), 0U);
        EXPECT_FALSE(none.summary.found);
        EXPECT_TRUE(none.summary.lost);
      }
    }
  }
}

TEST(Records, HaveNoPlaceWhereTheyShareAMember) {
  std::string all;
  for (const std::string &record : ThreeRecords(false)) all += record;
  const std::string cut = all.substr(0, all.size() / 2);
  for (const std::string &archive :
       {Gzip(all), Zstd(all), Gzip(cut) + Gzip(all.substr(cut.size()))}) {
    const Found found = Push(archive, "a.warc.gz", 50);
    ASSERT_EQ(found.documents.size(), 3U) << found.Said();
    EXPECT_EQ(found.Said(), "");
    for (const ArchivedDocument &document : found.documents) {
      EXPECT_FALSE(document.offset);
      EXPECT_FALSE(document.length);
    }
  }
}

TEST(Records, MayHaveEmptyMembersBetweenThem) {
  const std::vector<std::string> records = ThreeRecords(false);
  const std::string empty = Gzip("");
  const std::string archive = Gzip(records[0]) + empty + Gzip(records[1]) + empty;
  const Found found = Push(archive, "a.warc.gz", 11);
  ASSERT_EQ(found.documents.size(), 2U);
  EXPECT_EQ(found.documents[1].offset, Gzip(records[0]).size() + empty.size());
  EXPECT_EQ(found.documents[0].length, found.documents[1].offset);
  EXPECT_EQ(found.Said(), "");
}

TEST(Records, MayNeedTheDictionaryInFrontOfThem) {
  const std::vector<std::string> records = ThreeRecords(false);
  const std::string dictionary = records[0] + records[0];
  for (const bool compressed : {false, true}) {
    const std::string content = compressed ? Zstd(dictionary) : dictionary;
    std::string archive = "\x5D\x2A\x4D\x18"s;
    for (unsigned i = 0; i < 4; ++i) archive += static_cast<char>(content.size() >> 8 * i & 0xFF);
    archive += content;
    const std::size_t first = archive.size();
    for (const std::string &record : records) archive += Zstd(record, dictionary);
    const Found found = Push(archive, "a.warc.zst", 10);
    ASSERT_EQ(found.documents.size(), 3U) << found.Said();
    EXPECT_EQ(found.documents[0].offset, first);
    ArchiveOptions options;
    options.at = *found.documents[1].offset;
    EXPECT_EQ(Read(archive, "a.warc.zst", options).documents.at(0).uri, kUris[1]);
  }
}

TEST(Records, AreDocumentsByTheirTypes) {
  const std::string deck = "Content-Type: text/vnd.wap.wml\r\n";
  const std::string html = Http("Content-Type: text/html\r\n", "<html><p>no</p></html>");
  const std::string wml = Http("Content-Type: image/gif\r\n", kDeck);
  const std::string typed = Http("Content-Type: text/vnd.wap.wml\r\n", "<html>not found</html>");
  const struct {
    const char *what;
    WarcRecord record;
    std::size_t decks;
    const char *said = "";
    std::vector<std::string> types = {};
    bool all = false;
  } cases[] = {
      {"resource", {"resource", "u:x", kDeck, deck}, 1},
      {"conversion", {"conversion", "u:x", kDeck, deck}, 1},
      {"response that is no HTTP", {"response", "ftp://x/", kDeck, deck}, 1},
      {"upper case", {"Response"}, 1},
      {"request", {"request"}, 0},
      {"metadata", {"metadata", "u:x", kDeck, deck}, 0},
      {"unknown", {"invented", "u:x", kDeck, deck}, 0},
      {"HTML", {"response", "u:x", html}, 0},
      {"a deck as HTML", {"response", "u:x", Http("Content-Type: text/html\r\n", kDeck)}, 1},
      {"a deck as text", {"response", "u:x", Http("Content-Type: text/plain\r\n", kDeck)}, 1},
      {"a deck without a type", {"response", "u:x", Http("", kDeck)}, 1},
      {"a deck as a picture", {"response", "u:x", wml}, 0},
      {"all types", {"response", "u:x", wml}, 1, "", {}, true},
      {"HTML, all types", {"response", "u:x", html}, 0, "", {}, true},
      {"other types", {"response", "u:x", wml}, 1, "", {"IMAGE/GIF"}},
      {"other types only", {}, 0, "", {"image/gif"}},
      {"HTML as a deck",
       {"response", "u:x", typed},
       0,
       "byte 0: u:x: is text/vnd.wap.wml, but holds no deck\n"},
      {"revisit",
       {"revisit", "http://b.example/", Http("", ""),
        "WARC-Refers-To-Target-URI: <http://a.example/>\r\n"},
       0,
       "byte 0: http://b.example/: revisit of http://a.example/, not resolved\n"},
      {"continuation",
       {"continuation", "http://b.example/", kDeck},
       0,
       "byte 0: http://b.example/: continuation, not resolved\n"},
      {"in brackets", {"response", "<http://a.example/>"}, 1},
  };
  for (const auto &item : cases) {
    SCOPED_TRACE(item.what);
    ArchiveOptions options;
    options.types = item.types;
    options.allTypes = item.all;
    const Found found = Read(Warc(item.record), "a.warc", options);
    EXPECT_EQ(found.documents.size(), item.decks);
    EXPECT_EQ(found.summary.records, 1U);
    EXPECT_EQ(found.summary.decks + found.summary.skipped, 1U);
    EXPECT_EQ(found.Said(), item.said);
    EXPECT_FALSE(found.summary.lost);
    if (item.decks == 1) {
      EXPECT_EQ(found.documents[0].uri.find_first_of("<>"), std::string::npos);
      EXPECT_EQ(found.documents[0].bytes, kDeck);
    }
  }
}

TEST(Records, InUtf16AndCompiledAreDecks) {
  std::string wide = "\xFF\xFE";
  for (const char c : kDeck) wide += {c, '\0'};
  const std::string compiled = "\x01\x04\x6A\0\x7F\xE7"s;
  for (const std::string &body : {wide, wide.substr(2), compiled}) {
    WarcRecord record;
    record.block = Http("Content-Type: application/octet-stream\r\n", body);
    const Found found = Read(Warc(record), "a.warc");
    ASSERT_EQ(found.documents.size(), 1U);
    EXPECT_EQ(found.documents[0].bytes, body);
  }
}

TEST(Records, OfAnyLengthAroundTheBuffers) {
  for (const std::size_t near : {4096U, 65536U, 262144U, 1U << 20U}) {
    for (const std::size_t size : {near - 1, near, near + 1}) {
      WarcRecord big;
      big.block = Http("Content-Type: image/gif\r\n", std::string(size, 'x'));
      const std::string archive = Warc(big) + Warc({}) + Warc(big) + Warc({});
      const Found found = Read(archive, "a.warc");
      ASSERT_EQ(found.documents.size(), 2U) << size;
      EXPECT_EQ(found.documents[0].offset, Warc(big).size());
      EXPECT_EQ(found.Said(), "");
    }
  }
}

TEST(Records, OfAnArcMayHaveBlanksInTheirLines) {
  const std::string block = Http("Content-Type: text/vnd.wap.wml\r\n", kDeck);
  const std::string archive = ArcHead() +
                              ArcRecord("http://a.example/a b c", "text/html; charset=x", block) +
                              ArcRecord("dns:a.example", "text/dns", "20020304050607\na. 1 IN A") +
                              ArcRecord("http://a.example/2", "no-type", block);
  const Found found = Read(archive, "a.arc");
  ASSERT_EQ(found.documents.size(), 2U) << found.Said();
  EXPECT_EQ(found.documents[0].uri, "http://a.example/a b c");
  EXPECT_EQ(found.summary.Line(), "4 records: 2 decks, 2 skipped, 0 damaged");
}

TEST(Records, HaveTheirDigestsChecked) {
  const std::string body = Chunked(kDeck);
  const std::string http =
      Http("Content-Type: text/vnd.wap.wml\r\nTransfer-Encoding: chunked\r\n", body);
  // Of the deck, the chunked body and the block, by sha1sum.
  const struct {
    std::string fields;
    bool same;
  } cases[] = {
      {"WARC-Payload-Digest: sha1:ETZOJYRHQMQFQNRLSRDXFWBQWBUGTPLC\r\n", true},
      {"WARC-Payload-Digest: sha1:F4ZPIQ2IRY6YBYZ25U53HBZJYXEVJICP\r\n", true},
      {"WARC-Block-Digest: "
       "sha256:93b570bf00843eb475d08e9888cfca6381f791c2bf7bd70ac1d35c44f70e7129\r\n",
       true},
      {"WARC-Payload-Digest: sha1:AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA\r\n", false},
      {"WARC-Block-Digest: md5:00000000000000000000000000000000\r\n", false},
      {"WARC-Payload-Digest: crc:1234\r\n", true},
      {"WARC-Payload-Digest: nothing\r\n", true},
  };
  for (const auto &item : cases) {
    WarcRecord record;
    record.fields += item.fields;
    record.block = http;
    const Found found = Read(Warc(record), "a.warc");
    ASSERT_EQ(found.documents.size(), 1U);
    EXPECT_EQ(found.documents[0].warnings.empty(), item.same) << item.fields;
    EXPECT_FALSE(found.summary.lost);
  }
}

TEST(Digests, OfManyKindsAndSpellings) {
  const struct {
    const char *digest;
    DigestMatch match;
  } cases[] = {
      {"md5:900150983cd24fb0d6963f7d28e17f72", DigestMatch::kSame},
      {"sha1:VGMT4NSHA2AWVOR6EVYXQUGCNSONBWE5", DigestMatch::kSame},
      {"SHA-1:vgmt4nsha2awvor6evyxqugcnsonbwe5", DigestMatch::kSame},
      {"sha1:A9993E364706816ABA3E25717850C26C9CD0D89D", DigestMatch::kSame},
      {"sha256:ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad",
       DigestMatch::kSame},
      {"sha-256:XJ4BNP4PAHH6UQKBIDPF3LRCEOYAGYNDSYLXVHFUCD7WD4QACWWQ====", DigestMatch::kSame},
      {"sha1:VGMT4NSHA2AWVOR6EVYXQUGCNSONBWE6", DigestMatch::kDifferent},
      {"sha1:VGMT4NSHA2AWVOR6EVYXQUGCNSONBWE", DigestMatch::kUnknown},
      {"sha1:VGMT4NSHA2AWVOR6EVYXQUGCNSONBW!5", DigestMatch::kUnknown},
      {"sha1", DigestMatch::kUnknown},
      {"", DigestMatch::kUnknown},
      {"xxh64:1234", DigestMatch::kUnknown},
  };
  for (const auto &item : cases)
    EXPECT_EQ(CompareDigest(item.digest, "abc"), item.match) << item.digest;
}

}  // namespace
}  // namespace vs_wml::test
