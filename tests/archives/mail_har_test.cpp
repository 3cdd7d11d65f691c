// SPDX-License-Identifier: MIT
//
// Pages as browsers and mail programs save them.
#include <gtest/gtest.h>

#include "makers.h"

namespace vs_wml::test {
namespace {

using namespace std::string_literals;

// kDeck in base64, by base64(1).
constexpr const char *kBase64 = "PHdtbD48Y2FyZCB0aXRsZT0iT25lIj48cD5vbmU8L3A+PC9jYXJkPjwvd21sPg==";

std::string Part(const std::string &fields, const std::string &body) {
  return fields + "\r\n\r\n" + body + "\r\n";
}

TEST(Mail, PartsAreRead) {
  const std::string deck = Part(
      "Content-Type: text/vnd.wap.wml; charset=koi8-r\r\n"
      "Content-Location: http://a.example/d",
      kDeck);
  const std::string encoded = Part(
      "Content-Type: text/vnd.wap.wml\r\n"
      "Content-Transfer-Encoding: base64",
      kBase64);
  const std::string quoted = Part(
      "Content-Type: text/vnd.wap.wml; name=q.wml\r\n"
      "Content-Transfer-Encoding: quoted-printable",
      "<wml><card title=3D\"One\"><p>=\r\none</p></card></wml>");
  const std::string page = Part("Content-Type: text/html", "<html></html>");
  const auto parts = [&](const std::string &mark) {
    return "--" + mark + "\r\n" + page + "--" + mark + "\r\n" + deck + "--" + mark + "\r\n" +
           encoded + "--" + mark + "\r\n" + quoted + "--" + mark + "--\r\n";
  };
  const struct {
    const char *what;
    std::string message;
  } cases[] = {
      {"MHTML",
       "MIME-Version: 1.0\r\nContent-Type: multipart/related; type=\"text/html\";\r\n"
       "\tboundary=\"abc\"\r\n\r\n" +
           parts("abc")},
      {"a boundary that ends in hyphens",
       "From: a@b\r\nMIME-Version: 1.0\r\nContent-Type: multipart/related; boundary=\"--abc--\"\r\n"
       "\r\n" +
           parts("--abc--")},
      {"parts alone", parts("abc")},
      {"a response",
       "HTTP/1.1 200 OK\r\nContent-Type: multipart/mixed; boundary=abc\r\n\r\n" + parts("abc")},
      {"a message in a message",
       "Message-ID: <1@b>\r\nContent-Type: message/rfc822\r\n\r\nMIME-Version: 1.0\r\n"
       "Content-Type: multipart/mixed; boundary=abc\r\n\r\n" +
           parts("abc")},
      {"bare line feeds",
       "MIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=abc\n\n" + parts("abc")},
  };
  for (const auto &item : cases) {
    SCOPED_TRACE(item.what);
    const Found found = Push(item.message, "x.eml", 100);
    ASSERT_EQ(found.documents.size(), 3U) << found.Said();
    EXPECT_EQ(found.Said(), "");
    EXPECT_EQ(found.summary.Line(), "4 records: 3 decks, 1 skipped, 0 damaged");
    EXPECT_EQ(found.documents[0].uri, "http://a.example/d");
    EXPECT_EQ(found.documents[0].charset, "koi8-r");
    EXPECT_EQ(found.documents[2].uri, "x.eml!q.wml");
    for (const ArchivedDocument &document : found.documents) {
      EXPECT_EQ(document.bytes, kDeck);
      EXPECT_EQ(document.contentType, "text/vnd.wap.wml");
    }
  }
}

TEST(Mail, HoldsArchives) {
  const std::string zip = Bundle("zip", "", {{"a.wml", kDeck}});
  const std::string message =
      "From: a@b\r\nDate: Mon, 4 Mar 2002 06:06:07 +0100\r\nMIME-Version: 1.0\r\n"
      "Content-Type: application/zip; name=decks.zip\r\n\r\n" +
      zip;
  const Found found = Push(message, "x.eml", 1000);
  ASSERT_EQ(found.documents.size(), 1U) << found.Said();
  EXPECT_EQ(found.documents[0].uri, "x.eml!decks.zip!a.wml");
  const std::string mbox =
      "From a@b Mon Mar  4 05:06:07 2002\nMIME-Version: 1.0\n"
      "Date: Mon, 4 Mar 2002 06:06:07 +0100\n"
      "Content-Type: text/vnd.wap.wml\n\n" +
      kDeck + "\n\n";
  const Found two = Push(mbox + mbox, "x.mbox", 1000);
  ASSERT_EQ(two.documents.size(), 2U) << two.Said();
  EXPECT_EQ(two.documents[1].uri, "x.mbox!2");
  EXPECT_EQ(two.documents[1].date, "2002-03-04T05:06:07Z");
}

TEST(Mail, IsToldFromDecks) {
  for (const std::string &deck :
       {kDeck, "Content-Type: text/vnd.wap.wml\r\n\r\n" + kDeck,
        "HTTP/1.1 200 OK\r\nContent-Type: text/vnd.wap.wml\r\n\r\n" + kDeck,
        "<?xml version=\"1.0\"?>\n<!-- From: a\nMIME-Version: 1.0 -->\n" + kDeck}) {
    EXPECT_FALSE(LooksLikeArchive(deck, "a.wml")) << deck;
  }
}

std::string HarEntryText(const std::string &url, const std::string &content) {
  return R"({"startedDateTime":"2002-03-04T05:06:07Z","request":{"url":")" + url +
         R"("},"response":{"status":200,"headers":[{"name":"X","value":"\u00e9\"\\"}],"content":)" +
         content + "}}";
}

std::string Har(const std::string &entries) {
  return R"({"log":{"version":"1.2","creator":{"name":"x"},"pages":[{"text":"no"}],"entries":[)" +
         entries + "]}}";
}

constexpr const char *kEscaped = R"(<wml><card title=\"One\"><p>one<\/p></card></wml>)";

TEST(Har, EntriesAreRead) {
  const std::string text = R"({"mimeType":"text/vnd.wap.wml; charset=koi8-r","text":")" +
                           std::string(kEscaped) + R"("})";
  const std::string encoded = R"({"size":50,"mimeType":"text/html","encoding":"base64","text":")" +
                              std::string(kBase64) + R"("})";
  const std::string none = R"({"size":50,"mimeType":"text/vnd.wap.wml"})";
  const std::string image = R"({"mimeType":"image/png","text":")" + std::string(kEscaped) + R"("})";
  const std::string har = Har(HarEntryText("u:1", text) + ",\n" + HarEntryText("u:2", encoded) +
                              "," + HarEntryText("u:3", none) + "," + HarEntryText("u:4", image));
  for (const Found &found :
       {Read(har, "x.har"), Push(har, "x.har", 10), Push(Gzip(har), "x.har.gz", 10)}) {
    ASSERT_EQ(found.documents.size(), 2U) << found.Said();
    EXPECT_EQ(found.summary.Line(), "4 records: 2 decks, 2 skipped, 0 damaged");
    EXPECT_EQ(found.documents[0].uri, "u:1");
    EXPECT_EQ(found.documents[0].status, 200);
    EXPECT_EQ(found.documents[0].date, "2002-03-04T05:06:07Z");
    EXPECT_TRUE(found.documents[0].charsetIsCertain);
    EXPECT_FALSE(found.documents[1].charsetIsCertain);
    EXPECT_EQ(found.Said(),
              "the log has only 46 of 50 bytes of it\nu:3: the log has no body of it\n");
    for (const ArchivedDocument &document : found.documents) EXPECT_EQ(document.bytes, kDeck);
  }
}

TEST(Har, StringsThatAreTooLongAreNotHeld) {
  // Cut anywhere, between and in escapes.
  for (const std::string &unit :
       {"x"s, R"(\n)"s, R"(\u00e9)"s, R"(\ud83d\ude00)"s, R"(\\)"s, "\\\""s}) {
    std::string long_text = kEscaped;
    for (int i = 0; i < 5000; ++i) long_text += unit;
    const std::string har = Har(
        HarEntryText("u:1", R"({"mimeType":"text/vnd.wap.wml","text":")" + long_text + R"("})") +
        "," +
        HarEntryText(
            "u:2", R"({"mimeType":"text/vnd.wap.wml","text":")" + std::string(kEscaped) + R"("})"));
    for (std::size_t limit = 300; limit < 314; ++limit) {
      ArchiveOptions options;
      options.limits.documentBytes = limit;
      const Found found = Push(har, "x.har", 7, options);
      ASSERT_EQ(found.documents.size(), 1U) << unit << limit << '\n' << found.Said();
      EXPECT_EQ(found.documents[0].uri, "u:2");
      EXPECT_EQ(found.summary.damaged, 1U);
    }
  }
}

TEST(Har, CutsAreSeenAfterEachByte) {
  const std::string har = Har(HarEntryText(
      "u:1", R"({"mimeType":"text/vnd.wap.wml","text":")" + std::string(kEscaped) + R"("})"));
  for (std::size_t size = 10; size < har.size(); ++size) {
    const Found found = Read(har.substr(0, size), "x.har");
    EXPECT_FALSE(found.Said().empty()) << size;
    EXPECT_TRUE(found.summary.lost) << size;
  }
  const std::string deep = R"({"log":{"entries":)" + std::string(100000, '[');
  EXPECT_NE(Read(deep, "x.har").Said().find("nests too deep"), std::string::npos);
}

}  // namespace
}  // namespace vs_wml::test
