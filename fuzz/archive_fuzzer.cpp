// Reads any bytes as an archive, at once and in pieces: the records add up, both ways find the
// same, and each place that is given is one to read from.
//
// SPDX-License-Identifier: MIT
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "archives/archive.h"

namespace {

struct Found : vs_wml::ArchiveSink {
  std::vector<vs_wml::ArchivedDocument> documents;
  std::size_t notices = 0;
  vs_wml::ArchiveSummary summary;

  vs_wml::Verdict Document(vs_wml::ArchivedDocument document) override {
    documents.push_back(std::move(document));
    return vs_wml::Verdict::kDeck;
  }
  void Notice(const vs_wml::ArchiveNotice & /*notice*/) override { ++notices; }
};

[[noreturn]] void Fail(const char *what) {
  std::fprintf(stderr, "%s\n", what);
  std::abort();
}

void CheckSum(const Found &found) {
  const vs_wml::ArchiveSummary &sum = found.summary;
  if (sum.records != sum.decks + sum.skipped + sum.damaged) Fail("the counts do not add up");
  if (sum.decks != found.documents.size()) Fail("decks that were not handed over");
  if (sum.damaged != 0 && !sum.lost) Fail("damage without loss");
  if (sum.lost && found.notices == 0) Fail("loss without a word");
}

Found Read(const std::string &bytes, const vs_wml::ArchiveOptions &options) {
  Found found;
  std::istringstream stream(bytes);
  found.summary = vs_wml::ForEachDocument(stream, options, found);
  return found;
}

Found Push(std::string_view bytes, std::size_t piece, const vs_wml::ArchiveOptions &options) {
  Found found;
  vs_wml::ArchiveParser parser(options, found);
  for (std::size_t at = 0; at < bytes.size(); at += piece) parser.Feed(bytes.substr(at, piece));
  found.summary = parser.Finish();
  return found;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  if (size < 2) return 0;
  static constexpr const char *kNames[] = {"a",          "a.warc",   "a.arc", "a.warc.gz",
                                           "a.warc.zst", "a.arc.gz", "a.har", "a.eml"};
  vs_wml::ArchiveOptions options;
  options.name = kNames[data[0] % std::size(kNames)];
  options.allTypes = (data[0] & 0x80U) != 0;
  options.limits.documentBytes = std::size_t{1} << 16U;
  options.limits.headerBytes = 2048;
  options.limits.nestedBytes = std::uint64_t{1} << 20U;
  const std::size_t piece = data[1] + std::size_t{1};
  const std::string bytes(reinterpret_cast<const char *>(data) + 2, size - 2);

  const Found whole = Read(bytes, options);
  const Found pieces = Push(bytes, piece, options);
  CheckSum(whole);
  CheckSum(pieces);
  if (whole.summary.Line() != pieces.summary.Line()) Fail("pieces are read otherwise");
  for (std::size_t i = 0; i < whole.documents.size(); ++i) {
    const vs_wml::ArchivedDocument &document = whole.documents[i];
    const vs_wml::ArchivedDocument &other = pieces.documents[i];
    if (document.bytes != other.bytes || document.uri != other.uri) Fail("a document differs");
    if (document.offset != other.offset || document.length != other.length) Fail("a place differs");
    if (document.archive != options.name || !document.offset) continue;
    vs_wml::ArchiveOptions one = options;
    one.at = document.offset;
    const Found again = Read(bytes, one);
    if (again.documents.size() != 1) Fail("a record is not found where it is said to be");
    if (again.documents[0].uri != document.uri) Fail("another record is where one is said to be");
  }
  return 0;
}
