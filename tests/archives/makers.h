// Archives made for tests, and what is read from them.
//
// SPDX-License-Identifier: MIT
#ifndef VS_WML_TESTS_ARCHIVES_MAKERS_H
#define VS_WML_TESTS_ARCHIVES_MAKERS_H

#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "archives/archive.h"

namespace vs_wml::test {

inline const std::string kDeck = "<wml><card title=\"One\"><p>one</p></card></wml>";

std::string Gzip(std::string_view bytes);
std::string Deflate(std::string_view bytes, bool withHeader);
std::string Zstd(std::string_view bytes, std::string_view dictionary = {});
std::string Brotli(std::string_view bytes);
/// In chunks of `size` bytes, the size written as `digits` digits.
std::string Chunked(std::string_view bytes, std::size_t size = 7, int digits = 1);

std::string Http(std::string_view fields, std::string_view body);

struct WarcRecord {
  std::string type = "response";
  std::string uri = "http://a.example/";
  std::string block = Http("Content-Type: text/vnd.wap.wml\r\n", kDeck);
  std::string fields = "Content-Type: application/http; msgtype=response\r\n";
  long lengthError = 0;  // added to the Content-Length
  std::string version = "WARC/1.0";
  std::string end = "\r\n\r\n";
};
std::string Warc(const WarcRecord &record);
std::string ArcRecord(std::string_view uri, std::string_view type, std::string_view block);
std::string ArcHead();

/// format: "zip", "tar", "7z"; filter: "", "gzip", "xz", "zstd".
std::string Bundle(const std::string &format, const std::string &filter,
                   const std::vector<std::pair<std::string, std::string>> &files);

struct Found : ArchiveSink {
  std::vector<ArchivedDocument> documents;
  std::vector<ArchiveNotice> notices;
  ArchiveSummary summary;

  Verdict Document(ArchivedDocument document) override {
    documents.push_back(std::move(document));
    return Verdict::kDeck;
  }
  void Notice(const ArchiveNotice &notice) override { notices.push_back(notice); }
  /// All warnings and notices, a line each.
  std::string Said() const;
};

/// Reads through a stream that can seek.
Found Read(const std::string &bytes, const std::string &name, ArchiveOptions options = {});
/// Feeds so many bytes at a time.
Found Push(const std::string &bytes, const std::string &name, std::size_t piece,
           ArchiveOptions options = {});

}  // namespace vs_wml::test

#endif  // VS_WML_TESTS_ARCHIVES_MAKERS_H
