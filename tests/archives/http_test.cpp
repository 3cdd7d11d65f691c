// SPDX-License-Identifier: MIT
//
// HTTP as servers and writers of archives leave it: what the header says against what the body is.
#include "archives/http/message.h"

#include <gtest/gtest.h>

#include "archives/http/chunks.h"
#include "makers.h"

namespace vs_wml::test {
namespace {

using namespace std::string_literals;

constexpr std::size_t kLimit = 1U << 20U;

TEST(Http, BodiesAreDecidedByEvidence) {
  const std::string plain = kDeck;
  const std::string bad = Gzip(plain).replace(20, 2, "zz");
  const struct {
    const char *what;
    std::string fields;
    std::string body;
    std::string said = "";
    std::string result = kDeck;
  } cases[] = {
      {"chunked", "Transfer-Encoding: chunked", Chunked(plain)},
      {"already joined", "Transfer-Encoding: chunked", plain,
       "it is said to be chunked, but is not"},
      {"sizes of eight digits", "Transfer-Encoding: chunked", Chunked(plain, 20, 8)},
      {"bare line feeds", "Transfer-Encoding: chunked", "2f\n" + plain + " \n0\n\n", "",
       plain + " "},
      {"blanks and extensions", "Transfer-Encoding: chunked",
       "2e  ;a=b\r\n" + plain + "\r\n0\r\n\r\n"},
      {"a trailer", "Transfer-Encoding: chunked", "2e\r\n" + plain + "\r\n0\r\nX: y\r\n\r\n"},
      {"no last line", "Transfer-Encoding: chunked", "2e\r\n" + plain + "\r\n0\r\n"},
      {"no last chunk", "Transfer-Encoding: chunked", "2e\r\n" + plain + "\r\n",
       "its chunked coding is cut: 46 bytes came out of it"},
      {"a cut chunk", "Transfer-Encoding: chunked", "ff\r\n" + plain,
       "its chunked coding is cut: 46 bytes came out of it"},
      {"a broken size", "Transfer-Encoding: chunked", "2e\r\n" + plain + "\r\nxx\r\n",
       "its chunked coding is damaged: no chunk size at byte 52"},
      {"a size that lies", "Transfer-Encoding: chunked", "10\r\n" + plain + "\r\n0\r\n\r\n",
       "it is said to be chunked, but is not", "10\r\n" + plain + "\r\n0\r\n\r\n"},
      {"chunks that nobody says", "X: y", Chunked(plain),
       "it is chunked, which its header does not say"},
      {"no chunks", "X: y", "2e\r\n" + plain, "", "2e\r\n" + plain},
      {"gzip", "Content-Encoding: gzip", Gzip(plain)},
      {"x-gzip", "Content-Encoding: X-GZIP", Gzip(plain)},
      {"already unzipped", "Content-Encoding: gzip", plain, "it is said to be gzip, but is not"},
      {"gzip that nobody says", "X: y", Gzip(plain), "it is gzip, which its header does not say"},
      {"gzip called deflate", "Content-Encoding: deflate", Gzip(plain),
       "it is gzip, which its header does not say\nit is said to be deflate, but is not"},
      {"empty gzip", "Content-Encoding: gzip", "", "", ""},
      {"two members", "Content-Encoding: gzip", Gzip(plain.substr(0, 9)) + Gzip(plain.substr(9))},
      {"something behind", "Content-Encoding: gzip", Gzip(plain) + "abc",
       "3 bytes behind its gzip coding are left out"},
      {"cut gzip", "Content-Encoding: gzip", Gzip(plain).substr(0, Gzip(plain).size() - 4),
       "its gzip coding is cut: 46 bytes came out of it"},
      {"deflate with zlib's header", "Content-Encoding: deflate", Deflate(plain, true)},
      {"deflate without", "Content-Encoding: deflate", Deflate(plain, false)},
      {"no deflate", "Content-Encoding: deflate", plain, "it is said to be deflate, but is not"},
      {"brotli", "Content-Encoding: br", Brotli(plain)},
      {"no brotli", "Content-Encoding: br", plain, "it is said to be br, but is not"},
      {"zstd", "Content-Encoding: zstd", Zstd(plain)},
      {"brotli in deflate", "Content-Encoding: br, deflate", Deflate(Brotli(plain), false)},
      {"deflate in brotli", "Content-Encoding: deflate, br", Brotli(Deflate(plain, false))},
      {"gzip in chunks", "Content-Encoding: gzip\r\nTransfer-Encoding: chunked",
       Chunked(Gzip(plain))},
      {"chunks in gzip", "Content-Encoding: gzip\r\nTransfer-Encoding: chunked",
       Gzip(Chunked(plain))},
      {"both transfer codings", "Transfer-Encoding: gzip, chunked", Chunked(Gzip(plain))},
      {"a list in two fields", "Content-Encoding: gzip\r\nContent-Encoding: deflate",
       Deflate(Gzip(plain), true)},
      {"identity", "Content-Encoding: identity", plain},
      {"unknown", "Content-Encoding: compress", plain},
      {"a short body", "Content-Length: 50", plain, "its body is cut: 46 of 50 bytes are there"},
      {"a long body", "Content-Length: 10", plain},
  };
  for (const auto &item : cases) {
    SCOPED_TRACE(item.what);
    const HttpHead head = ParseHttpHead("HTTP/1.1 200 OK\r\n" + item.fields + "\r\n\r\n");
    const DecodedBody decoded = DecodeBody(head, item.body, kLimit);
    std::string said;
    for (const std::string &warning : decoded.warnings)
      said += (said.empty() ? "" : "\n") + warning;
    EXPECT_EQ(decoded.bytes, item.result);
    EXPECT_EQ(said, item.said);
    EXPECT_EQ(decoded.damaged, item.said.find("damaged") != std::string::npos);
  }
  const DecodedBody damaged =
      DecodeBody(ParseHttpHead("Content-Encoding: gzip\r\n\r\n"), bad, kLimit);
  EXPECT_TRUE(damaged.damaged);
}

TEST(Http, CodingsAreUndoneUpToEight) {
  std::string body = kDeck;
  for (std::size_t depth = 1; depth <= kMostCodings + 1; ++depth) {
    body = Gzip(body);
    const DecodedBody decoded = DecodeBody({}, body, kLimit);
    EXPECT_EQ(decoded.damaged, depth > kMostCodings);
    EXPECT_EQ(decoded.bytes == kDeck, depth <= kMostCodings);
  }
}

TEST(Http, BodiesStopAtTheLimit) {
  const std::string big(5000, 'x');
  for (const std::string &body : {Gzip(big), Deflate(big, true), Brotli(big), Zstd(big)}) {
    HttpHead head;
    head.codings = {Coding::kDeflate, Coding::kBrotli};
    const DecodedBody over = DecodeBody(head, body, big.size() - 1);
    EXPECT_TRUE(over.over);
    EXPECT_EQ(over.bytes.size(), big.size() - 1);
    EXPECT_FALSE(DecodeBody(head, body, big.size()).over);
  }
}

TEST(Http, HeadsAreReadAsServersWriteThem) {
  const struct {
    const char *head;
    int status;  // 0: none
    const char *type;
    const char *charset;
  } cases[] = {
      {"HTTP/1.1 200 OK\r\nContent-Type: text/vnd.wap.wml;charset=UTF-8\r\n\r\n", 200,
       "text/vnd.wap.wml", "UTF-8"},
      {"HTTP/1.0 404\nContent-type:text/html\n\n", 404, "text/html", ""},
      {"HTTP/1.1 OK\r\nContent-Type : text/html; charset=\"x\"; charset=y\r\n\r\n", 0, "text/html",
       "x"},
      {"http/1.1  302 Found\r\n\r\n", 302, "", ""},
      {"ICY 200 OK\r\nCONTENT-TYPE: Text/HTML; charset\r\n\r\n", 200, "text/html", ""},
      {"HTTP/1.1 99 No\r\n\r\n", 0, "", ""},
      {"\r\nHTTP/1.1 200 OK\r\nnonsense\r\nContent-Type: text/\r\n\thtml\r\n\r\n", 200, "text/",
       ""},
      {"HTTP/1.1 200 OK\r\nContent-Type:\r\n text/html;\r\n\tcharset='k'\r\n\r\n", 200, "text/html",
       "k"},
      {"HTTP/1.1 200 OK\r\nContent-Type: \"text/html\"\r\n: empty\r\n\r\n", 200, "text/html", ""},
      {"Content-Type: text/html;;charset=;a\r\n\r\n", 0, "text/html", ""},
      {"HTTP/1.1 200 OK", 200, "", ""},
      {"", 0, "", ""},
  };
  for (const auto &item : cases) {
    SCOPED_TRACE(item.head);
    const HttpHead head = ParseHttpHead(item.head);
    EXPECT_EQ(head.status.value_or(0), item.status);
    EXPECT_EQ(head.type.name, item.type);
    EXPECT_EQ(head.type.charset, item.charset);
  }
}

TEST(Http, HeadsMayLackTheirStatusLineOrTheirBody) {
  const struct {
    std::string block;
    std::size_t decks;
  } cases[] = {{"Content-Type: text/vnd.wap.wml\r\n\r\n" + kDeck, 1},
               {kDeck, 1},
               {"HTTP/1.1 200 OK\r\nContent-Type: text/vnd.wap.wml\r\n", 0},
               {"HTTP/1.1 200 OK", 0},
               {"", 0}};
  for (const auto &item : cases) {
    WarcRecord record;
    record.block = item.block;
    const Found found = Read(Warc(record), "a.warc");
    EXPECT_EQ(found.documents.size(), item.decks) << item.block;
    EXPECT_EQ(found.summary.damaged, 0U);
    if (item.decks == 1) {
      EXPECT_EQ(found.documents[0].bytes, kDeck);
    }
  }
}

}  // namespace
}  // namespace vs_wml::test
